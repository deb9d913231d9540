// The attributes of one object: set in a random order, asked for, walked through and released.

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include <ostraka/objects/TAPObject.h>

namespace {

std::vector<std::string> Names(std::int64_t count) {
    std::vector<std::string> names;
    for (std::int64_t i = 0; i < count; ++i) names.push_back("attribute" + std::to_string(i));
    std::shuffle(names.begin(), names.end(), std::mt19937(7));
    return names;
}

void SetAll(TAPObject& object, const std::vector<std::string>& names) {
    for (const std::string& name : names) object.SetAttribute(name.c_str(), 1);
}

void SetAttributes(benchmark::State& state) {
    const auto names = Names(state.range(0));
    for (auto _ : state) {
        TAPObject object;
        SetAll(object, names);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void ReplaceAttributes(benchmark::State& state) {
    const auto names = Names(state.range(0));
    TAPObject object;
    SetAll(object, names);
    for (auto _ : state) SetAll(object, names);
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void GetAttributes(benchmark::State& state) {
    const auto names = Names(state.range(0));
    TAPObject object;
    SetAll(object, names);
    for (auto _ : state)
        for (const std::string& name : names) benchmark::DoNotOptimize(object.GetAttribute(name.c_str()));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void WalkAttributes(benchmark::State& state) {
    TAPObject object;
    SetAll(object, Names(state.range(0)));
    for (auto _ : state)
        for (int position = object.GetFirstAttributePosition(); position != 0;)
            benchmark::DoNotOptimize(object.GetNextAttribute(position));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void RemoveAttributes(benchmark::State& state) {
    const auto names = Names(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        TAPObject object;
        SetAll(object, names);
        state.ResumeTiming();
        for (const std::string& name : names) object.RemoveAttribute(name.c_str());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void Sizes(benchmark::internal::Benchmark* use) {
    use->Unit(benchmark::kMillisecond)->Arg(10000)->Arg(100000)->Arg(1000000);
}
BENCHMARK(SetAttributes)->Apply(Sizes);
BENCHMARK(ReplaceAttributes)->Apply(Sizes);
BENCHMARK(GetAttributes)->Apply(Sizes);
BENCHMARK(WalkAttributes)->Apply(Sizes);
BENCHMARK(RemoveAttributes)->Apply(Sizes);

} // namespace
