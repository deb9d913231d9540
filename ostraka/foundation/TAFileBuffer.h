#pragma once

// The raw bytes of one file, read on first demand or given as a text, and kept to the end of the object,
// which owns them and the copy of the name. What `GetBuffer` returns dies with the object.

#include <string_view>

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
    // Copies the text too, which stands for the content of that file and may hold any bytes: it counts as
    // read, and nobody looks for a file of that name. As behind what was read, a NUL stands behind it, then
    // line feeds, so that a scanner may look ahead by 8 bytes. A text of 2 GiB or more counts as a file that
    // can't be read, which is told at once.
    TAFileBuffer(const char* fileName, std::string_view text);
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
