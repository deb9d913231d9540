// Memory reports at scale: frame lines and stacks interned, against ordered maps that do the same, and masks
// matched against stacks.

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <benchmark/benchmark.h>

#include <ostraka/memreport/Call.h>
#include <ostraka/memreport/Stack.h>
#include <ostraka/memreport/StackMask.h>
#include <ostraka/memreport/TAPIndexContainer.h>

namespace {

constexpr int callCount = 50000;
constexpr int frames = 12;

// Frame lines of 200 frameworks with 20 files each, of which every fourth is of code that belongs to none.
std::string FrameLine(int number) {
    const std::string n = std::to_string(number);
    const std::string function =
        "Space" + std::to_string(number % 97) + "::Class" + n + "::Method(const char*, int)";
    if (number % 4 == 0)
        return function + " [/usr/lib/x86_64-linux-gnu/lib" + std::to_string(number % 89) + ".so]";
    const int framework = number % 200, file = number / 200 % 20;
    return function + " [/w/root/Framework" + std::to_string(framework) + "/Module.m/src/File" +
           std::to_string(file) + ".cpp:" + n + "]";
}

struct Run {
    std::vector<std::unique_ptr<Call>> held;
    std::vector<Call*> calls;
    TAIndex ignoredResponsibles, ignoredCalls;

    Run() {
        for (int i = 0; i < 200; ++i) {
            const std::string framework = "Framework" + std::to_string(i),
                              owner = "Owner" + std::to_string(i % 40);
            const char* responsible = TAPIndexContainer::responsibleIndex.Append(owner.c_str(), nullptr, 0);
            TAPIndexContainer::respForFwIndex.Append(framework.c_str(), responsible, 0);
        }
        for (int i = 0; i < callCount; ++i) {
            held.push_back(std::make_unique<Call>(FrameLine(i).c_str(), &TAPIndexContainer::LongCallIndex));
            calls.push_back(held.back().get());
        }
        for (const char* owner : {"Owner1", "Owner2"}) ignoredResponsibles.Append(owner, nullptr, 0);
        for (int i = 1; i < 100; ++i) {
            const std::unique_ptr<char, void (*)(void*)> text(
                calls[static_cast<std::size_t>(i)]->GetShortCall(), std::free);
            ignoredCalls.Append(text.get(), nullptr, 0);
        }
    }

    static Run& Only() {
        static Run run;
        return run;
    }
};

// `count` stacks drawn from `kinds` different ones, frame after frame.
std::vector<Call*> DrawStacks(int count, int kinds) {
    std::mt19937 random(3);
    const auto& calls = Run::Only().calls;
    std::vector<Call*> drawn;
    for (int i = 0; i < kinds * frames; ++i) drawn.push_back(calls[random() % callCount]);
    for (int i = kinds; i < count; ++i) {
        const auto from = random() % static_cast<unsigned>(kinds) * frames;
        for (unsigned frame = 0; frame < frames; ++frame) drawn.push_back(drawn[from + frame]);
    }
    return drawn;
}

struct SortedIndex {
    TAIndexBStack index{20};

    // Grows with each stack that is new.
    static std::size_t Known() { return static_cast<std::size_t>(Stack::globalId); }

    std::unique_ptr<Stack> Enter(Call** calls) {
        Run& run = Run::Only();
        return std::make_unique<Stack>(nullptr, calls, frames, &index, &run.ignoredResponsibles,
                                       &run.ignoredCalls, nullptr, 0);
    }
};

// The same by maps: the key, whom each framework belongs to, and what is passed over.
struct Record {
    const char* framework = nullptr;
    const std::array<std::intptr_t, 20>* key = nullptr;
    int size = 0, toExtend = 0, id = 0, histo = 1, entranceDate = 0;
    Record* shorter = nullptr;
    Call* calls[20] = {};
};

struct OrderedMap {
    std::map<std::array<std::intptr_t, 20>, Record*> index;
    std::map<std::string, const char*, std::less<>> owners;
    std::map<std::string, int, std::less<>> ignoredOwners, ignoredCalls;

    OrderedMap() {
        const TAIndex& known = TAPIndexContainer::respForFwIndex;
        for (int i = 0; i < known.size; ++i)
            owners[known.keys[i]] = static_cast<const char*>(known.values[i]);
        const Run& run = Run::Only();
        for (int i = 0; i < run.ignoredResponsibles.size; ++i)
            ignoredOwners[run.ignoredResponsibles.keys[i]] = 1;
        for (int i = 0; i < run.ignoredCalls.size; ++i) ignoredCalls[run.ignoredCalls.keys[i]] = 1;
    }

    bool IsCharged(const Call& call) const {
        if (call.GetFwResponsible() == nullptr) return false;
        if (ignoredOwners.count(owners.find(std::string_view(call.GetFwResponsible()))->second) > 0)
            return false;
        std::string_view text = call.GetCall();
        text = text.substr(0, text.find(" ["));
        return ignoredCalls.count(text) == 0;
    }

    std::size_t Known() const { return index.size(); }

    std::unique_ptr<Record> Enter(Call** calls) {
        auto record = std::make_unique<Record>();
        record->size = record->toExtend = frames;
        std::array<std::intptr_t, 20> key{};
        for (unsigned i = 0; i < frames; ++i) {
            record->calls[i] = calls[i];
            key[i] = reinterpret_cast<std::intptr_t>(calls[i]->GetCall());
        }
        const auto [entry, isNew] = index.try_emplace(key, record.get());
        record->key = &entry->first;
        record->id = isNew ? static_cast<int>(index.size()) : entry->second->id;
        for (int i = 0; i < frames && record->framework == nullptr; ++i)
            if (IsCharged(*calls[i])) record->framework = calls[i]->GetFwResponsible();
        return record;
    }
};

// Arguments: how many stacks, of how many kinds. A stack that is known already is dropped, as any tool does.
// The end of the table and of the stacks isn't timed.
template <class Table>
void InternStacks(benchmark::State& state) {
    const auto count = static_cast<std::size_t>(state.range(0));
    const auto kinds = static_cast<std::size_t>(state.range(1));
    auto drawn = DrawStacks(static_cast<int>(count), static_cast<int>(kinds));
    for (auto _ : state) {
        state.PauseTiming();
        auto table = std::make_unique<Table>();
        std::vector<decltype(table->Enter(nullptr))> entered;
        entered.reserve(kinds);
        state.ResumeTiming();
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t before = table->Known();
            auto stack = table->Enter(&drawn[i * frames]);
            if (table->Known() > before) entered.push_back(std::move(stack));
        }
        state.PauseTiming();
        if (entered.size() != kinds) state.SkipWithError("stacks were mixed up");
        entered.clear();
        table.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void Sizes(benchmark::internal::Benchmark* intern) {
    intern->Unit(benchmark::kMillisecond)->Args({500000, 500000})->Args({1000000, 50000});
}
BENCHMARK(InternStacks<SortedIndex>)->Apply(Sizes);
BENCHMARK(InternStacks<OrderedMap>)->Apply(Sizes);

void InternLines(benchmark::State& state) {
    constexpr int repeats = 4;
    std::vector<std::string> lines;
    for (int i = 0; i < callCount; ++i) lines.push_back(FrameLine(i));
    std::shuffle(lines.begin(), lines.end(), std::mt19937(2));
    for (auto _ : state) {
        TAIndexCall index;
        for (int i = 0; i < repeats; ++i)
            for (const std::string& line : lines) benchmark::DoNotOptimize(Call(line.c_str(), &index));
    }
    state.SetItemsProcessed(state.iterations() * callCount * repeats);
}
BENCHMARK(InternLines)->Unit(benchmark::kMillisecond);

// Masks as people write them for the leaks that they know: the function that allocates, what it is called
// from.
std::vector<std::unique_ptr<StackMask>> UsualMasks() {
    std::vector<std::unique_ptr<StackMask>> masks;
    for (int i = 0; i < 200; ++i) {
        const std::string n = std::to_string(i * 211);
        const std::string one = "Space" + std::to_string(i % 97) + "::@", other = "@Class" + n + "::Method@";
        const std::string texts[] = {one + "!" + other + "!@",          "@!" + other,
                                     "@@!" + one + "!.!" + other,       ".!" + other,
                                     "@!" + one + "!@!" + other + "!@", "@@!" + one + "!@!" + other};
        masks.push_back(std::make_unique<StackMask>(texts[i % 6].c_str(), "KNOWN"));
    }
    return masks;
}

void MatchUsualMasks(benchmark::State& state) {
    constexpr int count = 5000;
    const auto masks = UsualMasks();
    auto drawn = DrawStacks(count, count);
    for (auto _ : state)
        for (std::size_t i = 0; i < count; ++i)
            for (const auto& mask : masks)
                benchmark::DoNotOptimize(mask->MatchMask(&drawn[i * frames], frames));
    state.SetItemsProcessed(state.iterations() * count * static_cast<int>(masks.size()));
}
BENCHMARK(MatchUsualMasks)->Unit(benchmark::kMillisecond);

// Twenty lines of 1,000 characters under a star and ten elements, which are the most tries that a mask can
// cost: at each of eleven places nine elements match at the end of the line, and the tenth matches nowhere.
void MatchWorstMask(benchmark::State& state) {
    const std::string many = std::string(300, '@'), run = std::string(300, 'a');
    const std::string elements[][2] = {
        {"@aab", "@aac"}, {"@" + run + "b", "@" + run + "c"}, {many + "b", many + "c"}};
    const auto& [matching, failing] = elements[state.range(0)];
    std::string text = "@@";
    for (int i = 0; i < 9; ++i) text += "!" + matching;
    const StackMask mask((text + "!" + failing).c_str(), nullptr);
    const std::string line = std::string(999, 'a') + "b";
    TAIndexCall index;
    Call call(line.c_str(), &index);
    Call* calls[20];
    std::fill_n(calls, 20, &call);
    for (auto _ : state) benchmark::DoNotOptimize(mask.MatchMask(calls, 20));
}
BENCHMARK(MatchWorstMask)->DenseRange(0, 2)->Unit(benchmark::kMicrosecond);

} // namespace
