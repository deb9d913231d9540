#include "formats/ReportJson.h"
#include "verbs/Triage.h"

namespace ostraka::tool {

namespace {

using reports::StackGroup;

void TallyMembers(JsonWriter& json, const Triage& triage, const Tally& tally) {
    json.Member("stacks", tally.stacks);
    json.Member("records", tally.records);
    json.Member("count", tally.count);
    json.Member("bytes", tally.bytes);
    if (triage.HasBaseline()) json.Member("new", tally.newStacks);
}

void CallsMember(JsonWriter& json, const Triage& triage, const StackGroup& group, const Stack& stack) {
    int call = 0;
    json.List("calls", reports::ChargesOf(stack, triage.TablesOf(group)), [&](CallCharge charge) {
        json.BeginObject();
        CallMembers(json, *stack.GetCall(call++));
        json.Member("charge", NameOf(charge));
        json.EndObject();
    });
}

void StackJson(JsonWriter& json, const Triage& triage, const TriageItem& item) {
    const StackGroup& group = *item.group;
    json.BeginObject();
    FactMembers(json, triage, item);
    CallsMember(json, triage, group, *group.Calls());
    if (!group.others.empty())
        json.List("others", group.others, [&](const reports::TitledStack& other) {
            json.BeginObject();
            OtherMembers(json, other);
            CallsMember(json, triage, group, *other.Calls());
            json.EndObject();
        });
    json.EndObject();
}

void TotalJson(JsonWriter& json, const Triage& triage, const Total& total) {
    json.BeginObject();
    TallyMembers(json, triage, total.tally);
    for (std::size_t i = 0; i < total.keys.size(); ++i)
        json.Member(NameOf(triage.request.report.by[i]), OrNull(total.keys[i]));
    json.EndObject();
}

void SummaryMember(JsonWriter& json, const Triage& triage) {
    json.Key("summary");
    json.BeginObject();
    TallyMembers(json, triage, triage.all);
    json.Key("filtered");
    json.BeginObject();
    for (const auto& [type, tally] : triage.filtered) json.Member(type, tally.stacks);
    json.EndObject();
    json.Member("tooDeep", triage.model.TooDeep());
    if (triage.HasBaseline()) json.List("gone", triage.gone);
    json.EndObject();
}

// A mask with its type, and what it took.
void MaskMember(JsonWriter& json, std::string_view name, const StackMask* mask, Stack& stack) {
    if (mask == nullptr) return;
    json.Key(name);
    json.BeginObject();
    if (mask->GetType() != nullptr) json.Member("type", mask->GetType());
    json.Member("mask", reports::ShownCall(mask->GetStackMask()));
    TookMember(json, *mask, stack);
    json.EndObject();
}

std::optional<std::string_view> Known(const char* text) {
    return text == nullptr ? std::nullopt : std::optional<std::string_view>(text);
}

} // namespace

void FactMembers(JsonWriter& json, const Triage& triage, const TriageItem& item) {
    const StackGroup& group = *item.group;
    Stack& stack = *group.Calls();
    json.Member("type", group.error->GetType());
    json.Member("kind", group.kind);
    json.Member("leak", group.leak);
    json.Member("framework", Known(stack.GetFwResponsible()));
    json.Member("owner", Known(reports::OwnerOf(stack)));
    json.Member("records", group.records);
    json.Member("count", group.count);
    json.Member("bytes", group.bytes);
    if (triage.HasBaseline()) json.Member("new", item.isNew);
    ReportMember(json, triage.reports, group);
    if (group.tooDeep) json.Member("tooDeep", true);
    if (!group.title.empty()) json.Member("title", group.title);
    Stack& whole = *group.error->GetLongStack();
    MaskMember(json, "filter", group.filter, whole);
    MaskMember(json, "cut", group.cut, whole);
}

void OtherMembers(JsonWriter& json, const reports::TitledStack& other) {
    json.Member("title", other.title);
    json.Member("framework", Known(other.Calls()->GetFwResponsible()));
    json.Member("owner", Known(reports::OwnerOf(*other.Calls())));
}

void PrintTriageJson(const Triage& triage, Console& console) {
    JsonAnswer answer(triage.request, [&](std::string_view piece) { console.Out(piece); });
    if (triage.request.report.by.empty())
        answer.List("stacks", triage.items, true,
                    [&](JsonWriter& json, const TriageItem& item) { StackJson(json, triage, item); });
    else
        answer.List("totals", triage.totals, true,
                    [&](JsonWriter& json, const Total& total) { TotalJson(json, triage, total); });
    answer.Close([&](JsonWriter& json) {
        ReportsMember(json, triage.reports);
        SummaryMember(json, triage);
    });
}

} // namespace ostraka::tool
