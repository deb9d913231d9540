#pragma once

// The bytes of a file as they are on the disk, or of standard input.

#include <memory>
#include <string>

class TAFileBuffer;

namespace ostraka::answers {

// Reads the file, or standard input for "-", to its end. What standard input held is kept, so that it can be
// asked for again. On failure gives null and says why in `problem`. A device or a socket isn't read: it may
// have no end.
std::unique_ptr<TAFileBuffer> ReadFile(const std::string& path, std::string& problem);

// A descriptor of the same for who reads it in pieces, who closes it; -1 on failure.
int OpenToRead(const std::string& path, std::string& problem);

} // namespace ostraka::answers
