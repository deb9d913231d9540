#pragma once

// What a name at a place means: looked for as the language does, through the blocks, classes with their bases
// and namespaces around it, in what the file sees; where nothing of that holds it, in any file. What stands
// before a
// `.`, `->` or `::` gets a type by the same rules.
//
// A resolver answers about one file at a time. What it hands out is good until the next file is opened.

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <answers/resolve/CodeBase.h>
#include <answers/resolve/Names.h>

namespace ostraka::answers {

// The type of an expression, as far as it is told.
struct Type {
    int entity = Names::none;    // of a class or an enum that some file declares
    std::string name;            // as written, without arguments and marks: "int", "vector"
    std::vector<Type> arguments; // of a template
    int pointers = 0;
    bool isConst = false;
    int localClass = -1; // of a class in a body of the opened file: its scope

    bool HasMembers() const { return IsClass() || localClass >= 0; }
    bool IsClass() const { return entity > Names::global; }
    bool IsKnown() const { return IsClass() || !name.empty(); }
};

struct PlaceAnswer {
    int file = -1;
    std::uint32_t at = 0; // of the declared name
    FactKind kind = FactKind::Variable;
    bool isMacro = false;
    bool isMember = false; // of a class
    bool isCertain = false;
    std::string name;
    std::string scope; // "gui::Frame"
    std::string type;
};

class Resolver {
public:
    Resolver(CodeBase& known, Names& allNames) : base(known), names(allNames) {}

    // Reads the file with its bodies, and all that it sees. False where it can't be read.
    bool Open(int file);
    const FileFacts& Opened() const { return opened; }
    const TokenList& Tokens() const { return *tokens; }

    // What the name at the byte means; empty where no name stands there, or nothing is known of it.
    std::vector<PlaceAnswer> Ask(std::uint32_t offset);

    // What the bases of a class mean, one for each that is written; needs no open file.
    std::vector<Type> BasesOfClass(const DeclarationRef& ref);

    // Whether the name at the byte stands for a base in the head of a class.
    bool IsBaseAt(std::uint32_t offset) const;

private:
    // A declaration of the opened file that holds only in one of its bodies.
    static constexpr int localFile = -2;
    static constexpr int deepest = 60; // steps from one type to the next

    // From where a name is looked for.
    struct Where {
        int file = -1; // localFile: the opened one with its bodies
        int scope = 0;
        std::uint32_t at = 0;
    };

    enum class Wanted : std::uint8_t { Any, Types };

    // Of a name in a namespace.
    struct Search {
        std::string_view name;
        int entity;
        Wanted wanted;
        bool operator==(const Search&) const = default;
    };

    struct Found {
        Refs refs;
        int entity = Names::none; // of a namespace, or of a class of which no declaration is at hand
        Type owner;               // the class that holds members
        bool IsNone() const { return refs.empty() && entity == Names::none; }
    };

    // What an expression gives.
    struct Value {
        Type type;
        Found named; // functions that may be called, a type, a namespace
        bool isType = false;
    };

    void TakeAllFiles();

    // ---- facts of either kind of file
    const FileFacts& FactsIn(int file);
    const Declared& At(const DeclarationRef& ref);
    int EntityAt(const Where& where);
    bool IsVisible(const DeclarationRef& ref) const;
    bool IsForOthers(const DeclarationRef& ref);
    bool IsNamed(int entity) const;
    bool IsMacro(std::string_view name) const;
    Refs VisibleOf(const Refs& refs, Wanted wanted);

    // ---- looking for names
    Found LookUp(std::string_view name, Where where, Wanted wanted, int depth);
    bool LookInBody(std::string_view name, const Where& where, int scope, Wanted wanted, Found& found,
                    int depth);
    bool LookInUsings(std::string_view name, const Where& where, int scope, Wanted wanted, Found& found,
                      int depth);
    Found LookInNamespace(std::string_view name, int entity, Wanted wanted, int depth);
    Found LookInUsed(const Search& search, int depth);
    Found LookInClass(std::string_view name, const Type& owner, Wanted wanted, int depth);
    Found LookInLocalClass(std::string_view name, int scope, Wanted wanted, int depth);
    Found LookIn(std::string_view name, const Type& owner, Wanted wanted, int depth);
    Found LookAnywhere(int token, bool isMember, bool withinClass);
    int ClassOfFunction(const Where& where, int scope, int depth);
    std::vector<Type> BasesOf(const Type& type, int depth);
    DeclarationRef DefinitionOf(int entity);

    // ---- types
    Type TypeFromText(std::string_view text, const Where& where, const Type* owner, int depth);
    Type TypeFromTokens(const TokenList& list, int first, int past, const Where& where, const Type* owner,
                        int depth);
    bool TakeHandle(std::string_view written, int depth, Type& type);
    Type TypeOfFound(const Found& found, const std::vector<Type>& arguments, int depth,
                     std::string_view written, const Type* owner);
    void TakeBody(int file, const Declared& declared, Type& type);
    Type TypeOf(const DeclarationRef& ref, const Type& owner, int depth);
    Where WhereOf(const DeclarationRef& ref);
    Type PartOf(const Type& type, int binding, int depth);
    Type ElementOf(const Type& type, int depth);
    Type PointedBy(const Type& type, int depth);
    Type ClassAround(const Where& where, int depth);

    // ---- expressions, over the tokens of the opened file
    Value Evaluate(int first, int past, int depth);
    Value EvaluatePostfix(int first, int past, int depth);
    Value EvaluateName(int& at, int past, int depth);
    Type Call(const Value& callee, int open, int depth);
    Type CallUnknown(std::string_view method, const Type& object);
    int StartOfPostfix(int last);
    Where WhereAt(int token) const;
    int PastAngles(int open) const { return PastAngles(*tokens, open); }
    static int PastAngles(const TokenList& list, int open);
    int OpenAngle(int close) const;

    // ---- choosing
    Refs Choose(const Found& found, int token, int depth);
    DeclarationRef LatestOf(const DeclarationRef& ref, std::uint32_t at);
    // `token`: the parenthesis of a call, else the name.
    Refs ChooseFunctions(const Refs& functions, const Found& found, int token, int depth);
    int ArgumentCount(int open, std::vector<std::pair<int, int>>* ranges) const;
    struct Arity {
        int least = 0;
        int most = 0;
    };
    Arity ArityOf(const DeclarationRef& ref);
    std::vector<int> ParametersOf(const DeclarationRef& ref);
    std::string SignatureOf(const DeclarationRef& ref);
    int Fit(const Type& argument, const Type& parameter, int depth);
    std::uint64_t OrderOf(const DeclarationRef& ref, std::uint32_t at) const;

    Found FindAt(int token, bool& isMember, int depth);
    Found QualifiedAt(int token, int depth);
    bool IsInitialiser(int token) const;
    PlaceAnswer AnswerFor(const DeclarationRef& ref, bool isCertain);
    std::vector<PlaceAnswer> MacroAnswers(std::string_view name);

    CodeBase& base;
    Names& names;

    int openedFile = -1;
    std::string bytes;
    std::unique_ptr<TokenList> tokens;
    FileFacts opened;
    std::vector<int> openedEntities;         // by scope of the opened facts
    std::vector<int> around;                 // the innermost bracket around each token
    std::unordered_map<int, int> declaredAt; // by offset: the opened declaration whose name stands there
    std::unordered_map<std::string_view, std::vector<int>> locals; // by name: in bodies, and arguments
    std::unordered_map<int, std::vector<int>> localUsings;         // by scope
    std::vector<int> visible;     // by file: its place in the order of what is seen, from 1; 0 where it isn't
    bool hasAllFiles = false;     // whether all names of the code base are known
    bool strict = true;           // whether only what is seen counts
    int work = 0;                 // steps since the question was asked
    std::vector<Search> underWay; // through the usings of namespaces, which may let in each other
    std::unordered_map<std::uint64_t, int> classesOfFunctions;
};

} // namespace ostraka::answers
