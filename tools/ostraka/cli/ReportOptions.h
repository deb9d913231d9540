#pragma once

// The options of the verbs that read reports or list frameworks.

#include "cli/Request.h"

namespace CLI {
class App;
}

namespace ostraka::tool {

void AddTriageOptions(CLI::App& app, Request& request);
void AddMaskOptions(CLI::App& app, Request& request);
void AddFrameworksOptions(CLI::App& app, Request& request);

// Moves the mask from the words of the command line to its place, unless masks come from a file; false when
// there is none.
bool TakeMask(Request& request);

} // namespace ostraka::tool
