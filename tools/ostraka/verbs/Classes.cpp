// Classes of a table as a list.

#include <algorithm>
#include <iterator>

#include <fmt/format.h>

#include <answers/resolve/Declarations.h>
#include <ostraka/symbols/TAPSymbolTable.h>

#include "cli/Options.h"
#include "formats/JsonWriter.h"
#include "verbs/ClassRecords.h"
#include "verbs/FileId.h"
#include "verbs/Session.h"
#include "verbs/TableRun.h"
#include "verbs/Verbs.h"

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

std::vector<const TAPDefClass*> Wanted(const Request& request, const TAPSymbolTable& table,
                                       const std::vector<std::string>& files) {
    NamedFiles wanted(files);
    std::vector<const TAPDefClass*> found;
    for (const TAPDefClass* record : ClassesOf(table))
        if (record->path != nullptr && wanted.Hold(record->path->filePath.View()) &&
            IsOfKinds(*record, request.kinds) && IsDerivedFrom(table, *record, request.derivedFrom))
            found.push_back(record);
    return found;
}

// What is in namespaces has no record in the table.
std::int64_t CountInNamespaces(const Session& session, const std::vector<std::string>& files) {
    std::int64_t count = 0;
    for (const std::string& file : files) {
        const std::vector<OutlineEntry> entries = DeclarationsOf(session.Table(), file);
        count += std::count_if(entries.begin(), entries.end(), [](const OutlineEntry& entry) {
            return !entry.scope.empty() && entry.scopeKind == DeclarationKind::Namespace;
        });
    }
    return count;
}

void TellNothingFound(const Request& request, const Session& session, const std::vector<std::string>& files,
                      Result& result) {
    ++result.notFound;
    const bool isFiltered = !request.kinds.empty() || !request.derivedFrom.empty();
    std::string line = fmt::format("no {}class in {}", isFiltered ? "such " : "",
                                   Counted(static_cast<std::int64_t>(files.size()), "file"));
    if (const std::int64_t count = CountInNamespaces(session, files); count > 0)
        line += fmt::format(" ({} in namespaces)", Counted(count, "declaration"));
    result.Note(request, line);
}

void Answer(const Request& request, const Session& session, const std::vector<std::string>& files,
            Result& result) {
    const TAPSymbolTable& table = session.Table();
    if (!request.derivedFrom.empty() && !IsSomeBase(table, request.derivedFrom))
        FindClass(session, request.derivedFrom, result);
    const std::vector<const TAPDefClass*> found = Wanted(request, table, files);
    if (found.empty()) TellNothingFound(request, session, files, result);
    if (request.format == Format::Text) {
        for (const TAPDefClass* record : found) PrintClassLine(request, session, *record, result.out);
        return;
    }
    JsonAnswer answer(request, [&](std::string_view piece) { result.out += piece; });
    answer.List("classes", found, false, [&](JsonWriter& json, const TAPDefClass* record) {
        json.BeginObject();
        ClassMembers(json, session, *record);
        json.EndObject();
    });
    answer.Close();
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
