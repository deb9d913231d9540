#pragma once

#include <ostraka/objects/TAPObject.h>

// What objects and attributes let go of: each of these gives back what it is handed, and all that goes with
// it. A destructor that runs meanwhile and lets go of more finds that gone when it goes on, unless too many
// of them stand above each other on the machine stack; then it goes right behind that destructor.
namespace ostraka::detail {

// Of an attribute that dies.
void ReleaseContent(TAPAttr& attr);

// Of an object that dies, in this order.
void ReleaseAttributesAndPath(TAIndex& attributes, TAPPath* path);

} // namespace ostraka::detail
