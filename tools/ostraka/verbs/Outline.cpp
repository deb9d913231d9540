// What files declare, as an outline.

#include <iterator>
#include <memory>

#include <fmt/format.h>

#include <answers/resolve/Declarations.h>

#include "cli/Options.h"
#include "formats/JsonWriter.h"
#include "verbs/CodeSession.h"
#include "verbs/Declared.h"
#include "verbs/Session.h"
#include "verbs/TableRun.h"
#include "verbs/Verbs.h"

namespace ostraka::tool {

namespace {

// What a file declares, and the file that says it.
struct FileOutline {
    std::string file;
    std::unique_ptr<OutlinedFile> read;
    std::vector<OutlineEntry> entries;
};

bool IsClassWithBody(const OutlinedFile& file, const OutlineEntry& entry) {
    return entry.declared >= 0 && entry.kind <= DeclarationKind::Union && file.DeclaredOf(entry).body >= 0;
}

// The word for what it is, where its text doesn't tell.
std::string KindText(const OutlinedFile& file, const OutlineEntry& entry) {
    const DeclarationKind kind = entry.kind;
    if (IsClassWithBody(file, entry)) {
        const std::string_view sort = SortOf(file.Facts(), file.DeclaredOf(entry));
        return sort == "plain" || entry.text.starts_with(sort) ? "" : std::string(sort);
    }
    const bool isAlias =
        entry.text.find("typedef ") != std::string::npos || entry.text.find("using ") != std::string::npos;
    const bool isTold = kind <= DeclarationKind::Namespace || kind == DeclarationKind::Enum ||
                        kind == DeclarationKind::Concept || (kind == DeclarationKind::Typedef && isAlias);
    return isTold ? "" : NameOf(kind);
}

void PrintText(const Request& request, const FileOutline& outline, const OutlineEntry& entry,
               std::string& out) {
    fmt::format_to(std::back_inserter(out), "{}{}:{}:{}:{} {:{}}", Color(request.colorOutput, colorPlace),
                   outline.file, entry.place.line, entry.place.column, Color(request.colorOutput, colorOff),
                   "", 2 * entry.depth);
    if (const std::string kind = KindText(*outline.read, entry); !kind.empty())
        fmt::format_to(std::back_inserter(out), "{}{}{} ", Color(request.colorOutput, colorClass), kind,
                       Color(request.colorOutput, colorOff));
    if (entry.kind == DeclarationKind::Method || entry.kind == DeclarationKind::Member)
        fmt::format_to(std::back_inserter(out), "{} ", WordOf(entry.access));
    out += entry.text;
    out += '\n';
}

void ClassJson(JsonWriter& json, const OutlinedFile& file, const Declared& declared) {
    json.Member("classKind", SortOf(file.Facts(), declared));
    const auto first = file.Facts().bases.begin() + declared.firstBase;
    const std::vector<Base> bases(first, first + declared.bases);
    if (!bases.empty()) json.Member("base", bases.back().name);
    BasesJson(json, bases);
}

void EntryJson(JsonWriter& json, const OutlinedFile& file, const OutlineEntry& entry) {
    json.BeginObject();
    json.Member("kind", NameOf(entry.kind));
    json.Member("name", entry.name);
    if (!entry.scope.empty()) json.Member("scope", entry.scope);
    json.Member("text", entry.text);
    json.Member("line", entry.place.line);
    json.Member("column", entry.place.column);
    if (entry.access != Access::None) json.Member("visibility", WordOf(entry.access));
    if (IsClassWithBody(file, entry)) ClassJson(json, file, file.DeclaredOf(entry));
    json.EndObject();
}

// A statement stands once, however many names it declares.
void PrintOutline(const Request& request, const FileOutline& outline, std::string& out) {
    for (std::size_t i = 0; i < outline.entries.size(); ++i)
        if (i == 0 || !SharesStatement(outline.entries[i - 1], outline.entries[i]))
            PrintText(request, outline, outline.entries[i], out);
}

void OutlineJson(JsonWriter& json, const FileOutline& outline) {
    json.BeginObject();
    json.Member("file", outline.file);
    json.List("declarations", outline.entries,
              [&](const OutlineEntry& entry) { EntryJson(json, *outline.read, entry); });
    json.EndObject();
}

void Answer(const Request& request, const Session& session, const std::vector<std::string>& files,
            Result& result) {
    bool found = false;
    CodeSession code(request, files, &session);
    const auto outlineOf = [&](const std::string& file) {
        FileOutline outline{
            session.Shown(file), std::make_unique<OutlinedFile>(file, code.Base().DroppedWords()), {}};
        outline.entries = outline.read->Entries();
        TakeAccess(code, file, outline.entries);
        found = found || !outline.entries.empty();
        return outline;
    };
    if (request.format == Format::Text) {
        for (const std::string& file : files) PrintOutline(request, outlineOf(file), result.out);
    } else {
        JsonAnswer answer(request, [&](std::string_view piece) { result.out += piece; });
        answer.List("files", files, false,
                    [&](JsonWriter& json, const std::string& file) { OutlineJson(json, outlineOf(file)); });
        answer.Close();
    }
    code.TellHeads(files, result);
    if (!found) ++result.notFound;
}

void RunOutline(Run& run) {
    AnswerFromTable(run, Answer);
}

constexpr std::span<const Option> options[] = {tableFileOptions, outputOptions, workspaceOptions,
                                               missingOptions, headerFolderOptions};

} // namespace

const Verb outlineVerb = {
    "outline",
    "Tell what files declare and implement, in the order of the text",
    {"ostraka outline -w harbour:coast harbour/Berths/PublicInterfaces/Berth.h",
     "ostraka outline -w harbour:coast harbour/Ships/Ships.m",
     "ostraka outline -w harbour:coast --format json harbour/Berths/PublicInterfaces/IBerth.idl"},
    listFormats,
    options,
    CheckFiles,
    RunOutline,
};

} // namespace ostraka::tool
