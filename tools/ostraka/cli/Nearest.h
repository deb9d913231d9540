#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace ostraka::tool {

// ", did you mean ...?" for the nearest known word, or nothing when none is near.
std::string Hint(std::string_view word, const std::vector<std::string>& known);

} // namespace ostraka::tool
