// One class whole: what its record and its body tell.

#include <algorithm>
#include <iterator>
#include <map>
#include <utility>

#include <fmt/format.h>

#include <answers/resolve/Declarations.h>
#include <ostraka/symbols/TAPSymbolTable.h>

#include "cli/Options.h"
#include "formats/JsonWriter.h"
#include "verbs/ClassRecords.h"
#include "verbs/Declared.h"
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

// What the body of a class says, with its record where the table has one.
struct Line {
    OutlineEntry entry;
    TAPDefMethod* method = nullptr;
    bool isInBody = true;
};

// What the body of a class holds, and the methods that are only implemented.
struct Content {
    std::vector<Line> members; // all but methods and enumerators
    std::vector<Line> methods;
};

// The entry of the class; null for one that isn't in the file's outline.
const OutlineEntry* EntryOf(const OutlinedFile& file, const TAPDefClass& record) {
    const OutlineEntry* atPlace = file.EntryAt(PlaceOf(*record.path));
    if (atPlace != nullptr && atPlace->declared >= 0) return atPlace;
    const auto found =
        std::find_if(file.Entries().begin(), file.Entries().end(), [&](const OutlineEntry& entry) {
            return entry.kind <= DeclarationKind::Union && entry.name == record.name;
        });
    return found == file.Entries().end() ? nullptr : &*found;
}

using MethodsByPlace = std::map<std::pair<int, int>, TAPDefMethod*>;

MethodsByPlace DeclaredMethods(const TAPDefClass& record) {
    MethodsByPlace methods;
    for (int i = 1; i <= record.methods.size; ++i)
        if (record.methods[i]->path != nullptr) {
            const Place place = PlaceOf(*record.methods[i]->path);
            methods.try_emplace({place.line, place.column}, record.methods[i]);
        }
    return methods;
}

// The head of an implementation as it reads, without the list of initialisers.
std::string ImplementationText(const TAPDefMethod& method) {
    if (method.implPath == nullptr) return method.name;
    const OutlinedFile file(std::string(method.implPath->filePath.View()));
    const OutlineEntry* entry = file.EntryAt(PlaceOf(*method.implPath));
    return entry != nullptr ? entry->text : method.name;
}

Content ContentOf(const TAPDefClass& record) {
    Content content;
    if (record.path == nullptr) return content;
    const OutlinedFile file(std::string(record.path->filePath.View()));
    const OutlineEntry* own = EntryOf(file, record);
    const MethodsByPlace methods = DeclaredMethods(record);
    for (const OutlineEntry& entry : file.Entries()) {
        if (own == nullptr || entry.declared < 0 ||
            file.DeclaredOf(entry).scope != file.DeclaredOf(*own).body)
            continue;
        const auto method = methods.find({entry.place.line, entry.place.column});
        if (entry.kind == DeclarationKind::Method)
            content.methods.push_back({entry, method == methods.end() ? nullptr : method->second});
        else if (entry.kind != DeclarationKind::Enumerator)
            content.members.push_back({entry});
    }
    for (int i = 1; i <= record.methods.size; ++i) {
        TAPDefMethod& method = *record.methods[i];
        if (method.path != nullptr) continue;
        Line line{{}, &method, false};
        line.entry.kind = DeclarationKind::Implementation;
        line.entry.name = method.name;
        line.entry.text = ImplementationText(method);
        content.methods.push_back(std::move(line));
    }
    return content;
}

std::string WithVisibility(const OutlineEntry& entry) {
    return entry.access == Access::None ? entry.text : fmt::format("{} {}", WordOf(entry.access), entry.text);
}

// A statement stands once, however many names it declares.
void PrintMembers(const Request& request, const Session& session, const TAPDefClass& record,
                  const Content& content, std::string& out) {
    if (!content.members.empty()) out += "members\n";
    const OutlineEntry* last = nullptr;
    for (const Line& member : content.members) {
        const bool isShown = last != nullptr && SharesStatement(*last, member.entry);
        last = &member.entry;
        if (isShown) continue;
        fmt::format_to(std::back_inserter(out), "  {}  {}\n", WithVisibility(member.entry),
                       PlaceText(request, session.Shown(record.path->filePath.View()), member.entry.place));
    }
}

void PrintMethods(const Request& request, const Session& session, const TAPDefClass& record,
                  const Content& content, std::string& out) {
    if (!content.methods.empty()) out += "methods\n";
    for (const Line& line : content.methods) {
        fmt::format_to(std::back_inserter(out), "  {}\n", WithVisibility(line.entry));
        if (line.isInBody)
            fmt::format_to(std::back_inserter(out), "    declared    {}\n",
                           PlaceText(request, session.Shown(record.path->filePath.View()), line.entry.place));
        if (line.method != nullptr && line.method->implPath != nullptr)
            fmt::format_to(std::back_inserter(out), "    implemented {}, lines: {}\n",
                           PlaceText(request, session, line.method->implPath), line.method->GetImpLine());
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
void EntryMembers(JsonWriter& json, const Session& session, const TAPDefClass& record, const Line& line,
                  std::optional<std::string_view> type) {
    const OutlineEntry& entry = line.entry;
    json.Member("name", entry.name);
    json.Member("kind", NameOf(entry.kind));
    json.Member("text", entry.text);
    json.Member("type", type);
    if (entry.access != Access::None) json.Member("visibility", WordOf(entry.access));
    json.Key("declared");
    if (line.isInBody)
        PlaceJson(json, session.Shown(record.path->filePath.View()), entry.place);
    else
        json.Value(nullptr);
}

void MemberJson(JsonWriter& json, const Session& session, const TAPDefClass& record, const Line& line) {
    json.BeginObject();
    EntryMembers(json, session, record, line, OrNull(line.entry.type));
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

void MethodJson(JsonWriter& json, const Session& session, const TAPDefClass& record, const Line& line) {
    std::optional<std::string_view> type = OrNull(line.entry.type);
    if (line.method != nullptr && line.method->returnedType != nullptr) type = line.method->returnedType;
    json.BeginObject();
    EntryMembers(json, session, record, line, type);
    if (line.method != nullptr) {
        RecordMembers(json, session, *line.method);
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
    const Content content = ContentOf(record);
    json.List("members", content.members, [&](const Line& line) { MemberJson(json, session, record, line); });
    json.List("methods", content.methods, [&](const Line& line) { MethodJson(json, session, record, line); });
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
    const Content content = ContentOf(*record);
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
