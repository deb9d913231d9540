// The command-line tool: what an engineer asks of sources, answered through the library's public headers.

#include <csignal>
#include <exception>

#include <fmt/format.h>

#include "cli/CommandLine.h"
#include "cli/Console.h"
#include "cli/Inputs.h"
#include "cli/Jobs.h"
#include "verbs/ReportVerbs.h"
#include "verbs/TableVerbs.h"

using namespace ostraka::tool;

namespace {

int ExitCode(const Result& total) {
    if (total.failed > 0) return ExitFailed;
    return total.notFound > 0 ? ExitNotFound : ExitDone;
}

// What is asked stands where others take files.
std::vector<Input> Questions(const Request& request) {
    std::vector<Input> questions;
    for (const std::string& words : request.paths) questions.push_back({words, ""});
    return questions;
}

void TellFailed(const Request& request, const Result& total, std::size_t files, Console& console) {
    if (total.failed > 0 && !request.quiet)
        console.Err(fmt::format("ostraka: {} of {} files failed\n", total.failed, files));
}

int RunOnFiles(Request& request, Console& console) {
    if (IsTableVerb(request)) {
        const Result total = RunTableVerb(request, console);
        TellFailed(request, total, static_cast<std::size_t>(total.headers), console);
        return ExitCode(total);
    }
    const std::vector<Input> inputs = IsQuestion(request) ? Questions(request) : CollectInputs(request);
    request.severalFiles = inputs.size() > 1;
    console.Out(Prologue(request));
    const Result total = RunAll(request, inputs, console);
    console.Out(Epilogue(request));
    TellFailed(request, total, inputs.size() + static_cast<std::size_t>(total.headers), console);
    return ExitCode(total);
}

int Run(Request& request) {
    Console console(request.quiet);
    switch (request.verb) {
    case Verb::Triage: return RunTriage(request, console);
    case Verb::Mask: return RunMask(request, console);
    case Verb::Frameworks: return RunFrameworks(request, console);
    default: return RunOnFiles(request, console);
    }
}

} // namespace

int main(int argc, char** argv) {
    // A closed pipe shows as a failed write.
    std::signal(SIGPIPE, SIG_IGN);
    try {
        Request request;
        if (const std::optional<int> ended = ParseCommandLine(argc, argv, request)) return *ended;
        return Run(request);
    } catch (const std::exception& error) {
        fmt::print(stderr, "ostraka: error: {}\n", error.what());
        return ExitFailed;
    }
}
