#include "verbs/Triage.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include "cli/CommandLine.h"
#include "verbs/ReportVerbs.h"

namespace ostraka::tool {

namespace {

using reports::Baseline;
using reports::StackGroup;

// The order of two stacks by their texts, equal calls being one object.
int CompareCalls(Stack& a, Stack& b) {
    for (int i = 0; i < std::min(a.GetSize(), b.GetSize()); ++i) {
        if (a.GetCall(i) == b.GetCall(i)) continue;
        return std::strcmp(a.GetCall(i)->GetCall(), b.GetCall(i)->GetCall());
    }
    return a.GetSize() - b.GetSize();
}

bool Worse(const TriageItem& left, const TriageItem& right) {
    const StackGroup& a = *left.group;
    const StackGroup& b = *right.group;
    if (a.leak != b.leak) return b.leak;
    if (a.bytes != b.bytes) return a.bytes > b.bytes;
    if (a.count != b.count) return a.count > b.count;
    if (const int order = std::strcmp(a.error->GetType(), b.error->GetType()); order != 0) return order < 0;
    if (a.kind != b.kind) return a.kind < b.kind;
    if (const int order = CompareCalls(*a.Calls(), *b.Calls()); order != 0) return order < 0;
    const auto place = [](const StackGroup& group) { return std::pair(group.report, group.line); };
    return place(a) < place(b);
}

std::vector<Total> AddUp(const std::vector<TriageItem>& items, const std::vector<TotalKey>& by) {
    std::map<std::vector<std::string>, Tally> tallies;
    for (const TriageItem& item : items) {
        std::vector<std::string> keys(by.size());
        std::transform(by.begin(), by.end(), keys.begin(), [&](TotalKey key) {
            const char* text = KeyOf(*item.group, *item.group->Calls(), key);
            return text == nullptr ? "" : text;
        });
        tallies[keys].Add(item);
    }
    std::vector<Total> totals;
    totals.reserve(tallies.size());
    for (const auto& [keys, tally] : tallies) totals.push_back({keys, tally});
    std::stable_sort(totals.begin(), totals.end(), [](const Total& a, const Total& b) {
        return std::pair(a.tally.bytes, a.tally.count) > std::pair(b.tally.bytes, b.tally.count);
    });
    return totals;
}

bool ReadBaseline(const std::string& path, Baseline& baseline, Complaints& complaints) {
    const std::optional<std::string> text = ReadText(path, complaints);
    const auto fault = text ? baseline.Read(*text) : std::nullopt;
    if (fault) complaints.Fail(Reading::List, path, {Place{fault->line, fault->column}, fault->cause});
    return text && !fault;
}

void WriteBaseline(const std::string& path, const Baseline& baseline, Complaints& complaints) {
    complaints.Count(Reading::List);
    const std::string text = baseline.Text();
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    const bool written = file >= 0 && WriteAll(file, text.data(), text.size());
    const int error = errno;
    if (file >= 0) close(file);
    if (!written)
        complaints.Fail(Reading::List, path,
                        {std::nullopt, "cannot write: " + std::generic_category().message(error)});
}

// Sorts the groups into what is shown, what a filter took, and the totals; fills `present` for a new
// baseline.
void Arrange(Triage& triage, const Baseline& known, Baseline& present) {
    const ReportRequest& report = triage.request.report;
    const bool wanted = triage.HasBaseline() || !report.writeBaseline.empty();
    for (const StackGroup& group : triage.model.Groups()) {
        const std::string line = wanted ? reports::BaselineLine(group) : std::string();
        if (wanted) present.Add(line);
        const TriageItem item{&group, triage.HasBaseline() && group.filter == nullptr && !known.Has(line)};
        (group.filter ? triage.filtered[group.filter->GetType()] : triage.all).Add(item);
        const bool shown = group.filter == nullptr || report.all || report.explain;
        if (shown && (item.isNew || !report.onlyNew)) triage.items.push_back(item);
    }
    for (const std::string& line : known.Lines())
        if (!present.Has(line)) triage.gone.push_back(line);
    triage.totals = AddUp(triage.items, report.by);
    std::sort(triage.items.begin(), triage.items.end(), Worse);
    const auto top = static_cast<std::size_t>(report.top);
    if (top > 0 && triage.items.size() > top) {
        triage.leftOut = triage.items.size() - top;
        triage.items.resize(top);
    }
    if (top > 0 && triage.totals.size() > top) triage.totals.resize(top);
}

void Print(const Triage& triage, Console& console) {
    switch (triage.request.format) {
    case Format::Text: return PrintTriageText(triage, console);
    case Format::Sarif: return PrintTriageSarif(triage, console);
    case Format::Html: return PrintTriageHtml(triage, console);
    case Format::Dot: return PrintTriageDot(triage, console);
    default: return PrintTriageJson(triage, console);
    }
}

// The option that asks for what is new, where nothing tells what is known: it would find nothing, and a check
// would pass by mistake. Null otherwise.
const char* LacksBaseline(const ReportRequest& report) {
    if (!report.baseline.empty()) return nullptr;
    if (report.failOn == FailOn::New) return "--fail-on new";
    return report.onlyNew ? "--new" : nullptr;
}

bool CheckFailed(const Triage& triage) {
    const FailOn failOn = triage.request.report.failOn;
    return (failOn == FailOn::New && triage.all.newStacks > 0) ||
           (failOn == FailOn::Any && triage.all.stacks > 0);
}

} // namespace

void Tally::Add(const TriageItem& item) {
    ++stacks;
    newStacks += item.isNew ? 1 : 0;
    records = reports::Sum(records, item.group->records);
    count = reports::Sum(count, item.group->count);
    bytes = reports::Sum(bytes, item.group->bytes);
}

const char* NameOf(TotalKey key) {
    constexpr const char* names[] = {"owner", "framework", "type"};
    return names[static_cast<int>(key)];
}

const char* NameOf(reports::Charge charge) {
    constexpr const char* names[] = {"charged", "ignored call", "ignored owner", "no framework", "behind"};
    return names[static_cast<int>(charge)];
}

int RunTriage(const Request& request, Console& console) {
    if (const char* option = LacksBaseline(request.report)) {
        console.Err(
            fmt::format("ostraka: {} needs --baseline FILE\nostraka: see ostraka triage --help\n", option));
        return ExitUsage;
    }
    Complaints complaints(request, console);
    reports::ReportModel model;
    // Before the first call is built, or its framework would have no owner for good.
    LoadOwners(request, complaints);
    LoadTables(request, model, complaints);
    Baseline known;
    Baseline present;
    const std::string& baseline = request.report.baseline;
    const bool baselineRead = baseline.empty() || ReadBaseline(baseline, known, complaints);
    Triage triage{request, model, ReadReports(request, model, console, complaints), {}, {}, {}, {}, {}, {}};
    Arrange(triage, known, present);
    Print(triage, console);
    // What couldn't be read whole is no new baseline.
    const std::string& target = request.report.writeBaseline;
    if (!target.empty() && baselineRead && complaints.Failed() == 0)
        WriteBaseline(target, present, complaints);
    complaints.Close();
    if (complaints.Failed() > 0) return ExitFailed;
    return CheckFailed(triage) ? ExitNotFound : ExitDone;
}

} // namespace ostraka::tool
