#pragma once

// Paths by what they end with: "gui/frame.h" is the ending of "/code/src/gui/frame.h".

#include <array>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace ostraka::answers {

class PathEndings {
public:
    // Absolute paths by their order, which stay the caller's.
    explicit PathEndings(std::vector<std::string_view> all);

    // The indexes of all paths that end with a slash and the name, in their order.
    std::vector<int> EndingWith(std::string_view name) const;

    // The one of these that is nearest to the path `from`, other than `passedOver`: it shares most folders,
    // then it is the shortest, then the first. -1 where there is none.
    int Nearest(std::string_view name, std::string_view from, int passedOver = -1);

private:
    // The best two of those below a folder; -1 is none. The second answers where the first is passed over.
    using Best = std::array<int, 2>;
    using BestBelow = std::unordered_map<std::string_view, Best>;

    BestBelow MakeBest(std::string_view name) const;
    bool IsBetter(int a, int b) const;

    std::vector<std::string_view> paths;
    std::vector<int> byEnding;                       // the paths, as they sort when read from their ends
    std::unordered_map<std::string, BestBelow> best; // by name
};

} // namespace ostraka::answers
