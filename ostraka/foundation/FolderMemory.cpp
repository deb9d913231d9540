#include <ostraka/foundation/FolderMemory.h>

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <memory>
#include <sys/stat.h>

namespace ostraka::detail {

namespace {

constexpr std::string_view separators = "/\\";

struct Close {
    void operator()(DIR* directory) const { closedir(directory); }
};

char Lowered(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

std::string Lowered(std::string_view name) {
    std::string lowered(name);
    for (char& c : lowered) c = Lowered(c);
    return lowered;
}

std::string_view FirstPart(std::string_view name) {
    name.remove_prefix(std::min(name.find_first_not_of(separators), name.size()));
    return name.substr(0, name.find_first_of(separators));
}

// Whether every file system takes the name for itself: not for "..", a short form, or letters that may be
// written in two ways.
bool IsPlain(std::string_view name) {
    constexpr std::string_view marks = "_-+.";
    return !name.empty() && name.back() != '.' && std::all_of(name.begin(), name.end(), [&](char c) {
        const char letter = Lowered(c);
        return (letter >= 'a' && letter <= 'z') || (c >= '0' && c <= '9') ||
               marks.find(c) != std::string_view::npos;
    });
}

std::chrono::nanoseconds TimeOf(const timespec& time) {
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

// How far apart changes have to be to get different times, generously: parts of a second go by the ticks of
// the system, and file systems without them may count two seconds at a time.
std::chrono::nanoseconds FinenessOf(const timespec& time) {
    return time.tv_nsec != 0 ? std::chrono::milliseconds(100) : std::chrono::seconds(2);
}

} // namespace

bool FolderMemory::Folder::MayHold(std::string_view name) const {
    if (state != State::Listed) return state == State::Unlisted;
    const std::string_view first = FirstPart(name);
    return !IsPlain(first) || names.contains(Lowered(first));
}

void FolderMemory::Folder::Look(const char* path, std::chrono::nanoseconds most) {
    struct stat status;
    const State former = state;
    state = State::Absent;
    if (stat(path, &status) != 0) {
        if (errno != ENOENT && errno != ENOTDIR) state = State::Unlisted;
        return;
    }
    if (!S_ISDIR(status.st_mode)) return;
    const Version present(status.st_dev, status.st_ino, TimeOf(status.st_ctim));
    state = State::Listed;
    if (former == State::Listed && present == version) return;
    state = State::Unlisted;
    version = present;
    timespec now;
    clock_gettime(CLOCK_REALTIME, &now);
    const auto needed = std::min(most, FinenessOf(status.st_ctim));
    if (TimeOf(now) - TimeOf(status.st_ctim) >= needed) List(path);
}

void FolderMemory::Folder::List(const char* path) {
    names.clear();
    const std::unique_ptr<DIR, Close> directory(opendir(path));
    if (!directory) return;
    errno = 0;
    while (const dirent* entry = readdir(directory.get())) names.insert(Lowered(entry->d_name));
    if (errno == 0) state = State::Listed;
}

const FolderMemory::Folder& FolderMemory::At(const std::string& path) {
    Folder& folder = folders[path];
    if (folder.round != round) {
        folder.round = round;
        folder.Look(path.c_str(), longestWait);
    }
    return folder;
}

void FolderMemory::Forget(std::chrono::nanoseconds waitAtMost) {
    longestWait = waitAtMost;
    folders.clear();
    ++round;
}

} // namespace ostraka::detail
