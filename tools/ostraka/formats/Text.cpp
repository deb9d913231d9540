#include "formats/Text.h"

#include <algorithm>
#include <iterator>

#include <fmt/format.h>

namespace ostraka::tool {

namespace {

bool ContinuesCharacter(char c) {
    return (c & 0xc0) == 0x80;
}

} // namespace

std::string Shortened(std::string_view text, std::size_t limit) {
    if (text.size() <= limit) return std::string(text);
    std::size_t cut = limit - 3;
    while (cut > limit - 6 && ContinuesCharacter(text[cut])) --cut;
    return std::string(text.substr(0, cut)) + "...";
}

std::string Colored(const Request& request, std::string_view color, std::string_view text) {
    return fmt::format("{}{}{}", Color(request.colorOutput, color), text,
                       Color(request.colorOutput, colorOff));
}

std::string PlaceText(const Request& request, std::string_view file, const Place& place) {
    return Colored(request, colorPlace, fmt::format("{}:{}:{}", file, place.line, place.column));
}

} // namespace ostraka::tool
