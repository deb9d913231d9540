// Methods of which the same arguments can be told make a group. In a group, the types that both the methods
// and the implementation can tell have to be equal, so that one table by those types has the answer:
//
//     declared     f(int, ?)  f(char, ?)      f(?, int)         two groups
//     asked for    f(char, int)               in the first by "char", in the second by "int"
//
// There are no more groups than the number of arguments has patterns, and usually one or two.

#include <ostraka/symbols/OverloadIndex.h>

#include <algorithm>

#include <ostraka/symbols/TAPDefClass.h>
#include <ostraka/symbols/TAPDefMethod.h>
#include <ostraka/symbols/TAPDefVar.h>

namespace ostraka::detail {

namespace {

constexpr std::string_view unknownType = "?";

// In a smaller group the methods are compared one by one.
constexpr std::size_t smallGroup = 4;

// Tables of one group that are kept, so that ever new patterns of implementations don't fill the memory.
constexpr std::size_t mostTables = 32;

constexpr char knownMark = 't';
constexpr char unknownMark = '?';

// A line feed stands in no name and no type.
std::string KeyOf(std::string_view name, std::size_t argCount) {
    return std::string(name) + '\n' + std::to_string(argCount);
}

ArgTypes TypesOf(const TAPDefMethod& method) {
    ArgTypes types;
    for (int i = 1; i <= method.args.Size(); ++i) types.emplace_back(method.args[i]->type);
    return types;
}

std::string KnownOf(const ArgTypes& types) {
    std::string known;
    for (const std::string& type : types) known += type == unknownType ? unknownMark : knownMark;
    return known;
}

// What both patterns know.
std::string SharedBy(std::string pattern, std::string_view other) {
    for (std::size_t i = 0; i < pattern.size(); ++i)
        if (other[i] == unknownMark) pattern[i] = unknownMark;
    return pattern;
}

// The types of the pattern in one text.
std::string Joined(const ArgTypes& types, std::string_view pattern) {
    std::string all;
    for (std::size_t i = 0; i < types.size(); ++i)
        if (pattern[i] == knownMark) all += types[i] + '\n';
    return all;
}

bool Agree(const ArgTypes& types, const TAPDefMethod& method) {
    for (std::size_t i = 0; i < types.size(); ++i) {
        const std::string_view declared = method.args[static_cast<int>(i) + 1]->type;
        if (types[i] != declared && types[i] != unknownType && declared != unknownType) return false;
    }
    return true;
}

} // namespace

OverloadIndex::OverloadIndex(const TAPDefClass& owner) {
    for (int i = 1; i <= owner.methods.Size(); ++i) Add(owner.methods[i]);
}

void OverloadIndex::Add(TAPDefMethod* method) {
    const ArgTypes types = TypesOf(*method);
    Overloads& same = overloads[KeyOf(method->name, types.size())];
    const std::string known = KnownOf(types);
    const std::size_t number = same.groupOf.try_emplace(known, same.groups.size()).first->second;
    if (number == same.groups.size()) same.groups.push_back({known, {}, {}});
    Group& group = same.groups[number];
    group.places.push_back(same.methods.size());
    for (auto& [shared, table] : group.byTypes) table.try_emplace(Joined(types, shared), same.methods.size());
    same.methods.push_back(method);
}

TAPDefMethod* OverloadIndex::Find(std::string_view name, const ArgTypes& types) {
    const auto found = overloads.find(KeyOf(name, types.size()));
    if (found == overloads.end()) return nullptr;
    Overloads& same = found->second;
    std::size_t first = same.methods.size();
    for (Group& group : same.groups) {
        if (group.places.front() >= first) break;
        first = std::min(first, FirstIn(same, group, types));
    }
    return first < same.methods.size() ? same.methods[first] : nullptr;
}

// The place of the first method in the group that agrees; behind all methods if there is none.
std::size_t OverloadIndex::FirstIn(const Overloads& same, Group& group, const ArgTypes& types) {
    if (group.places.size() <= smallGroup) {
        const auto agrees = [&](std::size_t place) { return Agree(types, *same.methods[place]); };
        const auto place = std::find_if(group.places.begin(), group.places.end(), agrees);
        return place != group.places.end() ? *place : same.methods.size();
    }
    const Pattern shared = SharedBy(group.known, KnownOf(types));
    const PlaceOfTypes& table = TableFor(same, group, shared);
    const auto place = table.find(Joined(types, shared));
    return place != table.end() ? place->second : same.methods.size();
}

const OverloadIndex::PlaceOfTypes& OverloadIndex::TableFor(const Overloads& same, Group& group,
                                                           const Pattern& shared) {
    const auto made = group.byTypes.find(shared);
    if (made != group.byTypes.end()) return made->second;
    if (group.byTypes.size() == mostTables) group.byTypes.clear();
    PlaceOfTypes& table = group.byTypes[shared];
    for (std::size_t place : group.places)
        table.try_emplace(Joined(TypesOf(*same.methods[place]), shared), place);
    return table;
}

} // namespace ostraka::detail
