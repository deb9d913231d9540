// A mask is a run of elements that take one call each, then stars that each look for the run of elements
// behind them. The place of such a run is the first or the last one from which the rest of the mask still
// matches, which the mask answers.

#include "MaskTrace.h"

#include <basalt/NUBRawColl.h>
#include <ostraka/memreport/StackMask.h>

namespace ostraka::reports {

namespace {

// The star at or behind `from` that the mask looks for next: a double one only where it stands before a
// single one.
int FirstStar(const StackMask& mask) {
    const int single = mask.HasAStar(0);
    const int twofold = mask.HasADoubleStar(0);
    return twofold >= 0 && (single < 0 || twofold < single) ? twofold : single;
}

int NextStar(const StackMask& mask, int star) {
    const int single = mask.HasAStar(star + 1);
    const int twofold = mask.HasADoubleStar(star + 1);
    return twofold > star + 1 && twofold < single ? twofold : single;
}

void TakeOneEach(int count, int call, std::vector<Taken>& taken) {
    for (int i = 0; i < count; ++i) taken.push_back({call + i, call + i + 1});
}

// Where the elements between `star` and `next`, or the end of the mask, stand; -1 for nowhere.
int PlaceOfRun(const StackMask& mask, int star, int next, Call* const* calls, int from, int size) {
    const int past = next < 0 ? mask.Size() : next;
    const int run = past - star - 1;
    if (run == 0) return from;
    NUBRawCollint found;
    const int places = mask.FindListOfEqual(star + 1, run, calls, from, found, size);
    if (mask.HasADoubleStar(star) != star) return places > 0 ? found[1] : -1;
    for (int i = places; i >= 1; --i)
        if (next < 0 || mask.StackAnalyse(next, mask.Size() - next, calls, found[i] + run, size) >= 0)
            return found[i];
    return -1;
}

} // namespace

std::vector<Taken> TraceMask(const StackMask& mask, Call* const* calls, int size) {
    std::vector<Taken> taken;
    if (mask.MatchMask(calls, size) < 0) return taken;
    int star = FirstStar(mask);
    int call = star < 0 ? mask.Size() : star;
    TakeOneEach(call, 0, taken);
    while (star >= 0) {
        const int next = NextStar(mask, star);
        const int place = PlaceOfRun(mask, star, next, calls, call, size);
        if (place < 0) return {};
        const int run = (next < 0 ? mask.Size() : next) - star - 1;
        taken.push_back({call, place});
        TakeOneEach(run, place, taken);
        call = place + run;
        star = next;
    }
    return taken;
}

} // namespace ostraka::reports
