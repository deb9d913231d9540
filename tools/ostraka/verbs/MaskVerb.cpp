// A single mask shows the stacks that it matches; a file of masks shows how often each is used.

#include <algorithm>
#include <iterator>
#include <memory>

#include <answers/reports/MaskTrace.h>
#include <fmt/format.h>

#include "cli/CommandLine.h"
#include "formats/ReportJson.h"
#include "formats/Text.h"
#include "verbs/ReportVerbs.h"

namespace ostraka::tool {

namespace {

using reports::StackGroup;
using reports::Taken;

constexpr std::size_t elementWidth = 30;

struct MaskUse {
    std::unique_ptr<StackMask> mask;
    std::int64_t stacks = 0; // that it matches
    std::int64_t records = 0;
    std::int64_t first = 0; // stacks that no mask before it matches
    std::vector<const StackGroup*> matched;
};

std::vector<MaskUse> ReadMasks(const Request& request, Complaints& complaints) {
    const std::string& path = request.report.masks;
    std::vector<MaskUse> uses;
    const std::vector<std::string> lines =
        path.empty() ? std::vector{request.report.mask} : ReadLines(path, complaints);
    for (const std::string& line : lines)
        uses.emplace_back().mask = MakeMask(line, path.empty() ? "MASK" : path, complaints);
    return uses;
}

void Count(const std::vector<StackGroup>& groups, std::vector<MaskUse>& uses) {
    for (const StackGroup& group : groups) {
        Stack& stack = *group.Calls();
        bool taken = false;
        for (MaskUse& use : uses) {
            if (use.mask->MatchMask(stack.calls, stack.GetSize()) < 0) continue;
            ++use.stacks;
            use.records += group.records;
            use.first += taken ? 0 : 1;
            use.matched.push_back(&group);
            taken = true;
        }
    }
}

// The element that took the call, from 0, or -1.
int ElementOf(const std::vector<Taken>& taken, int call) {
    const auto found = std::find_if(taken.begin(), taken.end(), [=](const Taken& range) {
        return range.begin <= call && call < range.past;
    });
    return found == taken.end() ? -1 : static_cast<int>(found - taken.begin());
}

void AppendStack(std::string& out, const Request& request, const StackMask& mask, const StackGroup& group,
                 const std::string& report) {
    Stack& stack = *group.Calls();
    const std::vector<Taken> taken = reports::TraceMask(mask, stack.calls, stack.GetSize());
    std::string path;
    AppendOneLine(path, ShownPath(report));
    out += fmt::format("{}: {} in {}, {} of {} calls taken\n", PlaceText(request, path, {group.line, 1}),
                       Colored(request, colorError, group.error->GetType()), Counted(group.records, "record"),
                       mask.MatchMask(stack.calls, stack.GetSize()), stack.GetSize());
    for (int i = 0; i < stack.GetSize(); ++i) {
        const int element = ElementOf(taken, i);
        std::string shown;
        if (element >= 0) AppendOneLine(shown, reports::ShownCall(mask.GetMaskCall(element)));
        out += fmt::format("  {:>2} {:<{}}  ", element < 0 ? "" : fmt::to_string(element + 1),
                           Shortened(shown, elementWidth), elementWidth);
        AppendOneLine(out, reports::ShownCall(stack.GetCall(i)->GetCall()));
        out += '\n';
    }
}

void PrintUses(const std::vector<MaskUse>& uses, Console& console) {
    console.Out("  stacks  records  as first  mask\n");
    for (const MaskUse& use : uses) {
        std::string line = fmt::format("{:>8} {:>8} {:>9}  ", use.stacks, use.records,
                                       use.stacks == 0 ? "never" : fmt::to_string(use.first));
        if (use.mask->GetType()) AppendOneLine(line, fmt::format("{}@@@", use.mask->GetType()));
        AppendOneLine(line, reports::ShownCall(use.mask->GetStackMask()));
        console.Out(line + '\n');
    }
}

Json UseJson(const MaskUse& use) {
    Json json;
    if (use.mask->GetType()) json["type"] = use.mask->GetType();
    json["mask"] = reports::ShownCall(use.mask->GetStackMask());
    json["elements"] = Json::array();
    for (int i = 0; i < use.mask->Size(); ++i)
        json["elements"].push_back(reports::ShownCall(use.mask->GetMaskCall(i)));
    json["stacks"] = use.stacks;
    json["records"] = use.records;
    json["first"] = use.first;
    return json;
}

Json MatchJson(const StackMask& mask, const StackGroup& group, const std::vector<ReportState>& reports) {
    Stack& stack = *group.Calls();
    Json json{{"type", group.error->GetType()}, {"records", group.records}};
    json["report"] = {{"file", ShownPath(reports[static_cast<std::size_t>(group.report)].path)},
                      {"line", group.line}};
    json["calls"] = CallsJson(stack);
    json["took"] = MaskJson(mask, stack)["took"];
    return json;
}

void PrintJson(const Request& request, const std::vector<MaskUse>& uses,
               const std::vector<ReportState>& reports, Console& console) {
    JsonPrinter printer(request, "mask", console);
    Json masks = Json::array();
    for (const MaskUse& use : uses) masks.push_back(UseJson(use));
    // A file of masks is asked for its use only.
    const bool single = request.report.masks.empty();
    printer.List("stacks", single ? uses.front().matched : std::vector<const StackGroup*>(),
                 [&](const StackGroup* group) { return MatchJson(*uses.front().mask, *group, reports); });
    printer.Close({{"masks", masks}, {"reports", ReportsJson(reports)}});
}

void PrintText(const Request& request, const std::vector<MaskUse>& uses,
               const std::vector<ReportState>& reports, Console& console) {
    if (!request.report.masks.empty()) return PrintUses(uses, console);
    for (const StackGroup* group : uses.front().matched) {
        std::string out;
        AppendStack(out, request, *uses.front().mask, *group,
                    reports[static_cast<std::size_t>(group->report)].path);
        console.Out(out);
    }
}

} // namespace

int RunMask(const Request& request, Console& console) {
    Complaints complaints(request, console);
    reports::ReportModel model;
    std::vector<MaskUse> uses = ReadMasks(request, complaints);
    const std::vector<ReportState> reports = ReadReports(request, model, console, complaints);
    Count(model.Groups(), uses);
    if (request.format == Format::Text)
        PrintText(request, uses, reports, console);
    else
        PrintJson(request, uses, reports, console);
    complaints.Close();
    if (complaints.Failed() > 0) return ExitFailed;
    return std::any_of(uses.begin(), uses.end(), [](const MaskUse& use) { return use.stacks > 0; })
               ? ExitDone
               : ExitNotFound;
}

} // namespace ostraka::tool
