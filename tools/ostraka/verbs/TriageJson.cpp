
#include "formats/ReportJson.h"
#include "formats/Text.h"
#include "verbs/Triage.h"

namespace ostraka::tool {

namespace {

using reports::StackGroup;

Json TextOrNull(const char* text) {
    return text == nullptr ? Json(nullptr) : Json(text);
}

Json TallyJson(const Triage& triage, const Tally& tally) {
    Json json{
        {"stacks", tally.stacks}, {"records", tally.records}, {"count", tally.count}, {"bytes", tally.bytes}};
    if (triage.HasBaseline()) json["new"] = tally.newStacks;
    return json;
}

Json StackJson(const Triage& triage, const TriageItem& item) {
    Stack& stack = *item.group->Calls();
    Json json = FactsOf(triage, item);
    json["calls"] = CallsJson(stack);
    const std::vector<CallCharge> charges = reports::ChargesOf(stack, triage.TablesOf(*item.group));
    for (std::size_t i = 0; i < charges.size(); ++i) json["calls"][i]["charge"] = NameOf(charges[i]);
    return json;
}

Json TotalJson(const Triage& triage, const Total& total) {
    Json json = TallyJson(triage, total.tally);
    for (std::size_t i = 0; i < total.keys.size(); ++i)
        json[NameOf(triage.request.report.by[i])] =
            total.keys[i].empty() ? Json(nullptr) : Json(total.keys[i]);
    return json;
}

Json SummaryJson(const Triage& triage) {
    Json json = TallyJson(triage, triage.all);
    json["filtered"] = Json::object();
    for (const auto& [type, tally] : triage.filtered) json["filtered"][type] = tally.stacks;
    json["tooDeep"] = triage.model.TooDeep();
    if (triage.HasBaseline()) json["gone"] = triage.gone;
    return json;
}

} // namespace

Json FactsOf(const Triage& triage, const TriageItem& item) {
    const StackGroup& group = *item.group;
    Stack& stack = *group.Calls();
    Json json{{"type", group.error->GetType()},
              {"kind", group.kind},
              {"leak", group.leak},
              {"framework", TextOrNull(stack.GetFwResponsible())},
              {"owner", TextOrNull(reports::OwnerOf(stack))},
              {"records", group.records},
              {"count", group.count},
              {"bytes", group.bytes}};
    if (triage.HasBaseline()) json["new"] = item.isNew;
    json["report"] = {{"file", ShownPath(triage.reports[static_cast<std::size_t>(group.report)].path)},
                      {"line", group.line}};
    if (group.tooDeep) json["tooDeep"] = true;
    Stack& whole = *group.error->GetLongStack();
    if (group.filter) json["filter"] = MaskJson(*group.filter, whole);
    if (group.cut) json["cut"] = MaskJson(*group.cut, whole);
    return json;
}

void PrintTriageJson(const Triage& triage, Console& console) {
    JsonPrinter printer(triage.request, console);
    if (triage.request.report.by.empty())
        printer.List("stacks", triage.items, [&](const TriageItem& item) { return StackJson(triage, item); });
    else
        printer.List("totals", triage.totals, [&](const Total& total) { return TotalJson(triage, total); });
    printer.Close({{"reports", ReportsJson(triage.reports)}, {"summary", SummaryJson(triage)}});
}

} // namespace ostraka::tool
