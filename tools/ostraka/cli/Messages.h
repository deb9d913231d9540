#pragma once

// How messages and the names of files look, and the colours of both streams. What is called Append adds to
// the text it is given.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <answers/facts/Place.h>

#include "cli/Request.h"

namespace ostraka::tool {

// The path for places and messages: standard input has a name of its own.
std::string_view ShownPath(std::string_view path);

// "1 block", "2 blocks"
std::string Counted(std::int64_t number, std::string_view thing);

// "file:line:col: error: cause" as one line.
void AppendMessage(std::string& out, std::string_view path, const std::optional<Place>& place,
                   std::string_view severity, std::string_view cause, bool color);

// The text `on` if `wanted`, that switches a colour on a terminal.
inline std::string_view Color(bool wanted, std::string_view on) {
    return wanted ? on : std::string_view();
}

constexpr std::string_view colorPlace = "\x1b[2m";
constexpr std::string_view colorClass = "\x1b[36m";
constexpr std::string_view colorError = "\x1b[1;31m";
constexpr std::string_view colorOff = "\x1b[0m";

} // namespace ostraka::tool
