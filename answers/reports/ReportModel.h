#pragma once

// The reports of a run in the library's memory-report model: each call and each stack once, the framework
// charged for it, filters applied, and equal reports added up.
//
// The library keeps the model for the whole process, so there is one `ReportModel` in it. It owns the calls,
// stacks and errors, which the library's indexes go on naming, so that nobody reads those after it.

#include <array>
#include <cstdint>
#include <deque>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include <ostraka/memreport/Error.h>
#include <ostraka/memreport/Stack.h>
#include <ostraka/memreport/StackMask.h>
#include <ostraka/memreport/TAPIndexContainer.h>

#include "ReportRecord.h"

namespace ostraka::reports {

// What the library keeps apart for errors and for leaks.
enum class Side { Errors, Leaks };

// The tables of a side, in the library and here.
struct SideTables {
    TAIndexB& longStacks;
    TAIndexB& mediumStacks;
    TAIndex& ignoredOwners;
    TAIndex& ignoredCalls; // short call texts
    NUBListValNUBString& jumpOver;
    NUBListPtrStackMask& filter; // the entry that was given last stands first
    std::vector<std::unique_ptr<StackMask>> cuts;
};

// Of numbers that reports tell, none of which is negative; at most the greatest there is.
std::int64_t Sum(std::int64_t a, std::int64_t b);

// A stack of a record that has several, with what the report calls it.
struct TitledStack {
    std::string title; // empty where there is only one
    Stack* whole = nullptr;

    // The calls that count: the medium stack where there is one.
    Stack* Calls() const { return whole->GetMetaStack() ? whole->GetMetaStack() : whole; }
};

// Reports that tell the same: of one type, with the same calls, and treated by the same filter. Where several
// stacks took part, in whatever order, the first is that which a filter took, or else one that charges
// somebody.
struct StackGroup {
    Error* error = nullptr; // its long stack is the first one
    std::string title;
    std::vector<TitledStack> others;
    std::string_view kind; // of the first
    const StackMask* filter = nullptr;
    const StackMask* cut = nullptr; // why there is a medium stack, if a mask is the reason
    bool leak = false;
    bool tooDeep = false; // the report told more calls than a stack holds
    std::int64_t records = 0;
    std::int64_t count = 0;
    std::int64_t bytes = 0;
    int report = 0; // where the first one stands
    int line = 0;

    // The calls of the first stack that count, and those of all.
    Stack* Calls() const { return error->GetMediumStack() ? error->GetMediumStack() : error->GetLongStack(); }
    std::vector<Stack*> AllCalls() const;
};

class ReportModel : public RecordTaker {
public:
    ReportModel();

    SideTables& Tables(Side side) { return tables[static_cast<std::size_t>(side)]; }

    // Only the first calls of a stack count.
    void LimitDepth(int most) { depth = most; }

    // The records that follow stand in this report.
    void BeginReport(int number);
    void Take(const ReportRecord& record) override;
    void Recount(std::uint64_t unique, std::int64_t count) override;

    const std::vector<StackGroup>& Groups() const { return groups; }
    std::int64_t Records() const { return records; }
    std::int64_t TooDeep() const { return tooDeep; }

private:
    struct Judged {
        bool done = false;
        const StackMask* filter = nullptr;
        const StackMask* cut = nullptr;
    };
    struct Key {
        const Stack* stack;
        const void* others; // in `combinations`, or null for a single stack
        const void* filter;
        std::string_view type; // held by `words`
        bool operator==(const Key&) const = default;
    };
    struct HashKey {
        std::size_t operator()(const Key& key) const;
    };

    Stack* Intern(const CallTexts& texts, SideTables& side);
    Stack* InternStack(Call* const* taken, int size, TAIndexB& index, SideTables& side);
    const Judged& Judge(Stack* stack, SideTables& side);
    std::vector<TitledStack> StacksOf(const ReportRecord& record, SideTables& side);
    Key KeyOf(const std::vector<TitledStack>& taken, const StackMask* filter, const std::string& type);
    StackGroup& GroupOf(const ReportRecord& record, SideTables& side);

    std::array<SideTables, 2> tables;
    int depth = CallTexts::most;
    int report = 0;
    std::int64_t records = 0;
    std::int64_t tooDeep = 0;
    std::deque<Call> calls;
    std::deque<Stack> stacks;
    std::deque<Error> errors;
    std::vector<Judged> judged;                       // by the serial number of the stack
    std::unordered_set<std::string> words;            // types and kinds
    std::set<std::vector<const Stack*>> combinations; // of stacks that took part in one record
    std::unordered_map<Key, std::size_t, HashKey> places;
    std::unordered_map<std::uint64_t, std::size_t> byUnique; // of the present report
    std::vector<StackGroup> groups;
};

// The parts of a call as a person reads them; a line of 0 is unknown.
struct ShownParts {
    std::string function;
    std::string_view path;
    int line = 0;
};
ShownParts PartsOf(const Call& call);

// Of each call, why it is charged or not.
std::vector<CallCharge> ChargesOf(const Stack& stack, const SideTables& side);

// Of each element of a mask that matches, the calls that it took; none for one that doesn't.
std::vector<CallRange> TakenBy(const StackMask& mask, const Stack& stack);

// The owner of the framework of a call, or of that charged for a stack; null when there is none or it isn't
// known.
const char* OwnerOf(const Call& call);
const char* OwnerOf(const Stack& stack);

} // namespace ostraka::reports
