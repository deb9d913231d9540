#pragma once

// The fatal stop for mistakes of the calling code, and the decimal text of a number.

#include <basalt/NUBString.h>
#include <ostraka/Export.h>

namespace ostraka::detail {

// Prints the message on standard error and the caller's stack on standard output, then aborts.
[[noreturn, gnu::cold]] OSTRAKA_EXPORT void StopProcess(const char* message);

} // namespace ostraka::detail

// Nothing when `condition` is 0; else stops the process with the message. No input is ever to reach that.
inline void FATAL(int condition, const char* message) {
    if (condition) [[unlikely]]
        ostraka::detail::StopProcess(message);
}

// As "%d" prints it.
OSTRAKA_EXPORT NUBString toString(int value);
