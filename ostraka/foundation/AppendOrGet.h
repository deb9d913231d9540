#pragma once

#include <ostraka/foundation/TAIndexB.h>

namespace ostraka::detail {

// TAIndexB::Append with one search for those who want the value too: `value` becomes the one that the key
// has.
const void* AppendOrGet(TAIndexB& index, const void* key, void*& value);

} // namespace ostraka::detail
