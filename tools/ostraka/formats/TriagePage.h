#pragma once

// The page of `triage --format html`, from page/triage.html.

#include <string_view>

namespace ostraka::tool {

extern const std::string_view triagePage;

} // namespace ostraka::tool
