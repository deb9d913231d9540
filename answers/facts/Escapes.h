#pragma once

// Texts of files without characters that would break a line or a terminal. Both add to the text they are
// given.

#include <string>
#include <string_view>

namespace ostraka::answers {

// The text in one line: control characters as \n, \t, \x1b and so on.
void AppendOneLine(std::string& out, std::string_view text);

// Every byte that isn't printable ASCII as an escape, and the backslash doubled: lossless.
void AppendEscaped(std::string& out, std::string_view text);

} // namespace ostraka::answers
