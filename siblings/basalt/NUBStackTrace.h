#pragma once

// The calls that led to a place, for the last words of a process that stops. The frames lie in the object and
// are printed without an allocation, so that it works when memory is what has run out.

#include <array>
#include <cstdio>

#include <basalt/Export.h>

// Frames that were captured somewhere, and their printing.
class BASALT_EXPORT NUBBasicStackTrace {
public:
    // Writes one line a frame, the innermost first: `skip` frames are left out, and then `most` are written,
    // all of them for 0. What `file` has buffered is written before.
    void Print(std::FILE* file, int skip, int most) const;

protected:
    std::array<void*, 256> frames = {};
    int size = 0;
};

class BASALT_EXPORT NUBStackTrace : public NUBBasicStackTrace {
public:
    // Captures the stack of the caller: its innermost 256 frames.
    void GetTrace();
};
