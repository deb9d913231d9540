// One class whole: what its record and its body tell.

#include <algorithm>
#include <iterator>

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

void PrintRelation(const Request& request, const Session& session, const char* word, const TAPDefClass& other,
                   std::string& out) {
    fmt::format_to(std::back_inserter(out), "  {:<9} {}  {}\n", word, other.name,
                   PlaceText(request, session, other.path));
}

void PrintHead(const Request& request, const Session& session, const TAPDefClass& record, const Kin& kin,
               std::string& out) {
    fmt::format_to(std::back_inserter(out), "{} {}{}\n  {:<9} {}\n",
                   Colored(request, colorClass, KindOf(record)), record.name, FrameworkText(record),
                   "declared", PlaceText(request, session, record.path));
    for (const TAPDefClass* base : kin.bases) PrintRelation(request, session, "base", *base, out);
    const TAPDefClass& last = kin.bases.empty() ? record : *kin.bases.back();
    if (kin.inCircle) {
        fmt::format_to(std::back_inserter(out), "  {:<9} {}, which closes a circle\n", "base", BaseOf(last));
    } else if (HasBase(last)) {
        fmt::format_to(std::back_inserter(out), "  {:<9} {}, which isn't loaded\n", "base", last.parent);
    }
    for (const TAPDefClass* other : kin.derived) PrintRelation(request, session, "derived", *other, out);
    for (int i = 1; i <= record.tied.size; ++i) PrintRelation(request, session, "ties", *record.tied[i], out);
    for (const TAPDefClass* other : kin.tiedTo) PrintRelation(request, session, "tied to", *other, out);
    if (record.dispatch != 0) out += "  dispatch  through NUBBaseDispatch\n";
}

// What the body of a class holds, and the methods that are only implemented.
struct Content {
    std::vector<OutlineEntry> members; // all but methods and enumerators
    std::vector<OutlineEntry> methods;
};

Content ContentOf(TAPSymbolTable& table, const TAPDefClass& record) {
    Content content;
    for (OutlineEntry& entry : MembersOf(table, record)) {
        if (entry.kind == DeclarationKind::Method)
            content.methods.push_back(std::move(entry));
        else if (entry.kind != DeclarationKind::Enumerator)
            content.members.push_back(std::move(entry));
    }
    for (int i = 1; i <= record.methods.size; ++i) {
        TAPDefMethod& method = *record.methods[i];
        if (method.path != nullptr) continue;
        OutlineEntry entry;
        entry.kind = DeclarationKind::Implementation;
        entry.name = method.name;
        entry.text = ImplementationText(table, method);
        entry.method = &method;
        content.methods.push_back(std::move(entry));
    }
    return content;
}

std::string WithVisibility(const OutlineEntry& entry) {
    const std::string_view visibility = VisibilityOf(entry.visibility);
    return visibility.empty() ? entry.text : fmt::format("{} {}", visibility, entry.text);
}

// A statement stands once, however many names it declares.
void PrintMembers(const Request& request, const Session& session, const TAPDefClass& record,
                  const Content& content, std::string& out) {
    if (!content.members.empty()) out += "members\n";
    const OutlineEntry* last = nullptr;
    for (const OutlineEntry& member : content.members) {
        const bool isShown = last != nullptr && SharesStatement(*last, member);
        last = &member;
        if (isShown) continue;
        fmt::format_to(std::back_inserter(out), "  {}  {}\n", WithVisibility(member),
                       PlaceText(request, session.Shown(record.path->filePath.View()), member.place));
    }
}

void PrintMethods(const Request& request, const Session& session, const TAPDefClass& record,
                  const Content& content, std::string& out) {
    if (!content.methods.empty()) out += "methods\n";
    for (const OutlineEntry& entry : content.methods) {
        fmt::format_to(std::back_inserter(out), "  {}\n", WithVisibility(entry));
        if (entry.owner != nullptr)
            fmt::format_to(std::back_inserter(out), "    declared    {}\n",
                           PlaceText(request, session.Shown(record.path->filePath.View()), entry.place));
        if (entry.method != nullptr && entry.method->implPath != nullptr)
            fmt::format_to(std::back_inserter(out), "    implemented {}, lines: {}\n",
                           PlaceText(request, session, entry.method->implPath), entry.method->GetImpLine());
    }
}

JsonValue JsonOf(const TAPDefVar& argument) {
    JsonValue item = {{"name", nullptr}, {"type", argument.type}};
    if (argument.name != nullptr) item["name"] = argument.name;
    if (const std::string_view word = DirectionOf(argument.direction); !word.empty())
        item["direction"] = word;
    return item;
}

// What a record says of a method; a method without one has its text.
void PutRecord(JsonValue& item, const Session& session, TAPDefMethod& method) {
    if (method.returnedType != nullptr) item["type"] = method.returnedType;
    if (method.path != nullptr) {
        item["arguments"] = JsonValue::array();
        for (int i = 1; i <= method.args.size; ++i) item["arguments"].push_back(JsonOf(*method.args[i]));
    }
    if (const std::string_view word = BindingOf(method); !word.empty()) item["binding"] = word;
    item["inline"] = method.inlined != 0;
    if (method.implPath == nullptr) return;
    item["implemented"] = JsonPlace(session, method.implPath);
    item["lines"] = method.GetImpLine();
}

JsonValue JsonOf(const Session& session, const TAPDefClass& record, const OutlineEntry& entry) {
    JsonValue item = {{"name", entry.name}, {"kind", NameOf(entry.kind)}, {"text", entry.text}};
    item["type"] = entry.type.empty() ? JsonValue() : JsonValue(entry.type);
    if (const std::string_view word = VisibilityOf(entry.visibility); !word.empty())
        item["visibility"] = word;
    item["declared"] = nullptr;
    if (entry.owner != nullptr)
        item["declared"] = JsonPlace(session.Shown(record.path->filePath.View()), entry.place);
    return item;
}

JsonValue MethodJson(const Session& session, const TAPDefClass& record, const OutlineEntry& entry) {
    JsonValue item = JsonOf(session, record, entry);
    item["arguments"] = nullptr;
    item["implemented"] = nullptr;
    if (entry.method != nullptr) PutRecord(item, session, *entry.method);
    return item;
}

JsonValue WholeJson(const Session& session, const TAPDefClass& record, const Kin& kin) {
    JsonValue item = JsonOf(session, record);
    item["bases"] = NamesOf(kin.bases);
    item["derived"] = NamesOf(kin.derived);
    item["ties"] = TiesOf(record);
    item["tiedTo"] = NamesOf(kin.tiedTo);
    item["dispatch"] = record.dispatch != 0;
    item["members"] = JsonValue::array();
    item["methods"] = JsonValue::array();
    const Content content = ContentOf(session.Table(), record);
    for (const OutlineEntry& member : content.members)
        item["members"].push_back(JsonOf(session, record, member));
    for (const OutlineEntry& method : content.methods)
        item["methods"].push_back(MethodJson(session, record, method));
    return item;
}

void Answer(const Request& request, const Session& session, const std::vector<std::string>&, Result& result) {
    TAPDefClass* record = FindClass(session, request.className, result);
    if (record == nullptr) return;
    const Kin kin = KinOf(session.Table(), *record);
    if (request.format == Format::Json) {
        result.out = Document("show", {{"class", WholeJson(session, *record, kin)}});
        return;
    }
    PrintHead(request, session, *record, kin, result.out);
    const Content content = ContentOf(session.Table(), *record);
    PrintMembers(request, session, *record, content, result.out);
    PrintMethods(request, session, *record, content, result.out);
}

void RunShow(Run& run) {
    AnswerFromTable(run, Answer);
}

constexpr Option operands[] = {
    {"CLASS", nullptr, "The class",
     Operand{[](Request& r, const std::string& name) { r.className = name; }, true}}};
constexpr std::span<const Option> options[] = {operands, tableFileOptions, outputOptions, workspaceOptions,
                                               missingOptions};

} // namespace

const Verb showVerb = {
    "show",
    "Show one class whole: bases, ties, members, methods, and where they are",
    {"ostraka show Berth -w harbour:coast", "ostraka show IBerth -w harbour:coast",
     "ostraka show Ship -w harbour:coast --format json"},
    answerFormats,
    options,
    nullptr,
    RunShow,
};

} // namespace ostraka::tool
