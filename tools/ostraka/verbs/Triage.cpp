#include "verbs/Triage.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <system_error>
#include <unistd.h>

#include "cli/Options.h"
#include "verbs/Verbs.h"

namespace ostraka::tool {

namespace {

using reports::Baseline;
using reports::StackGroup;

// The order of two stacks by their texts, equal calls being one object.
int CompareCalls(Stack& a, Stack& b) {
    for (int i = 0; i < std::min(a.GetSize(), b.GetSize()); ++i) {
        if (a.GetCall(i) == b.GetCall(i)) continue;
        return reports::CompareCallTexts(a.GetCall(i)->GetCall(), b.GetCall(i)->GetCall());
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

bool ReadBaseline(const std::string& path, Baseline& baseline, Run& run) {
    const std::optional<std::string> text = ReadText(path, run);
    const auto fault = text ? baseline.Read(*text) : std::nullopt;
    if (fault) run.Fail(listSort, path, {Place{fault->line, fault->column}, fault->cause});
    return text && !fault;
}

void WriteBaseline(const std::string& path, const Baseline& baseline, Run& run) {
    run.Count(listSort);
    const std::string text = baseline.Text();
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    const bool written = file >= 0 && WriteAll(file, text.data(), text.size());
    const int error = errno;
    if (file >= 0) close(file);
    if (!written)
        run.Fail(listSort, path, {std::nullopt, "cannot write: " + std::generic_category().message(error)});
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

const char* NameOf(CallCharge charge) {
    constexpr const char* names[] = {"charged", "ignored call", "ignored owner", "no framework", "behind"};
    return names[static_cast<int>(charge)];
}

namespace {

void RunTriage(Run& run) {
    const Request& request = run.request;
    reports::ReportModel model;
    // Before the first call is built, or its framework would have no owner for good.
    LoadOwners(run);
    LoadTables(run, model);
    Baseline known;
    Baseline present;
    const std::string& baseline = request.report.baseline;
    const bool baselineRead = baseline.empty() || ReadBaseline(baseline, known, run);
    Triage triage{request, model, ReadReports(run, model), {}, {}, {}, {}, {}, {}};
    Arrange(triage, known, present);
    Print(triage, run.console);
    // What couldn't be read whole is no new baseline.
    const std::string& target = request.report.writeBaseline;
    if (!target.empty() && baselineRead && run.Failed() == 0) WriteBaseline(target, present, run);
    if (CheckFailed(triage)) run.NotFound();
}

// What FILE is for may stand before it.
struct Scope {
    std::string_view prefix;
    bool forErrors;
    bool forLeaks;
};

constexpr Scope scopes[] = {{"errors:", true, false}, {"leaks:", false, true}};

TableFile ParseTableFile(const std::string& word) {
    for (const Scope& scope : scopes)
        if (word.starts_with(scope.prefix))
            return {word.substr(scope.prefix.size()), scope.forErrors, scope.forLeaks};
    return {word};
}

template <std::vector<TableFile> ReportRequest::*tables>
void TakeTable(Request& request, const std::string& word) {
    (request.report.*tables).push_back(ParseTableFile(word));
}

constexpr const char* tableFile = "[errors:|leaks:]FILE";
constexpr const char* failures[] = {"new", "any"};
constexpr const char* totalKeys[] = {"owner", "framework", "type"}; // in the order of TotalKey

constexpr Option operands[] = {
    {"REPORT", nullptr, "Reports, folders of them, or - for standard input", Operand{TakePath, false, true}}};
constexpr Option ownOptions[] = {
    {"--ignore-calls", tableFile, "Charge no call whose function is in FILE",
     Text{TakeTable<&ReportRequest::ignoredCalls>, true}},
    {"--ignore-owners", tableFile, "Charge no call of an owner in FILE",
     Text{TakeTable<&ReportRequest::ignoredOwners>, true}},
    {"--filter", tableFile, "Put aside the stacks that a mask in FILE matches, one TYPE@@@MASK a line",
     Text{TakeTable<&ReportRequest::filters>, true}},
    {"--cut", tableFile, "Of a stack that a mask in FILE matches, keep the calls that it takes",
     Text{TakeTable<&ReportRequest::cuts>, true}},
    {"--depth", "N", "Keep the first N calls of each stack",
     Number{1, reports::CallTexts::most, [](Request& r, int calls) { r.report.depth = calls; }}},
    {"--by", "KEY[,KEY...]",
     "Print totals for each owner, framework or type, or each combination; draw those",
     Word{totalKeys, [](Request& r, std::size_t key) { r.report.by.push_back(static_cast<TotalKey>(key)); },
          true}},
    {"--baseline", "FILE", "Tell what is new since FILE was written",
     Text{[](Request& r, const std::string& file) { r.report.baseline = file; }}},
    {"--write-baseline", "FILE", "Write what is known from now on to FILE",
     Text{[](Request& r, const std::string& file) { r.report.writeBaseline = file; }}},
    {"--new", nullptr, "Print only what is new", Flag{[](Request& r) { r.report.onlyNew = true; }}},
    {"--all", nullptr, "Print also what a filter puts aside", Flag{[](Request& r) { r.report.all = true; }}},
    {"--explain", nullptr, "Print also which call, table and mask decided",
     Flag{[](Request& r) { r.report.explain = true; }}},
    {"--top", "N", "Print the first N stacks or totals",
     Number{1, std::numeric_limits<int>::max(), [](Request& r, int most) { r.report.top = most; }}},
    {"--fail-on", nullptr, "Exit with 1 when there are such stacks, filtered ones aside",
     Word{failures,
          [](Request& r, std::size_t word) { r.report.failOn = word == 0 ? FailOn::New : FailOn::Any; }}}};
constexpr std::span<const Option> options[] = {operands,   reportListOptions, ownerOptions,
                                               ownOptions, limitOptions,      outputOptions};
constexpr Format formats[] = {Format::Text,  Format::Json, Format::JsonLines,
                              Format::Sarif, Format::Html, Format::Dot};

void CheckTriage(Request& request) {
    CheckFiles(request);
    if (!request.report.baseline.empty()) return;
    // Nothing tells what is known: nothing would be new, and a check would pass by mistake.
    if (request.report.failOn == FailOn::New) throw WrongUsage("--fail-on new needs --baseline FILE");
    if (request.report.onlyNew) throw WrongUsage("--new needs --baseline FILE");
}

} // namespace

const Verb triageVerb = {
    "triage",
    "Add up memory reports: equal stacks once, the framework and the owner charged, what is new",
    {"ostraka triage --owners ownership/frameworks.txt reports/nightly.txt",
     "ostraka triage --owners ownership/frameworks.txt --by owner,type reports/nightly.txt",
     "ostraka triage --ignore-calls reports/ignored_calls.txt --filter reports/known.txt --explain "
     "reports/nightly.txt"},
    formats,
    options,
    CheckTriage,
    RunTriage,
    ", or --fail-on failed",
};

} // namespace ostraka::tool
