#pragma once

// How many includes find no header, in one line.

#include <string>

#include <fmt/format.h>

#include "formats/Text.h"

namespace ostraka::tool {

// As "2 includes not found, see --missing, and 30 of the language", which are never listed; empty where
// nothing is missing.
inline std::string MissingNote(int missing, int ofLanguage, bool areListed) {
    std::string note;
    if (missing > 0)
        note = fmt::format("{} not found{}", Counted(missing, "include"), areListed ? "" : ", see --missing");
    if (ofLanguage == 0) return note;
    if (missing > 0) return fmt::format("{}, and {} of the language", note, ofLanguage);
    return fmt::format("{} of the language not found", Counted(ofLanguage, "include"));
}

} // namespace ostraka::tool
