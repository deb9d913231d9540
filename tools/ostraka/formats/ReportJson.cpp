#include "formats/ReportJson.h"

#include <fmt/format.h>

#include "formats/Text.h"

namespace ostraka::tool {

std::string Printed(const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

Json CallsJson(Stack& stack) {
    Json calls = Json::array();
    for (int i = 0; i < stack.GetSize(); ++i) {
        const reports::ShownParts parts = reports::PartsOf(*stack.GetCall(i));
        Json& call = calls.emplace_back(Json{{"function", parts.function}});
        if (!parts.path.empty()) call["file"] = parts.path;
        if (parts.line > 0) call["line"] = parts.line;
    }
    return calls;
}

Json MaskJson(const StackMask& mask, Stack& stack) {
    Json json;
    if (mask.GetType()) json["type"] = mask.GetType();
    json["mask"] = reports::ShownCall(mask.GetStackMask());
    json["took"] = Json::array();
    for (const CallRange& taken : reports::TakenBy(mask, stack))
        json["took"].push_back({taken.begin + 1, taken.past});
    return json;
}

Json ReportsJson(const std::vector<ReportState>& reports) {
    Json list = Json::array();
    for (const ReportState& report : reports) {
        Json& json = list.emplace_back(Json{{"file", ShownPath(report.path)}, {"records", report.records}});
        if (!report.failure) continue;
        json["error"] = Json::object();
        if (report.failure->place) {
            json["error"]["line"] = report.failure->place->line;
            json["error"]["column"] = report.failure->place->column;
        }
        json["error"]["message"] = report.failure->cause;
    }
    return list;
}

JsonPrinter::JsonPrinter(const Request& request, Console& theConsole)
    : console(theConsole), lines(request.format == Format::JsonLines),
      head(fmt::format("{{\"format\":\"ostraka.{}\",\"version\":1,", request.verb)) {}

void JsonPrinter::Open(std::string_view member) {
    name = member;
    if (!lines) console.Out(fmt::format("{}\"{}\":[", head, member));
}

void JsonPrinter::Entry(const Json& entry) {
    if (lines) return console.Out(fmt::format("{}\"{}\":[{}]}}\n", head, name, Printed(entry)));
    console.Out(first ? "\n" : ",\n");
    console.Out(Printed(entry));
    first = false;
}

void JsonPrinter::Close(const Json& members) {
    std::string rest = Printed(members).substr(1);
    rest += '\n';
    console.Out(lines ? head : ",\n");
    console.Out(rest);
}

} // namespace ostraka::tool
