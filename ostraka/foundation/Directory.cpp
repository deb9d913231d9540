// A selection works off the parts of the pattern from left to right over a list of places, paths that end in
// a slash until the last part. It starts with the place "/" or "./" and so never names the working directory
// to the system, which may have no name or one that is too long; that is put in front of the results only.

#include <ostraka/foundation/Directory.h>

#include <cstring>
#include <dirent.h>
#include <filesystem>
#include <memory>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include <ostraka/foundation/FileMode.h>
#include <ostraka/foundation/TextHelpers.h>

namespace {

// How an entry of a directory is written in a path.
using Spelling = NUBString (*)(const char* entry);

NUBString AsText(const char* entry) {
    return entry;
}

NUBString AsName(const char* entry) {
    return NUBString(TAFileName(entry));
}

struct Close {
    void operator()(DIR* directory) const { closedir(directory); }
};

bool Exists(const NUBString& path) {
    struct stat status;
    return stat(path.CastToCharPtr(), &status) == 0;
}

void AppendMatches(const NUBString& place, const NUBString& part, const char* behind, Spelling spell,
                   NUBListValNUBString& out) {
    const std::unique_ptr<DIR, Close> directory(opendir(place.CastToCharPtr()));
    if (!directory) return;
    while (const dirent* entry = readdir(directory.get())) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != ".." && TestMatch(entry->d_name, part))
            out.Append(place + spell(entry->d_name) + behind);
    }
}

NUBListValNUBString Step(const NUBListValNUBString& places, const NUBString& part, const char* behind,
                         Spelling spell) {
    NUBListValNUBString next;
    const bool starred = part.FindPosition("*") >= 0;
    for (const NUBString& place : places) {
        if (starred) {
            AppendMatches(place, part, behind, spell, next);
            continue;
        }
        NUBString path = place + spell(part.CastToCharPtr()) + behind;
        if (Exists(path)) next.Append(std::move(path));
    }
    return next;
}

const char* StartOf(const NUBString& pattern) {
    return pattern.View().starts_with('/') ? "/" : "./";
}

NUBListValNUBString MatchesOf(const NUBString& pattern, Spelling spell) {
    NUBListValNUBString parts, places;
    Split(pattern, parts, "/");
    places.Append(StartOf(pattern));
    for (int i = 1; i <= parts.Size() && places.Size() > 0; ++i)
        places = Step(places, parts[i], i < parts.Size() ? "/" : "", spell);
    return places;
}

} // namespace

int FileExists(const NUBString& path) {
    return ostraka::detail::HasModeBit(path.CastToCharPtr(), 0x8000);
}

int SetWorkDir(const NUBString& path) {
    return chdir(path.CastToCharPtr());
}

NUBString GetWorkDir() {
    std::error_code error;
    const std::filesystem::path directory = std::filesystem::current_path(error);
    return error ? NUBString(".") : NUBString(directory.c_str());
}

void ReadDirectory(const char* pattern, NUBListValNUBString& out) {
    ReadDirectory(NUBString(pattern), out);
}

void ReadDirectory(const NUBString& pattern, NUBListValNUBString& out) {
    const std::string_view start = StartOf(pattern);
    const NUBString root = start == "/" ? NUBString("/") : GetWorkDir() + "/";
    for (const NUBString& place : MatchesOf(pattern, AsText))
        out.Append(root + (place.CastToCharPtr() + start.size()));
}

void ReadDirectory(const char* pattern, NUBListValTAFileName& out) {
    ReadDirectory(NUBString(pattern), out);
}

void ReadDirectory(const NUBString& pattern, NUBListValTAFileName& out) {
    const std::string_view start = StartOf(pattern);
    const TAFileName root = start == "/" ? TAFileName("/") : TAFileName::GetWorkDir();
    for (const NUBString& place : MatchesOf(pattern, AsName)) {
        const char* path = place.CastToCharPtr() + start.size();
        out.Append(*path == '\0' ? root : root + path);
    }
}

int FileSelectionSize(const NUBString& pattern) {
    return MatchesOf(pattern, AsText).Size();
}
