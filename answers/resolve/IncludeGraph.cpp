#include <answers/resolve/IncludeGraph.h>

#include <unordered_map>
#include <unordered_set>

#include <ostraka/symbols/TAPSymbolTable.h>

namespace ostraka::answers {

namespace {

// In the order of the text, each name once, without the files that they mean.
std::vector<Include> NamesIn(const TAPSyntaxe& root) {
    std::vector<Include> includes;
    std::unordered_set<const char*> named; // equal names are one text
    for (const TAPInclude& include : root.GetTAPSourceFile()->GetIncludes())
        if (named.insert(include.name).second) includes.push_back({include.name, -1, PlaceOf(include.point)});
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
        std::vector<Include> includes = NamesIn(*root);
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
        for (Include& include : NamesIn(*static_cast<const TAPSyntaxe*>(table.trees.values[i])))
            if (table.SearchHeaderFile(path.c_str(), include.name.c_str()).IsNull() != 0)
                missing.push_back({path, include.place, std::move(include.name)});
    }
    return missing;
}

IncludeGraph FollowIncludes(const TAPSymbolTable& table, const std::string& path) {
    return Following(table).From(path);
}

} // namespace ostraka::answers
