#include <answers/facts/RawFile.h>

#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <system_error>

#include <gneiss/qxErrorCodeManager.h>
#include <gneiss/qxMMap.h>
#include <ostraka/foundation/TAFileBuffer.h>

namespace ostraka::answers {

namespace {

// A scanner may look ahead by a word.
constexpr int padding = 8;

const char* ReasonNotToRead(const struct stat& status, bool standardInput) {
    if (S_ISDIR(status.st_mode)) return "is a folder";
    if (standardInput || S_ISREG(status.st_mode) || S_ISFIFO(status.st_mode)) return nullptr;
    return "is a device or a socket, not a file";
}

// What standard input held; it can be read once.
std::optional<std::string> standardInputText;

const char* NameToOpen(const std::string& path) {
    return path == "-" ? "/dev/stdin" : path.c_str();
}

bool MayRead(const std::string& path, std::string& problem) {
    struct stat status {};
    if (stat(NameToOpen(path), &status) != 0) {
        problem = std::generic_category().message(errno);
        return false;
    }
    const char* reason = ReasonNotToRead(status, path == "-");
    if (reason != nullptr) problem = reason;
    return reason == nullptr;
}

} // namespace

int OpenToRead(const std::string& path, std::string& problem) {
    if (!MayRead(path, problem)) return -1;
    const int descriptor = open(NameToOpen(path), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) problem = std::generic_category().message(errno);
    return descriptor;
}

std::unique_ptr<TAFileBuffer> ReadFile(const std::string& path, std::string& problem) {
    const bool standardInput = path == "-";
    if (standardInput && standardInputText) {
        return std::make_unique<TAFileBuffer>(path.c_str(), *standardInputText);
    }
    if (!MayRead(path, problem)) return nullptr;
    auto buffer = std::make_unique<TAFileBuffer>(path.c_str(), 0);
    buffer->loaded = 1;
    if (qxMMap(NameToOpen(path), padding, buffer->buffer, buffer->size, '\n') == 0) {
        if (standardInput) standardInputText.emplace(buffer->buffer, buffer->size);
        return buffer;
    }
    problem = qxExtLastError.GetMsgError().CastToCharPtr();
    return nullptr;
}

} // namespace ostraka::answers
