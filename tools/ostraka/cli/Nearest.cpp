#include "cli/Nearest.h"

#include <algorithm>
#include <numeric>

#include <fmt/format.h>

namespace ostraka::tool {

namespace {

// Letters to change, to put in or to take out.
std::size_t Distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (const char letter : a) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t changed = diagonal + (letter != b[j] ? 1 : 0);
            diagonal = row[j + 1];
            row[j + 1] = std::min({changed, row[j + 1] + 1, row[j] + 1});
        }
    }
    return row.back();
}

} // namespace

std::string Hint(std::string_view word, const std::vector<std::string>& known) {
    const auto nearest = std::min_element(known.begin(), known.end(), [=](const auto& a, const auto& b) {
        return Distance(word, a) < Distance(word, b);
    });
    if (nearest == known.end() || Distance(word, *nearest) > std::max<std::size_t>(2, word.size() / 3))
        return "";
    return fmt::format(", did you mean {}?", *nearest);
}

} // namespace ostraka::tool
