#pragma once

// The manual page and the completions of shells, made from the rows of the verbs.

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "cli/Verb.h"

namespace ostraka::tool {

// `form` is "man", "bash", "zsh" or "fish"; nothing for any other.
std::optional<std::string> RenderManual(std::span<const Verb* const> verbs, std::string_view form);

constexpr const char* programSummary = "Reads C++ and IDL sources that no compiler here can build.";

// The exit codes in a line; `failedCheck` as in a verb.
std::string ExitCodesText(std::string_view failedCheck);
constexpr const char* anyCheckFailed = ", or a check failed";

} // namespace ostraka::tool
