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

void PhysicalLocation(JsonWriter& json, std::string_view path, int line) {
    json.Object("physicalLocation", [&] {
        json.Object("artifactLocation", [&] { json.Member("uri", Uri(path)); });
        if (line > 0) json.Object("region", [&] { json.Member("startLine", line); });
    });
}

void LocationMembers(JsonWriter& json, const Call& call) {
    const reports::ShownParts parts = reports::PartsOf(call);
    if (!parts.path.empty()) PhysicalLocation(json, parts.path, parts.line);
    json.Key("logicalLocations");
    json.BeginList();
    json.Object([&] {
        json.Member("fullyQualifiedName", parts.function);
        json.Member("kind", "function");
    });
    json.EndList();
}

// The call that is charged, or else the first with a source; null for none.
const Call* CallToBlame(const Triage& triage, const StackGroup& group) {
    Stack& stack = *group.Calls();
    const auto charges = reports::ChargesOf(stack, triage.TablesOf(group));
    const Call* best = nullptr;
    for (int i = 0; i < stack.GetSize(); ++i) {
        if (charges[static_cast<std::size_t>(i)] == CallCharge::Charged) return stack.GetCall(i);
        if (best == nullptr && !reports::PartsOf(*stack.GetCall(i)).path.empty()) best = stack.GetCall(i);
    }
    return best;
}

void ResultLocation(JsonWriter& json, const Triage& triage, const StackGroup& group) {
    if (const Call* call = CallToBlame(triage, group)) return LocationMembers(json, *call);
    const auto report = static_cast<std::size_t>(group.report);
    PhysicalLocation(json, ShownPath(triage.reports[report].path), group.line);
}

void StackJson(JsonWriter& json, const std::string& title, const Stack& stack) {
    json.Object([&] {
        json.Key("frames");
        json.BeginList();
        for (int i = 0; i < stack.GetSize(); ++i)
            json.Object([&] { json.Object("location", [&] { LocationMembers(json, *stack.GetCall(i)); }); });
        json.EndList();
        if (!title.empty()) json.Object("message", [&] { json.Member("text", title); });
    });
}

void StacksMember(JsonWriter& json, const StackGroup& group) {
    json.Key("stacks");
    json.BeginList();
    StackJson(json, group.title, *group.Calls());
    for (const reports::TitledStack& other : group.others) StackJson(json, other.title, *other.Calls());
    json.EndList();
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

// A member that is a list of one object.
template <class Write>
void Single(JsonWriter& json, std::string_view key, Write write) {
    json.Key(key);
    json.BeginList();
    json.Object(write);
    json.EndList();
}

void ResultMembers(JsonWriter& json, const Triage& triage, const TriageItem& item,
                   const std::map<std::string, std::size_t>& rules) {
    const StackGroup& group = *item.group;
    const std::string type = group.error->GetType();
    json.Member("ruleId", type);
    json.Member("ruleIndex", rules.at(type));
    json.Member("level", group.leak ? "warning" : "error");
    json.Object("message", [&] { json.Member("text", MessageOf(group)); });
    Single(json, "locations", [&] { ResultLocation(json, triage, group); });
    StacksMember(json, group);
    json.Object("partialFingerprints",
                [&] { json.Member("ostrakaStack/v1", Fingerprint(reports::BaselineLine(group))); });
    if (group.count > 0) json.Member("occurrenceCount", std::min<std::int64_t>(group.count, 2147483647));
    if (triage.HasBaseline()) json.Member("baselineState", item.isNew ? "new" : "unchanged");
    if (group.filter != nullptr)
        Single(json, "suppressions", [&] {
            json.Member("kind", "external");
            json.Member("justification", group.filter->GetType());
        });
    json.Object("properties", [&] {
        Stack& stack = *group.Calls();
        json.Member("bytes", group.bytes);
        json.Member("records", group.records);
        if (const char* framework = stack.GetFwResponsible()) json.Member("framework", framework);
        if (const char* owner = reports::OwnerOf(stack)) json.Member("owner", owner);
    });
}

std::map<std::string, std::size_t> RulesOf(const Triage& triage) {
    std::map<std::string, std::size_t> rules;
    for (const TriageItem& item : triage.items) rules[item.group->error->GetType()] = 0;
    std::size_t index = 0;
    for (auto& [type, place] : rules) place = index++;
    return rules;
}

void FailureJson(JsonWriter& json, const ReportState& report) {
    json.Object([&] {
        json.Member("level", "error");
        json.Object("message", [&] { json.Member("text", report.failure->cause); });
        Single(json, "locations", [&] {
            PhysicalLocation(json, ShownPath(report.path),
                             report.failure->place ? report.failure->place->line : 0);
        });
    });
}

void InvocationMembers(JsonWriter& json, const Triage& triage) {
    std::vector<const ReportState*> failed;
    for (const ReportState& report : triage.reports)
        if (report.failure) failed.push_back(&report);
    json.Member("executionSuccessful", failed.empty());
    if (failed.empty()) return;
    json.List("toolExecutionNotifications", failed,
              [&](const ReportState* report) { FailureJson(json, *report); });
}

void DriverMembers(JsonWriter& json, const std::map<std::string, std::size_t>& rules) {
    json.Member("name", "ostraka");
    json.Member("version", OSTRAKA_VERSION);
    json.List("rules", rules, [&](const auto& rule) { json.Object([&] { json.Member("id", rule.first); }); });
}

} // namespace

void PrintTriageSarif(const Triage& triage, Console& console) {
    const auto rules = RulesOf(triage);
    std::string text;
    JsonWriter json(text);
    const auto pass = [&] {
        console.Out(text);
        text.clear();
    };
    json.BeginObject();
    json.Member("$schema", "https://json.schemastore.org/sarif-2.1.0.json");
    json.Member("version", "2.1.0");
    Single(json, "runs", [&] {
        json.Object("tool", [&] { json.Object("driver", [&] { DriverMembers(json, rules); }); });
        Single(json, "invocations", [&] { InvocationMembers(json, triage); });
        json.Member("columnKind", "utf16CodeUnits");
        json.Key("results");
        json.BeginList();
        for (const TriageItem& item : triage.items) {
            json.BreakLine();
            json.Object([&] { ResultMembers(json, triage, item, rules); });
            pass();
        }
        json.BreakLine();
        json.EndList();
    });
    json.EndObject();
    text += '\n';
    pass();
}

} // namespace ostraka::tool
