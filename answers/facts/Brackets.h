#pragma once

// Tells each bracket of a file its partner. Where braces don't come out even, indentation tells which of them
// is the one too many or too few, so that the others keep theirs.

#include <string_view>
#include <vector>

#include <answers/facts/Tokens.h>

namespace ostraka::answers {

// Sets the partners in tokens without any, the last of which is an End; gives what has none.
std::vector<FaultAt> PairBrackets(std::string_view source, std::vector<Token>& tokens);

} // namespace ostraka::answers
