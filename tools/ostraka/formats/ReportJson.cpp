#include "formats/ReportJson.h"

#include "cli/Messages.h"

namespace ostraka::tool {

void ReportsMember(JsonWriter& json, const std::vector<ReportState>& reports) {
    json.List("reports", reports, [&](const ReportState& report) {
        json.BeginObject();
        json.Member("file", ShownPath(report.path));
        json.Member("records", report.records);
        if (report.failure) json.ErrorMember(*report.failure);
        json.EndObject();
    });
}

void ReportMember(JsonWriter& json, const std::vector<ReportState>& reports,
                  const reports::StackGroup& group) {
    json.Key("report");
    json.BeginObject();
    json.Member("file", ShownPath(reports[static_cast<std::size_t>(group.report)].path));
    json.Member("line", group.line);
    json.EndObject();
}

void CallMembers(JsonWriter& json, const Call& call) {
    const reports::ShownParts parts = reports::PartsOf(call);
    json.Member("function", parts.function);
    if (!parts.path.empty()) json.Member("file", parts.path);
    if (parts.line > 0) json.Member("line", parts.line);
}

void TookMember(JsonWriter& json, const StackMask& mask, Stack& stack) {
    json.List("took", reports::TakenBy(mask, stack), [&](const CallRange& taken) {
        json.BeginList();
        json.Value(taken.begin + 1);
        json.Value(taken.past);
        json.EndList();
    });
}

} // namespace ostraka::tool
