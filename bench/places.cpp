// How the cost of a place grows: each source at five sizes, each of them twice the one before, is opened, and
// its last names are asked what they mean.
//
//     places

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <answers/resolve/Resolver.h>

#include "Measure.h"
#include "support/GrowingPlaces.h"

namespace {

using namespace ostraka::answers;

constexpr int smallest = 1'000;
constexpr int sizes = 5;
constexpr int trials = 5;
constexpr int asked = 20;

double SecondsOf(const std::string& path) {
    const double start = bench::CpuSeconds();
    CodeBase base({{std::filesystem::path(path).parent_path().string()}, {}});
    Names names(base);
    Resolver resolver(base, names);
    resolver.Open(base.FileAt(path));
    const int count = resolver.Tokens().Count();
    for (int i = std::max(0, count - asked); i < count; ++i) resolver.Ask(resolver.Tokens()[i].begin);
    return bench::CpuSeconds() - start;
}

bool Measure(const texts::GrowingPlace& shape, const std::string& folder) {
    std::string paths[sizes]; // each in a folder of its own, which is its code base
    double seconds[sizes];    // the least of the trials, which take turns
    for (int i = 0; i < sizes; ++i) {
        paths[i] = folder + "/" + std::to_string(i) + "/main.cpp";
        std::filesystem::create_directories(std::filesystem::path(paths[i]).parent_path());
        std::ofstream(paths[i]) << texts::TextOf(shape, smallest << i);
    }
    for (int trial = 0; trial < trials; ++trial) {
        for (int i = 0; i < sizes; ++i) {
            const double taken = SecondsOf(paths[i]);
            seconds[i] = trial == 0 ? taken : std::min(seconds[i], taken);
        }
    }
    return bench::TellGrowth(shape.name, seconds);
}

} // namespace

int main() {
    std::string folder = std::filesystem::temp_directory_path() / "ostraka_places_XXXXXX";
    if (mkdtemp(folder.data()) == nullptr) return 2;
    std::printf("%-24s %39s  worst\n", "places", "seconds at 1, 2, 4, 8 and 16 thousand");
    bool good = true;
    for (const texts::GrowingPlace& shape : texts::growingPlaces) good &= Measure(shape, folder);
    std::filesystem::remove_all(folder);
    return good ? 0 : 1;
}
