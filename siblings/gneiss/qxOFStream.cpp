#include <gneiss/qxOFStream.h>

#include <cstdio>

constinit qxOFStream qxStdout(qxOFStream::Console::Output);
constinit qxOFStream qxStderr(qxOFStream::Console::Error);

// Before a line of errors goes out, so does what standard output holds: on a terminal they stay in order.
qxOFStream& qxOFStream::operator<<(const char* text) {
    if (!text) return *this;
    if (console == Console::Error) std::fflush(stdout);
    std::fputs(text, console == Console::Output ? stdout : stderr);
    return *this;
}

void qxOFStream::Flush() {
    std::fflush(console == Console::Output ? stdout : stderr);
}

qxOFStream& endl(qxOFStream& stream) {
    stream << "\n";
    stream.Flush();
    return stream;
}
