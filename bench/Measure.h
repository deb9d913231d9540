#pragma once

// What the plain programs of this folder share: the list of files, and what the system knows about the cost
// of this process.

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <span>
#include <string>
#include <sys/resource.h>
#include <vector>

namespace bench {

inline std::vector<std::string> ReadList(const char* path) {
    std::vector<std::string> names;
    std::ifstream list(path);
    for (std::string name; std::getline(list, name);) {
        if (!name.empty()) names.push_back(name);
    }
    return names;
}

// Seconds that this process has spent so far, in its own code and in the system's.
inline double CpuSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& t) {
        return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

// Prints the seconds of a row, each at twice the size of the one before, and the worst growth from one to the
// next. Whether that is within the goal.
inline bool TellGrowth(const char* name, std::span<const double> seconds) {
    constexpr double growthGoal = 2.3;
    double growth = 0;
    for (std::size_t i = 1; i < seconds.size(); ++i) growth = std::max(growth, seconds[i] / seconds[i - 1]);
    std::printf("%-24s", name);
    for (const double taken : seconds) std::printf(" %7.4f", taken);
    std::printf("  x%.2f%s\n", growth, growth <= growthGoal ? "" : "  MISSED");
    return growth <= growthGoal;
}

// Bytes of the most memory that was ever resident. Taken from the process's own record, since the figure of
// getrusage begins with that of the parent.
inline long PeakBytes() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        long kilobytes = 0;
        if (std::sscanf(line.c_str(), "VmHWM: %ld kB", &kilobytes) == 1) return kilobytes * 1024;
    }
    return 0;
}

} // namespace bench
