#pragma once

// The console streams. They write through the `stdout` and `stderr` of the C library, so that their text
// keeps its order with what else a program prints there. Both are ready before any constructor runs and stay
// so to the end.

#include <gneiss/Export.h>

class GNEISS_EXPORT qxOFStream {
public:
    enum class Console { Output, Error };

    explicit constexpr qxOFStream(Console where) : console(where) {}
    qxOFStream(const qxOFStream&) = delete;
    qxOFStream& operator=(const qxOFStream&) = delete;

    // Writes the text; null counts as empty. Failures are passed over.
    qxOFStream& operator<<(const char* text);
    qxOFStream& operator<<(qxOFStream& (*manipulator)(qxOFStream&)) { return manipulator(*this); }

    // Hands over to the system what is still buffered.
    void Flush();

private:
    Console console;
};

extern GNEISS_EXPORT qxOFStream qxStdout;
extern GNEISS_EXPORT qxOFStream qxStderr;

// Ends the line and flushes. It stands beside `std::endl`: the stream on the left decides which one is meant.
GNEISS_EXPORT qxOFStream& endl(qxOFStream& stream);
