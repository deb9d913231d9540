#include <answers/resolve/HeaderPlaces.h>

#include <algorithm>
#include <span>

#include <fmt/format.h>
#include <ostraka/foundation/Directory.h>
#include <ostraka/symbols/TAPSymbolTable.h>

namespace ostraka::answers {

namespace {

constexpr std::string_view ruleNames[] = {"exported", "twin", "generated", "beside"};

// A directory of a framework or a module; generated ones have one for each operating system.
struct Directory {
    const char* name;
    bool generated;
};

constexpr Directory exported[] = {{"PublicInterfaces", false}, {"ProtectedInterfaces", false}};
constexpr Directory generated[] = {{"PublicGenerated", true}, {"ProtectedGenerated", true}};

struct Around {
    int level; // so many components are cut from the path of the including file
    Directory directory;
};

constexpr Around around[] = {
    {2, {"PrivateInterfaces", false}}, {2, {"PrivateGenerated", true}},   {2, {"LocalInterfaces", false}},
    {2, {"LocalGenerated", true}},     {3, {"PrivateInterfaces", false}}, {3, {"PrivateGenerated", true}},
};

// Patterns behind a root, for headers that other files don't see, and those of other operating systems.
constexpr const char* elsewhere[] = {
    "*/PrivateInterfaces",  "*/PrivateGenerated/*", "*/*/LocalInterfaces",
    "*/*/LocalGenerated/*", "*/PublicGenerated/*",  "*/ProtectedGenerated/*",
};

class Search {
public:
    Search(const TAPSymbolTable& symbols, std::vector<HeaderPlace>& list) : table(symbols), places(list) {}

    // What is shown to all is known by its base name.
    void AddShown(HeaderRule rule, std::span<const Directory> directories, const std::string& name) {
        if (name.find('/') != std::string::npos) return;
        for (const NUBString& root : table.concatenation)
            for (const Directory& directory : directories)
                Add(rule, std::string(root.View()), fmt::format("{}/*", root.View()), directory, name);
    }

    void AddAround(const std::string& from, const std::string& name) {
        const TAFileName file(from.c_str());
        for (const Around& row : around) {
            const TAFileName folder = file.dirname(row.level);
            if (folder.IsNull()) return;
            Add(HeaderRule::Beside, "", static_cast<const char*>(folder), row.directory, name);
        }
    }

private:
    void Add(HeaderRule rule, std::string root, std::string folder, const Directory& directory,
             const std::string& name) {
        std::string below = directory.name;
        if (directory.generated) below += fmt::format("/{}", table.osName.View());
        places.push_back({rule, std::move(root), std::move(folder), std::move(below), name});
    }

    const TAPSymbolTable& table;
    std::vector<HeaderPlace>& places;
};

std::vector<HeaderPlace> PlacesOf(const TAPSymbolTable& table, const std::string& from,
                                  const std::string& name) {
    std::vector<HeaderPlace> places;
    Search search(table, places);
    if (name.ends_with(".h") || name.ends_with(".idl")) search.AddShown(HeaderRule::Exported, exported, name);
    if (const std::size_t ending = name.find(".h"); ending != std::string::npos)
        search.AddShown(HeaderRule::Twin, exported, name.substr(0, ending) + ".idl");
    if (name.ends_with(".h")) search.AddShown(HeaderRule::Generated, generated, name);
    search.AddAround(from, name);
    return places;
}

std::vector<std::string> Matches(const std::string& pattern) {
    NUBListValNUBString paths;
    ReadDirectory(pattern.c_str(), paths);
    std::vector<std::string> matches;
    for (const NUBString& path : paths)
        if (FileExists(path) != 0) matches.emplace_back(path.View());
    std::sort(matches.begin(), matches.end());
    return matches;
}

// Paths around a file are spelled like that of the file, all others as the directories give them.
std::vector<std::string> FilesAt(const HeaderPlace& place) {
    if (place.rule != HeaderRule::Beside) return Matches(place.Pattern());
    if (FileExists(place.Pattern().c_str()) == 0) return {};
    return {place.Pattern()};
}

std::vector<std::string> FilesElsewhere(const TAPSymbolTable& table, const std::string& from,
                                        const std::string& name) {
    std::vector<std::string> files;
    const TAFileName beside = TAFileName(from.c_str()).dirname(1) + name.c_str();
    if (beside.IsFile() != 0) files.emplace_back(beside);
    for (const NUBString& root : table.concatenation) {
        for (const char* pattern : elsewhere) {
            const auto matches = Matches(fmt::format("{}/{}/{}", root.View(), pattern, name));
            files.insert(files.end(), matches.begin(), matches.end());
        }
    }
    return files;
}

} // namespace

std::string_view NameOf(HeaderRule rule) {
    return ruleNames[static_cast<int>(rule)];
}

HeaderAnswer FindHeader(const TAPSymbolTable& table, const std::string& from, const std::string& name) {
    HeaderAnswer answer;
    answer.places = PlacesOf(table, from, name);
    const TAFileName path = table.SearchHeaderFile(from.c_str(), name.c_str());
    if (path.IsNull() != 0) {
        answer.unseen = FilesElsewhere(table, from, name);
        return answer;
    }
    answer.found = HeaderFile{static_cast<const char*>(path), std::nullopt};
    for (const HeaderPlace& place : answer.places) {
        for (std::string& file : FilesAt(place)) {
            if (file != answer.found->path) {
                answer.hidden.push_back({std::move(file), place});
            } else if (!answer.found->place) {
                answer.found->place = place;
            }
        }
    }
    return answer;
}

std::string OwnerOf(const HeaderFile& file) {
    if (!file.place) return "";
    const std::size_t behind = file.place->directory.size() + file.place->name.size() + 2;
    const std::string folder = file.path.substr(0, file.path.size() - behind);
    return folder.substr(folder.rfind('/') + 1);
}

} // namespace ostraka::answers
