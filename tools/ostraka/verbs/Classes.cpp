// Classes of a table as a list.

#include <algorithm>
#include <iterator>
#include <set>

#include <fmt/format.h>
#include <ostraka/symbols/TAPSymbolTable.h>

#include "cli/Options.h"
#include "formats/Json.h"
#include "verbs/ClassRecords.h"
#include "verbs/Session.h"
#include "verbs/TableRun.h"
#include "verbs/Verbs.h"
#include <answers/resolve/Declarations.h>

namespace ostraka::tool {

namespace {

bool IsOfKinds(const TAPDefClass& record, const std::vector<std::string>& kinds) {
    const std::string own = KindOf(record);
    return kinds.empty() || std::any_of(kinds.begin(), kinds.end(), [&](const std::string& kind) {
               return own.find(kind) != std::string::npos;
           });
}

bool IsDerivedFrom(const TAPSymbolTable& table, const TAPDefClass& record, const std::string& base) {
    return base.empty() || (base != record.name && table.InheritFrom(record.name, base.c_str()) != 0);
}

void PrintClassLine(const Request& request, const Session& session, const TAPDefClass& record,
                    std::string& out) {
    fmt::format_to(std::back_inserter(out), "{}: {} {}", PlaceText(request, session, record.path),
                   Colored(request, colorClass, KindOf(record)), record.name);
    if (HasBase(record)) fmt::format_to(std::back_inserter(out), " : {}", record.parent);
    out += FrameworkText(record) + "\n";
}

// A base needn't be loaded to be one.
bool IsSomeBase(const TAPSymbolTable& table, const std::string& name) {
    const std::vector<TAPDefClass*> classes = ClassesOf(table);
    return std::any_of(classes.begin(), classes.end(),
                       [&](const TAPDefClass* record) { return BaseOf(*record) == name; });
}

void Answer(const Request& request, const Session& session, const std::vector<std::string>& files,
            Result& result) {
    const std::set<std::string_view> wanted(files.begin(), files.end());
    const TAPSymbolTable& table = session.Table();
    JsonValue list = JsonValue::array();
    bool found = false;
    if (!request.derivedFrom.empty() && !IsSomeBase(table, request.derivedFrom))
        FindClass(session, request.derivedFrom, result);
    for (const TAPDefClass* record : ClassesOf(table)) {
        if (record->path == nullptr || !wanted.contains(record->path->filePath.View())) continue;
        if (!IsOfKinds(*record, request.kinds) || !IsDerivedFrom(table, *record, request.derivedFrom))
            continue;
        found = true;
        if (request.format == Format::Text) PrintClassLine(request, session, *record, result.out);
        if (request.format == Format::Json) list.push_back(JsonOf(session, *record));
        if (request.format == Format::JsonLines)
            result.out += Document("classes", {{"classes", JsonValue::array({JsonOf(session, *record)})}});
    }
    if (request.format == Format::Json) result.out = Document("classes", {{"classes", std::move(list)}});
    if (!found) ++result.notFound;
}

void RunClasses(Run& run) {
    AnswerFromTable(run, Answer);
}

constexpr const char* kinds[] = {"plain", "interface", "component"};

constexpr Option ownOptions[] = {
    {"--kind", "plain,interface,component", "Only classes of one of these kinds",
     Word{kinds, [](Request& r, std::size_t kind) { r.kinds.emplace_back(kinds[kind]); }, true}},
    {"--derived-from", "NAME", "Only classes with this one among their bases",
     Text{[](Request& r, const std::string& name) { r.derivedFrom = name; }}}};
constexpr std::span<const Option> options[] = {tableFileOptions, outputOptions, workspaceOptions,
                                               missingOptions, ownOptions};

} // namespace

const Verb classesVerb = {
    "classes",
    "List classes with kind, base, framework and place",
    {"ostraka classes -w harbour:coast", "ostraka classes -w harbour:coast --kind interface",
     "ostraka classes -w harbour:coast --derived-from CoastObject harbour"},
    listFormats,
    options,
    nullptr,
    RunClasses,
};

} // namespace ostraka::tool
