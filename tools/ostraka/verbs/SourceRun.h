#pragma once

// What the verbs over single files have in common: each file is loaded, told where it fails, and printed.

#include <answers/facts/SourceUnit.h>

#include "cli/Run.h"
#include "formats/JsonWriter.h"

namespace ostraka::tool {

// How a verb prints a loaded file. The one in JSON adds members to an object that is open already.
struct SourcePrinter {
    bool needsTree;
    void (*text)(const Request& request, const FileOfRun& file, SourceUnit& unit, Result& result);
    void (*json)(const Request& request, const FileOfRun& file, SourceUnit& unit, JsonWriter& json,
                 Result& result);
};

// Answers for one file of a run.
void AnswerSource(const Request& request, const FileOfRun& file, const SourcePrinter& printer,
                  Result& result);

// Answers for all files that the request names, in one document where it asks for JSON.
void RunOnSources(Run& run, AnswerFile answer);

// The exact state of everything, for comparisons; also for a file that failed, unless it couldn't be read.
void PrintDump(const Input& input, SourceUnit& unit, Result& result);

} // namespace ostraka::tool
