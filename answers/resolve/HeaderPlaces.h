#pragma once

// What an include means, and why: the library tells the file and the places of its search, and what else lies
// at these or was perhaps meant is looked for here.

#include <optional>
#include <string>
#include <vector>

#include <ostraka/symbols/HeaderTrace.h>

class TAPSymbolTable;

namespace ostraka::answers {

// A file, and the place at which it was found.
struct HeaderFile {
    std::string path;
    std::optional<HeaderPlace> place; // none for what can't be told
};

struct HeaderAnswer {
    std::vector<HeaderPlace> places; // all, in the order of the search
    std::optional<HeaderFile> found;
    std::vector<HeaderFile> hidden;  // others at later places
    std::vector<std::string> unseen; // when nothing was found: files of that name that aren't looked at
};

// What `name` means in the file `from`. The table must have its concatenation.
HeaderAnswer FindHeader(const TAPSymbolTable& table, const std::string& from, const std::string& name);

// The name of the framework or the module that holds the file's directory.
std::string OwnerOf(const HeaderFile& file);

} // namespace ostraka::answers
