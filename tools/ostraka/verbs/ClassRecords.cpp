#include "verbs/ClassRecords.h"

#include <algorithm>
#include <iterator>
#include <set>

#include <fmt/format.h>

#include <answers/resolve/Declarations.h>
#include <ostraka/symbols/TAPSymbolTable.h>

#include "cli/Nearest.h"
#include "cli/Run.h"
#include "verbs/Session.h"

namespace ostraka::tool {

namespace {

// What the record of a file says that lies in none.
constexpr std::string_view noFramework = "NotInAframework";

struct Shown {
    std::string file;
    Place place;
};

Shown ShownPlace(const Session& session, const TAPSyntaxePath* path) {
    if (path == nullptr) return {"?", {}};
    return {session.Shown(path->filePath.View()), PlaceOf(*path)};
}

} // namespace

std::string PlaceText(const Request& request, const Session& session, const TAPSyntaxePath* path) {
    const Shown shown = ShownPlace(session, path);
    return PlaceText(request, shown.file, shown.place);
}

std::string_view FrameworkOf(const TAPDefClass& record) {
    if (record.source == nullptr || record.source->framework == nullptr) return "";
    const std::string_view framework = record.source->framework;
    return framework == noFramework ? "" : framework;
}

std::string FrameworkText(const TAPDefClass& record) {
    const std::string_view framework = FrameworkOf(record);
    return framework.empty() ? "" : fmt::format("  [{}]", framework);
}

const char* BaseOf(const TAPDefClass& record) {
    return record.parent != nullptr ? record.parent : "";
}

bool HasBase(const TAPDefClass& record) {
    return *BaseOf(record) != 0;
}

std::vector<TAPDefClass*> ClassesOf(const TAPSymbolTable& table) {
    std::vector<TAPDefClass*> classes;
    classes.reserve(static_cast<std::size_t>(table.classIndex.size));
    for (int i = 0; i < table.classIndex.size; ++i)
        classes.push_back(static_cast<TAPDefClass*>(table.classIndex.values[i]));
    return classes;
}

void ClassMembers(JsonWriter& json, const Session& session, const TAPDefClass& record) {
    json.Member("name", record.name);
    json.Member("kind", KindOf(record));
    json.Member("base", OrNull(BaseOf(record)));
    json.Member("framework", FrameworkOf(record));
    const Shown shown = ShownPlace(session, record.path);
    json.PlaceMembers(shown.file, shown.place);
}

void PlaceJson(JsonWriter& json, const std::string& file, const Place& place) {
    json.BeginObject();
    json.PlaceMembers(file, place);
    json.EndObject();
}

void PlaceJson(JsonWriter& json, const Session& session, const TAPSyntaxePath* path) {
    const Shown shown = ShownPlace(session, path);
    PlaceJson(json, shown.file, shown.place);
}

void NamesJson(JsonWriter& json, std::string_view member, const std::vector<TAPDefClass*>& classes) {
    json.List(member, classes, [&](const TAPDefClass* record) { json.Value(record->name); });
}

void TiesJson(JsonWriter& json, const TAPDefClass& record) {
    json.Key("ties");
    json.BeginList();
    for (int i = 1; i <= record.tied.size; ++i) json.Value(record.tied[i]->name);
    json.EndList();
}

Kin KinOf(const TAPSymbolTable& table, const TAPDefClass& record) {
    Kin kin;
    std::set<const TAPDefClass*> seen = {&record};
    for (const TAPDefClass* at = &record; HasBase(*at);) {
        TAPDefClass* base = table.GetClass(at->parent);
        if (base == nullptr) break;
        kin.inCircle = !seen.insert(base).second;
        if (kin.inCircle) break;
        kin.bases.push_back(base);
        at = base;
    }
    for (TAPDefClass* other : ClassesOf(table)) {
        if (std::string_view(BaseOf(*other)) == record.name) kin.derived.push_back(other);
        for (int i = 1; i <= other->tied.size; ++i)
            if (other->tied[i] == &record) kin.tiedTo.push_back(other);
    }
    return kin;
}

TAPDefClass* FindClass(const Session& session, const std::string& name, Result& result) {
    TAPDefClass* record = session.Table().GetClass(name.c_str());
    if (record == nullptr) TellNoClass(session, name, result);
    return record;
}

void TellNoClass(const Session& session, const std::string& name, Result& result) {
    std::vector<std::string> names;
    for (const TAPDefClass* record : ClassesOf(session.Table())) names.emplace_back(record->name);
    result.err += fmt::format("ostraka: there is no class {}{}\n", name, Hint(name, names));
    ++result.notFound;
}

} // namespace ostraka::tool
