#pragma once

// Headers that come with the languages and the systems, and so lie in no code base.

#include <string_view>

namespace ostraka::answers {

// Whether `<name>` is such a header, as "vector", "stdio.h" or "sys/types.h".
bool IsLanguageHeader(std::string_view name);

} // namespace ostraka::answers
