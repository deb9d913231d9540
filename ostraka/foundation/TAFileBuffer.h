#pragma once

// The raw bytes of one file, read on first demand and kept to the end of the object, which owns them and the
// copy of the name. What `GetBuffer` returns dies with the object.

#include <ostraka/Export.h>
#include <ostraka/foundation/TypedLists.h>

class OSTRAKA_EXPORT TAFileBuffer {
public:
    int loaded = 0;         // 1 from the first attempt to read on, also when it failed
    unsigned int size = 0;  // bytes of the file; 0 before reading and after a failure
    char* fileName;         // the path as given; null counted as empty
    char* buffer = nullptr; // the content with a NUL behind it, or null

    // Copies the name and reads nothing. The second argument has no effect.
    TAFileBuffer(const char* fileName, int);
    ~TAFileBuffer();
    TAFileBuffer(const TAFileBuffer&) = delete;
    TAFileBuffer& operator=(const TAFileBuffer&) = delete;

    // The first call reads the file: 0, or 1 after one line on standard error when it can't be read. Every
    // later call does nothing and returns 0.
    int LoadFile();

    // Both read the file if nobody has. Null and 0 when it can't be read.
    char* GetBuffer();
    unsigned int GetSize();
};

using NUBListPtrTAFileBuffer =
    ostraka::detail::PointerList<TAFileBuffer, ostraka::detail::ListKind::WithoutDuplicates>;
