#pragma once

// How text, places and messages look in every output. The functions called Append add to the text they are
// given.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <answers/facts/Escapes.h>
#include <answers/facts/Place.h>

namespace ostraka::tool {

using namespace answers;

struct Request;

// The path for places and messages: standard input has a name of its own.
std::string_view ShownPath(std::string_view path);

// The first `limit` bytes of the text, the last three an ellipsis where it was cut; no UTF-8 character is
// cut.
std::string Shortened(std::string_view text, std::size_t limit);

// A JSON string. Bytes that aren't UTF-8 become the replacement character.
void AppendJson(std::string& out, std::string_view text);

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

// The text, and "file:line:column", as the request wants them on standard output.
std::string Colored(const Request& request, std::string_view color, std::string_view text);
std::string PlaceText(const Request& request, std::string_view file, const Place& place);

} // namespace ostraka::tool
