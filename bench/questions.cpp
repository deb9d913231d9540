// How the cost of questions grows: each source at five sizes, each of them twice the one before, is loaded,
// each of its words is asked about, and the table goes.
//
//     questions

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <ostraka/foundation/TAFileBuffer.h>

#include "Measure.h"
#include "support/GrowingQuestions.h"

namespace {

constexpr int smallest = 2'000;
constexpr int sizes = 5;
constexpr int trials = 5;

double SecondsOf(const texts::GrowingQuestions& shape, const std::string& text) {
    const double start = bench::CpuSeconds();
    {
        TAPSymbolTable table;
        table.LoadFile(new TAFileBuffer("memory", text), 1);
        texts::AskAllWords(shape, table, *static_cast<TAPSyntaxe*>(table.trees["memory"]));
    }
    return bench::CpuSeconds() - start;
}

bool Measure(const texts::GrowingQuestions& shape) {
    std::string contents[sizes];
    double seconds[sizes]; // the least of the trials, which take turns
    for (int i = 0; i < sizes; ++i) contents[i] = texts::TextOf(shape, smallest << i);
    for (int trial = 0; trial < trials; ++trial) {
        for (int i = 0; i < sizes; ++i) {
            const double taken = SecondsOf(shape, contents[i]);
            seconds[i] = trial == 0 ? taken : std::min(seconds[i], taken);
        }
    }
    return bench::TellGrowth(shape.name, seconds);
}

} // namespace

int main() {
    setenv("QxqxOS_VAR", "linux", 0);
    std::printf("%-24s %39s  worst\n", "questions", "seconds at 2, 4, 8, 16 and 32 thousand");
    bool good = true;
    for (const texts::GrowingQuestions& shape : texts::growingQuestions) good &= Measure(shape);
    return good ? 0 : 1;
}
