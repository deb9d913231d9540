#include <answers/facts/Facts.h>

#include <algorithm>

namespace ostraka::answers {

Place FileFacts::PlaceOf(std::uint32_t offset) const {
    const auto behind = std::upper_bound(lines.begin(), lines.end(), offset);
    const auto line = behind - lines.begin();
    return {static_cast<int>(line), static_cast<int>(offset - lines[static_cast<std::size_t>(line) - 1]) + 1};
}

std::uint32_t FileFacts::OffsetOf(Place place) const {
    const std::uint32_t end = scopes.front().past - 1;
    if (place.line < 1 || place.line > static_cast<int>(lines.size())) return end;
    const auto line = static_cast<std::size_t>(place.line);
    const std::uint32_t next = line < lines.size() ? lines[line] : end + 1;
    const auto column = static_cast<std::uint32_t>(std::max(place.column, 1) - 1);
    return std::min(lines[line - 1] + column, next);
}

// Scopes lie in each other, in the order of their begin: the innermost one is the last that begins before, or
// one around it.
int FileFacts::ScopeAt(std::uint32_t offset) const {
    const auto behind =
        std::upper_bound(scopes.begin(), scopes.end(), offset,
                         [](std::uint32_t at, const Scope& scope) { return at < scope.begin; });
    int at = static_cast<int>(behind - scopes.begin()) - 1;
    while (at > 0 && scopes[static_cast<std::size_t>(at)].past <= offset)
        at = scopes[static_cast<std::size_t>(at)].parent;
    return std::max(at, 0);
}

} // namespace ostraka::answers
