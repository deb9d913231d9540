#include "verbs/TableVerbs.h"

#include <algorithm>
#include <iterator>
#include <set>

#include <fmt/format.h>
#include <ostraka/symbols/TAPSymbolTable.h>

#include "cli/Console.h"
#include "cli/Inputs.h"
#include "verbs/Session.h"
#include <answers/resolve/IncludeGraph.h>

namespace ostraka::tool {

namespace {

struct Row {
    Verb verb;
    void (*answer)(const Request&, const Session&, const std::vector<std::string>& files, Result&);
};

constexpr Row rows[] = {
    {Verb::Outline, AnswerOutline},     {Verb::Classes, AnswerClasses}, {Verb::Show, AnswerShow},
    {Verb::Hierarchy, AnswerHierarchy}, {Verb::Tags, AnswerTags},
};

const Row* RowOf(Verb verb) {
    const auto* found =
        std::find_if(std::begin(rows), std::end(rows), [=](const Row& row) { return row.verb == verb; });
    return found == std::end(rows) ? nullptr : found;
}

bool NamesFiles(const Request& request) {
    return !request.paths.empty() || !request.filesFrom.empty() || !request.compileCommands.empty();
}

// Where no file is named, all of the workspaces, or of the folder that we stand in.
Request WithFiles(const Request& request) {
    Request whole = request;
    if (NamesFiles(request)) return whole;
    whole.paths = WorkspacesOf(request);
    if (whole.paths.empty()) whole.paths = {"."};
    return whole;
}

std::vector<std::string> PathsOf(const std::vector<Input>& inputs) {
    std::vector<std::string> paths;
    std::transform(inputs.begin(), inputs.end(), std::back_inserter(paths),
                   [](const Input& input) { return input.path; });
    return paths;
}

// In the order in which they were named, by the paths of the table.
std::vector<std::string> FilesOf(const std::vector<Input>& inputs) {
    std::vector<std::string> files;
    std::set<std::string> seen;
    for (const Input& input : inputs) {
        std::string file = Session::Absolute(input.path);
        if (seen.insert(file).second) files.push_back(std::move(file));
    }
    return files;
}

void TellMissing(const Request& request, const Session& session, Result& result) {
    if (request.missingOnly)
        for (const MissingHeader& header : MissingHeaders(session.Table()))
            AppendMessage(result.err, session.Shown(header.file), header.place, "warning",
                          fmt::format("header {} not found", header.name), request.colorErrors);
    if (request.quiet) return;
    if (const int count = CountMissingHeaders(session.Table()); count > 0)
        result.err += fmt::format("ostraka: {} not found{}\n", Counted(count, "include"),
                                  request.missingOnly ? "" : ", see --missing");
}

} // namespace

bool IsTableVerb(const Request& request) {
    return RowOf(request.verb) != nullptr;
}

Result RunTableVerb(const Request& request, Console& console) {
    const std::vector<Input> inputs = CollectInputs(WithFiles(request));
    Session session(request, PathsOf(inputs));
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        session.LoadOneOfMany(inputs[i]);
        console.ShowProgress(i + 1, inputs.size());
    }
    Result result;
    RowOf(request.verb)->answer(request, session, FilesOf(inputs), result);
    session.TellFailures(result);
    TellMissing(request, session, result);
    result.headers = session.FileCount();
    console.Out(result.out);
    console.Err(result.err);
    return result;
}

} // namespace ostraka::tool
