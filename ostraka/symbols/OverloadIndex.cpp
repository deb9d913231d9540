// A list of known types is found by its text. Only an unknown type, on either side, needs a walk, and only
// over methods of the same name with as many arguments.

#include <ostraka/symbols/OverloadIndex.h>

#include <algorithm>

#include <ostraka/symbols/TAPDefClass.h>
#include <ostraka/symbols/TAPDefMethod.h>
#include <ostraka/symbols/TAPDefVar.h>

namespace ostraka::detail {

namespace {

constexpr std::string_view unknownType = "?";

// A line feed stands in no name and no type.
std::string KeyOf(std::string_view name, std::size_t argCount) {
    return std::string(name) + '\n' + std::to_string(argCount);
}

std::string Joined(const ArgTypes& types) {
    std::string all;
    for (const std::string& type : types) all += type + '\n';
    return all;
}

bool HasUnknown(const ArgTypes& types) {
    return std::find(types.begin(), types.end(), unknownType) != types.end();
}

ArgTypes TypesOf(const TAPDefMethod& method) {
    ArgTypes types;
    for (int i = 1; i <= method.args.Size(); ++i) types.emplace_back(method.args[i]->type);
    return types;
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
    if (HasUnknown(types)) {
        same.uncertain.push_back(same.methods.size());
    } else {
        same.placeOfTypes.try_emplace(Joined(types), same.methods.size());
    }
    same.methods.push_back(method);
}

TAPDefMethod* OverloadIndex::Find(std::string_view name, const ArgTypes& types) const {
    const auto found = overloads.find(KeyOf(name, types.size()));
    if (found == overloads.end()) return nullptr;
    const Overloads& same = found->second;
    const auto agrees = [&](TAPDefMethod* method) { return Agree(types, *method); };
    if (HasUnknown(types)) {
        const auto first = std::find_if(same.methods.begin(), same.methods.end(), agrees);
        return first != same.methods.end() ? *first : nullptr;
    }
    const auto exact = same.placeOfTypes.find(Joined(types));
    const std::size_t known = exact != same.placeOfTypes.end() ? exact->second : same.methods.size();
    for (std::size_t place : same.uncertain) {
        if (place >= known) break;
        if (agrees(same.methods[place])) return same.methods[place];
    }
    return known < same.methods.size() ? same.methods[known] : nullptr;
}

} // namespace ostraka::detail
