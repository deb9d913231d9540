#pragma once

// Words by which the dialect says what the language has no word for.

#include <algorithm>
#include <iterator>
#include <string_view>

#include <ostraka/symbols/TAPDefClass.h>

namespace ostraka::detail {

// `TIE_Interface(Class)` ties an interface to a class.
inline constexpr std::string_view tieMark = "TIE_";

// A statement in the body of a class that says of which sort the class is; its text is the whole statement.
struct SortMark {
    std::string_view text;
    TAPDefClass::Kind kind;
};

inline constexpr SortMark sortMarks[] = {
    {"NUBDeclareInterface", TAPDefClass::Interface},
    {"NUBDeclareClass", TAPDefClass::ComponentClass},
    {"NUBDeclareKindOf", TAPDefClass::ComponentClass},
};

// Null for any other statement.
inline const SortMark* SortMarkOf(std::string_view statement) {
    const auto* found = std::find_if(std::begin(sortMarks), std::end(sortMarks),
                                     [=](const SortMark& mark) { return mark.text == statement; });
    return found == std::end(sortMarks) ? nullptr : found;
}

} // namespace ostraka::detail
