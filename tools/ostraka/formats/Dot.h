#pragma once

// Pieces of drawings in DOT.

#include <cstddef>
#include <string>
#include <string_view>

namespace ostraka::tool {

// The text as a name or a label, in which lines are centred.
std::string Quoted(std::string_view text);

// A line with a note about what a limit has left out; empty when that is nothing.
std::string LeftOut(std::size_t count, std::string_view what);

} // namespace ostraka::tool
