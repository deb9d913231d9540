// What includes of headers that don't exist cost: sources with sixty of them at five numbers of files, each
// twice the one before, against the same sources without.
//
//     includes

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <string>
#include <vector>

#include "Measure.h"
#include "support/MissingIncludes.h"

namespace {

constexpr int counts[] = {125, 250, 500, 1000, 2000};
constexpr int sizes = std::size(counts);
constexpr int missing = 60;
constexpr int trials = 7;
constexpr double ratioGoal = 2.0;

struct Row {
    const char* name;
    std::vector<std::string> paths[sizes];
    double seconds[sizes] = {}; // the least of the trials, which take turns
};

void Measure(Row& row, int trial) {
    for (int i = 0; i < sizes; ++i) {
        const double taken = texts::SecondsToLoad(row.paths[i]);
        row.seconds[i] = trial == 0 ? taken : std::min(row.seconds[i], taken);
    }
}

} // namespace

int main() {
    setenv("QxqxOS_VAR", "linux", 0);
    std::string root = std::filesystem::temp_directory_path() / "ostraka_includes_XXXXXX";
    if (mkdtemp(root.data()) == nullptr) return 2;
    Row with{"60 missing includes", {}, {}};
    Row without{"none", {}, {}};
    for (int i = 0; i < sizes; ++i) {
        const std::string folder = root + "/" + std::to_string(i);
        with.paths[i] = texts::WriteSources(folder + "/with", counts[i], missing);
        without.paths[i] = texts::WriteSources(folder + "/without", counts[i], 0);
    }
    for (int trial = 0; trial < trials; ++trial) {
        Measure(with, trial);
        Measure(without, trial);
    }
    std::filesystem::remove_all(root);
    std::printf("%-24s %39s  worst\n", "files", "seconds at 125, 250, 500, 1000 and 2000");
    bool good = bench::TellGrowth(with.name, with.seconds);
    good &= bench::TellGrowth(without.name, without.seconds);
    const double ratio = with.seconds[sizes - 1] / without.seconds[sizes - 1];
    std::printf("with to without %.2f, goal %.1f%s\n", ratio, ratioGoal,
                ratio <= ratioGoal ? "" : "  MISSED");
    return good && ratio <= ratioGoal ? 0 : 1;
}
