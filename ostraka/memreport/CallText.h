#pragma once

#include <optional>
#include <string_view>

// The pieces of a frame line, as views of it.
namespace ostraka::detail {

std::string_view ShortCallOf(const char* text);

// Nothing for a line without a source.
std::optional<std::string_view> SourcePathOf(const char* text);

// Empty when the path shows no framework.
std::string_view FrameworkOf(std::string_view sourcePath);

} // namespace ostraka::detail
