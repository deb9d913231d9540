#pragma once

// The sources that the steady benchmarks read, held in memory so that the disk has no part in the figures:
// the first 8 MB of the files in the list that the variable OSTRAKA_BENCH_LIST names, else text of our own.

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "Measure.h"
#include "support/HostileTexts.h"

namespace bench {

struct Sources {
    std::vector<std::string> names;
    std::vector<std::string> texts;
    long bytes = 0;
};

inline const Sources& AllSources() {
    static const Sources all = [] {
        constexpr long wanted = 8'000'000;
        Sources sources;
        const char* list = std::getenv("OSTRAKA_BENCH_LIST");
        const std::vector<std::string> names = list != nullptr ? ReadList(list) : std::vector<std::string>();
        // Every so many files, so that all packages of the list have their share.
        const std::size_t step = names.size() / 1000 + 1;
        for (std::size_t i = 0; i < names.size() && sources.bytes < wanted; i += step) {
            std::ifstream file(names[i], std::ios::binary);
            sources.names.push_back(names[i]);
            sources.texts.emplace_back(std::istreambuf_iterator<char>(file),
                                       std::istreambuf_iterator<char>());
            sources.bytes += static_cast<long>(sources.texts.back().size());
        }
        if (sources.texts.empty()) {
            for (const texts::Shape& shape : texts::shapes) {
                sources.texts.push_back(texts::TextOf(shape, wanted / 100));
                sources.bytes += static_cast<long>(sources.texts.back().size());
            }
        }
        return sources;
    }();
    return all;
}

} // namespace bench
