#pragma once

// Files by what they are: a link leads to a file under another path.

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace ostraka::tool {

// Device and inode.
using FileId = std::pair<dev_t, ino_t>;

// (0, 0) for what can't be asked.
FileId IdOf(const std::string& path);

// The files that were named.
class NamedFiles {
public:
    explicit NamedFiles(const std::vector<std::string>& paths);

    // Whether the path leads to one of them. Each path is asked for once.
    bool Hold(std::string_view path);

private:
    std::set<FileId> ids;
    std::map<std::string, bool, std::less<>> answers;
};

} // namespace ostraka::tool
