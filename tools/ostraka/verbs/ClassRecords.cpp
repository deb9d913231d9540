#include "verbs/ClassRecords.h"

#include <algorithm>
#include <iterator>
#include <set>

#include <fmt/format.h>
#include <ostraka/symbols/TAPSymbolTable.h>

#include "cli/Nearest.h"
#include "cli/Run.h"
#include "verbs/Session.h"
#include <answers/resolve/Declarations.h>

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

JsonValue JsonOf(const Session& session, const TAPDefClass& record) {
    JsonValue item = {{"name", record.name}, {"kind", KindOf(record)}, {"base", nullptr}};
    if (HasBase(record)) item["base"] = record.parent;
    item["framework"] = FrameworkOf(record);
    const Shown shown = ShownPlace(session, record.path);
    PutPlace(item, shown.file, shown.place);
    return item;
}

JsonValue JsonPlace(const std::string& file, const Place& place) {
    JsonValue object = JsonValue::object();
    PutPlace(object, file, place);
    return object;
}

JsonValue JsonPlace(const Session& session, const TAPSyntaxePath* path) {
    const Shown shown = ShownPlace(session, path);
    return JsonPlace(shown.file, shown.place);
}

JsonValue NamesOf(const std::vector<TAPDefClass*>& classes) {
    JsonValue names = JsonValue::array();
    for (const TAPDefClass* record : classes) names.push_back(record->name);
    return names;
}

JsonValue TiesOf(const TAPDefClass& record) {
    JsonValue names = JsonValue::array();
    for (int i = 1; i <= record.tied.size; ++i) names.push_back(record.tied[i]->name);
    return names;
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
    if (TAPDefClass* record = session.Table().GetClass(name.c_str())) return record;
    std::vector<std::string> names;
    for (const TAPDefClass* record : ClassesOf(session.Table())) names.emplace_back(record->name);
    result.err += fmt::format("ostraka: there is no class {}{}\n", name, Hint(name, names));
    ++result.notFound;
    return nullptr;
}

} // namespace ostraka::tool
