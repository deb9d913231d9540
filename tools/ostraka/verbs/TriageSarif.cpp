// One run with a result for each stack. A stack that a filter took is a suppressed result; what is known from
// the baseline is unchanged, and the fingerprint is that of the baseline's line, so that edits which move
// lines keep it.

#include <map>

#include <fmt/format.h>

#include "formats/ReportJson.h"
#include "formats/Text.h"
#include "verbs/Triage.h"

namespace ostraka::tool {

namespace {

using reports::StackGroup;

constexpr std::uint64_t fnvBasis = 14695981039346656037U;
constexpr std::uint64_t fnvPrime = 1099511628211U;

std::string Fingerprint(std::string_view text) {
    std::uint64_t hash = fnvBasis;
    for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * fnvPrime;
    return fmt::format("{:016x}", hash);
}

// A path as a reference: an absolute one names a file of this host.
std::string Uri(std::string_view path) {
    std::string uri = path.starts_with('/') ? "file://" : "";
    for (const char c : path) {
        const bool plain = (c >= '0' && c <= '9') || ((c | 0x20) >= 'a' && (c | 0x20) <= 'z') ||
                           std::string_view("/-._~+,@").find(c) != std::string_view::npos;
        uri += plain ? std::string(1, c) : fmt::format("%{:02X}", static_cast<unsigned char>(c));
    }
    return uri;
}

Json PhysicalLocation(std::string_view path, int line) {
    Json location{{"artifactLocation", {{"uri", Uri(path)}}}};
    if (line > 0) location["region"] = {{"startLine", line}};
    return location;
}

Json LocationOf(Call& call) {
    const reports::ShownParts parts = reports::PartsOf(call);
    Json location = Json::object();
    if (!parts.path.empty()) location["physicalLocation"] = PhysicalLocation(parts.path, parts.line);
    location["logicalLocations"] =
        Json::array({{{"fullyQualifiedName", parts.function}, {"kind", "function"}}});
    return location;
}

// The call that is charged, or else the first with a source, or else the place in the report.
Json ResultLocation(const Triage& triage, const StackGroup& group) {
    Stack& stack = *group.Calls();
    const auto charges = reports::ChargesOf(stack, triage.TablesOf(group));
    Call* best = nullptr;
    for (int i = 0; i < stack.GetSize(); ++i) {
        if (charges[static_cast<std::size_t>(i)] == CallCharge::Charged) return LocationOf(*stack.GetCall(i));
        if (best == nullptr && !reports::PartsOf(*stack.GetCall(i)).path.empty()) best = stack.GetCall(i);
    }
    if (best != nullptr) return LocationOf(*best);
    const std::string_view report = ShownPath(triage.reports[static_cast<std::size_t>(group.report)].path);
    return {{"physicalLocation", PhysicalLocation(report, group.line)}};
}

Json StackOf(const StackGroup& group) {
    Json frames = Json::array();
    Stack& stack = *group.Calls();
    for (int i = 0; i < stack.GetSize(); ++i) frames.push_back({{"location", LocationOf(*stack.GetCall(i))}});
    return {{"frames", frames}};
}

std::string MessageOf(const StackGroup& group) {
    Stack& stack = *group.Calls();
    const char* framework = stack.GetFwResponsible();
    const char* owner = reports::OwnerOf(stack);
    std::string text(group.kind);
    text += group.leak ? fmt::format(": {} bytes in {} blocks", group.bytes, group.count)
                       : fmt::format(": {} times", group.count);
    if (stack.GetSize() > 0) text += " in " + reports::PartsOf(*stack.GetCall(0)).function;
    text +=
        fmt::format("; framework {}, owner {}", framework ? framework : "unknown", owner ? owner : "unknown");
    return text;
}

Json ResultJson(const Triage& triage, const TriageItem& item,
                const std::map<std::string, std::size_t>& rules) {
    const StackGroup& group = *item.group;
    Stack& stack = *group.Calls();
    const std::string type = group.error->GetType();
    Json result{{"ruleId", type},
                {"ruleIndex", rules.at(type)},
                {"level", group.leak ? "warning" : "error"},
                {"message", {{"text", MessageOf(group)}}},
                {"locations", Json::array({ResultLocation(triage, group)})},
                {"stacks", Json::array({StackOf(group)})},
                {"partialFingerprints", {{"ostrakaStack/v1", Fingerprint(reports::BaselineLine(group))}}}};
    if (group.count > 0) result["occurrenceCount"] = std::min<std::int64_t>(group.count, 2147483647);
    if (triage.HasBaseline()) result["baselineState"] = item.isNew ? "new" : "unchanged";
    if (group.filter)
        result["suppressions"] =
            Json::array({{{"kind", "external"}, {"justification", group.filter->GetType()}}});
    result["properties"] = {{"bytes", group.bytes}, {"records", group.records}};
    if (stack.GetFwResponsible()) result["properties"]["framework"] = stack.GetFwResponsible();
    if (reports::OwnerOf(stack)) result["properties"]["owner"] = reports::OwnerOf(stack);
    return result;
}

std::map<std::string, std::size_t> RulesOf(const Triage& triage) {
    std::map<std::string, std::size_t> rules;
    for (const TriageItem& item : triage.items) rules[item.group->error->GetType()] = 0;
    std::size_t index = 0;
    for (auto& [type, place] : rules) place = index++;
    return rules;
}

Json InvocationJson(const Triage& triage) {
    Json invocation{{"executionSuccessful", true}};
    Json notifications = Json::array();
    for (const ReportState& report : triage.reports) {
        if (!report.failure) continue;
        invocation["executionSuccessful"] = false;
        const int line = report.failure->place ? report.failure->place->line : 0;
        notifications.push_back(
            {{"level", "error"},
             {"message", {{"text", report.failure->cause}}},
             {"locations",
              Json::array({{{"physicalLocation", PhysicalLocation(ShownPath(report.path), line)}}})}});
    }
    if (!notifications.empty()) invocation["toolExecutionNotifications"] = notifications;
    return invocation;
}

} // namespace

void PrintTriageSarif(const Triage& triage, Console& console) {
    const auto rules = RulesOf(triage);
    Json driver{{"name", "ostraka"}, {"version", OSTRAKA_VERSION}, {"rules", Json::array()}};
    for (const auto& [type, place] : rules) driver["rules"].push_back({{"id", type}});
    console.Out(fmt::format("{{\"$schema\":\"https://json.schemastore.org/"
                            "sarif-2.1.0.json\",\"version\":\"2.1.0\",\"runs\":[{{\"tool\":{{\"driver\":{}}},"
                            "\"invocations\":[{}],\"columnKind\":\"utf16CodeUnits\",\"results\":[",
                            Printed(driver), Printed(InvocationJson(triage))));
    std::string_view separator = "\n";
    for (const TriageItem& item : triage.items) {
        console.Out(separator);
        console.Out(Printed(ResultJson(triage, item, rules)));
        separator = ",\n";
    }
    console.Out("\n]}]}\n");
}

} // namespace ostraka::tool
