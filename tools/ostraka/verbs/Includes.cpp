#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include <answers/facts/RawFile.h>
#include <answers/resolve/IncludeGraph.h>
#include <ostraka/foundation/TAFileBuffer.h>

#include "cli/Options.h"
#include "formats/Dot.h"
#include "formats/JsonWriter.h"
#include "verbs/CodeSession.h"
#include "verbs/MissingNote.h"
#include "verbs/Session.h"
#include "verbs/Verbs.h"

namespace ostraka::tool {

namespace {

// Writes the includes below one another. A file is unfolded where it is met first.
class IncludeTree {
public:
    IncludeTree(const Request& theRequest, const CodeSession& asked, const IncludeGraph& files,
                std::string& text)
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
            fmt::format_to(std::back_inserter(out), ": {}\n",
                           include.isOfLanguage ? "of the language"
                                                : Colored(request, colorError, "not found"));
            return;
        }
        const auto target = static_cast<std::size_t>(include.target);
        fmt::format_to(std::back_inserter(out), ": {}{}\n",
                       Colored(request, colorPlace, session.Shown(graph[target].path)), Mark(target));
        if (states[target] == State::New) Open(target);
    }

    std::string Mark(std::size_t file) const {
        if (!graph[file].isRead) return Colored(request, colorError, " (failed)");
        if (states[file] == State::Open) return " (cycle)";
        return states[file] == State::Done && !graph[file].includes.empty() ? " (above)" : "";
    }

    const Request& request;
    const CodeSession& session;
    const IncludeGraph& graph;
    std::string& out;
    std::vector<State> states; // of each file
    std::vector<Level> open;
};

bool IsMissing(const Include& include) {
    return include.target < 0 && !include.isOfLanguage;
}

void PrintMissing(const Request& request, const CodeSession& session, const IncludeGraph& graph,
                  std::string& out) {
    for (const IncludedFile& file : graph)
        for (const Include& include : file.includes)
            if (IsMissing(include))
                fmt::format_to(std::back_inserter(out), "{}: {} {}\n",
                               PlaceText(request, session.Shown(file.path), include.place), include.name,
                               Colored(request, colorError, "not found"));
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
void PrintDot(const CodeSession& session, const IncludeGraph& graph, const Request& request,
              std::string& out) {
    out += "digraph includes {\n  rankdir=LR;\n  node [shape=box];\n";
    Nodes nodes(request.limit);
    if (!request.missingOnly)
        for (const IncludedFile& file : graph) nodes.Take(session.Shown(file.path));
    for (const IncludedFile& file : graph) {
        const std::string from = session.Shown(file.path);
        if (!file.isRead && nodes.Take(from))
            fmt::format_to(std::back_inserter(out), "  {} [color=red];\n", Quoted(from));
        for (const Include& include : file.includes) {
            const bool isMissing = include.target < 0;
            if (request.missingOnly ? !IsMissing(include) : include.isOfLanguage) continue;
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

void IncludeJson(JsonWriter& json, const CodeSession& session, const IncludeGraph& graph,
                 const Include& include) {
    const bool isFound = include.target >= 0;
    json.BeginObject();
    json.Member("name", include.name);
    json.Member("file",
                isFound ? std::optional(session.Shown(graph[static_cast<std::size_t>(include.target)].path))
                        : std::nullopt);
    json.Member("line", include.place.line);
    json.Member("column", include.place.column);
    if (include.isOfLanguage) json.Member("language", true);
    json.EndObject();
}

// With `missingOnly` those includes that weren't found, and the files that have any.
void AnswerMembers(JsonWriter& json, const CodeSession& session, const IncludeGraph& graph,
                   bool missingOnly) {
    json.Member("file", session.Shown(graph.front().path));
    const auto isShown = [=](const Include& include) { return !missingOnly || IsMissing(include); };
    json.List("files", graph, [&](const IncludedFile& file) {
        if (missingOnly && std::none_of(file.includes.begin(), file.includes.end(), isShown)) return;
        json.BeginObject();
        json.Member("file", session.Shown(file.path));
        json.Member("loaded", file.isRead);
        json.List("includes", file.includes, [&](const Include& include) {
            if (isShown(include)) IncludeJson(json, session, graph, include);
        });
        json.EndObject();
    });
}

// Those that aren't found never stay unsaid; headers of the language are counted apart, since no code base
// has them.
void CountMissing(const Request& request, const IncludeGraph& graph, Result& result) {
    int missing = 0;
    int ofLanguage = 0;
    for (const IncludedFile& file : graph) {
        for (const Include& include : file.includes) {
            missing += IsMissing(include) ? 1 : 0;
            ofLanguage += include.isOfLanguage ? 1 : 0;
        }
    }
    if (const std::string note = MissingNote(missing, ofLanguage, request.missingOnly); !note.empty())
        result.Note(request, note);
}

// Which files can't be read, each with the first one that includes it.
void TellUnread(const Request& request, const CodeSession& session, const IncludeGraph& graph,
                Result& result) {
    std::unordered_map<int, const IncludedFile*> includers;
    for (const IncludedFile& file : graph)
        for (const Include& include : file.includes) includers.try_emplace(include.target, &file);
    for (std::size_t i = 1; i < graph.size(); ++i)
        if (!graph[i].isRead)
            result.Fail(request, session.Shown(graph[i].path),
                        {std::nullopt, fmt::format("can't be read, included by {}",
                                                   session.Shown(includers[static_cast<int>(i)]->path))});
    result.files += static_cast<std::int64_t>(graph.size()) - 1;
}

void PrintGraph(const Request& request, const CodeSession& session, const IncludeGraph& graph,
                Result& result) {
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
}

// In a workspace with frameworks the table knows what the includes mean, and loads it; elsewhere the files
// are read for their includes alone.
void Answer(const Request& request, const std::string& path, Result& result) {
    Session session(request, {path});
    CodeSession code(request, {path}, &session);
    code.TellFailures(result);
    const int file = code.FileAt(path);
    const bool namesFolders = !request.headerFolders.empty() || !request.compileCommands.empty();
    if (path == "-" || (!namesFolders && code.Base().IsInFrameworks(file))) {
        if (session.Load(path, result) == nullptr) return;
        const IncludeGraph graph = FollowIncludes(session.Table(), Session::Absolute(path));
        PrintGraph(request, code, graph, result);
        if (!request.missingOnly) CountMissing(request, graph, result);
        return;
    }
    std::string problem;
    if (ReadFile(path, problem) == nullptr) return result.Fail(request, path, {std::nullopt, problem});
    const IncludeGraph graph = FollowIncludes(code.Base(), file);
    PrintGraph(request, code, graph, result);
    CountMissing(request, graph, result);
    TellUnread(request, code, graph, result);
}

// ---- Who includes it

// Each file once, below the one by which it is nearest.
class IncluderTree {
public:
    IncluderTree(const Request& asked, const CodeSession& code, const Includers& found, std::string& text)
        : request(asked), session(code), includers(found), out(text) {
        for (std::size_t i = 0; i < includers.files.size(); ++i)
            below[includers.files[i].includes].push_back(i);
    }

    void Print(int file) {
        out += session.Shown(file) + "\n";
        Open(file);
        while (!open.empty()) {
            auto& [next, past] = open.back();
            if (next == past) {
                open.pop_back();
                continue;
            }
            const Includer& includer = includers.files[*next++];
            out.append(2 * std::min(open.size(), deepest), ' ');
            out += PlaceText(request, session.Shown(includer.file), includer.place) + "\n";
            Open(includer.file);
        }
    }

private:
    static constexpr std::size_t deepest = 100; // levels that are indented, so that chains stay short texts

    using Indexes = std::vector<std::size_t>;

    void Open(int file) {
        if (const auto found = below.find(file); found != below.end())
            open.emplace_back(found->second.begin(), found->second.end());
    }

    const Request& request;
    const CodeSession& session;
    const Includers& includers;
    std::string& out;
    std::unordered_map<int, Indexes> below; // of the includers, by the file that they include
    std::vector<std::pair<Indexes::const_iterator, Indexes::const_iterator>> open;
};

void IncludersJson(JsonWriter& json, const CodeSession& session, int file, const Includers& includers) {
    json.Member("to", session.Shown(file));
    json.List("includers", includers.files, [&](const Includer& includer) {
        json.BreakLine();
        json.Object([&] {
            json.PlaceMembers(session.Shown(includer.file), includer.place);
            json.Member("includes", session.Shown(includer.includes));
            json.Member("distance", includer.distance);
            json.Member("rule", NameOf(includer.rule));
        });
    });
}

// The nearest files have room first.
void IncludersDot(const CodeSession& session, int file, const Includers& includers, const Request& request,
                  std::string& out) {
    out += "digraph includes {\n  rankdir=LR;\n  node [shape=box];\n";
    Nodes nodes(request.limit);
    nodes.Take(session.Shown(file));
    for (const Includer& includer : includers.files) nodes.Take(session.Shown(includer.file));
    for (const auto& [from, to] : includers.arrows) {
        const bool hasFrom = nodes.Take(session.Shown(from));
        if (nodes.Take(session.Shown(to)) && hasFrom)
            fmt::format_to(std::back_inserter(out), "  {} -> {};\n", Quoted(session.Shown(from)),
                           Quoted(session.Shown(to)));
    }
    out += LeftOut(nodes.LeftOut(), "files") + "}\n";
}

void AnswerTo(const Request& request, const std::string& path, Result& result) {
    std::string problem;
    if (ReadFile(path, problem) == nullptr) return result.Fail(request, path, {std::nullopt, problem});
    CodeSession code(request, {path});
    code.TellFailures(result);
    const int file = code.FileAt(path);
    const Includers includers = FindIncluders(code.Base(), file);
    if (includers.files.empty()) {
        ++result.notFound;
        result.Note(request, fmt::format("nothing includes {}", code.Shown(file)));
    }
    if (request.format == Format::Json) {
        WriteAnswer(request, result.out,
                    [&](JsonWriter& json) { IncludersJson(json, code, file, includers); });
    } else if (request.format == Format::Dot) {
        IncludersDot(code, file, includers, request, result.out);
    } else if (!includers.files.empty()) {
        IncluderTree(request, code, includers, result.out).Print(file);
    }
    for (const int unread : includers.unread)
        result.Fail(request, code.Shown(unread), {std::nullopt, "can't be read"});
    result.files = code.Base().FileCount();
}

void RunIncludes(Run& run) {
    if (!run.request.includesTo.empty()) return run.Ask(run.request.includesTo, AnswerTo);
    run.Ask(run.request.paths.front(), Answer);
}

void CheckQuestion(Request& request) {
    if (request.paths.empty() == request.includesTo.empty())
        throw WrongUsage("includes takes one file, or --to");
    if (request.missingOnly && !request.includesTo.empty())
        throw WrongUsage("--missing is about what a file includes, and --to about who includes it");
}

constexpr Option operands[] = {
    {"FILE", nullptr, "The file to begin with", Operand{TakePath}},
    {"--to", "FILE", "Tell who includes this file instead, followed, among all files of the code base",
     Text{[](Request& r, const std::string& file) { r.includesTo = file; }}}};
constexpr Option ownOptions[] = {{"--missing", nullptr, "Print only those that aren't found",
                                  Flag{[](Request& r) { r.missingOnly = true; }}}};
constexpr std::span<const Option> options[] = {operands,      workspaceOptions, searchOptions,
                                               outputOptions, ownOptions,       limitOptions};

} // namespace

const Verb includesVerb = {
    "includes",
    "Follow the includes of a file, or tell who includes it",
    {"ostraka includes -w harbour:coast harbour/Ships/Ships.m/src/Ship.cpp",
     "ostraka includes -w harbour:coast --missing harbour/Traffic/Traffic.m/src/TrafficControl.cpp",
     "ostraka includes -w harbour:coast --to coast/CoastBase/PublicInterfaces/CoastTypes.h"},
    graphFormats,
    options,
    CheckQuestion,
    RunIncludes,
};

} // namespace ostraka::tool
