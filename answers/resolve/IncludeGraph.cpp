#include <answers/resolve/IncludeGraph.h>

#include <algorithm>
#include <map>
#include <tuple>
#include <unordered_map>

#include <ostraka/symbols/TAPSymbolTable.h>

#include <answers/facts/RawFile.h>

namespace ostraka::answers {

namespace {

constexpr const char* blanks = " \t";

// The name that an include directive of this line gives, as a part of the line; empty on other lines.
std::string_view IncludedName(std::string_view line) {
    constexpr std::string_view word = "include";
    const std::size_t mark = line.find_first_not_of(blanks);
    if (mark == std::string::npos || line[mark] != '#') return {};
    const std::size_t begin = line.find_first_not_of(blanks, mark + 1);
    if (begin == std::string::npos || !line.substr(begin).starts_with(word)) return {};
    const std::size_t open = line.find_first_of("\"<", begin + word.size());
    const std::size_t close = open == std::string::npos ? open : line.find_first_of("\">", open + 1);
    return close == std::string::npos ? std::string_view() : line.substr(open + 1, close - open - 1);
}

// The library keeps the names of the includes and not their places, which the text gives.
std::map<std::string, Place, std::less<>> PlacesOfIncludes(const std::string& path) {
    std::map<std::string, Place, std::less<>> places;
    std::string problem;
    const auto buffer = ReadFile(path, problem);
    std::string_view text = buffer ? std::string_view(buffer->buffer, buffer->size) : std::string_view();
    for (int number = 1; !text.empty(); ++number) {
        const std::string_view line = text.substr(0, text.find('\n'));
        const std::string_view name = IncludedName(line);
        if (!name.empty())
            places.try_emplace(std::string(name),
                               Place{number, static_cast<int>(name.data() - line.data()) + 1});
        text.remove_prefix(std::min(text.size(), line.size() + 1));
    }
    return places;
}

auto OrderOf(const Include& include) {
    const bool hasPlace = include.place.has_value();
    const Place place = include.place.value_or(Place());
    return std::make_tuple(!hasPlace, place.line, place.column, std::string_view(include.name));
}

// In the order of the text, without the files that they mean.
std::vector<Include> NamesIn(const TAPSyntaxe& root, const std::string& path) {
    std::vector<Include> includes;
    const auto places = PlacesOfIncludes(path);
    const TAIndex& names = root.GetTAPSourceFile()->includes;
    includes.reserve(static_cast<std::size_t>(names.size));
    for (int i = 0; i < names.size; ++i) includes.push_back({names.keys[i], -1, std::nullopt});
    for (Include& include : includes)
        if (const auto found = places.find(include.name); found != places.end())
            include.place = found->second;
    std::sort(includes.begin(), includes.end(),
              [](const Include& a, const Include& b) { return OrderOf(a) < OrderOf(b); });
    return includes;
}

// In the file that is number `position` of the table's trees.
int CountMissingIn(const TAPSymbolTable& table, int position) {
    const TAIndex& names =
        static_cast<const TAPSyntaxe*>(table.trees.values[position])->GetTAPSourceFile()->includes;
    int count = 0;
    for (int i = 0; i < names.size; ++i)
        if (table.SearchHeaderFile(table.trees.keys[position], names.keys[i]).IsNull() != 0) ++count;
    return count;
}

class Following {
public:
    explicit Following(const TAPSymbolTable& symbols) : table(symbols) {}

    IncludeGraph From(const std::string& path) {
        IndexOf(path);
        for (std::size_t i = 0; i < graph.size(); ++i) Follow(i);
        return std::move(graph);
    }

private:
    int IndexOf(const std::string& path) {
        const auto [known, isNew] = indexes.try_emplace(path, static_cast<int>(graph.size()));
        if (isNew) graph.push_back({path, false, {}});
        return known->second;
    }

    void Follow(std::size_t index) {
        const std::string path = graph[index].path;
        const auto* root = static_cast<const TAPSyntaxe*>(table.trees[path.c_str()]);
        if (root == nullptr) return;
        std::vector<Include> includes = NamesIn(*root, path);
        for (Include& include : includes) {
            const TAFileName target = table.SearchHeaderFile(path.c_str(), include.name.c_str());
            if (target.IsNull() == 0) include.target = IndexOf(static_cast<const char*>(target));
        }
        graph[index].hasTree = true;
        graph[index].includes = std::move(includes);
    }

    const TAPSymbolTable& table;
    IncludeGraph graph;
    std::unordered_map<std::string, int> indexes; // by path
};

} // namespace

int CountMissingHeaders(const TAPSymbolTable& table) {
    int count = 0;
    for (int i = 0; i < table.trees.size; ++i) count += CountMissingIn(table, i);
    return count;
}

std::vector<MissingHeader> MissingHeaders(const TAPSymbolTable& table) {
    std::vector<MissingHeader> missing;
    for (int i = 0; i < table.trees.size; ++i) {
        if (CountMissingIn(table, i) == 0) continue;
        const std::string path = table.trees.keys[i];
        for (Include& include : NamesIn(*static_cast<const TAPSyntaxe*>(table.trees.values[i]), path))
            if (table.SearchHeaderFile(path.c_str(), include.name.c_str()).IsNull() != 0)
                missing.push_back({path, include.place, std::move(include.name)});
    }
    return missing;
}

IncludeGraph FollowIncludes(const TAPSymbolTable& table, const std::string& path) {
    return Following(table).From(path);
}

} // namespace ostraka::answers
