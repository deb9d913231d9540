#pragma once

// What `triage` found, ready to be shown: equal reports once, the worst first, totals, and what is new.

#include <map>
#include <string>
#include <vector>

#include <answers/reports/Baseline.h>
#include <answers/reports/ReportModel.h>

#include "cli/Run.h"
#include "formats/ReportJson.h"
#include "verbs/ReportInputs.h"

namespace ostraka::tool {

struct TriageItem {
    const reports::StackGroup* group;
    bool isNew; // of a run with a baseline
};

struct Tally {
    std::int64_t stacks = 0;
    std::int64_t newStacks = 0;
    std::int64_t records = 0;
    std::int64_t count = 0;
    std::int64_t bytes = 0;

    void Add(const TriageItem& item);
};

struct Total {
    std::vector<std::string> keys; // in the order of the request; empty where nobody is known
    Tally tally;
};

struct Triage {
    const Request& request;
    reports::ReportModel& model;
    std::vector<ReportState> reports;
    std::vector<TriageItem> items; // to be shown: errors first, then leaks by their bytes
    std::size_t leftOut = 0;       // of those, by `--top`
    std::vector<Total> totals;
    Tally all;                             // without what a filter took
    std::map<std::string, Tally> filtered; // by the type of the filter
    std::vector<std::string> gone;         // lines of the baseline that stand for no stack any more

    bool HasBaseline() const { return !request.report.baseline.empty(); }
    // The tables that decided over the group.
    reports::SideTables& TablesOf(const reports::StackGroup& group) const {
        return model.Tables(group.leak ? reports::Side::Leaks : reports::Side::Errors);
    }
};

// What a stack of the group, or one of its calls, is counted under; null where nobody is known.
template <class Charged>
const char* KeyOf(const reports::StackGroup& group, const Charged& charged, TotalKey key) {
    switch (key) {
    case TotalKey::Owner: return reports::OwnerOf(charged);
    case TotalKey::Framework: return charged.GetFwResponsible();
    case TotalKey::Type: break;
    }
    return group.error->GetType();
}

// What is printed where nobody is known, by key.
constexpr const char* nobody[] = {"no owner", "no framework", ""};

// "owner", "framework" and so on, as the command line and JSON name it.
const char* NameOf(TotalKey key);

// "5 records, 4 stacks, 5224 bytes leaked", and what a baseline and filters say to that.
std::string SummaryOf(const Triage& triage);

// "/w/FwA/M.m/src/a.cpp:12:1" of the call that is charged, without numbers where its line isn't known; or
// else of the first call with a line; or else of the report.
std::string PlaceOf(const Triage& triage, const reports::StackGroup& group,
                    const std::vector<CallCharge>& charges);

// What is told of a stack besides its calls, and of a further stack of the same record, as members of an open
// object.
void FactMembers(JsonWriter& json, const Triage& triage, const TriageItem& item);
void OtherMembers(JsonWriter& json, const reports::TitledStack& other);

// "charged", "ignored call" and so on.
const char* NameOf(CallCharge charge);

void PrintTriageText(const Triage& triage, Console& console);
void PrintTriageJson(const Triage& triage, Console& console);
void PrintTriageSarif(const Triage& triage, Console& console);
void PrintTriageHtml(const Triage& triage, Console& console);
void PrintTriageDot(const Triage& triage, Console& console);

} // namespace ostraka::tool
