#pragma once

// Reads facts from tokens in one walk from the first to the last. What is open around the token in hand,
// bodies and headers of statements, lies on a stack of the reader's own.

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <answers/facts/Facts.h>

namespace ostraka::answers {

class FactReader {
public:
    FactReader(const TokenList& tokens, Depth depth, Dialect dialect);
    FileFacts Run();

private:
    // What a stretch of tokens between two brackets, or up to a token, is.
    enum class Place : std::uint8_t { Namespace, Class, Block };

    struct Context {
        Place place;
        int past;              // the first token behind
        int scope;             // to which it goes back
        int declaration = -1;  // of a class or an enum whose declarators follow
        int header = -1;       // the parenthesis behind which the body of a statement begins
        bool isBraced = false; // the token at `past` is its own
        bool isWithin = false; // the statement around it goes on
        bool isTypedef = false;
        bool declaratorsFollow = false;
        Access access = Access::None;
        std::uint32_t flags = 0;
    };

    // What stands before the first declarator.
    struct Head {
        int first = 0;
        int typeFirst = -1; // of the last type, without macros before it
        int typePast = -1;
        int marksFirst = -1; // behind all that belongs to the type
        int words = 0;       // that may be a type
        bool builtin = false;
        bool isTypedef = false;
        std::uint32_t flags = 0;
        int typeOf = -1;
        int templateScope = -1;
    };

    // A name with what qualifies it: `ns::Ship<int>::`, then `Moor`, `~Ship` or `operator ==`.
    struct Chain {
        int first = 0;
        int qualifierPast = 0; // behind the last `::`; `first` where there is none
        int name = 0;          // the token of the name, of an operator the keyword
        int past = 0;
        bool isDestructor = false;
        bool isOperator = false;
        bool isConversion = false;
    };

    enum class Mode { Statement, Condition, ForInit, MacroLoop };

    // ---- the walk
    void WalkToEnd();
    void CloseContexts();
    void AtStatement();
    void AtBlockStatement();
    void PassBlock();
    void WithinStatement();
    Place CurrentPlace() const { return contexts.back().place; }
    bool InClass() const { return CurrentPlace() == Place::Class; }
    bool InBlock() const { return CurrentPlace() == Place::Block; }
    int PastStatement(int from);
    int PastLabel(int at) const;
    int SemicolonFrom(int from, int bound) const;
    bool BeginsAnother() const;

    // ---- statements
    void ControlStatement(int open, Mode mode);
    bool IsMacroLoop() const;
    void LambdaAt(int open);
    bool IsLambda(int open) const;

    // ---- declarations
    void NamespaceDeclaration();
    void UsingDeclaration();
    void TemplateDeclaration();
    void PastRequires();
    void LinkageOrExtern();
    void EnumDeclaration(Head head);
    bool ClassDeclaration(Head head);
    bool IdlStatement();
    void Import();
    int ReadCoclass(int first, int past);
    int ReadBases(int from, int past, Access usual);
    void AfterBody(const Context& context);
    bool Declaration(Mode mode);
    bool DeclarationFrom(Head head, int from, Mode mode);
    bool HoldsDeclarator(int open, bool isTypedef) const;
    bool Declarators(Head& head, int from, Mode mode);
    bool StructuredBinding(const Head& head, int open, Mode mode);
    bool FunctionDeclarator(Head& head, const Chain& chain, int pointers, int open, Mode mode, int tail = -1);
    bool FunctionInside(Head& head, const Chain& chain, int outerOpen, Mode mode);
    bool MacroStatement(const Chain& chain, int open);
    bool TypedByMacro(int open, Mode mode);
    bool BelongsToNext(int at) const;
    int FunctionTail(int from, std::uint32_t& flags, std::pair<int, int>& trailing);
    int PastInitialisers(int colon) const;
    bool LooksLikeValues(int open) const;
    bool IsParameterList(int open, bool strict = false) const;
    int PastInitial(int from, int bound) const;
    void Parameters(int open, int scope);
    void Parameter(int first, int past, int scope);
    void TemplateParameters(int first, int past, int scope);
    void KAndRBody(int from, int body);
    int FindKAndRBody(int from) const;

    // ---- pieces
    bool ReadChain(int from, Chain& chain) const;
    int PastOperator(int keyword, bool& isConversion) const;
    int PastAngles(int open) const;
    int PastArgumentsOfHead(int open) const;
    int PastTypeMacro(int at) const;
    int PastMacroAndName(int at) const;
    int PastMemberMarks(int from) const;
    int PastAttributes(int from) const;
    bool OpensHead(int at) const;
    bool EndsMacros(int at) const;
    // The token; the End for an index behind it, or before the first.
    const Token& T(int at) const { return tokens[at < 0 ? tokens.Count() : std::min(at, tokens.Count())]; }
    std::string_view TextAt(int at) const { return tokens.TextOf(T(at)); }
    bool IsMark(int at, std::uint8_t code) const { return T(at).Is(code); }
    bool IsKey(int at, Keyword keyword) const { return T(at).IsKeyword(keyword); }
    bool IsWord(int at) const { return T(at).kind == TokenKind::Word; }
    bool IsName(int at) const { return T(at).IsName() || IsKey(at, Kw_final) || IsKey(at, Kw_override); }
    int PastBracket(int open) const;
    // Its closing brace; without one the end of what the body stands in.
    int EndOfBody(int open) const;
    // Where what it holds ends at the latest: with its closing brace, or the token before its end.
    int LastIn(const Context& around) const;
    bool BeginsLine(int at) const;
    std::uint32_t IndentAt(int at) const;
    bool IsBuiltinType(int i) const;
    static bool IsMacroLike(std::string_view word);

    // ---- what is kept
    std::string_view Join(int first, int past, bool dropsStorage = false);
    std::string_view TypeText(const Head& head, int pointersFirst, int pointersPast, int arrays);
    std::string_view KeepChainName(const Chain& chain);
    int Add(FactKind kind, std::string_view name, int nameToken, const Head& head);
    int OpenScope(ScopeKind kind, int beginToken, int pastToken, int declaration);
    std::uint32_t OffsetAt(int at) const { return T(at).begin; }
    std::uint32_t PastOf(int at) const { return at < 0 ? 0 : T(at).begin + T(at).size; }
    Declared& At(int declaration) { return facts.declared[static_cast<std::size_t>(declaration)]; }
    std::string_view ClassAround() const;
    Access AccessHere() const { return InClass() ? contexts.back().access : Access::None; }
    bool WantsBodies() const { return depth == Depth::Bodies; }
    void EnterBody(Place place, int open, int bodyScope, int declaration = -1);

    const TokenList& tokens;
    const Depth depth;
    const Dialect dialect;
    FileFacts facts;
    std::vector<Context> contexts;
    int i = 0;
    int scope = 0;
    bool statementBegins = true;
    int templateScope = -1;   // the one that was opened for the declaration in hand
    int declarationFirst = 0; // the first token of the statement in hand
    std::string joined;
    mutable std::vector<bool> noAngles;         // brackets that are known to be comparisons
    std::unordered_map<int, int> statementEnds; // of statements without braces, by their first token
};

} // namespace ostraka::answers
