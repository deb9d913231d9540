// How cost grows: each shape at four sizes, each of them twice the one before, and each hostile text once.
// Every reading runs in a child process, so that its memory is its own.
//
//     shapes

#include <algorithm>
#include <cstdio>
#include <malloc.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

#include <ostraka/syntax/TAPSourceFile.h>
#include <ostraka/syntax/TAPSyntaxe.h>

#include "Measure.h"
#include "support/HostileTexts.h"

namespace {

constexpr int sizes = 4;
constexpr int trials = 6;
constexpr double growthGoal = 2.3;
constexpr double secondsGoal = 1.0;

struct Cost {
    double seconds = 0;
    double bytes = 0;
    int result = 0;
    char message[80] = {};
};

// Reads the text, builds its tree and releases both.
Cost ReadOnce(const std::string& text) {
    Cost cost;
    auto buffer = texts::FileOf(text);
    const long memory = bench::PeakBytes();
    const double start = bench::CpuSeconds();
    TAIndex macros;
    auto* file = new TAPSourceFile(buffer.release());
    file->Process(macros);
    auto* root = new TAPSyntaxe(STYPE_File, file, 0, file->GetSize(), -1);
    cost.result = root->Build();
    if (cost.result != 0)
        std::snprintf(cost.message, sizeof cost.message, "%s", TAPSyntaxe::ErrMsg.CastToCharPtr());
    root->Release();
    file->Release();
    cost.seconds = bench::CpuSeconds() - start;
    cost.bytes = static_cast<double>(bench::PeakBytes() - memory);
    return cost;
}

Cost ReadInChild(const std::string& text) {
    Cost cost;
    int ends[2];
    if (pipe(ends) != 0) return cost;
    malloc_trim(0); // memory that is free but resident would hide what the child needs
    const pid_t child = fork();
    if (child == 0) {
        cost = ReadOnce(text);
        _exit(write(ends[1], &cost, sizeof cost) == sizeof cost ? 0 : 1);
    }
    close(ends[1]);
    if (read(ends[0], &cost, sizeof cost) != sizeof cost) cost.result = -1;
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    return cost;
}

const char* Verdict(bool good) {
    return good ? "" : "  MISSED";
}

bool MeasureShape(const texts::Shape& shape) {
    std::string texts[sizes];
    Cost costs[sizes]; // the least time of the trials, which take turns
    for (int i = 0; i < sizes; ++i) texts[i] = texts::TextOf(shape, shape.smallest << i);
    for (int trial = 0; trial < trials; ++trial) {
        for (int i = 0; i < sizes; ++i) {
            const Cost cost = ReadInChild(texts[i]);
            if (trial == 0 || cost.seconds < costs[i].seconds) costs[i] = cost;
        }
    }
    double time = 0;
    double memory = 0;
    for (int i = 1; i < sizes; ++i) {
        time = std::max(time, costs[i].seconds / costs[i - 1].seconds);
        memory = std::max(memory, costs[i].bytes / costs[i - 1].bytes);
    }
    const bool good = time <= growthGoal && memory <= growthGoal;
    const Cost& largest = costs[sizes - 1];
    std::printf("%-20s %5.2f", shape.name, static_cast<double>(shape.smallest) / 1e6);
    for (const Cost& cost : costs) std::printf(" %7.3f", cost.seconds);
    std::printf("  x%.2f ", time);
    for (const Cost& cost : costs) std::printf(" %6.1f", cost.bytes / 1e6);
    std::printf("  x%.2f  %s%s\n", memory, largest.result == 0 ? "tree" : largest.message, Verdict(good));
    return good;
}

bool MeasureHostile(const char* name, const std::string& text) {
    const Cost cost = ReadInChild(text);
    const bool good = cost.seconds < secondsGoal && cost.result >= 0;
    std::printf("%-32s %6.2f MB %7.3f s %7.1f MB  %s%s\n", name, static_cast<double>(text.size()) / 1e6,
                cost.seconds, cost.bytes / 1e6, cost.result == 0 ? "tree" : cost.message, Verdict(good));
    return good;
}

} // namespace

int main() {
    bool good = true;
    std::printf("%-20s %5s %31s  %5s  %27s  %5s\n", "shape", "MB", "seconds at 1, 2, 4, 8 times that",
                "worst", "peak MB", "worst");
    for (const texts::Shape& shape : texts::shapes) good &= MeasureShape(shape);
    std::printf("\nhostile text\n");
    for (const texts::Hostile& hostile : texts::hostiles)
        good &= MeasureHostile(hostile.name, texts::TextOf(hostile));
    good &= MeasureHostile("random bytes", texts::RandomBytes(1'000'000));
    return good ? 0 : 1;
}
