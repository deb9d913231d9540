// Two maps, made once from the interface directories of all workspaces, answer for the headers that a
// framework shows to others; the file system answers for those beside the file that asks. In the maps the
// first registration of a base name wins: the first workspace, in it the public directory, in that the first
// framework.

#include <cstring>
#include <string>
#include <string_view>

#include <ostraka/foundation/Directory.h>
#include <ostraka/foundation/TAFileName.h>
#include <ostraka/foundation/TextHelpers.h>
#include <ostraka/symbols/TAPSymbolTable.h>

namespace {

// Files of each framework of a workspace. Generated ones lie one level deeper, below the operating system's
// name.
struct Shown {
    const char* directory;
    bool generated;
    const char* files;
};

constexpr Shown shownFiles[] = {
    {"PublicInterfaces", false, "*.h"},   {"ProtectedInterfaces", false, "*.h"},
    {"PublicInterfaces", false, "*.idl"}, {"ProtectedInterfaces", false, "*.idl"},
    {"PublicGenerated", true, "*.h"},     {"ProtectedGenerated", true, "*.h"},
};

// Directories around a file: so many levels above it, in the order of the search.
struct Around {
    int level;
    const char* directory;
    bool generated;
};

constexpr Around aroundFile[] = {
    {2, "PrivateInterfaces", false}, {2, "PrivateGenerated", true},   {2, "LocalInterfaces", false},
    {2, "LocalGenerated", true},     {3, "PrivateInterfaces", false}, {3, "PrivateGenerated", true},
};

// The text behind the last slash or backslash.
const char* BaseName(const NUBString& path) {
    const std::size_t separator = path.View().find_last_of("/\\");
    return path.CastToCharPtr() + (separator == std::string_view::npos ? 0 : separator + 1);
}

const char* PathOf(const TAIndex& map, const char* baseName) {
    return static_cast<const char*>(map[baseName]);
}

TAFileName Below(const TAFileName& directory, const char* name, bool generated, const NUBString& osName) {
    const TAFileName below = directory + name;
    return generated ? below + osName : below;
}

} // namespace

void TAPSymbolTable::SetConcatenation(const TAFileName& list) {
    Split(NUBString(list), concatenation, ":");
    headers.Reset();
    generatedHeaders.Reset();
    for (const NUBString& root : concatenation) {
        for (const Shown& shown : shownFiles) {
            const TAFileName frameworks = TAFileName(root) + "*";
            const TAFileName pattern =
                Below(frameworks, shown.directory, shown.generated, osName) + shown.files;
            NUBListValNUBString paths;
            ReadDirectory(static_cast<const char*>(pattern), paths);
            TAIndex& map = shown.generated ? generatedHeaders : headers;
            for (const NUBString& path : paths) map.Append(BaseName(path), path.CastToCharPtr(), 1);
        }
    }
}

TAFileName TAPSymbolTable::SearchHeaderFile(const char* currentFile, const char* header) const {
    if (const char* path = PathOf(headers, header)) return path;
    if (const char* ending = std::strstr(header, ".h")) {
        const std::string twin = std::string(header, ending) + ".idl";
        if (const char* path = PathOf(headers, twin.c_str())) return path;
    }
    if (const char* path = PathOf(generatedHeaders, header)) return path;
    TAFileName file(currentFile);
    for (const Around& around : aroundFile) {
        const TAFileName directory = file.dirname(around.level);
        if (directory.IsNull()) return {};
        TAFileName candidate = Below(directory, around.directory, around.generated, osName) + header;
        if (candidate.IsFile()) return candidate;
    }
    return {};
}
