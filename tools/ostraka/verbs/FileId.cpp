#include "verbs/FileId.h"

#include <sys/stat.h>

namespace ostraka::tool {

FileId IdOf(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 ? FileId(status.st_dev, status.st_ino) : FileId();
}

NamedFiles::NamedFiles(const std::vector<std::string>& paths) {
    for (const std::string& path : paths) {
        answers.emplace(path, true);
        if (const FileId id = IdOf(path); id != FileId()) ids.insert(id);
    }
}

bool NamedFiles::Hold(std::string_view path) {
    const auto known = answers.find(path);
    if (known != answers.end()) return known->second;
    const std::string text(path);
    return answers.emplace(text, ids.contains(IdOf(text))).first->second;
}

} // namespace ostraka::tool
