// A single mask shows the stacks that it matches; a file of masks shows how often each is used.

#include <algorithm>
#include <iterator>
#include <memory>

#include <fmt/format.h>

#include "cli/Options.h"
#include "formats/ReportJson.h"
#include "formats/Text.h"
#include "verbs/ReportInputs.h"
#include "verbs/Verbs.h"

namespace ostraka::tool {

namespace {

using reports::StackGroup;

constexpr std::size_t elementWidth = 30;

struct Match {
    const StackGroup* group;
    Stack* stack; // one of its stacks
};

struct MaskUse {
    std::unique_ptr<StackMask> mask;
    std::int64_t stacks = 0; // that it matches
    std::int64_t records = 0;
    std::int64_t first = 0; // stacks that no mask before it matches
    std::vector<Match> matches;
};

std::vector<MaskUse> ReadMasks(Run& run) {
    const std::string& path = run.request.report.masks;
    std::vector<MaskUse> uses;
    const std::vector<std::string> lines =
        path.empty() ? std::vector{run.request.report.mask} : ReadLines(path, run);
    for (const std::string& line : lines)
        uses.emplace_back().mask = MakeMask(line, path.empty() ? "MASK" : path, run);
    return uses;
}

void CountStack(const StackGroup& group, Stack& stack, std::vector<MaskUse>& uses) {
    bool taken = false;
    for (MaskUse& use : uses) {
        if (use.mask->MatchMask(stack.calls, stack.GetSize()) < 0) continue;
        const bool isNext = use.matches.empty() || use.matches.back().group != &group;
        ++use.stacks;
        use.records += isNext ? group.records : 0;
        use.first += taken ? 0 : 1;
        use.matches.push_back({&group, &stack});
        taken = true;
    }
}

void Count(const std::vector<StackGroup>& groups, std::vector<MaskUse>& uses) {
    for (const StackGroup& group : groups)
        for (Stack* stack : group.AllCalls()) CountStack(group, *stack, uses);
}

// The element that took the call, from 0, or -1.
int ElementOf(const std::vector<CallRange>& taken, int call) {
    const auto found = std::find_if(taken.begin(), taken.end(), [=](const CallRange& range) {
        return range.begin <= call && call < range.past;
    });
    return found == taken.end() ? -1 : static_cast<int>(found - taken.begin());
}

void AppendStack(std::string& out, const Request& request, const StackMask& mask, const Match& match,
                 const std::string& report) {
    const StackGroup& group = *match.group;
    Stack& stack = *match.stack;
    const std::vector<CallRange> taken = reports::TakenBy(mask, stack);
    std::string path;
    AppendOneLine(path, ShownPath(report));
    out += fmt::format("{}: {} in {}, {} of {} calls taken\n", PlaceText(request, path, {group.line, 1}),
                       Colored(request, colorError, group.error->GetType()), Counted(group.records, "record"),
                       taken.back().past, stack.GetSize());
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

void UseJson(JsonWriter& json, const MaskUse& use) {
    json.BeginObject();
    if (use.mask->GetType() != nullptr) json.Member("type", use.mask->GetType());
    json.Member("mask", reports::ShownCall(use.mask->GetStackMask()));
    json.Key("elements");
    json.BeginList();
    for (int i = 0; i < use.mask->Size(); ++i) json.Value(reports::ShownCall(use.mask->GetMaskCall(i)));
    json.EndList();
    json.Member("stacks", use.stacks);
    json.Member("records", use.records);
    json.Member("first", use.first);
    json.EndObject();
}

void MatchJson(JsonWriter& json, const StackMask& mask, const Match& match,
               const std::vector<ReportState>& reports) {
    Stack& stack = *match.stack;
    json.BeginObject();
    json.Member("type", match.group->error->GetType());
    json.Member("records", match.group->records);
    ReportMember(json, reports, *match.group);
    json.Key("calls");
    json.BeginList();
    for (int i = 0; i < stack.GetSize(); ++i) {
        json.BeginObject();
        CallMembers(json, *stack.GetCall(i));
        json.EndObject();
    }
    json.EndList();
    TookMember(json, mask, stack);
    json.EndObject();
}

void PrintJson(const Request& request, const std::vector<MaskUse>& uses,
               const std::vector<ReportState>& reports, Console& console) {
    JsonAnswer answer(request, [&](std::string_view piece) { console.Out(piece); });
    // A file of masks is asked for its use only.
    const bool single = request.report.masks.empty();
    answer.List(
        "stacks", single ? uses.front().matches : std::vector<Match>(), true,
        [&](JsonWriter& json, const Match& match) { MatchJson(json, *uses.front().mask, match, reports); });
    answer.Close([&](JsonWriter& json) {
        json.List("masks", uses, [&](const MaskUse& use) { UseJson(json, use); });
        ReportsMember(json, reports);
    });
}

void PrintText(const Request& request, const std::vector<MaskUse>& uses,
               const std::vector<ReportState>& reports, Console& console) {
    if (!request.report.masks.empty()) return PrintUses(uses, console);
    for (const Match& match : uses.front().matches) {
        std::string out;
        AppendStack(out, request, *uses.front().mask, match,
                    reports[static_cast<std::size_t>(match.group->report)].path);
        console.Out(out);
    }
}

void RunMask(Run& run) {
    const Request& request = run.request;
    reports::ReportModel model;
    std::vector<MaskUse> uses = ReadMasks(run);
    const std::vector<ReportState> reports = ReadReports(run, model);
    Count(model.Groups(), uses);
    if (request.format == Format::Text)
        PrintText(request, uses, reports, run.console);
    else
        PrintJson(request, uses, reports, run.console);
    if (std::none_of(uses.begin(), uses.end(), [](const MaskUse& use) { return use.stacks > 0; }))
        run.NotFound();
}

// The mask stands where others take files, unless masks come from a file.
void TakeMask(Request& request) {
    if (request.report.masks.empty()) {
        if (request.paths.empty()) throw WrongUsage("mask needs a mask, or a file with --masks");
        request.report.mask = request.paths.front();
        request.paths.erase(request.paths.begin());
    }
    CheckFiles(request);
}

constexpr Option operands[] = {{"MASK REPORT", nullptr,
                                "A mask, such as '@!Foo::Bar(@!@@!main@', and reports",
                                Operand{TakePath, false, true}}};
constexpr Option ownOptions[] = {{"--masks", "FILE",
                                  "Count how often each mask of FILE is used, and take no MASK",
                                  Text{[](Request& r, const std::string& file) { r.report.masks = file; }}}};
constexpr std::span<const Option> options[] = {operands, reportListOptions, ownOptions, outputOptions};

} // namespace

const Verb maskVerb = {
    "mask",
    "Tell which stacks of memory reports a mask matches, and which call each of its elements took",
    {"ostraka mask '@!Berth::Berth(@!@@!main@' reports/nightly.txt",
     "ostraka mask --format json '@!Ship::Accept(@' reports/nightly.txt",
     "ostraka mask --masks reports/known.txt reports/nightly.txt"},
    listFormats,
    options,
    TakeMask,
    RunMask,
};

} // namespace ostraka::tool
