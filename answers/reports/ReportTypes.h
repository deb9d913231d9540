#pragma once

// From the words of the reports to the codes of the memory-report model.

#include <string_view>

#include "ReportRecord.h"

namespace ostraka::reports {

// What a bad access met.
enum class Region { Unknown, Null, ZeroPage, Freed, OutOfBlock, Stack, BeyondStack };

// Sets `type` and `leak` from `kind`; for an access, from what it met and whether it wrote.
void SetType(ReportRecord& record, Region region, bool write);

// Null or the zero page for a low address; "0x" may stand before it.
Region RegionOfAddress(std::string_view address);

} // namespace ostraka::reports
