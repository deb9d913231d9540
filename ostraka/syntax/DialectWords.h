#pragma once

// Words of the dialect that make a type of another one: `NUBLISTP(Ship)`.

#include <algorithm>
#include <iterator>
#include <string_view>

namespace ostraka::detail {

inline constexpr const char* typedListWords[] = {"NUBLISTP", "NUBLISTV", "SEQUENCE"};

inline bool IsTypedListWord(std::string_view word) {
    return std::find(std::begin(typedListWords), std::end(typedListWords), word) != std::end(typedListWords);
}

} // namespace ostraka::detail
