#include <answers/resolve/CodeBase.h>

#include <algorithm>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <iterator>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace ostraka::answers {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view sourceEndings[] = {
    ".c",   ".cc",  ".cpp", ".cxx", ".c++", ".h", ".hh",  ".hpp", ".hxx", ".h++", ".inl", ".ipp", ".tpp",
    ".tcc", ".inc", ".idl", ".odl", ".C",   ".H", ".ixx", ".icc", ".txx", ".cu",  ".mm",  ".m"};

// Headers of the languages themselves: `<string.h>` is never a file that happens to be called so.
constexpr std::string_view languageHeaders[] = {
    "assert.h",  "complex.h",  "ctype.h",   "dirent.h", "errno.h",  "fcntl.h",  "fenv.h",
    "float.h",   "inttypes.h", "limits.h",  "locale.h", "malloc.h", "math.h",   "memory.h",
    "pthread.h", "setjmp.h",   "signal.h",  "stdarg.h", "stddef.h", "stdint.h", "stdio.h",
    "stdlib.h",  "string.h",   "strings.h", "time.h",   "unistd.h", "wchar.h",  "windows.h"};

std::string_view LastPart(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    return slash == path.npos ? path : path.substr(slash + 1);
}

std::string_view FolderOf(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    return slash == path.npos ? std::string_view() : path.substr(0, slash);
}

bool IsFile(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

std::string Normal(const std::string& path) {
    if (path.find("/.") == path.npos && path.find("//") == path.npos) return path;
    return fs::path(path).lexically_normal().string();
}

// How many folders two paths share.
int SharedFolders(std::string_view a, std::string_view b) {
    int shared = 0;
    for (std::size_t i = 0; i < std::min(a.size(), b.size()) && a[i] == b[i]; ++i)
        if (a[i] == '/') ++shared;
    return shared;
}

} // namespace

bool IsSourcePath(std::string_view path) {
    const std::string_view name = LastPart(path);
    const std::size_t dot = name.rfind('.');
    return dot != name.npos && std::find(std::begin(sourceEndings), std::end(sourceEndings),
                                         name.substr(dot)) != std::end(sourceEndings);
}

bool IsCompiledPath(std::string_view path) {
    const std::size_t dot = path.rfind('.');
    if (dot == path.npos) return false;
    const std::string_view ending = path.substr(dot);
    return ending == ".cpp" || ending == ".cc" || ending == ".cxx" || ending == ".c" || ending == ".C" ||
           ending == ".c++" || ending == ".mm" || ending == ".m" || ending == ".cu";
}

CodeBase::CodeBase(CodeBaseSettings named) : settings(std::move(named)) {
    for (std::string& root : settings.roots)
        while (root.size() > 1 && root.back() == '/') root.pop_back();
}

int CodeBase::FileAt(const std::string& path) {
    const auto [entry, isNew] = numbers.try_emplace(Normal(path), static_cast<int>(files.size()));
    if (isNew) {
        files.emplace_back();
        files.back().path = entry->first;
    }
    return entry->second;
}

const std::vector<int>& CodeBase::AllFiles() {
    if (!isListed) ListFiles();
    return listed;
}

void CodeBase::ListFiles() {
    isListed = true;
    std::vector<std::string> paths;
    for (const std::string& root : settings.roots) {
        std::error_code error;
        fs::recursive_directory_iterator entries(root, fs::directory_options::skip_permission_denied, error);
        for (; !error && entries != fs::recursive_directory_iterator(); entries.increment(error)) {
            const std::string& path = entries->path().native();
            const std::string_view name = LastPart(path);
            if (name.starts_with('.')) {
                if (entries->is_directory(error)) entries.disable_recursion_pending();
                continue;
            }
            if (IsSourcePath(name) && entries->is_regular_file(error)) paths.push_back(path);
        }
    }
    std::sort(paths.begin(), paths.end());
    paths.erase(std::unique(paths.begin(), paths.end()), paths.end());
    for (const std::string& path : paths) {
        const int file = FileAt(path);
        listed.push_back(file);
        byName[std::string(LastPart(path))].push_back(file);
    }
}

bool CodeBase::ReadBytes(const std::string& path, std::string& bytes) {
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) return false;
    struct stat status;
    bool isRead = fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
    if (isRead) bytes.resize(static_cast<std::size_t>(status.st_size));
    std::size_t count = 0;
    while (isRead && count < bytes.size()) {
        const ssize_t got = read(descriptor, bytes.data() + count, bytes.size() - count);
        if (got <= 0) {
            isRead = got == 0;
            break;
        }
        count += static_cast<std::size_t>(got);
    }
    close(descriptor);
    bytes.resize(count);
    return isRead;
}

const FileFacts& CodeBase::FactsOf(int file) {
    File& entry = files[static_cast<std::size_t>(file)];
    if (entry.facts == nullptr) {
        std::string bytes;
        ReadBytes(entry.path, bytes);
        entry.facts = std::make_unique<FileFacts>(
            ReadFacts(TokenList(bytes, settings.droppedWords), Depth::Declarations, DialectOf(entry.path)));
    }
    return *entry.facts;
}

int CodeBase::FindInclude(int from, std::string_view name, char delimiter, IncludeRule* rule) {
    const auto answer = [rule](int file, IncludeRule by) {
        if (rule != nullptr) *rule = by;
        return file;
    };
    const std::string text(name);
    if (text.starts_with('/')) return IsFile(text) ? answer(FileAt(text), IncludeRule::Folder) : -1;
    if (delimiter == '"') {
        const std::string beside = std::string(FolderOf(PathOf(from))) + "/" + text;
        if (IsFile(beside)) return answer(FileAt(beside), IncludeRule::Beside);
    }
    for (const std::string& folder : settings.folders) {
        const std::string path = folder + "/" + text;
        if (IsFile(path)) return answer(FileAt(path), IncludeRule::Folder);
    }
    if (delimiter != '"' &&
        std::find(std::begin(languageHeaders), std::end(languageHeaders), name) != std::end(languageHeaders))
        return answer(-1, IncludeRule::None);
    const int file = FindByEnding(PathOf(from), name);
    return answer(file, file < 0 ? IncludeRule::None : IncludeRule::Ending);
}

// The nearest of the files whose path ends so: the one that shares most folders with the file that asks, then
// the one with the shorter path.
int CodeBase::FindByEnding(const std::string& from, std::string_view name) {
    AllFiles();
    while (name.starts_with("../") || name.starts_with("./")) name.remove_prefix(name.find('/') + 1);
    const auto named = byName.find(std::string(LastPart(name)));
    if (named == byName.end()) return -1;
    int best = -1;
    int bestShared = -1;
    for (const int file : named->second) {
        const std::string& path = PathOf(file);
        if (path.size() <= name.size() || !path.ends_with(name) || path[path.size() - name.size() - 1] != '/')
            continue;
        const int shared = SharedFolders(path, from);
        if (shared < bestShared || (shared == bestShared && path.size() >= PathOf(best).size())) continue;
        best = file;
        bestShared = shared;
    }
    return best;
}

const std::vector<int>& CodeBase::IncludesOf(int file) {
    if (!files[static_cast<std::size_t>(file)].hasIncludes) {
        std::vector<int> includes;
        for (const IncludeName& include : FactsOf(file).includes)
            if (const int found = FindInclude(file, include.name, include.delimiter); found >= 0)
                includes.push_back(found);
        files[static_cast<std::size_t>(file)].includes = std::move(includes);
        files[static_cast<std::size_t>(file)].hasIncludes = true;
    }
    return files[static_cast<std::size_t>(file)].includes;
}

std::vector<int> CodeBase::SeenFrom(int file) {
    std::vector<int> seen;
    std::unordered_map<int, bool> met;
    struct Level {
        int file;
        std::size_t next = 0;
    };
    std::vector<Level> open = {{file}};
    met[file] = true;
    while (!open.empty()) {
        Level& level = open.back();
        const std::vector<int>& includes = IncludesOf(level.file);
        if (level.next < includes.size()) {
            const int next = includes[level.next++];
            if (!std::exchange(met[next], true)) open.push_back({next});
            continue;
        }
        seen.push_back(level.file);
        open.pop_back();
    }
    return seen;
}

} // namespace ostraka::answers
