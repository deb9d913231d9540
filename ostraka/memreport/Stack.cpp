// A stack that an index has already is charged like a new one, since the tables of this time decide.

#include <ostraka/memreport/Stack.h>

#include <algorithm>
#include <cstring>
#include <string_view>

#include <ostraka/foundation/AppendOrGet.h>
#include <ostraka/foundation/Fatal.h>
#include <ostraka/memreport/CallText.h>
#include <ostraka/memreport/TAPIndexContainer.h>

namespace {

constexpr int most = 20;

struct Key {
    std::intptr_t words[most];

    Key(Call* const* calls, int n) { ConvertStackFromCharToBit(words, calls, n); }
};

bool Holds(const TAIndex* table, std::string_view text) {
    if (table == nullptr || table->size == 0) return false;
    return table->Holds(text.data(), static_cast<int>(text.size()));
}

bool IsIgnoredCall(const Call& call, const TAIndex* ignoredCalls) {
    return ignoredCalls != nullptr && ignoredCalls->size > 0 &&
           Holds(ignoredCalls, ostraka::detail::ShortCallOf(call.GetCall()));
}

// Why a call can't be charged, leaving its text aside; else `Charged`.
CallCharge ChargeOfFramework(const Call& call, const TAIndex* ignoredResponsibles) {
    const char* responsible = call.GetResponsible();
    if (responsible == nullptr) return CallCharge::NoFramework;
    return Holds(ignoredResponsibles, responsible) ? CallCharge::IgnoredResponsible : CallCharge::Charged;
}

} // namespace

int ConvertStackFromCharToBit(std::intptr_t* key, Call* const* calls, int n) {
    std::fill_n(key, most, 0);
    for (int i = 0; i < std::min(n, most); ++i) key[i] = reinterpret_cast<std::intptr_t>(calls[i]->GetCall());
    return 0;
}

int ConvertStackFromCharToBit(int* key, Call* const* calls, int n) {
    const Key made(calls, n);
    std::memcpy(key, made.words, sizeof made.words);
    return 0;
}

int Stack::globalId = 0;

Stack::Stack(const char* text, Call* const* callsGiven, int n, TAIndexStack* index,
             TAIndex* ignoredResponsibles, TAIndex* ignoredCalls, NUBListValNUBString* jumpStrings,
             int start) {
    TakeCalls(callsGiven, n);
    const int before = index->size;
    stack = index->Append(text, this, 0);
    index->size > before ? TakeNewId() : TakeIdOf((*index)[text]);
    BuildResponsible(ignoredResponsibles, ignoredCalls, jumpStrings, start);
}

Stack::Stack(const char*, Call* const* callsGiven, int n, TAIndexBStack* index, TAIndex* ignoredResponsibles,
             TAIndex* ignoredCalls, NUBListValNUBString* jumpStrings, int start) {
    TakeCalls(callsGiven, n);
    const Key key(calls, size);
    // Read after the search for the key, which is long enough for them to arrive.
    for (int i = 0; i < std::min(size, 2); ++i) __builtin_prefetch(calls[i]->GetCall());
    void* named = this;
    const int before = index->size;
    bitStack = static_cast<const int*>(ostraka::detail::AppendOrGet(*index, key.words, named));
    index->size > before ? TakeNewId() : TakeIdOf(named);
    BuildResponsible(ignoredResponsibles, ignoredCalls, jumpStrings, start);
}

void Stack::TakeCalls(Call* const* callsGiven, int n) {
    size = std::clamp(n, 0, most);
    toExtend = std::max(n, 0);
    std::copy_n(callsGiven, size, calls);
}

void Stack::TakeIdOf(const void* named) {
    if (named != nullptr) id = static_cast<const Stack*>(named)->id;
}

// A call that has been found settles the matter, so that the search ends there. Its text, whose search costs
// most, is looked at last.
int Stack::BuildResponsible(const TAIndex* ignoredResponsibles, const TAIndex* ignoredCalls,
                            const NUBListValNUBString*, int start) {
    const int first = std::max(start, 0);
    for (int i = first; i < size; ++i) {
        if (ChargeOfFramework(*calls[i], ignoredResponsibles) != CallCharge::Charged ||
            IsIgnoredCall(*calls[i], ignoredCalls))
            continue;
        fwResponsible = calls[i]->GetFwResponsible();
        chargedCall = i;
        return 0;
    }
    return first <= size && fwResponsible == nullptr;
}

CallCharge Stack::ChargeOf(int i, const TAIndex* ignoredResponsibles, const TAIndex* ignoredCalls) const {
    if (IsIgnoredCall(*calls[i], ignoredCalls)) return CallCharge::IgnoredCall;
    const CallCharge charge = ChargeOfFramework(*calls[i], ignoredResponsibles);
    return charge == CallCharge::Charged && i != chargedCall ? CallCharge::Behind : charge;
}

int Stack::Resize(int first, int last, TAIndexB* index, TAIndex* ignoredResponsibles, TAIndex* ignoredCalls,
                  NUBListValNUBString* jumpStrings) {
    if (bitStack == nullptr || first < 0 || last >= size || last < first - 1) return 1;
    const Key former(calls, size);
    size = last - first + 1;
    std::copy_n(calls + first, size, calls);
    chargedCall = -1;
    const Key present(calls, size);

    const int position = index->IsIn(former.words);
    FATAL(position < 0, "Trying to resize a stack not in index !?!?!?!");
    index->RemovePosition(position);
    bitStack = static_cast<const int*>(index->Append(present.words, this));
    BuildResponsible(ignoredResponsibles, ignoredCalls, jumpStrings, -2);
    return 0;
}

NUBString Stack::GetStack(int) const {
    if (stack != nullptr) return stack;
    NUBString text;
    if (bitStack == nullptr) return text;
    const void* key = bitStack;
    const auto* words = static_cast<const std::intptr_t*>(key);
    for (int i = 0; i < most && words[i] != 0; ++i) {
        if (i > 0) text += "!";
        text += reinterpret_cast<const char*>(words[i]);
    }
    return text;
}

const char* Stack::GetResponsible() const {
    if (fwResponsible == nullptr) return nullptr;
    return static_cast<const char*>(TAPIndexContainer::respForFwIndex[fwResponsible]);
}

Call* Stack::GetFirstKetchCall() const {
    Call* const* past = calls + size;
    Call* const* found =
        std::find_if(calls, past, [](const Call* call) { return call->GetFwResponsible() != nullptr; });
    return found != past ? *found : nullptr;
}

int Stack::HasCall(const Call* call) const {
    int i = size - 1;
    while (i >= 0 && !calls[i]->IsEqual(call)) --i;
    return i;
}

int Stack::SetId(int newId) {
    id = newId;
    if (globalId <= newId) globalId = newId + 1;
    return 0;
}
