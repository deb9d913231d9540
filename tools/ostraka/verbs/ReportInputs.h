#pragma once

// Tables and reports from their files into the model of the run. Whatever can't be read is named on standard
// error and counted, and the run goes on with the rest.

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <answers/reports/ReportModel.h>

#include "cli/Run.h"
#include "formats/ReportJson.h"

namespace ostraka::tool {

// The sorts of files that are counted apart.
constexpr std::string_view reportSort = "report";
constexpr std::string_view listSort = "list";

// The lines of a list, without those that are empty or begin with "#".
std::vector<std::string> ReadLines(const std::string& path, Run& run);

// The whole text of a file; none when it can't be read.
std::optional<std::string> ReadText(const std::string& path, Run& run);

struct OwnerLists {
    NUBListValNUBString lines;
    NUBListValNUBString people;
};

// Reads the lists and gives them to the library, so that every call that is built later finds its owner.
OwnerLists LoadOwners(Run& run);

// The other tables of `triage`.
void LoadTables(Run& run, reports::ReportModel& model);

// A mask, or a filter entry with its type in front. Warns of one that is too long to match anything.
std::unique_ptr<StackMask> MakeMask(const std::string& written, const std::string& path, Run& run);

// Reads all reports that the request names, one after the other, in pieces.
std::vector<ReportState> ReadReports(Run& run, reports::ReportModel& model);

} // namespace ostraka::tool
