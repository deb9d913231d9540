#pragma once

// From what the user named to the files of the run, in their order: folders are walked, lists are read.

#include <filesystem>
#include <vector>

#include "cli/Request.h"

namespace ostraka::tool {

// Files stand as they were named, then those of the list, then those of the compile commands. A folder gives
// its sources, headers and IDL files in the order of their paths; what is hidden or behind a link to another
// folder isn't looked at. What can't be listed is an input with a problem.
std::vector<Input> CollectInputs(const Request& request);

// The same where `wanted` says which files of a folder count.
using FileFilter = bool (*)(const std::filesystem::path& path);
std::vector<Input> CollectInputs(const Request& request, FileFilter wanted);

} // namespace ostraka::tool
