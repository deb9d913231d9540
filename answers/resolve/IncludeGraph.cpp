#include <answers/resolve/IncludeGraph.h>

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include <answers/resolve/LanguageHeaders.h>
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
        graph[index].isRead = true;
        graph[index].includes = std::move(includes);
    }

    const TAPSymbolTable& table;
    IncludeGraph graph;
    std::unordered_map<std::string, int> indexes; // by path
};

// Who includes which file of a code base, all of it.
class Reversing {
public:
    explicit Reversing(CodeBase& asked) : base(asked) {}

    void ReadAll(int target) {
        Meet(target);
        for (const int file : base.AllFiles()) Meet(file);
        for (std::size_t i = 0; i < met.size(); ++i) Read(met[i]);
    }

    Includers LeadingTo(int target) {
        std::unordered_set<int> reached = {target};
        AddIncludersOf(target, 0, reached);
        for (std::size_t i = 0; i < found.files.size(); ++i)
            AddIncludersOf(found.files[i].file, found.files[i].distance, reached);
        return std::move(found);
    }

private:
    struct Arrow {
        int from;
        Place place;
        IncludeRule rule;
    };

    void Meet(int file) {
        if (known.insert(file).second) met.push_back(file);
    }

    void Read(int file) {
        if (!base.ReadIncludes(file, includes)) found.unread.push_back(file);
        std::unordered_set<int> included;
        for (const FileInclude& include : includes) {
            IncludeRule rule = IncludeRule::None;
            const int target = base.FindInBuild(file, include.name, include.delimiter, rule);
            if (target < 0 || !included.insert(target).second) continue;
            Meet(target);
            arrowsTo[target].push_back({file, include.place, rule});
        }
    }

    void AddIncludersOf(int target, int distance, std::unordered_set<int>& reached) {
        std::vector<Arrow>& arrows = arrowsTo[target];
        std::stable_sort(arrows.begin(), arrows.end(), [this](const Arrow& a, const Arrow& b) {
            return base.PathOf(a.from) < base.PathOf(b.from);
        });
        for (const Arrow& arrow : arrows) {
            found.arrows.emplace_back(arrow.from, target);
            if (reached.insert(arrow.from).second)
                found.files.push_back({arrow.from, arrow.place, target, distance + 1, arrow.rule});
        }
    }

    CodeBase& base;
    std::vector<FileInclude> includes; // of the file that is read
    std::vector<int> met;
    std::unordered_set<int> known;
    std::unordered_map<int, std::vector<Arrow>> arrowsTo;
    Includers found;
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

IncludeGraph FollowIncludes(CodeBase& base, int file) {
    IncludeGraph graph;
    std::vector<int> files;
    std::unordered_map<int, int> indexes; // by file
    const auto indexOf = [&](int met) {
        const auto [known, isNew] = indexes.try_emplace(met, static_cast<int>(graph.size()));
        if (isNew) {
            files.push_back(met);
            graph.push_back({base.PathOf(met), false, {}});
        }
        return known->second;
    };
    indexOf(file);
    std::vector<FileInclude> includes;
    for (std::size_t i = 0; i < files.size(); ++i) {
        const int from = files[i];
        graph[i].isRead = base.ReadIncludes(from, includes);
        for (FileInclude& include : includes) {
            IncludeRule rule = IncludeRule::None;
            const int target = base.FindInBuild(from, include.name, include.delimiter, rule);
            const int index = target < 0 ? -1 : indexOf(target);
            const bool isOfLanguage = target < 0 && IsLanguageHeader(include.name);
            graph[i].includes.push_back({std::move(include.name), index, include.place, isOfLanguage});
        }
    }
    return graph;
}

Includers FindIncluders(CodeBase& base, int file) {
    Reversing reversing(base);
    reversing.ReadAll(file);
    return reversing.LeadingTo(file);
}

} // namespace ostraka::answers
