// The command-line tool: what an engineer asks of sources, answered through the rooms of the house.

#include <csignal>
#include <exception>

#include <fmt/format.h>

#include "cli/CommandLine.h"
#include "cli/Run.h"
#include "verbs/Verbs.h"

using namespace ostraka::tool;

namespace {

int RunVerb(const Verb& verb, const Request& request) {
    Console console(request.quiet);
    Run run(request, console);
    verb.run(run);
    return run.Close();
}

} // namespace

int main(int argc, char** argv) {
    // A closed pipe shows as a failed write.
    std::signal(SIGPIPE, SIG_IGN);
    try {
        Request request;
        const auto asked = ParseCommandLine(argc, argv, allVerbs, request);
        if (const auto* ended = std::get_if<ExitCode>(&asked)) return *ended;
        return RunVerb(*std::get<const Verb*>(asked), request);
    } catch (const std::exception& error) {
        fmt::print(stderr, "ostraka: error: {}\n", error.what());
        return ExitFailed;
    }
}
