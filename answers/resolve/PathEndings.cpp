// Paths that are sorted as if they were read backwards stand together where they end alike. Of those that end
// with a name each folder above keeps the best, so that the nearest is found on the way up from a place,
// however many there are.

#include <answers/resolve/PathEndings.h>

#include <algorithm>
#include <numeric>
#include <utility>

namespace ostraka::answers {

namespace {

bool IsBeforeBackwards(std::string_view a, std::string_view b) {
    return std::lexicographical_compare(a.rbegin(), a.rend(), b.rbegin(), b.rend());
}

// Cuts the last part off; false where there is none.
bool GoUp(std::string_view& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == path.npos) return false;
    path = path.substr(0, slash);
    return true;
}

} // namespace

PathEndings::PathEndings(std::vector<std::string_view> all) : paths(std::move(all)), byEnding(paths.size()) {
    std::iota(byEnding.begin(), byEnding.end(), 0);
    std::sort(byEnding.begin(), byEnding.end(), [this](int a, int b) {
        return IsBeforeBackwards(paths[static_cast<std::size_t>(a)], paths[static_cast<std::size_t>(b)]);
    });
}

std::vector<int> PathEndings::EndingWith(std::string_view name) const {
    const std::string ending = "/" + std::string(name);
    auto entry = std::lower_bound(byEnding.begin(), byEnding.end(), std::string_view(ending),
                                  [this](int path, std::string_view wanted) {
                                      return IsBeforeBackwards(paths[static_cast<std::size_t>(path)], wanted);
                                  });
    std::vector<int> found;
    for (; entry != byEnding.end() && paths[static_cast<std::size_t>(*entry)].ends_with(ending); ++entry)
        found.push_back(*entry);
    std::sort(found.begin(), found.end());
    return found;
}

bool PathEndings::IsBetter(int a, int b) const {
    if (b < 0) return true;
    const std::size_t size = paths[static_cast<std::size_t>(a)].size();
    const std::size_t other = paths[static_cast<std::size_t>(b)].size();
    return size != other ? size < other : a < b;
}

PathEndings::BestBelow PathEndings::MakeBest(std::string_view name) const {
    BestBelow below;
    for (const int path : EndingWith(name)) {
        std::string_view folder = paths[static_cast<std::size_t>(path)];
        while (GoUp(folder)) {
            Best& known = below.try_emplace(folder, Best{-1, -1}).first->second;
            if (IsBetter(path, known[0])) {
                known = {path, known[0]};
            } else if (IsBetter(path, known[1])) {
                known[1] = path;
            }
        }
    }
    return below;
}

int PathEndings::Nearest(std::string_view name, std::string_view from, int passedOver) {
    const auto [entry, isNew] = best.try_emplace(std::string(name));
    if (isNew) entry->second = MakeBest(name);
    const BestBelow& below = entry->second;
    while (!below.empty() && GoUp(from)) {
        const auto known = below.find(from);
        if (known == below.end()) continue;
        const Best& nearest = known->second;
        if (nearest[0] != passedOver) return nearest[0];
        if (nearest[1] >= 0) return nearest[1];
    }
    return -1;
}

} // namespace ostraka::answers
