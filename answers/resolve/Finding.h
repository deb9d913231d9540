#pragma once

// Declarations by their names, over all files of a code base.

#include <string>
#include <string_view>
#include <vector>

#include <answers/resolve/Resolver.h>

namespace ostraka::answers {

struct FoundDeclaration {
    PlaceAnswer answer;    // certain
    std::string signature; // of a function: "(int a, Ship*) const"
    bool hasBody = false;  // of a function or a class
};

// All that is declared under the name, macros too, with locals of bodies left out; by path and place. What
// stands before the last `::` has to end the name of the scope: "Ship::Accept". With `byPrefix` all names
// that begin so.
std::vector<FoundDeclaration> FindDeclarations(CodeBase& base, Names& names, std::string_view name,
                                               bool byPrefix);

// The arguments of a function as they read, in parentheses, with what follows them.
std::string SignatureText(const FileFacts& facts, const Declared& function);

} // namespace ostraka::answers
