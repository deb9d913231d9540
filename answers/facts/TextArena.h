#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

namespace ostraka::answers {

// Keeps texts, which stay where they are until the arena ends. Moving it leaves them in place.
class TextArena {
public:
    std::string_view Keep(std::string_view text) {
        if (text.empty()) return {};
        if (text.size() > left) AddBlock(text.size());
        char* place = next;
        std::memcpy(place, text.data(), text.size());
        next += text.size();
        left -= text.size();
        return {place, text.size()};
    }

private:
    static constexpr std::size_t smallestBlock = 1024;
    static constexpr std::size_t largestBlock = std::size_t{64} * 1024;

    void AddBlock(std::size_t atLeast) {
        const std::size_t usual =
            std::min(smallestBlock << std::min<std::size_t>(blocks.size(), 6), largestBlock);
        left = std::max(atLeast, usual);
        blocks.push_back(std::make_unique_for_overwrite<char[]>(left));
        next = blocks.back().get();
    }

    std::vector<std::unique_ptr<char[]>> blocks;
    char* next = nullptr;
    std::size_t left = 0;
};

} // namespace ostraka::answers
