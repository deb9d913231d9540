#pragma once

// The verbs that read reports or list frameworks. Each works on all its inputs at once, in this process,
// since the library keeps one model of reports for the whole process. The results are exit codes.

#include "cli/Console.h"
#include "cli/Request.h"

namespace ostraka::tool {

int RunTriage(const Request& request, Console& console);
int RunMask(const Request& request, Console& console);
int RunFrameworks(const Request& request, Console& console);

} // namespace ostraka::tool
