#include "cli/Messages.h"

#include <iterator>

#include <fmt/format.h>

namespace ostraka::tool {

std::string_view ShownPath(std::string_view path) {
    return path == "-" ? "<stdin>" : path;
}

std::string Counted(std::int64_t number, std::string_view thing) {
    return fmt::format("{} {}{}", number, thing, number == 1 ? "" : "s");
}

void AppendMessage(std::string& out, std::string_view path, const std::optional<Place>& place,
                   std::string_view severity, std::string_view cause, bool color) {
    out += ShownPath(path);
    if (place) fmt::format_to(std::back_inserter(out), ":{}:{}", place->line, place->column);
    fmt::format_to(std::back_inserter(out), ": {}{}:{} {}\n", Color(color, colorError), severity,
                   Color(color, colorOff), cause);
}

} // namespace ostraka::tool
