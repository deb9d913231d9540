#pragma once

// The command line: from words to a Request, with help, version, and a hint for a word that isn't known.

#include <optional>

#include "cli/Request.h"

namespace ostraka::tool {

enum : int { ExitDone = 0, ExitNotFound = 1, ExitUsage = 2, ExitFailed = 3 };

// Fills the request. A value is the exit code of a run that ends here: help was asked for, or the words are
// wrong, which has been told on standard error.
std::optional<int> ParseCommandLine(int argc, char** argv, Request& request);

} // namespace ostraka::tool
