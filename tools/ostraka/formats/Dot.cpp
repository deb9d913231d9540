#include "formats/Dot.h"

#include <fmt/format.h>

namespace ostraka::tool {

std::string Quoted(std::string_view text) {
    std::string quoted = "\"";
    for (char c : text) {
        if (c == '"' || c == '\\' || c == '\n') quoted += '\\';
        quoted += c == '\n' ? 'n' : c;
    }
    return quoted + '"';
}

std::string LeftOut(std::size_t count, std::string_view what) {
    if (count == 0) return "";
    return fmt::format("  \"...\" [shape=note, label=\"left out: {} {}\"];\n", count, what);
}

} // namespace ostraka::tool
