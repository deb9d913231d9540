#include <answers/resolve/HeaderPlaces.h>

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include <ostraka/foundation/Directory.h>
#include <ostraka/symbols/TAPSymbolTable.h>

namespace ostraka::answers {

namespace {

// Patterns behind a root, for headers that other files don't see, and those of other operating systems.
constexpr const char* elsewhere[] = {
    "*/PrivateInterfaces",  "*/PrivateGenerated/*", "*/*/LocalInterfaces",
    "*/*/LocalGenerated/*", "*/PublicGenerated/*",  "*/ProtectedGenerated/*",
};

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

HeaderAnswer FindHeader(const TAPSymbolTable& table, const std::string& from, const std::string& name) {
    HeaderTrace trace = table.TraceHeaderFile(from.c_str(), name.c_str());
    HeaderAnswer answer;
    answer.places = std::move(trace.places);
    if (trace.file.IsNull() != 0) {
        answer.unseen = FilesElsewhere(table, from, name);
        return answer;
    }
    answer.found = HeaderFile{static_cast<const char*>(trace.file), std::nullopt};
    if (trace.found >= 0) answer.found->place = answer.places[static_cast<std::size_t>(trace.found)];
    for (const HeaderPlace& place : answer.places)
        for (std::string& file : FilesAt(place))
            if (file != answer.found->path) answer.hidden.push_back({std::move(file), place});
    return answer;
}

std::string OwnerOf(const HeaderFile& file) {
    if (!file.place) return "";
    const std::size_t behind = file.place->directory.size() + file.place->name.size() + 2;
    const std::string folder = file.path.substr(0, file.path.size() - behind);
    return folder.substr(folder.rfind('/') + 1);
}

} // namespace ostraka::answers
