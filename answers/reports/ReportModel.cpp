// A stack is judged once: filters and cuts look at its calls and at nothing else. Serial numbers of stacks
// are dense, so the judgements lie in an array.

#include "ReportModel.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <limits>
#include <utility>

namespace ostraka::reports {

namespace {

constexpr int stackWords = CallTexts::most;

int CountForLibrary(std::int64_t count) {
    return static_cast<int>(std::clamp<std::int64_t>(count, 0, std::numeric_limits<int>::max()));
}

// The owner, where the library has one.
const char* Known(const char* owner) {
    return owner == nullptr || std::string_view(owner) == "." ? nullptr : owner;
}

void Store(Error* error, bool leak) {
    using Index = TAPIndexContainer;
    Error**& list = leak ? Index::LeaksList : Index::ErrorList;
    int& size = leak ? Index::LeaksListSize : Index::ErrorListSize;
    int& room = leak ? Index::LeaksListMaxSize : Index::ErrorListMaxSize;
    if (size >= room) Index::IncreaseListMaxSize(list, size, room);
    list[size++] = error;
}

} // namespace

std::int64_t Sum(std::int64_t a, std::int64_t b) {
    std::int64_t sum = 0;
    return __builtin_add_overflow(a, b, &sum) ? std::numeric_limits<std::int64_t>::max() : sum;
}

std::vector<Stack*> StackGroup::AllCalls() const {
    std::vector<Stack*> all{Calls()};
    for (const TitledStack& other : others) all.push_back(other.Calls());
    return all;
}

ReportModel::ReportModel()
    : tables{SideTables{TAPIndexContainer::ErrorLongStackIndex,
                        TAPIndexContainer::ErrorMediumStackIndex,
                        TAPIndexContainer::ErrorIgnoredResponsible,
                        TAPIndexContainer::ErrorCallIgnoredResponsible,
                        TAPIndexContainer::ErrorCallStringToJumpOver,
                        TAPIndexContainer::ErrorCallStackFilter,
                        {}},
             SideTables{TAPIndexContainer::LeaksLongStackIndex,
                        TAPIndexContainer::LeaksMediumStackIndex,
                        TAPIndexContainer::LeaksIgnoredResponsible,
                        TAPIndexContainer::LeaksCallIgnoredResponsible,
                        TAPIndexContainer::LeaksCallStringToJumpOver,
                        TAPIndexContainer::LeaksCallStackFilter,
                        {}}} {
    TAPIndexContainer::InitStatic();
}

std::size_t ReportModel::HashKey::operator()(const Key& key) const {
    std::size_t hash = std::hash<const void*>()(key.stack);
    for (const void* part : {key.others, key.filter, static_cast<const void*>(key.type.data())})
        hash = hash * 31 + std::hash<const void*>()(part);
    return hash;
}

void ReportModel::BeginReport(int number) {
    report = number;
    byUnique.clear();
}

Stack* ReportModel::InternStack(Call* const* taken, int size, TAIndexB& index, SideTables& side) {
    std::intptr_t key[stackWords];
    ConvertStackFromCharToBit(key, taken, size);
    if (void* known = index[key]) return static_cast<Stack*>(known);
    return &stacks.emplace_back(nullptr, taken, size, &index, &side.ignoredOwners, &side.ignoredCalls,
                                &side.jumpOver, 0);
}

Stack* ReportModel::Intern(const CallTexts& texts, SideTables& side) {
    TAIndex& index = TAPIndexContainer::LongCallIndex;
    Call* taken[CallTexts::most];
    for (int i = 0; i < texts.Kept(); ++i) {
        taken[i] = static_cast<Call*>(index[texts[i]]);
        if (taken[i] == nullptr) taken[i] = &calls.emplace_back(texts[i], &index);
    }
    return InternStack(taken, texts.Kept(), side.longStacks, side);
}

const ReportModel::Judged& ReportModel::Judge(Stack* stack, SideTables& side) {
    const auto number = static_cast<std::size_t>(stack->GetId());
    if (judged.size() <= number) judged.resize(std::max(number + 1, judged.size() * 2));
    if (judged[number].done) return judged[number];
    Judged verdict{true, nullptr, nullptr};
    // The library puts the entry that was given last first.
    for (int i = side.filter.Size(); i >= 1 && verdict.filter == nullptr; --i)
        if (side.filter[i]->MatchMask(stack->calls, stack->GetSize()) >= 0) verdict.filter = side.filter[i];
    int kept = stack->GetSize();
    for (const auto& cut : side.cuts) {
        const int past = cut->MatchMask(stack->calls, stack->GetSize());
        if (past <= 0) continue;
        kept = past;
        if (past < stack->GetSize()) verdict.cut = cut.get();
        break;
    }
    kept = std::min(kept, depth);
    if (kept < stack->GetSize())
        stack->SetMetaStack(InternStack(stack->calls, kept, side.mediumStacks, side));
    // Interning may have made a number, but the array only grows with the stacks that are judged.
    return judged[number] = verdict;
}

std::vector<TitledStack> ReportModel::StacksOf(const ReportRecord& record, SideTables& side) {
    std::vector<TitledStack> taken;
    taken.push_back({record.others.empty() ? "" : record.title, Intern(record.calls, side)});
    for (const TitledCalls& other : record.others) taken.push_back({other.title, Intern(other.calls, side)});
    const auto rank = [&](const TitledStack& stack) {
        if (Judge(stack.whole, side).filter != nullptr) return 0;
        return stack.Calls()->GetFwResponsible() != nullptr ? 1 : 2;
    };
    const auto first = std::min_element(taken.begin(), taken.end(), [&](const auto& left, const auto& right) {
        return rank(left) < rank(right);
    });
    std::rotate(taken.begin(), first, first + 1);
    return taken;
}

ReportModel::Key ReportModel::KeyOf(const std::vector<TitledStack>& taken, const StackMask* filter,
                                    const std::string& type) {
    Key key{taken.front().Calls(), nullptr, filter, *words.insert(type).first};
    if (taken.size() == 1) return key;
    std::vector<const Stack*> sorted;
    for (const TitledStack& stack : taken) sorted.push_back(stack.Calls());
    std::sort(sorted.begin(), sorted.end(), std::less<>());
    key.stack = sorted.front();
    key.others = &*combinations.insert(std::move(sorted)).first;
    return key;
}

StackGroup& ReportModel::GroupOf(const ReportRecord& record, SideTables& side) {
    std::vector<TitledStack> taken = StacksOf(record, side);
    const TitledStack first = taken.front();
    const Judged verdict = Judge(first.whole, side);
    const auto [place, isNew] = places.try_emplace(KeyOf(taken, verdict.filter, record.type), groups.size());
    if (isNew) {
        StackGroup& group = groups.emplace_back();
        const char* framework = first.Calls()->GetFwResponsible();
        group.error =
            &errors.emplace_back(NUBString(), NUBString(framework), record.type.c_str(), first.whole, 0);
        group.title = first.title;
        group.others.assign(std::next(taken.begin()), taken.end());
        Store(group.error, record.leak);
        group.kind = *words.insert(record.kind).first;
        group.filter = verdict.filter;
        group.cut = verdict.cut;
        group.leak = record.leak;
        group.report = report;
        group.line = record.line;
    }
    return groups[place->second];
}

void ReportModel::Take(const ReportRecord& record) {
    StackGroup& group = GroupOf(record, Tables(record.leak ? Side::Leaks : Side::Errors));
    const bool deep = record.IsTooDeep();
    ++records;
    tooDeep += deep ? 1 : 0;
    group.tooDeep = group.tooDeep || deep;
    group.records = Sum(group.records, 1);
    group.count = Sum(group.count, record.count);
    group.bytes = Sum(group.bytes, record.bytes);
    group.error->count = CountForLibrary(group.count);
    group.Calls()->histo = CountForLibrary(group.records);
    if (!record.leak && record.unique != noNumber)
        byUnique[record.unique] = static_cast<std::size_t>(&group - groups.data());
}

void ReportModel::Recount(std::uint64_t unique, std::int64_t count) {
    const auto known = byUnique.find(unique);
    if (known == byUnique.end() || count < 1) return;
    StackGroup& group = groups[known->second];
    group.count = Sum(group.count, count - 1);
    group.error->count = CountForLibrary(group.count);
    byUnique.erase(known);
}

ShownParts PartsOf(const Call& call) {
    const CallParts parts = call.GetParts();
    return {ShownCall(parts.function), ShownSource(parts.path), parts.line};
}

std::vector<CallCharge> ChargesOf(const Stack& stack, const SideTables& side) {
    std::vector<CallCharge> charges;
    charges.reserve(CallTexts::most);
    for (int i = 0; i < stack.GetSize(); ++i)
        charges.push_back(stack.ChargeOf(i, &side.ignoredOwners, &side.ignoredCalls));
    return charges;
}

std::vector<CallRange> TakenBy(const StackMask& mask, const Stack& stack) {
    std::vector<CallRange> taken(static_cast<std::size_t>(mask.Size()));
    if (mask.MatchMask(stack.calls, stack.GetSize(), taken.data()) < 0) taken.clear();
    return taken;
}

const char* OwnerOf(const Call& call) {
    return Known(call.GetResponsible());
}

const char* OwnerOf(const Stack& stack) {
    return Known(stack.GetResponsible());
}

} // namespace ostraka::reports
