// The tree alone, from streams that are there already, and the whole road of a file from the disk.

#include <benchmark/benchmark.h>

#include <ostraka/syntax/TAPSourceFile.h>
#include <ostraka/syntax/TAPSyntaxe.h>
#include <ostraka/syntax/TAPSyntaxeWalk.h>

#include "Sources.h"

namespace {

struct Release {
    void operator()(TARefCounter* object) const { object->Release(); }
};
using File = std::unique_ptr<TAPSourceFile, Release>;
using Root = std::unique_ptr<TAPSyntaxe, Release>;

Root TreeOf(const File& file) {
    Root root(new TAPSyntaxe(STYPE_File, file.get(), 0, file->GetSize(), -1));
    root->Build();
    return root;
}

std::int64_t CountNodes(TAPSyntaxe* top) {
    std::int64_t count = 0;
    for (TAPSyntaxeWalk walk(*top); walk.Node() != nullptr; walk.Next()) ++count;
    return count;
}

void Trees(benchmark::State& state) {
    const bench::Sources& sources = bench::AllSources();
    std::vector<File> files;
    std::int64_t nodes = 0;
    for (const std::string& text : sources.texts) {
        TAIndex macros;
        files.emplace_back(new TAPSourceFile(texts::FileOf(text).release()));
        files.back()->Process(macros);
        nodes += CountNodes(TreeOf(files.back()).get());
    }
    for (auto _ : state) {
        for (const File& file : files) TreeOf(file);
    }
    state.SetBytesProcessed(state.iterations() * sources.bytes);
    state.counters["nodes/KB"] = static_cast<double>(nodes) / (static_cast<double>(sources.bytes) / 1e3);
}
BENCHMARK(Trees)->Unit(benchmark::kMillisecond);

void FilesToTrees(benchmark::State& state) {
    const bench::Sources& sources = bench::AllSources();
    if (sources.names.empty()) return state.SkipWithError("set OSTRAKA_BENCH_LIST to a list of files");
    for (auto _ : state) {
        for (const std::string& name : sources.names) {
            TAIndex macros;
            const File file(new TAPSourceFile(name.c_str()));
            file->Process(macros);
            TreeOf(file);
        }
    }
    state.SetBytesProcessed(state.iterations() * sources.bytes);
}
BENCHMARK(FilesToTrees)->Unit(benchmark::kMillisecond);

} // namespace
