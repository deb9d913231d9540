// The stream alone, from sources in memory, and the plain scanners over the streams.

#include <benchmark/benchmark.h>

#include <ostraka/syntax/TAPExpression.h>
#include <ostraka/syntax/TAPSourceFile.h>
#include <ostraka/syntax/TAPSyntaxe.h>

#include "Sources.h"

namespace {

void Streams(benchmark::State& state) {
    const bench::Sources& sources = bench::AllSources();
    for (auto _ : state) {
        for (const std::string& text : sources.texts) {
            TAIndex macros;
            TAPSourceFile file(texts::FileOf(text).release());
            benchmark::DoNotOptimize(file.Process(macros));
        }
    }
    state.SetBytesProcessed(state.iterations() * sources.bytes);
}
BENCHMARK(Streams)->Unit(benchmark::kMillisecond);

// All pieces of a stream, one after the other, as the builder of a file cuts them.
void CutIntoPieces(const TAPSourceFile& file) {
    const char* stream = file.GetStream();
    const int end = file.GetSize() - 1;
    for (int pos = 0; pos <= end;) {
        const int pieceEnd = stream[pos] == '{' ? TAPSyntaxe::SearchEndOfTAPBloc(stream, pos, end)
                                                : TAPSyntaxe::SearchEndOfTAPInstruction(stream, pos, end);
        if (pieceEnd == 0) return;
        pos = pieceEnd + 1;
    }
}

// The operators of a stream from its end, which a walk from the right finds behind each line's last comma.
void SearchOperators(const TAPSourceFile& file) {
    constexpr int length = 200;
    int found = 0;
    for (int begin = 0; begin + length < file.GetSize(); begin += length) {
        benchmark::DoNotOptimize(
            TAPExpression::SearchOperator(file.GetStream(), begin, begin + length - 1, found));
    }
}

template <void (*scan)(const TAPSourceFile&)>
void Scanners(benchmark::State& state) {
    std::vector<std::unique_ptr<TAPSourceFile>> files;
    std::int64_t bytes = 0;
    for (const std::string& text : bench::AllSources().texts) {
        TAIndex macros;
        files.push_back(std::make_unique<TAPSourceFile>(texts::FileOf(text).release()));
        files.back()->Process(macros);
        bytes += files.back()->GetSize();
    }
    for (auto _ : state) {
        for (const auto& file : files) {
            if (file->GetSize() > 0) scan(*file);
        }
    }
    state.SetBytesProcessed(state.iterations() * bytes);
}
BENCHMARK(Scanners<CutIntoPieces>)->Name("Scanners/pieces")->Unit(benchmark::kMillisecond);
BENCHMARK(Scanners<SearchOperators>)->Name("Scanners/operators")->Unit(benchmark::kMillisecond);

} // namespace
