#include <ostraka/foundation/Fatal.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include <basalt/NUBStackTrace.h>
#include <gneiss/qxOFStream.h>

[[gnu::noinline]] void ostraka::detail::StopProcess(const char* message) {
    qxStderr << "FATAL INTERNAL ERROR ------------------------" << endl;
    qxStderr << message << endl;
    qxStderr << "STACK ---------------------------------------" << endl;
    NUBStackTrace trace;
    trace.GetTrace();
    trace.Print(stdout, 0, 0);
    std::abort();
}

NUBString toString(int value) {
    return NUBString(std::to_string(value));
}
