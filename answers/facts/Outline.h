#pragma once

// What a file declares and implements as a reader of it sees it, in the order of the text: each declaration
// with its text, and how deep it stands.

#include <string>
#include <string_view>
#include <vector>

#include <answers/facts/Facts.h>

namespace ostraka::answers {

enum class DeclarationKind {
    Class, // with a body, also an interface
    Struct,
    Union,
    Namespace,
    Forward,
    Enum,
    Enumerator,
    Typedef,
    Method, // in the body of its class
    Member,
    Implementation, // of a method, outside of its class
    Function,       // declared
    FunctionBody,
    Variable,
    Tie, // of the interface `name` to the class `scope`
    Concept,
};

// "class", "forward", "enum" and so on.
const char* NameOf(DeclarationKind kind);

struct OutlineEntry {
    DeclarationKind kind = DeclarationKind::Variable;
    std::string name;
    std::string scope; // "Berth::Side": the class, the enum or the namespace around the name; else empty
    DeclarationKind scopeKind = DeclarationKind::Class;
    std::string text;      // the declaration as it reads: "virtual int Moor(Ship* ship) = 0"
    std::string arguments; // of a function: "(Ship* ship)"
    std::string type;      // of a variable, an array as a pointer
    bool hasBody = false;  // of a function
    Place place;           // of the statement
    Place namePlace;       // of the name in it
    int depth = 0;         // how many of the entries before it are around it
    Access access = Access::None;
    int declared = -1; // in the facts; -1 of a tie
};

// Whether both are names of one statement, which they show as their text.
bool SharesStatement(const OutlineEntry& a, const OutlineEntry& b);

// Members of a class stand behind it. The facts are those of the tokens; what bodies of functions hold is
// left out.
std::vector<OutlineEntry> OutlineOf(const TokenList& tokens, const FileFacts& facts);

// Some tokens as one line, with the blanks that a reader expects: "f(int a, int b) const".
std::string ReadableTokens(const TokenList& tokens, int first, int past);

// "plain", "interface", "component": what a class is by the marks of the dialect in its body.
const char* SortOf(const FileFacts& facts, const Declared& declared);

} // namespace ostraka::answers
