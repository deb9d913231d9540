#include <algorithm>
#include <iterator>
#include <string>
#include <unordered_set>
#include <vector>

#include <fmt/format.h>

#include <answers/resolve/IncludeGraph.h>

#include "cli/Options.h"
#include "formats/Dot.h"
#include "formats/JsonWriter.h"
#include "verbs/Session.h"
#include "verbs/Verbs.h"

namespace ostraka::tool {

namespace {

// Writes the includes below one another. A file is unfolded where it is met first.
class IncludeTree {
public:
    IncludeTree(const Request& theRequest, const Session& asked, const IncludeGraph& files, std::string& text)
        : request(theRequest), session(asked), graph(files), out(text), states(files.size(), State::New) {}

    void Print() {
        fmt::format_to(std::back_inserter(out), "{}\n", session.Shown(graph.front().path));
        Open(0);
        while (!open.empty()) {
            auto& [file, next] = open.back();
            const auto& includes = graph[file].includes;
            if (next == includes.size()) {
                states[file] = State::Done;
                open.pop_back();
            } else {
                PrintInclude(includes[next++]);
            }
        }
    }

private:
    enum class State { New, Open, Done };

    struct Level {
        std::size_t file;
        std::size_t next;
    };

    void Open(std::size_t file) {
        states[file] = State::Open;
        open.push_back({file, 0});
    }

    void PrintInclude(const Include& include) {
        out.append(2 * open.size(), ' ');
        out += include.name;
        if (include.target < 0) {
            fmt::format_to(std::back_inserter(out), ": {}\n", Colored(request, colorError, "not found"));
            return;
        }
        const auto target = static_cast<std::size_t>(include.target);
        fmt::format_to(std::back_inserter(out), ": {}{}\n",
                       Colored(request, colorPlace, session.Shown(graph[target].path)), Mark(target));
        if (states[target] == State::New) Open(target);
    }

    std::string Mark(std::size_t file) const {
        if (!graph[file].hasTree) return Colored(request, colorError, " (failed)");
        if (states[file] == State::Open) return " (cycle)";
        return states[file] == State::Done && !graph[file].includes.empty() ? " (above)" : "";
    }

    const Request& request;
    const Session& session;
    const IncludeGraph& graph;
    std::string& out;
    std::vector<State> states; // of each file
    std::vector<Level> open;
};

template <class Visit>
void ForEachMissing(const IncludeGraph& graph, Visit visit) {
    for (const IncludedFile& file : graph)
        for (const Include& include : file.includes)
            if (include.target < 0) visit(file, include);
}

void PrintMissing(const Request& request, const Session& session, const IncludeGraph& graph,
                  std::string& out) {
    ForEachMissing(graph, [&](const IncludedFile& file, const Include& include) {
        fmt::format_to(std::back_inserter(out), "{}: {} {}\n",
                       PlaceText(request, session.Shown(file.path), include.place), include.name,
                       Colored(request, colorError, "not found"));
    });
}

// The nodes of a drawing, as long as there is room for them.
class Nodes {
public:
    explicit Nodes(int limit) : room(static_cast<std::size_t>(limit)) {}

    // Whether the node is drawn.
    bool Take(const std::string& name) {
        if (drawn.size() < room) drawn.insert(name);
        if (drawn.contains(name)) return true;
        leftOut.insert(name);
        return false;
    }

    std::size_t LeftOut() const { return leftOut.size(); }

private:
    std::size_t room;
    std::unordered_set<std::string> drawn;
    std::unordered_set<std::string> leftOut;
};

// Files have room first, in the order in which they are met, which is that of their distance; then the names
// that find none.
void PrintDot(const Session& session, const IncludeGraph& graph, const Request& request, std::string& out) {
    out += "digraph includes {\n  rankdir=LR;\n  node [shape=box];\n";
    Nodes nodes(request.limit);
    if (!request.missingOnly)
        for (const IncludedFile& file : graph) nodes.Take(session.Shown(file.path));
    for (const IncludedFile& file : graph) {
        const std::string from = session.Shown(file.path);
        if (!file.hasTree && nodes.Take(from))
            fmt::format_to(std::back_inserter(out), "  {} [color=red];\n", Quoted(from));
        for (const Include& include : file.includes) {
            const bool isMissing = include.target < 0;
            if (request.missingOnly && !isMissing) continue;
            const std::string to = isMissing
                                       ? include.name
                                       : session.Shown(graph[static_cast<std::size_t>(include.target)].path);
            const bool hasFrom = nodes.Take(from);
            if (!nodes.Take(to) || !hasFrom) continue;
            fmt::format_to(std::back_inserter(out), "  {} -> {}{};\n", Quoted(from), Quoted(to),
                           isMissing ? " [style=dashed]" : "");
        }
    }
    out += LeftOut(nodes.LeftOut(), "files") + "}\n";
}

void IncludeJson(JsonWriter& json, const Session& session, const IncludeGraph& graph,
                 const Include& include) {
    const bool isFound = include.target >= 0;
    json.BeginObject();
    json.Member("name", include.name);
    json.Member("file",
                isFound ? std::optional(session.Shown(graph[static_cast<std::size_t>(include.target)].path))
                        : std::nullopt);
    json.Member("line", include.place.line);
    json.Member("column", include.place.column);
    json.EndObject();
}

// With `missingOnly` those includes that weren't found, and the files that have any.
void AnswerMembers(JsonWriter& json, const Session& session, const IncludeGraph& graph, bool missingOnly) {
    json.Member("file", session.Shown(graph.front().path));
    const auto isShown = [=](const Include& include) { return !missingOnly || include.target < 0; };
    json.List("files", graph, [&](const IncludedFile& file) {
        if (missingOnly && std::none_of(file.includes.begin(), file.includes.end(), isShown)) return;
        json.BeginObject();
        json.Member("file", session.Shown(file.path));
        json.Member("loaded", file.hasTree);
        json.List("includes", file.includes, [&](const Include& include) {
            if (isShown(include)) IncludeJson(json, session, graph, include);
        });
        json.EndObject();
    });
}

// Those that aren't found never stay unsaid.
void CountMissing(const IncludeGraph& graph, std::string& err) {
    int count = 0;
    ForEachMissing(graph, [&](const IncludedFile&, const Include&) { ++count; });
    if (count > 0)
        fmt::format_to(std::back_inserter(err), "ostraka: {} not found, see --missing\n",
                       Counted(count, "include"));
}

void Answer(const Request& request, const std::string& path, Result& result) {
    Session session(request, {path});
    if (session.Load(path, result) == nullptr) return;
    const IncludeGraph graph = FollowIncludes(session.Table(), Session::Absolute(path));
    if (request.format == Format::Json) {
        WriteAnswer(request, result.out,
                    [&](JsonWriter& json) { AnswerMembers(json, session, graph, request.missingOnly); });
    } else if (request.format == Format::Dot) {
        PrintDot(session, graph, request, result.out);
    } else if (request.missingOnly) {
        PrintMissing(request, session, graph, result.out);
    } else {
        IncludeTree(request, session, graph, result.out).Print();
    }
    if (!request.missingOnly && !request.quiet) CountMissing(graph, result.err);
}

void RunIncludes(Run& run) {
    run.Ask(run.request.paths.front(), Answer);
}

constexpr Option operands[] = {{"FILE", nullptr, "The file to begin with", Operand{TakePath, true}}};
constexpr Option ownOptions[] = {{"--missing", nullptr, "Print only those that aren't found",
                                  Flag{[](Request& r) { r.missingOnly = true; }}}};
constexpr std::span<const Option> options[] = {operands, workspaceOptions, outputOptions, ownOptions,
                                               limitOptions};

} // namespace

const Verb includesVerb = {
    "includes",
    "Follow the includes of a file",
    {"ostraka includes -w harbour:coast harbour/Ships/Ships.m/src/Ship.cpp",
     "ostraka includes -w harbour:coast --missing harbour/Traffic/Traffic.m/src/TrafficControl.cpp",
     "ostraka includes -w harbour:coast --format dot harbour/Berths/Berths.m/src/Quay.cpp"},
    graphFormats,
    options,
    nullptr,
    RunIncludes,
};

} // namespace ostraka::tool
