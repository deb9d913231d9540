#include <ostraka/foundation/Fatal.h>

#include <basalt/NUBStackTrace.h>
#include <cstdio>
#include <cstdlib>
#include <gneiss/qxOFStream.h>
#include <string>

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
