#pragma once

// What one file says, from its bytes alone: what it declares and in which scopes, what it includes, defines
// and uses, and what in it couldn't be read. Whatever needs a second file is a question, and asked elsewhere.
//
// Texts are kept by the facts, which may be moved and outlive the file's bytes. Places are offsets in bytes;
// PlaceOf turns them into lines and columns.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <answers/facts/Place.h>
#include <answers/facts/TextArena.h>
#include <answers/facts/Tokens.h>

namespace ostraka::answers {

enum class FactKind : std::uint8_t {
    Namespace, // a module of IDL too
    NamespaceAlias,
    Class,
    Struct,
    Union,
    Interface,
    Exception,
    Enum,
    Enumerator,
    Typedef, // `using` with a type too
    Concept,
    Function, // a method, where its scope is a class
    Variable, // a member, where its scope is a class; a local, where it is a block
    Argument,
    TemplateParameter,
    Label,
};

enum class Access : std::uint8_t { None, Public, Protected, Private };

enum FactFlag : std::uint32_t {
    HasBody = 1U << 0,
    IsStatic = 1U << 1,
    IsVirtual = 1U << 2,
    IsPure = 1U << 3,
    IsConstMethod = 1U << 4,
    IsConstructor = 1U << 5,
    IsDestructor = 1U << 6,
    IsConversion = 1U << 7,
    IsOperator = 1U << 8,
    IsFriend = 1U << 9,
    IsExtern = 1U << 10,
    IsDeleted = 1U << 11,
    IsDefaulted = 1U << 12,
    IsVariadic = 1U << 13,
    IsTemplate = 1U << 14,
    IsScopedEnum = 1U << 15,
    HasDefault = 1U << 16,     // an argument, or a template parameter
    IsForward = 1U << 17,      // a class or an enum without its body
    IsRangeElement = 1U << 18, // `each` of `for (auto each : all)`
    IsBinding = 1U << 19,      // of a structured binding
    IsInline = 1U << 20,       // a namespace
    IsTypePack = 1U << 21,
    IsUnnamed = 1U << 22,
    IsPack = 1U << 23,
    IsOverride = 1U << 24,
    IsConstExpr = 1U << 25,
    IsSpecialization = 1U << 26, // `template <> class A<int>`
};

struct Base {
    std::string_view name; // as written: "ns::List<int>"
    Access access = Access::None;
    bool isVirtual = false;
    std::uint32_t at = 0; // of the first byte of the name
};

// Indexes are into the facts of the same file; -1 is none.
struct Declared {
    FactKind kind = FactKind::Variable;
    Access access = Access::None;
    std::uint32_t flags = 0;
    std::int32_t scope = 0;     // in which it is declared
    std::int32_t body = -1;     // the scope that it opens
    std::int32_t typeOf = -1;   // the class or enum that the same statement declares, as its type
    std::uint32_t at = 0;       // the name, or where it would stand
    std::uint32_t begin = 0;    // of the statement
    std::uint32_t past = 0;     // behind its body or its semicolon
    std::int32_t firstBase = 0; // of a class: in the bases of the facts
    std::int32_t bases = 0;     // how many
    std::int32_t initial = -1;  // tokens of what it is initialised with; only where bodies were read
    std::int32_t initialPast = -1;
    std::string_view name;      // "" where it has none; "operator ==", "~Ship"
    std::string_view qualifier; // what stands before it: "ns::Ship"
    std::string_view type;      // as written, of a function what it returns, of a typedef what it means

    bool Has(std::uint32_t flag) const { return (flags & flag) != 0; }
};

enum class ScopeKind : std::uint8_t { File, Namespace, Class, Enum, Template, Function, Block };

struct Scope {
    ScopeKind kind = ScopeKind::File;
    std::int32_t parent = -1;
    std::int32_t declaration = -1;  // whose body it is
    std::uint32_t begin = 0;        // names from here on ...
    std::uint32_t past = 0;         // ... to before this are looked for in it
    std::int32_t firstDeclared = 0; // what it declares begins here; arguments and parameters in a row
};

struct Using {
    std::int32_t scope = 0;
    std::uint32_t at = 0;
    std::string_view name; // "std", "std::string"
    bool isNamespace = false;
};

struct IncludeName {
    std::string_view name;
    std::uint32_t at = 0;
    char delimiter = '"';
};

struct MacroDefined {
    std::string_view name;
    std::string_view arguments;
    std::string_view value; // shortened where it is long
    std::uint32_t at = 0;
    std::uint32_t past = 0;
};

// A call of a macro that stands where a declaration could: TIE_Ship(...)
struct MacroCall {
    std::string_view name;
    std::string_view arguments; // without the parentheses
    std::uint32_t at = 0;
    std::int32_t scope = 0;
};

struct FileFacts {
    std::vector<Declared> declared; // in the order of their statements
    std::vector<Scope> scopes; // the first is the file; each behind its parent, in the order of their begin
    std::vector<Base> bases;
    std::vector<Using> usings;
    std::vector<IncludeName> includes;
    std::vector<MacroDefined> macros;
    std::vector<MacroCall> calls;
    std::vector<FaultAt> faults;
    std::vector<std::uint32_t> lines; // where each begins
    TextArena texts;

    Place PlaceOf(std::uint32_t offset) const;
    // Past the end of the line for a column that it doesn't have; past the text for such a line.
    std::uint32_t OffsetOf(Place place) const;

    // The innermost scope around the byte.
    int ScopeAt(std::uint32_t offset) const;
};

enum class Depth { Declarations, Bodies };
enum class Dialect { Cpp, Idl };

// The dialect that the ending of a path tells.
Dialect DialectOf(std::string_view path);

FileFacts ReadFacts(const TokenList& tokens, Depth depth, Dialect dialect = Dialect::Cpp);

} // namespace ostraka::answers
