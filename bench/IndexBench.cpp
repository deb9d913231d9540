// The sorted indexes: filled from random keys against an ordered map, read while they fill, walked, and
// searched.

#include <algorithm>
#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include <ostraka/foundation/TAIndex.h>
#include <ostraka/foundation/TAIndexB.h>

namespace {

using Texts = std::vector<std::string>;

Texts RandomTexts(std::int64_t count, const std::string& head) {
    constexpr char letters[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_";
    std::mt19937_64 random(7);
    Texts texts(static_cast<std::size_t>(count), head);
    for (std::string& text : texts)
        for (auto left = 8 + random() % 17; left > 0; --left)
            text += letters[random() % (sizeof letters - 1)];
    return texts;
}

void Add(TAIndex& index, const std::string& key) {
    index.Append(key.c_str(), nullptr, 0);
}
void Add(std::map<std::string, void*>& map, const std::string& key) {
    map.emplace(key, nullptr);
}

// Texts, or with a second argument of 1 paths of one folder. The table's end isn't timed.
template <class Table>
void Fill(benchmark::State& state) {
    const Texts texts = RandomTexts(state.range(0), state.range(1) != 0 ? "/usr/include/c++/12/bits/" : "");
    for (auto _ : state) {
        auto* table = new Table;
        for (const std::string& text : texts) Add(*table, text);
        state.PauseTiming();
        delete table;
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void FillSizes(benchmark::internal::Benchmark* fill) {
    fill->Unit(benchmark::kMillisecond);
    fill->ArgsProduct({{10000, 20000, 50000, 100000, 200000, 500000, 1000000}, {0, 1}});
}
BENCHMARK(Fill<TAIndex>)->Apply(FillSizes);
BENCHMARK(Fill<std::map<std::string, void*>>)->Apply(FillSizes);

void ReadNothing(const TAIndex&) {}
void ReadTwoKeys(const TAIndex& index) {
    benchmark::DoNotOptimize(index.keys[0]);
    benchmark::DoNotOptimize(index.keys[index.size / 2]);
}
void ReadKeyPointer(const TAIndex& index) {
    char** keys = index.keys;
    benchmark::DoNotOptimize(keys);
}
void ReadBothPointers(const TAIndex& index) {
    ReadKeyPointer(index);
    void** values = index.values;
    benchmark::DoNotOptimize(values);
}

template <void (*read)(const TAIndex&)>
void FillAndRead(benchmark::State& state) {
    const Texts texts = RandomTexts(100000, "");
    for (auto _ : state) {
        TAIndex index;
        for (const std::string& text : texts) {
            Add(index, text);
            if (index.size % 100 == 0) read(index);
        }
    }
}
BENCHMARK(FillAndRead<ReadNothing>)->Unit(benchmark::kMillisecond);
BENCHMARK(FillAndRead<ReadTwoKeys>)->Unit(benchmark::kMillisecond);
BENCHMARK(FillAndRead<ReadKeyPointer>)->Unit(benchmark::kMillisecond);
BENCHMARK(FillAndRead<ReadBothPointers>)->Unit(benchmark::kMillisecond);

bool AskByPosition(const TAIndex& index, const std::string& key) {
    return index.IsIn(key.c_str()) >= 0;
}
bool AskHolds(const TAIndex& index, const std::string& key) {
    return index.Holds(key.c_str());
}

// Each key is asked for, and entered if it isn't there; half of them are.
template <bool (*ask)(const TAIndex&, const std::string&)>
void AskAndFill(benchmark::State& state) {
    Texts texts = RandomTexts(50000, "");
    const Texts copy = texts;
    texts.insert(texts.end(), copy.begin(), copy.end());
    std::shuffle(texts.begin(), texts.end(), std::mt19937_64(3));
    for (auto _ : state) {
        TAIndex index;
        for (const std::string& text : texts)
            if (!ask(index, text)) Add(index, text);
    }
}
BENCHMARK(AskAndFill<AskByPosition>)->Unit(benchmark::kMillisecond);
BENCHMARK(AskAndFill<AskHolds>)->Unit(benchmark::kMillisecond);

template <class Keys, class Values>
void Walk(benchmark::State& state, const Keys& keys, const Values& values, int size) {
    for (auto _ : state) {
        for (int i = 0; i < size; ++i) {
            benchmark::DoNotOptimize(keys[i]);
            benchmark::DoNotOptimize(values[i]);
        }
    }
}

void WalkColumns(benchmark::State& state) {
    TAIndex index;
    for (const std::string& text : RandomTexts(1000000, "")) Add(index, text);
    Walk(state, index.keys, index.values, index.size);
}
BENCHMARK(WalkColumns)->Unit(benchmark::kMicrosecond);

void WalkPointers(benchmark::State& state) {
    TAIndex index;
    for (const std::string& text : RandomTexts(1000000, "")) Add(index, text);
    Walk<char**, void**>(state, index.keys, index.values, index.size);
}
BENCHMARK(WalkPointers)->Unit(benchmark::kMicrosecond);

// Stacks of 20 frames, of which the outer ones are few, so that keys agree in their first words.
constexpr int frames = 20;

std::vector<std::intptr_t> RandomStacks(int count, int sharedFrames) {
    std::mt19937_64 random(5);
    std::vector<std::intptr_t> words;
    for (int i = 0; i < count * frames; ++i) {
        const auto kinds = i % frames < sharedFrames ? 4U : 100000U;
        words.push_back(static_cast<std::intptr_t>(0x555500000000 + 64 * (random() % kinds)));
    }
    return words;
}

void FillStacks(benchmark::State& state) {
    constexpr int count = 500000;
    const auto words = RandomStacks(count, static_cast<int>(state.range(0)));
    for (auto _ : state) {
        auto* index = new TAIndexB(frames);
        for (int i = 0; i < count; ++i) index->Append(&words[static_cast<std::size_t>(i * frames)], nullptr);
        state.PauseTiming();
        delete index;
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(FillStacks)->Arg(0)->Arg(1)->Arg(5)->Unit(benchmark::kMillisecond);

void FindStacks(benchmark::State& state) {
    constexpr int count = 500000;
    const auto words = RandomStacks(count, static_cast<int>(state.range(0)));
    TAIndexB index(frames);
    for (int i = 0; i < count; ++i) index.Append(&words[static_cast<std::size_t>(i * frames)], nullptr);
    for (auto _ : state)
        for (int i = 0; i < count; ++i)
            benchmark::DoNotOptimize(index[&words[static_cast<std::size_t>(i * frames)]]);
    state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(FindStacks)->Arg(0)->Arg(1)->Arg(5)->Unit(benchmark::kMillisecond);

} // namespace
