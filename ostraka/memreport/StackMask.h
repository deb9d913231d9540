#pragma once

// A pattern over the calls of a stack: elements separated by "!", which are matched in order from the first
// call on and needn't reach the last one.
//
//     .        any one call
//     @        a star: any run of calls, none included; the first place that fits is taken
//     @@       a double star: the same, but the last place that fits is taken
//     others   one call whose text `strMatch` matches, where "@" stands for any run of characters
//
// "main!@!free@" matches a stack that begins with main and frees something later. A star counts as the next
// one behind another star if it is single; a double one does if it isn't directly behind and a single one
// follows it. A double star that doesn't count is an element that matches any one call.
//
// A mask owns its texts, and `_typeIndex` the types. A mask of more than 20 elements has size 0 and matches
// nothing.

#include <basalt/NUBRawColl.h>
#include <ostraka/Export.h>
#include <ostraka/foundation/TAIndex.h>
#include <ostraka/foundation/TypedLists.h>

class Call;
class StackMask;

using NUBListPtrStackMask = ostraka::detail::PointerList<StackMask>;

// 1 when `text` matches `pattern`, else 0. What stands between two "@" is taken at its first place behind
// what came before, without going back: "@b" doesn't match "bb", though it matches "ab". Linear in both.
OSTRAKA_EXPORT int strMatch(const char* pattern, const char* text);

// Calls of a stack, from 0: those from `begin` up to but not including `past`.
struct CallRange {
    int begin = 0;
    int past = 0;
};

class OSTRAKA_EXPORT StackMask {
public:
    char* maskCalls[20] = {}; // the elements, in one copy of the mask
    int size = 0;             // number of elements
    char* stackMask;          // the whole mask
    const char* type;         // held by `_typeIndex`, or null

    // Each type once; null values.
    static TAIndex _typeIndex;

    // `maskType` may be null.
    StackMask(const char* mask, const char* maskType);
    StackMask(const StackMask&) = delete;
    StackMask& operator=(const StackMask&) = delete;
    ~StackMask();

    // The position behind the last call that the mask takes of the stack of `n` calls, so 0 for a match that
    // takes none; or -1. Costs at most two tries of each element on each call.
    int MatchMask(Call* const* calls, int n) const;
    // The same; of a match each of the `Size()` entries at `taken` tells the calls that its element took.
    // Those of a star that takes none are empty, at the place of the next call. Otherwise `taken` is left
    // alone.
    int MatchMask(Call* const* calls, int n, CallRange* taken) const;

    int Size() const { return size; }
    char* GetStackMask() const { return stackMask; }
    // From 0; null for an element that the mask doesn't have.
    char* GetMaskCall(int i) const { return i < 0 || i >= size ? nullptr : maskCalls[i]; }
    const char* GetType() const { return type; }

    // Position of the first star, respectively double star, at or behind `from`, or -1.
    int HasAStar(int from) const;
    int HasADoubleStar(int from) const;

    // 1 when the `length` elements from `maskPos` on match the calls from `callPos` on one to one, else -1.
    // Stars are elements here.
    int AreEqual(int maskPos, int length, Call* const* calls, int callPos, int n) const;
    // The positions from `callPos` on where `AreEqual` is 1, in rising order, replace the content of `found`.
    // Returns their number.
    int FindListOfEqual(int maskPos, int length, Call* const* calls, int callPos, NUBRawCollint& found,
                        int n) const;
    // `MatchMask` for the last `length` elements, from `maskPos` on, and the calls from `callPos` on.
    int StackAnalyse(int maskPos, int length, Call* const* calls, int callPos, int n) const;
};
