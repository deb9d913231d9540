#pragma once

// Reading of a whole file into memory.

#include <gneiss/Export.h>

// Reads the file at `path`. Returns 0 on success: `data` is then a block that the caller frees with `free`,
// and `size` the number of bytes read, behind which stands a NUL. The block's length is rounded up to a
// multiple of `mode` bytes (below 1 counts as 1), and what lies behind the NUL is filled with `pad`, so that
// a scanner may look ahead by a whole word.
//
// Everything that can be read to an end is a file: one of the size 0 that has content nevertheless, a pipe,
// one that grows or shrinks meanwhile. Returns 1 on failure, with `data` and `size` left as they were and the
// reason in `qxExtLastError`: a directory gives EISDIR, a file of 2 GiB or more EFBIG, a null path EFAULT.
GNEISS_EXPORT int qxMMap(const char* path, const int& mode, char*& data, unsigned int& size, char pad);
