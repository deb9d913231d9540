#pragma once

// The command line: from words to a Request, with help, version, and a hint for a word that isn't known.

#include <span>
#include <variant>

#include "cli/ExitCodes.h"
#include "cli/Verb.h"

namespace ostraka::tool {

using Verbs = std::span<const Verb* const>; // in the order of the help

// Fills the request and gives the verb that was asked for; or the exit code of a run that ends here: help was
// asked for and printed, or the words are wrong, which has been told on standard error.
std::variant<const Verb*, ExitCode> ParseCommandLine(int argc, char** argv, Verbs verbs, Request& request);

} // namespace ostraka::tool
