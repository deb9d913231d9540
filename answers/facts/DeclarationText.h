#pragma once

// How one declaration reads by its text alone. The symbol table keeps classes with their methods and members;
// what it has no record of, as structs, operators, or several names in one statement, an outline still wants.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <answers/facts/Outline.h>

namespace ostraka::answers {

// Texts point into the text that was read.
struct DeclaredName {
    std::string_view scope; // what stands before the last "::" of a qualified name
    std::string_view name;
    std::size_t at = 0; // where the name stands
    // Of a variable: `const char`, `* const` and 1 of `const char* const names[2]`.
    std::string_view type;
    std::string_view marks;
    int indexes = 0;
};

struct DeclarationReading {
    // What it is as far as the text tells, Method and Member aside; none for a call of a macro.
    std::optional<DeclarationKind> kind;
    bool isTypedef = false;          // also of a struct or an enum with a body
    bool hasType = false;            // of a function: something stands before its name, or it is an operator
    bool isPrivate = false;          // members of the body are, until a label says something else
    std::vector<DeclaredName> names; // empty for what has none, as `enum {`
    std::size_t begin = 0;           // behind macros and attributes that stand before the declaration
    std::size_t past = 0;            // behind a function's arguments and what belongs to them
    std::string_view arguments;      // of a function, with the parentheses
};

// Reads a statement, or what stands before a body. It takes normalised text without its `;`.
DeclarationReading ReadDeclaration(std::string_view text, bool hasBody);

// Whether a text that stands behind a `)` belongs to the declaration before it: `= delete`, `: _depth(1)`,
// `noexcept`.
bool BelongsBehindArguments(std::string_view text);

// The type that the text gives a variable, an array as a pointer; empty where it stands around the name.
std::string TypeOf(const DeclaredName& name);

// The type of the name, as a table tells it, in the order of the text. A table collects words and marks
// apart: to it `const char* const name` is a "const char const*".
std::string AsWritten(std::string_view type, const DeclaredName& name);

} // namespace ostraka::answers
