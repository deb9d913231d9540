#pragma once

// Which call each element of a mask took, found by asking the mask itself.

#include <vector>

class Call;
class StackMask;

namespace ostraka::reports {

// Calls from `begin` up to but not including `past`; both are the same for a star that took none.
struct Taken {
    int begin = 0;
    int past = 0;
};

// One entry for each element of a mask that matches; none for one that doesn't.
std::vector<Taken> TraceMask(const StackMask& mask, Call* const* calls, int size);

} // namespace ostraka::reports
