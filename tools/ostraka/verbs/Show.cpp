// One class whole: what its record and its body tell.

#include <algorithm>
#include <iterator>

#include <fmt/format.h>

#include <answers/resolve/Declarations.h>
#include <ostraka/symbols/TAPSymbolTable.h>

#include "cli/Options.h"
#include "formats/JsonWriter.h"
#include "verbs/ClassRecords.h"
#include "verbs/PlainClass.h"
#include "verbs/Session.h"
#include "verbs/TableRun.h"
#include "verbs/Verbs.h"

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

void ArgumentJson(JsonWriter& json, const TAPDefVar& argument) {
    json.BeginObject();
    json.Key("name");
    argument.name != nullptr ? json.Value(argument.name) : json.Value(nullptr);
    json.Member("type", argument.type);
    if (const std::string_view word = DirectionOf(argument.direction); !word.empty())
        json.Member("direction", word);
    json.EndObject();
}

// What a member and a method have in common.
void EntryMembers(JsonWriter& json, const Session& session, const TAPDefClass& record,
                  const OutlineEntry& entry, std::optional<std::string_view> type) {
    json.Member("name", entry.name);
    json.Member("kind", NameOf(entry.kind));
    json.Member("text", entry.text);
    json.Member("type", type);
    if (const std::string_view word = VisibilityOf(entry.visibility); !word.empty())
        json.Member("visibility", word);
    json.Key("declared");
    if (entry.owner != nullptr)
        PlaceJson(json, session.Shown(record.path->filePath.View()), entry.place);
    else
        json.Value(nullptr);
}

void MemberJson(JsonWriter& json, const Session& session, const TAPDefClass& record,
                const OutlineEntry& entry) {
    json.BeginObject();
    EntryMembers(json, session, record, entry, OrNull(entry.type));
    json.EndObject();
}

// What a record says of a method; a method without one has its text.
void RecordMembers(JsonWriter& json, const Session& session, TAPDefMethod& method) {
    json.Key("arguments");
    if (method.path != nullptr) {
        json.BeginList();
        for (int i = 1; i <= method.args.size; ++i) ArgumentJson(json, *method.args[i]);
        json.EndList();
    } else {
        json.Value(nullptr);
    }
    json.Key("implemented");
    if (method.implPath != nullptr)
        PlaceJson(json, session, method.implPath);
    else
        json.Value(nullptr);
    if (const std::string_view word = BindingOf(method); !word.empty()) json.Member("binding", word);
    json.Member("inline", method.inlined != 0);
    if (method.implPath != nullptr) json.Member("lines", method.GetImpLine());
}

void MethodJson(JsonWriter& json, const Session& session, const TAPDefClass& record,
                const OutlineEntry& entry) {
    std::optional<std::string_view> type = OrNull(entry.type);
    if (entry.method != nullptr && entry.method->returnedType != nullptr) type = entry.method->returnedType;
    json.BeginObject();
    EntryMembers(json, session, record, entry, type);
    if (entry.method != nullptr) {
        RecordMembers(json, session, *entry.method);
    } else {
        json.Member("arguments", nullptr);
        json.Member("implemented", nullptr);
    }
    json.EndObject();
}

void WholeJson(JsonWriter& json, const Session& session, const TAPDefClass& record, const Kin& kin) {
    json.BeginObject();
    ClassMembers(json, session, record);
    NamesJson(json, "bases", kin.bases);
    NamesJson(json, "derived", kin.derived);
    TiesJson(json, record);
    NamesJson(json, "tiedTo", kin.tiedTo);
    json.Member("dispatch", record.dispatch != 0);
    const Content content = ContentOf(session.Table(), record);
    json.List("members", content.members,
              [&](const OutlineEntry& entry) { MemberJson(json, session, record, entry); });
    json.List("methods", content.methods,
              [&](const OutlineEntry& entry) { MethodJson(json, session, record, entry); });
    json.EndObject();
}

void Answer(const Request& request, const Session& session, const std::vector<std::string>& files,
            Result& result) {
    TAPDefClass* record = session.Table().GetClass(request.className.c_str());
    if (record == nullptr) {
        if (!PlainClasses(request, session, files).Show(request.className, result))
            TellNoClass(session, request.className, result);
        return;
    }
    const Kin kin = KinOf(session.Table(), *record);
    if (request.format == Format::Json) {
        return WriteAnswer(request, result.out, [&](JsonWriter& json) {
            json.Key("class");
            WholeJson(json, session, *record, kin);
        });
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
    {"CLASS", nullptr, "The class, or a method as Ship::Accept",
     Operand{[](Request& r, const std::string& name) { r.className = name; }, true}}};
constexpr std::span<const Option> options[] = {operands,         tableFileOptions,    outputOptions,
                                               workspaceOptions, headerFolderOptions, missingOptions};

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
