#include <ostraka/symbols/LineOfBases.h>

#include <ostraka/symbols/CircleWatch.h>
#include <ostraka/symbols/TAPSymbolTable.h>

namespace ostraka::detail {

namespace {

// Shorter walks cost less than what they would leave behind.
constexpr std::size_t longWalk = 4;

} // namespace

bool LineOfBases::LeadsTo(const TAPSymbolTable& table, const TAPDefClass* cls, std::string_view name) {
    if (cls == nullptr) return false;
    Serve(table, name);
    passed.clear();
    const Rest rest = Walk(table, cls, name);
    if (passed.size() > longWalk)
        for (const TAPDefClass* each : passed) rests[each] = rest;
    return rest.end == End::Found;
}

void LineOfBases::Serve(const TAPSymbolTable& table, std::string_view name) {
    const std::uint64_t now = table.classIndex.Epoch();
    if (now == epoch && name == sought) return;
    epoch = now;
    sought = name;
    rests.clear();
}

LineOfBases::Rest LineOfBases::Walk(const TAPSymbolTable& table, const TAPDefClass* cls,
                                    std::string_view name) {
    CircleWatch watch;
    for (;;) {
        passed.push_back(cls);
        if (watch.IsBackAt(cls)) return {cls, End::NotFound};
        const auto known = rests.find(cls);
        if (known != rests.end() && known->second.end != End::Open) return known->second;
        if (known != rests.end() && known->second.last != cls) {
            cls = known->second.last;
            continue;
        }
        const char* parent = cls->parent;
        if (name == (cls->name != nullptr ? cls->name : "")) return {cls, End::Found};
        if (parent == nullptr) return {cls, End::NotFound};
        if (name == parent) return {cls, End::Found};
        const TAPDefClass* next = table.GetClass(parent);
        if (next == nullptr) return {cls, End::Open};
        cls = next;
    }
}

} // namespace ostraka::detail
