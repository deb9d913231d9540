#pragma once

// What a code base says of itself in the file `.ostraka` at its root, for what nobody can find out: a setting
// on each line, `#` begins a comment.
//
//     drop-word API      # means nothing; as DLL_* or ALIGNED(), which goes with its arguments
//     include src/core   # a folder for headers, from the root

#include <string>
#include <vector>

namespace ostraka::tool {

struct RootSettings {
    std::vector<std::string> droppedWords;
    std::vector<std::string> folders; // absolute
};

// Of all roots, whose paths are absolute, in their order; a root without the file says nothing. WrongUsage
// with file, line and column for a line that is no setting.
RootSettings ReadRootSettings(const std::vector<std::string>& roots);

} // namespace ostraka::tool
