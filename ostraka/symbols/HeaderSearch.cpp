// Two maps, made once from the interface directories of all workspaces, answer for the headers that a
// framework shows to others; the file system answers for those beside the file that asks. In the maps the
// first registration of a base name wins: the first workspace, in it the public directory, in that the first
// framework.
//
// One walk goes over the steps of the search. Who only wants the file leaves it at the first hit; who wants
// to know why stays to its end and takes each step apart into its places.

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include <ostraka/foundation/Directory.h>
#include <ostraka/foundation/TAFileName.h>
#include <ostraka/foundation/TextHelpers.h>
#include <ostraka/symbols/HeaderMemory.h>
#include <ostraka/symbols/HeaderTrace.h>
#include <ostraka/symbols/TAPSymbolTable.h>

using namespace ostraka::detail;
using ostraka::HeaderRule;
using ostraka::HeaderTrace;

namespace {

// A directory of a framework or a module. Generated files lie one level deeper, below the operating system's
// name.
struct Directory {
    const char* name;
    bool generated;
};

// Files of each framework of a workspace.
struct Shown {
    Directory directory;
    const char* files;
};

constexpr Shown shownFiles[] = {
    {{"PublicInterfaces", false}, "*.h"},   {{"ProtectedInterfaces", false}, "*.h"},
    {{"PublicInterfaces", false}, "*.idl"}, {{"ProtectedInterfaces", false}, "*.idl"},
    {{"PublicGenerated", true}, "*.h"},     {{"ProtectedGenerated", true}, "*.h"},
};

// Directories around a file: so many levels above it, in the order of the search.
struct Around {
    int level;
    Directory directory;
};

constexpr Around aroundFile[] = {
    {2, {"PrivateInterfaces", false}}, {2, {"PrivateGenerated", true}},   {2, {"LocalInterfaces", false}},
    {2, {"LocalGenerated", true}},     {3, {"PrivateInterfaces", false}}, {3, {"PrivateGenerated", true}},
};

// The text behind the last slash or backslash.
const char* BaseName(const NUBString& path) {
    const std::size_t separator = path.View().find_last_of("/\\");
    return path.CastToCharPtr() + (separator == std::string_view::npos ? 0 : separator + 1);
}

std::string Below(const Directory& directory, const NUBString& osName) {
    std::string below = directory.name;
    return directory.generated ? below.append("/").append(osName.View()) : below;
}

// A file that lies too high has the first of them only, or none.
std::vector<BesidePlace> PlacesAround(const char* currentFile, const NUBString& osName) {
    std::vector<BesidePlace> places;
    const TAFileName file(currentFile);
    for (const Around& around : aroundFile) {
        TAFileName folder = file.dirname(around.level);
        if (folder.IsNull()) break;
        std::string directory = Below(around.directory, osName);
        TAFileName path = folder + directory.c_str();
        places.push_back({std::move(folder), std::move(directory), std::move(path)});
    }
    return places;
}

// A step of the search is a look into a map under a key, or for a file beside the one that asks. The visitor
// tells whether it goes on.
template <class Visitor>
void Search(const TAPSymbolTable& table, const char* header, Visitor& visitor) {
    if (!visitor.Look(HeaderRule::Exported, table.headers, header)) return;
    if (const char* ending = std::strstr(header, ".h")) {
        const std::string twin = std::string(header, ending) + ".idl";
        if (!visitor.Look(HeaderRule::Twin, table.headers, twin.c_str())) return;
    }
    if (!visitor.Look(HeaderRule::Generated, table.generatedHeaders, header)) return;
    for (const BesidePlace& place : visitor.Around())
        if (!visitor.LookBeside(place, header)) return;
}

struct Finder {
    const std::vector<BesidePlace>& Around() {
        if (memory.IsInUse()) return memory.Around(currentFile, osName);
        return places = PlacesAround(currentFile, osName);
    }

    bool Look(HeaderRule, const TAIndex& map, const char* key) {
        const auto* path = static_cast<const char*>(map[key]);
        if (path != nullptr) found = path;
        return path == nullptr;
    }

    bool LookBeside(const BesidePlace& place, const char* header) {
        if (place.listing != nullptr && !place.listing->MayHold(header)) return true;
        TAFileName file = place.path + header;
        if (!file.IsFile()) return true;
        found = std::move(file);
        return false;
    }

    HeaderMemory& memory;
    const char* currentFile;
    const NUBString& osName;
    std::vector<BesidePlace> places;
    TAFileName found;
};

// Whether a selection by the pattern can give the path. `start` is where a relative pattern starts.
bool IsSelectedBy(const TAFileName& pattern, const NUBString& start, const TAFileName& path) {
    NUBListValNUBString wanted, parts;
    Split(*pattern == '/' ? NUBString(pattern) : start + "/" + pattern, wanted, "/");
    Split(NUBString(path), parts, "/");
    if (parts.Size() != wanted.Size()) return false;
    for (int i = 1; i <= parts.Size(); ++i) {
        const bool starred = wanted[i].FindPosition("*") >= 0;
        if (starred ? TestMatch(parts[i], wanted[i]) == 0 : parts[i] != wanted[i]) return false;
    }
    return true;
}

class Tracer {
public:
    Tracer(const TAPSymbolTable& symbols, const char* currentFile, const NUBString& start)
        : table(symbols), around(PlacesAround(currentFile, symbols.osName)), rootsStart(start) {}

    const std::vector<BesidePlace>& Around() const { return around; }

    bool Look(HeaderRule rule, const TAIndex& map, const char* key) {
        const auto* path = static_cast<const char*>(map[key]);
        const bool first = path != nullptr && trace.file.IsNull();
        if (first) trace.file = path;
        for (const NUBString& root : table.concatenation)
            for (const Shown& shown : shownFiles)
                if (IsOf(rule, shown, key)) AddShown(rule, root, shown.directory, key, first);
        return true;
    }

    bool LookBeside(const BesidePlace& place, const char* header) {
        trace.places.push_back(
            {HeaderRule::Beside, "", static_cast<const char*>(place.folder), place.directory, header});
        TAFileName file = place.path + header;
        if (trace.file.IsNull() && file.IsFile()) {
            trace.file = std::move(file);
            trace.found = static_cast<int>(trace.places.size()) - 1;
        }
        return true;
    }

    HeaderTrace trace;

private:
    // A map holds base names.
    static bool IsOf(HeaderRule rule, const Shown& shown, std::string_view key) {
        return shown.directory.generated == (rule == HeaderRule::Generated) &&
               key.find('/') == std::string_view::npos && TestMatch(NUBString(key), shown.files) != 0;
    }

    void AddShown(HeaderRule rule, const NUBString& root, const Directory& directory, const char* key,
                  bool givesFile) {
        const std::string text(root.View());
        trace.places.push_back({rule, text, text + "/*", Below(directory, table.osName), key});
        if (givesFile && trace.found < 0 &&
            IsSelectedBy(trace.places.back().Pattern().c_str(), rootsStart, trace.file))
            trace.found = static_cast<int>(trace.places.size()) - 1;
    }

    const TAPSymbolTable& table;
    std::vector<BesidePlace> around;
    const NUBString& rootsStart;
};

} // namespace

const std::vector<BesidePlace>& HeaderMemory::Around(const char* currentFile, const NUBString& os) {
    if (round != folders.Round() || file != currentFile || osName != os) {
        round = folders.Round();
        file = currentFile;
        osName = os;
        places = PlacesAround(currentFile, os);
        for (BesidePlace& place : places) place.listing = &folders.At(static_cast<const char*>(place.path));
    }
    return places;
}

std::string_view ostraka::NameOf(HeaderRule rule) {
    constexpr std::string_view names[] = {"exported", "twin", "generated", "beside"};
    return names[static_cast<int>(rule)];
}

void TAPSymbolTable::SetConcatenation(const TAFileName& list) {
    Split(NUBString(list), concatenation, ":");
    rootsStart = GetWorkDir();
    headers.Reset();
    generatedHeaders.Reset();
    for (const NUBString& root : concatenation) {
        for (const Shown& shown : shownFiles) {
            const TAFileName pattern =
                TAFileName(root) + "*" + Below(shown.directory, osName).c_str() + shown.files;
            NUBListValNUBString paths;
            ReadDirectory(static_cast<const char*>(pattern), paths);
            TAIndex& map = shown.directory.generated ? generatedHeaders : headers;
            for (const NUBString& path : paths) map.Append(BaseName(path), path.CastToCharPtr(), 1);
        }
    }
}

void TAPSymbolTable::RememberFolders(bool remember) {
    headerMemory->Keep(remember);
}

TAFileName TAPSymbolTable::SearchHeaderFile(const char* currentFile, const char* header) const {
    Finder finder{HeaderMemory::Of(*this), currentFile, osName, {}, {}};
    Search(*this, header, finder);
    return finder.found;
}

HeaderTrace TAPSymbolTable::TraceHeaderFile(const char* currentFile, const char* header) const {
    Tracer tracer(*this, currentFile, rootsStart);
    Search(*this, header, tracer);
    return std::move(tracer.trace);
}
