#pragma once

// What each verb makes of one file. A verb writes into a Result and nowhere else, so that several processes
// can share the files and all still comes out in their order.

#include <cstddef>
#include <string>

#include "cli/Request.h"

namespace ostraka::answers {
class SourceUnit;
}

namespace ostraka::tool {

// What a file, or a run of files, adds to the two streams and to the exit code.
struct Result {
    std::string out;
    std::string err;
    int failed = 0;   // files that couldn't be read or loaded whole
    int notFound = 0; // files that haven't got what was asked for
    int headers = 0;  // files that were read because others include them
};

// Works on the file that is number `index` of the run, from 0.
void RunVerb(const Request& request, const Input& input, std::size_t index, Result& result);

// Whether the verb asks a symbol table.
bool IsQuestion(const Request& request);

// What stands before the first file and behind the last one.
std::string Prologue(const Request& request);
std::string Epilogue(const Request& request);

// The forms of a loaded file. Those in JSON add members to an object that is open already.
void PrintStreamText(const Request& request, const Input& input, SourceUnit& unit, Result& result);
void PrintStreamJson(SourceUnit& unit, Result& result);
void PrintTreeText(const Request& request, const Input& input, SourceUnit& unit, Result& result);
void PrintTreeJson(const Request& request, const Input& input, SourceUnit& unit, Result& result);

// The questions to a symbol table, which stand for themselves and have no prologue.
void AnswerAt(const Request& request, const std::string& asked, Result& result);
void AnswerHeader(const Request& request, const std::string& name, Result& result);
void AnswerIncludes(const Request& request, const std::string& path, Result& result);

// The exact state of everything, for comparisons; also for a file that failed, unless it couldn't be read.
void PrintDump(const Input& input, SourceUnit& unit, Result& result);

} // namespace ostraka::tool
