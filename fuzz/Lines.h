#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// The lines of an input, each up to its first NUL, as the library takes texts.
inline std::vector<std::string> LinesOf(const std::uint8_t* data, std::size_t size) {
    std::vector<std::string> lines;
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    while (!rest.empty()) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        lines.emplace_back(line.substr(0, line.find('\0')));
        rest.remove_prefix(line.size() < rest.size() ? line.size() + 1 : line.size());
    }
    return lines;
}
