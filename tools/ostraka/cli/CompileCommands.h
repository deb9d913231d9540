#pragma once

// What a compile_commands.json says: which files are compiled, and in which folders their headers lie.

#include <string>
#include <vector>

namespace ostraka::tool {

// Paths are those of the commands, behind the folder of each command where they are relative; each once, in
// the order of the commands.
struct CompileCommands {
    std::vector<std::string> files;
    std::vector<std::string> folders;
    std::string problem; // why the list can't be read; what stands before is there
};

CompileCommands ReadCompileCommands(const std::string& path);

} // namespace ostraka::tool
