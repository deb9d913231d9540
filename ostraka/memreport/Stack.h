#pragma once

// A call stack of a memory report, of at most 20 calls, and the framework that is charged for it.
//
// A stack is entered in an index under its calls or under a text, so that equal stacks have one key: the key
// of its calls is 20 words, the addresses of their texts and zeros behind. Whoever reads the reports builds
// the stacks, owns them, and keeps them while an index names them. The keys belong to the index, the calls to
// whoever built them, and the framework's name to `TAPIndexContainer::respForFwIndex`.

#include <cstdint>

#include <basalt/NUBListValNUBString.h>
#include <basalt/NUBString.h>
#include <ostraka/Export.h>
#include <ostraka/foundation/TAIndex.h>
#include <ostraka/foundation/TAIndexB.h>
#include <ostraka/foundation/TypedLists.h>
#include <ostraka/memreport/Call.h>

class Stack;

// Indexes whose values are `Stack*`.
using TAIndexStack = TAIndex;
using TAIndexBStack = TAIndexB;
using NUBListPtrStack = ostraka::detail::PointerList<Stack>;

// Fills the 20 words at `key` with the key of the first `n` calls; returns 0. Further calls than 20 are left
// out.
OSTRAKA_EXPORT int ConvertStackFromCharToBit(std::intptr_t* key, Call* const* calls, int n);
// `key` is the address of 20 words as above.
OSTRAKA_EXPORT int ConvertStackFromCharToBit(int* key, Call* const* calls, int n);

// What a call has to do with who is charged for its stack.
enum class CallCharge {
    Charged,            // it decided
    IgnoredCall,        // its short text is in the table of ignored calls
    IgnoredResponsible, // its responsible is in the table of those
    NoFramework,        // nobody is responsible for it
    Behind,             // it would be charged, but another one decided
};

class OSTRAKA_EXPORT Stack {
public:
    const char* fwResponsible = nullptr; // null when nobody is charged
    const char* stack = nullptr;         // the key of a stack keyed by text, else null
    const int* bitStack = nullptr;       // the 20 words of a stack keyed by its calls, else null
    int size = 0;
    int toExtend = 0;           // for the callers; at first the number of calls given, those cut off included
    Stack* metaStack = nullptr; // the next shorter form, or null
    int id = 0;
    int histo = 1;        // occurrences, counted by the callers
    int entranceDate = 0; // for the callers
    Call* calls[20] = {};
    int chargedCall = -1; // position of the call that `fwResponsible` comes from, -1 while there is none

    // The highest id so far. The first stack of a process has 1.
    static int globalId;

    // Enter the stack under `text`, respectively under its calls, and find whom to charge. The index goes on
    // naming an earlier stack of that key, from which the id is read, so that it has to be there still;
    // otherwise the id is new. Of more than 20 calls the first 20 are kept. The two ignore tables and `start`
    // are those of `BuildResponsible`.
    Stack(const char* text, Call* const* calls, int n, TAIndexStack* index, TAIndex* ignoredResponsibles,
          TAIndex* ignoredCalls, NUBListValNUBString* jumpStrings, int start);
    Stack(const char* text, Call* const* calls, int n, TAIndexBStack* index, TAIndex* ignoredResponsibles,
          TAIndex* ignoredCalls, NUBListValNUBString* jumpStrings, int start);

    // Charges the first call from `start` on (0 for a negative one) that has a framework and a responsible,
    // "." counted as one, but for calls whose short text is in `ignoredCalls` or whose responsible is in
    // `ignoredResponsibles`. Null for a table is an empty one; `jumpStrings` isn't consulted. When there is
    // none, `fwResponsible` stays as it was. 1 when it is null afterwards, else 0; 0 also for a `start`
    // behind the stack.
    int BuildResponsible(const TAIndex* ignoredResponsibles, const TAIndex* ignoredCalls,
                         const NUBListValNUBString* jumpStrings, int start);

    // Why the call at position `i` from 0 is charged or not, by the tables that the framework was found with.
    CallCharge ChargeOf(int i, const TAIndex* ignoredResponsibles, const TAIndex* ignoredCalls) const;

    // Cuts a stack keyed by its calls down to those at `first` to `last`, both included, and enters it anew
    // in `index`, where it has to be: FATAL otherwise. The entry under its former key goes, whoever it names.
    // Charges as above from position 0. 0; 1, and no change, for a stack keyed by text and for positions that
    // the stack doesn't have.
    int Resize(int first, int last, TAIndexB* index, TAIndex* ignoredResponsibles, TAIndex* ignoredCalls,
               NUBListValNUBString* jumpStrings);

    int GetSize() const { return size; }
    // From 0, unchecked.
    Call* GetCall(int i) const { return calls[i]; }
    // The text key, or null.
    const char* GetStack() const { return stack; }
    // The text key, else the calls of the other key joined by "!". The argument has no effect.
    NUBString GetStack(int ignored) const;

    const char* GetFwResponsible() const { return fwResponsible; }
    // Who is responsible for the framework charged; null without one, or when the index doesn't have it.
    const char* GetResponsible() const;
    // The first call with a framework, or null.
    Call* GetFirstKetchCall() const;
    // The highest position of a call equal to this one, or -1.
    int HasCall(const Call* call) const;

    int GetId() const { return id; }
    // Later stacks get greater ids than this one. Returns 0.
    int SetId(int newId);
    int GetHisto() const { return histo; }
    int GetEntranceDate() const { return entranceDate; }
    int GetToExtend() const { return toExtend; }
    void SetToExtend(int number) { toExtend = number; }
    Stack* GetMetaStack() const { return metaStack; }
    // Returns 0.
    int SetMetaStack(Stack* shorter) {
        metaStack = shorter;
        return 0;
    }

private:
    void TakeCalls(Call* const* callsGiven, int n);
    // The next one, for a key that is new in the index.
    void TakeNewId() { id = ++globalId; }
    // That of the stack which the index names for the key, or none for null.
    void TakeIdOf(const void* named);
};
