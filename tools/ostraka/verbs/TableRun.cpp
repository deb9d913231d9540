#include "verbs/TableRun.h"

#include <algorithm>
#include <iterator>
#include <set>

#include <fmt/format.h>

#include <answers/resolve/IncludeGraph.h>
#include <answers/resolve/LanguageHeaders.h>
#include <ostraka/symbols/TAPSymbolTable.h>

#include "cli/Inputs.h"
#include "verbs/CodeSession.h"
#include "verbs/MissingNote.h"
#include "verbs/Session.h"

namespace ostraka::tool {

namespace {

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

// What the table doesn't find may lie in the code base all the same, where no frameworks are.
void TellMissing(const Request& request, const Session& session, const std::vector<std::string>& files,
                 Result& result) {
    const std::vector<MissingHeader> headers = MissingHeaders(session.Table());
    if (headers.empty()) return;
    CodeSession code(request, files, &session);
    int missing = 0;
    int ofLanguage = 0;
    for (const MissingHeader& header : headers) {
        const int file = code.Base().FileAt(header.file);
        if (!code.Base().IsInFrameworks(file)) {
            const bool isOfLanguage = IsLanguageHeader(header.name);
            if (code.Base().FindInclude(file, header.name, isOfLanguage ? '<' : '"') >= 0) continue;
            ofLanguage += isOfLanguage ? 1 : 0;
            if (isOfLanguage) continue;
        }
        ++missing;
        if (request.missingOnly)
            AppendMessage(result.err, session.Shown(header.file), header.place, "warning",
                          fmt::format("header {} not found", header.name), request.colorErrors);
    }
    if (const std::string note = MissingNote(missing, ofLanguage, request.missingOnly); !note.empty())
        result.Note(request, note);
}

} // namespace

void AnswerFromTable(Run& run, AnswerTable answer) {
    const Request& request = run.request;
    const std::vector<Input> inputs = CollectInputs(WithFiles(request));
    Session session(request, PathsOf(inputs));
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        session.LoadOneOfMany(inputs[i]);
        run.console.ShowProgress(i + 1, inputs.size());
    }
    Result result;
    const std::vector<std::string> files = FilesOf(inputs);
    answer(request, session, files, result);
    session.TellFailures(result);
    TellMissing(request, session, files, result);
    result.files = session.FileCount();
    run.Show(result);
}

} // namespace ostraka::tool
