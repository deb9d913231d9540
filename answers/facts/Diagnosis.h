#pragma once

// Where and why the library gave a file up. It tells of an unclosed dialect word that there is one, and of a
// tree that failed one line of text; an engineer wants the place in the file.

#include <cstdio>
#include <string>
#include <string_view>

#include <answers/facts/Place.h>

class TAPSourceFile;
class TAPSyntaxe;

namespace ostraka::answers {

// Keeps for its lifetime what the process prints through `stderr`, and only that: what goes to the
// descriptor, as from a sanitizer, still gets out.
class PrintedErrors {
public:
    PrintedErrors();
    ~PrintedErrors();
    PrintedErrors(const PrintedErrors&) = delete;
    PrintedErrors& operator=(const PrintedErrors&) = delete;

    // The first line printed so far, without its label.
    std::string FirstCause();

private:
    std::FILE* saved;
    char* text = nullptr;
    std::size_t size = 0;
};

// For the text of a file that couldn't be normalised.
Failure DiagnoseStream(std::string_view text);

// For a tree that couldn't be built: `message` is the library's own text.
Failure DiagnoseTree(const TAPSourceFile& file, TAPSyntaxe& root, const std::string& message);

// For a text of which the library reads only what stands before a NUL at `nul`.
Failure DescribeNul(std::string_view text, std::size_t nul);

} // namespace ostraka::answers
