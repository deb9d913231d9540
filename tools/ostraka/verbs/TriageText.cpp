// A stack is a line with the place to jump to, what happened and who is charged, and below it the calls, the
// one that decided marked. The last lines count.

#include <algorithm>
#include <iterator>

#include <fmt/format.h>

#include "formats/Text.h"
#include "verbs/Triage.h"

namespace ostraka::tool {

namespace {

using reports::StackGroup;

std::string Happened(const StackGroup& group) {
    if (!group.leak) return Counted(group.count, "time");
    return Counted(group.bytes, "byte") + " in " + Counted(group.count, "block");
}

std::string Reason(CallCharge charge, const reports::ShownParts& parts, Call& call) {
    switch (charge) {
    case CallCharge::Charged: return fmt::format("charged: {}", call.GetFwResponsible());
    case CallCharge::IgnoredCall: return "ignored call";
    case CallCharge::IgnoredResponsible: return fmt::format("ignored owner: {}", call.GetResponsible());
    case CallCharge::NoFramework: return parts.path.empty() ? "no source" : "no framework";
    case CallCharge::Behind: break;
    }
    return "";
}

// "  filter KNOWN: @!f@ took 1-3, 4", positions of calls from 1, "-" for a star that took none.
void AppendMask(std::string& out, std::string_view what, const StackMask& mask, Stack& stack) {
    out += fmt::format("  {}: ", what);
    AppendOneLine(out, reports::ShownCall(mask.GetStackMask()));
    std::string_view separator = " took ";
    for (const CallRange& taken : reports::TakenBy(mask, stack)) {
        out += separator;
        separator = ", ";
        if (taken.past == taken.begin) out += '-';
        if (taken.past > taken.begin) out += fmt::format("{}", taken.begin + 1);
        if (taken.past > taken.begin + 1) out += fmt::format("-{}", taken.past);
    }
    out += '\n';
}

void AppendExplanation(std::string& out, const StackGroup& group) {
    Stack& stack = *group.error->GetLongStack();
    if (group.filter)
        AppendMask(out, fmt::format("filter {}", group.filter->GetType()), *group.filter, stack);
    if (group.cut)
        AppendMask(out,
                   fmt::format("cut to {} of {}", Counted(group.Calls()->GetSize(), "call"), stack.GetSize()),
                   *group.cut, stack);
}

void AppendCalls(std::string& out, const Triage& triage, Stack& stack,
                 const std::vector<CallCharge>& charges) {
    for (std::size_t i = 0; i < charges.size(); ++i) {
        Call& call = *stack.GetCall(static_cast<int>(i));
        out += charges[i] == CallCharge::Charged ? "  > " : "    ";
        AppendOneLine(out, reports::ShownCall(call.GetCall()));
        const std::string reason =
            triage.request.report.explain ? Reason(charges[i], reports::PartsOf(call), call) : "";
        if (!reason.empty()) AppendOneLine(out, "  <- " + reason);
        out += '\n';
    }
}

// "Ships, Tomas.Nansen.TNA."
void AppendCharged(std::string& out, const Stack& stack) {
    const char* framework = stack.GetFwResponsible();
    const char* owner = reports::OwnerOf(stack);
    AppendOneLine(out, framework ? framework : nobody[static_cast<int>(TotalKey::Framework)]);
    if (framework)
        AppendOneLine(out, fmt::format(", {}", owner ? owner : nobody[static_cast<int>(TotalKey::Owner)]));
}

// The stacks of a group that has several, each under its title.
void AppendOthers(std::string& out, const Triage& triage, const StackGroup& group) {
    for (const reports::TitledStack& other : group.others) {
        AppendOneLine(out, fmt::format("  {}; ", other.title));
        AppendCharged(out, *other.Calls());
        out += '\n';
        AppendCalls(out, triage, *other.Calls(), reports::ChargesOf(*other.Calls(), triage.TablesOf(group)));
    }
}

void AppendItem(std::string& out, const Triage& triage, const TriageItem& item) {
    const StackGroup& group = *item.group;
    const std::vector<CallCharge> charges = reports::ChargesOf(*group.Calls(), triage.TablesOf(group));
    const bool color = triage.request.colorOutput;
    std::string head =
        fmt::format("{}{}:{} {}{}{} {}, {}; ", Color(color, colorPlace), PlaceOf(triage, group, charges),
                    Color(color, colorOff), Color(color, colorError), group.error->GetType(),
                    Color(color, colorOff), Happened(group), Counted(group.records, "record"));
    out += head;
    AppendCharged(out, *group.Calls());
    if (item.isNew) out += "; new";
    if (group.filter) AppendOneLine(out, fmt::format("; filtered as {}", group.filter->GetType()));
    out += '\n';
    if (triage.request.report.explain) AppendExplanation(out, group);
    if (!group.others.empty()) {
        AppendOneLine(out, "  " + group.title);
        out += '\n';
    }
    AppendCalls(out, triage, *group.Calls(), charges);
    AppendOthers(out, triage, group);
    if (group.tooDeep) out += "    ... and further calls, which a stack hasn't room for\n";
}

void AppendTotals(std::string& out, const Triage& triage) {
    out += fmt::format("{:>14} {:>10} {:>9} {:>8} {:>6}", "bytes", "count", "records", "stacks", "new");
    for (const TotalKey key : triage.request.report.by) out += fmt::format("  {:<20}", NameOf(key));
    for (const Total& total : triage.totals) {
        out.erase(out.find_last_not_of(' ') + 1);
        const Tally& tally = total.tally;
        out += fmt::format("\n{:>14} {:>10} {:>9} {:>8} {:>6}", tally.bytes, tally.count, tally.records,
                           tally.stacks, triage.HasBaseline() ? fmt::to_string(tally.newStacks) : "-");
        for (std::size_t i = 0; i < total.keys.size(); ++i) {
            std::string key;
            AppendOneLine(key, total.keys[i].empty() ? nobody[static_cast<int>(triage.request.report.by[i])]
                                                     : total.keys[i]);
            out += fmt::format("  {:<20}", key);
        }
    }
    out.erase(out.find_last_not_of(' ') + 1);
    out += '\n';
}

} // namespace

std::string PlaceOf(const Triage& triage, const StackGroup& group, const std::vector<CallCharge>& charges) {
    reports::ShownParts best;
    for (std::size_t i = 0; i < charges.size(); ++i) {
        const bool charged = charges[i] == CallCharge::Charged;
        if (!charged && best.line > 0) continue;
        const reports::ShownParts parts = reports::PartsOf(*group.Calls()->GetCall(static_cast<int>(i)));
        if (charged || parts.line > 0) best = parts;
        if (charged) break;
    }
    std::string place;
    if (best.path.empty()) {
        AppendOneLine(place, ShownPath(triage.reports[static_cast<std::size_t>(group.report)].path));
        return place + fmt::format(":{}:1", group.line);
    }
    AppendOneLine(place, best.path);
    return best.line > 0 ? place + fmt::format(":{}:1", best.line) : place;
}

std::string SummaryOf(const Triage& triage) {
    std::string text = fmt::format("{}, {}, {} leaked", Counted(triage.model.Records(), "record"),
                                   Counted(static_cast<std::int64_t>(triage.model.Groups().size()), "stack"),
                                   Counted(triage.all.bytes, "byte"));
    if (triage.HasBaseline())
        text += fmt::format("; {} new, {} gone", triage.all.newStacks, triage.gone.size());
    for (const auto& [type, tally] : triage.filtered) {
        text += fmt::format("; {} with {} filtered as ", Counted(tally.stacks, "stack"),
                            Counted(tally.bytes, "byte"));
        AppendOneLine(text, type);
    }
    if (triage.model.TooDeep() > 0)
        text += fmt::format("; {} cut at 20 calls", Counted(triage.model.TooDeep(), "record"));
    return text;
}

void PrintTriageText(const Triage& triage, Console& console) {
    std::string out;
    if (!triage.request.report.by.empty()) {
        AppendTotals(out, triage);
        console.Out(out);
    } else {
        for (const TriageItem& item : triage.items) {
            out.clear();
            AppendItem(out, triage, item);
            console.Out(out);
        }
    }
    console.Out(SummaryOf(triage) + '\n');
}

} // namespace ostraka::tool
