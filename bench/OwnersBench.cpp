// Ownership listings: as many lines as people, read as the tool reads them.

#include <string>

#include <benchmark/benchmark.h>

#include <ostraka/workspace/FrameworkResponsibility.h>

namespace {

NUBListValNUBString Numbered(const std::string& before, int count, const std::string& behind) {
    NUBListValNUBString texts;
    for (int i = 0; i < count; ++i) texts.Append((before + std::to_string(i) + behind).c_str());
    return texts;
}

// Line by line, and all at once.
void ReadOwners(benchmark::State& state) {
    const int count = static_cast<int>(state.range(0));
    const NUBListValNUBString people = Numbered("Some.One.C", count, "."),
                              lines = Numbered("FW: Framework RESP: c", count, "");
    for (auto _ : state) {
        NUBListValNUBString entries, table;
        FrameworkOwners owners(people);
        for (const NUBString& line : lines) owners.AppendEntries(line, entries);
        MakeFrameworkOwnerDico(people, lines, table);
        benchmark::DoNotOptimize(table.Size() + entries.Size());
    }
    state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(ReadOwners)->Unit(benchmark::kMillisecond)->Arg(4000)->Arg(8000)->Arg(16000)->Arg(32000);

} // namespace
