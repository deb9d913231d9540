#pragma once

// The manual page and the completions of shells, made from the command line itself.

#include <optional>
#include <string>
#include <string_view>

namespace CLI {
class App;
}

namespace ostraka::tool {

// `form` is "man", "bash", "zsh" or "fish"; nothing for any other.
std::optional<std::string> RenderManual(CLI::App& app, std::string_view form);

} // namespace ostraka::tool
