#pragma once

// Runs a verb over all files of a run, in this process or in several, with the same output either way.

#include <vector>

#include "cli/Request.h"
#include "cli/Verbs.h"

namespace ostraka::tool {

class Console;

// The counts of the whole run; the streams have been written to the console.
Result RunAll(const Request& request, const std::vector<Input>& inputs, Console& console);

} // namespace ostraka::tool
