#pragma once

// What the JSON of the verbs over reports shares.

#include <optional>
#include <string>
#include <vector>

#include <answers/facts/Place.h>
#include <answers/reports/ReportModel.h>

#include "formats/JsonWriter.h"

namespace ostraka::tool {

// How one report was read.
struct ReportState {
    std::string path;
    std::int64_t records = 0;
    std::optional<Failure> failure;
};

// The member "reports".
void ReportsMember(JsonWriter& json, const std::vector<ReportState>& reports);

// The member "report": where a group was met first.
void ReportMember(JsonWriter& json, const std::vector<ReportState>& reports,
                  const reports::StackGroup& group);

// The members of a call: its function, and its source where there is one.
void CallMembers(JsonWriter& json, const Call& call);

// The member "took": which calls of a stack each element of a mask took, counted from 1 to the last.
void TookMember(JsonWriter& json, const StackMask& mask, Stack& stack);

} // namespace ostraka::tool
