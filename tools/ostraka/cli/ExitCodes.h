#pragma once

// What the process ends with. A failure is stronger than finding nothing.

namespace ostraka::tool {

enum ExitCode : int { ExitDone = 0, ExitNotFound = 1, ExitUsage = 2, ExitFailed = 3 };

} // namespace ostraka::tool
