#pragma once

#include <vector>

#include <ostraka/symbols/TAPDefClass.h>
#include <ostraka/symbols/TAPDefSource.h>

// The interfaces that are tied to classes. A class holds a reference on each, and nothing keeps a text from
// tying classes in a circle or in a line of any length.
namespace ostraka::detail {

// To be called before the records of these sources go. Takes out the ties of their classes that lie on a
// circle, since classes that hold each other would never go; all other ties stay, for whoever still holds a
// class. Linear in the ties that lead on from these classes.
void BreakCirclesOfTies(const std::vector<TAPDefSource*>& sources);

// Empties the list and gives back its references, from the last to the first. Costs no machine stack in
// proportion to a line of ties.
void ReleaseTies(NUBListPtrTAPDefClass& tied);

} // namespace ostraka::detail
