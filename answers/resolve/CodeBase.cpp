#include <answers/resolve/CodeBase.h>

#include <algorithm>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <iterator>
#include <sys/stat.h>
#include <unistd.h>
#include <unordered_set>
#include <utility>

#include <answers/resolve/LanguageHeaders.h>

namespace ostraka::answers {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view sourceEndings[] = {
    ".c",   ".cc",  ".cpp", ".cxx", ".c++", ".h", ".hh",  ".hpp", ".hxx", ".h++", ".inl", ".ipp", ".tpp",
    ".tcc", ".inc", ".idl", ".odl", ".C",   ".H", ".ixx", ".icc", ".txx", ".cu",  ".mm",  ".m"};

std::string_view LastPart(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    return slash == path.npos ? path : path.substr(slash + 1);
}

std::string_view FolderOf(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    return slash == path.npos ? std::string_view() : path.substr(0, slash);
}

bool IsRegular(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

std::string Normal(const std::string& path) {
    if (path.find("/.") == path.npos && path.find("//") == path.npos) return path;
    return fs::path(path).lexically_normal().string();
}

// An ending has no way up in it.
std::string EndingOf(std::string_view name) {
    const std::string ending = Normal("/" + std::string(name));
    return ending.substr(std::min(ending.find_first_not_of('/'), ending.size()));
}

// Some systems write their paths with backslashes.
std::string WithSlashes(std::string_view name) {
    std::string path(name);
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

// Those of the text, each once.
template <class Includes, class PlaceAt>
void TakeIncludes(const Includes& all, PlaceAt placeAt, std::vector<FileInclude>& taken) {
    std::unordered_set<std::string> known;
    for (const auto& include : all)
        if (known.insert(include.delimiter + std::string(include.name)).second)
            taken.push_back({std::string(include.name), include.delimiter, placeAt(include.at)});
}

// Lines and columns of bytes that are asked for in their order.
class PlaceCounter {
public:
    explicit PlaceCounter(std::string_view source) : text(source) {}

    Place operator()(std::uint32_t offset) {
        for (; at < offset && at < text.size(); ++at) {
            if (text[at] != '\n') continue;
            ++line;
            lineBegin = at + 1;
        }
        return {line, static_cast<int>(at - lineBegin) + 1};
    }

private:
    std::string_view text;
    std::size_t at = 0;
    std::size_t lineBegin = 0;
    int line = 1;
};

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

std::string_view NameOf(IncludeRule rule) {
    constexpr std::string_view names[] = {"", "path", "framework", "beside", "folder", "ending"};
    return names[static_cast<int>(rule)];
}

CodeBase::CodeBase(CodeBaseSettings named)
    : settings(std::move(named)), frameworks(std::exchange(settings.frameworks, nullptr)) {
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
    for (const std::string& root : settings.roots) {
        std::error_code error;
        fs::recursive_directory_iterator entries(root, fs::directory_options::skip_permission_denied, error);
        for (; !error && entries != fs::recursive_directory_iterator(); entries.increment(error)) {
            const std::string& path = entries->path().native();
            if (LastPart(path).starts_with('.')) {
                if (entries->is_directory(error)) entries.disable_recursion_pending();
                continue;
            }
            if (entries->is_regular_file(error)) paths.push_back(path);
        }
    }
    std::sort(paths.begin(), paths.end());
    paths.erase(std::unique(paths.begin(), paths.end()), paths.end());
    for (const std::string& path : paths)
        if (IsSourcePath(path)) listed.push_back(FileAt(path));
}

PathEndings& CodeBase::Endings() {
    if (!isListed) ListFiles();
    if (endings == nullptr)
        endings = std::make_unique<PathEndings>(std::vector<std::string_view>(paths.begin(), paths.end()));
    return *endings;
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

bool CodeBase::ReadIncludes(int file, std::vector<FileInclude>& includes) const {
    includes.clear();
    const File& entry = files[static_cast<std::size_t>(file)];
    std::string bytes;
    if (!ReadBytes(entry.path, bytes)) return false;
    if (entry.facts != nullptr) {
        TakeIncludes(
            entry.facts->includes, [&](std::uint32_t at) { return entry.facts->PlaceOf(at); }, includes);
    } else if (bytes.find("include") != bytes.npos || bytes.find("import") != bytes.npos) {
        TakeIncludes(TokenList(bytes).Includes(), PlaceCounter(bytes), includes);
    }
    return true;
}

bool CodeBase::IsFile(const std::string& path) {
    const auto [entry, isNew] = areFiles.try_emplace(path, false);
    if (isNew) entry->second = IsRegular(path);
    return entry->second;
}

int CodeBase::FindInclude(int from, std::string_view name, char delimiter, IncludeRule* rule) {
    IncludeRule ignored = IncludeRule::None;
    IncludeRule& by = rule != nullptr ? *rule : ignored;
    by = IncludeRule::None;
    if (const int file = FindByFrameworks(from, name, by); file >= 0) return file;
    const std::string text = WithSlashes(name);
    if (delimiter == '"') {
        const std::string beside = std::string(FolderOf(PathOf(from))) + "/" + text;
        if (IsFile(beside)) {
            by = IncludeRule::Beside;
            return FileAt(beside);
        }
    }
    if (const int file = FindInFolders(from, text, by); file >= 0) return file;
    const int file = FindByEnding(from, text, delimiter);
    if (file >= 0) by = IncludeRule::Ending;
    return file;
}

int CodeBase::FindInBuild(int from, std::string_view name, char delimiter, IncludeRule& rule) {
    if (!IsInFrameworks(from)) return FindInclude(from, name, delimiter, &rule);
    rule = IncludeRule::None;
    const int file = FindByFrameworks(from, name, rule);
    return file >= 0 ? file : FindInFolders(from, WithSlashes(name), rule);
}

int CodeBase::FindByFrameworks(int from, std::string_view name, IncludeRule& rule) {
    const std::string text(name);
    if (text.starts_with('/') && IsFile(text)) {
        rule = IncludeRule::Path;
        return FileAt(text);
    }
    if (!IsInFrameworks(from)) return -1;
    const std::string path = frameworks.Find(PathOf(from), text);
    if (path.empty()) return -1;
    rule = IncludeRule::Framework;
    return FileAt(path);
}

// A header in such a folder that includes its own name means the next one, which it stands before.
int CodeBase::FindInFolders(int from, const std::string& name, IncludeRule& rule) {
    for (const std::string& folder : settings.folders) {
        const std::string path = folder + "/" + name;
        if (!IsFile(path) || FileAt(path) == from) continue;
        rule = IncludeRule::Folder;
        return FileAt(path);
    }
    return -1;
}

int CodeBase::FindByEnding(int from, std::string_view name, char delimiter) {
    const std::string ending = EndingOf(name);
    if (ending.empty()) return -1;
    PathEndings& known = Endings();
    const auto self = std::lower_bound(paths.begin(), paths.end(), PathOf(from));
    const bool isKnown = self != paths.end() && *self == PathOf(from);
    const int index =
        known.Nearest(ending, PathOf(from), isKnown ? static_cast<int>(self - paths.begin()) : -1);
    if (index < 0) return -1;
    const std::string& path = paths[static_cast<std::size_t>(index)];
    return delimiter == '"' || !IsLanguageHeader(name) || IsOfLanguageCopy(path, name) ? FileAt(path) : -1;
}

// `<string.h>` is no file that happens to be called so, but one of a folder that holds a library of the
// language.
bool CodeBase::IsOfLanguageCopy(const std::string& path, std::string_view name) {
    const std::string folder = path.substr(0, path.size() - name.size());
    return (IsFile(folder + "stdio.h") && IsFile(folder + "stdlib.h")) ||
           (IsFile(folder + "cstdio") && IsFile(folder + "cstdlib"));
}

IncludeTrace CodeBase::TraceInclude(int from, std::string_view name, char delimiter) {
    IncludeTrace trace;
    const std::string text = WithSlashes(name);
    std::unordered_set<int> taken;
    const auto take = [&](int file, IncludeRule rule) {
        if ((file != from || rule == IncludeRule::Beside) && taken.insert(file).second)
            trace.files.push_back({file, rule});
    };
    const auto look = [&](const std::string& path, IncludeRule rule) {
        trace.places.emplace_back(rule, path);
        if (IsFile(path)) take(FileAt(path), rule);
    };
    if (text.starts_with('/')) look(text, IncludeRule::Path);
    if (delimiter == '"') look(Normal(std::string(FolderOf(PathOf(from))) + "/" + text), IncludeRule::Beside);
    for (const std::string& folder : settings.folders) look(folder + "/" + text, IncludeRule::Folder);
    if (const int nearest = FindByEnding(from, text, delimiter); nearest >= 0)
        take(nearest, IncludeRule::Ending);
    const std::string ending = EndingOf(text);
    for (const std::string& root : settings.roots)
        trace.places.emplace_back(IncludeRule::Ending, root + "/**/" + ending);
    const bool isFound = !trace.files.empty();
    for (const int index : Endings().EndingWith(isFound ? ending : std::string(LastPart(ending)))) {
        const int file = FileAt(paths[static_cast<std::size_t>(index)]);
        if (isFound) {
            take(file, IncludeRule::Ending);
        } else if (file != from) {
            trace.alike.push_back(file);
        }
    }
    return trace;
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
