#pragma once

#include <sys/stat.h>

namespace ostraka::detail {

// Whether the path leads to something whose mode has the bit.
inline bool HasModeBit(const char* path, unsigned bit) {
    struct stat status;
    return stat(path, &status) == 0 && (status.st_mode & bit) != 0;
}

} // namespace ostraka::detail
