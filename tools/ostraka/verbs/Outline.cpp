// What files declare, as an outline.

#include <algorithm>
#include <iterator>
#include <map>
#include <set>

#include <fmt/format.h>

#include <answers/resolve/Declarations.h>
#include <ostraka/symbols/TAPSymbolTable.h>

#include "cli/Options.h"
#include "formats/JsonWriter.h"
#include "verbs/ClassRecords.h"
#include "verbs/Session.h"
#include "verbs/TableRun.h"
#include "verbs/Verbs.h"

namespace ostraka::tool {

namespace {

// The word for what it is, where its text doesn't tell.
std::string KindText(const OutlineEntry& declaration) {
    const DeclarationKind kind = declaration.kind;
    if (declaration.classRecord != nullptr) {
        const std::string known = KindOf(*declaration.classRecord);
        return known == "plain" || declaration.text.starts_with(known) ? "" : known;
    }
    const bool isAlias = declaration.text.find("typedef ") != std::string::npos ||
                         declaration.text.find("using ") != std::string::npos;
    const bool isTold = kind <= DeclarationKind::Namespace || kind == DeclarationKind::Enum ||
                        (kind == DeclarationKind::Typedef && isAlias);
    return isTold ? "" : NameOf(kind);
}

void PrintText(const Request& request, const std::string& file, const OutlineEntry& declaration,
               std::string& out) {
    fmt::format_to(std::back_inserter(out), "{}{}:{}:{}:{} {:{}}", Color(request.colorOutput, colorPlace),
                   file, declaration.place.line, declaration.place.column,
                   Color(request.colorOutput, colorOff), "", 2 * declaration.depth);
    if (const std::string kind = KindText(declaration); !kind.empty())
        fmt::format_to(std::back_inserter(out), "{}{}{} ", Color(request.colorOutput, colorClass), kind,
                       Color(request.colorOutput, colorOff));
    if (declaration.kind == DeclarationKind::Method || declaration.kind == DeclarationKind::Member)
        fmt::format_to(std::back_inserter(out), "{} ", VisibilityOf(declaration.visibility));
    out += declaration.text;
    out += '\n';
}

void DeclarationJson(JsonWriter& json, const OutlineEntry& declaration) {
    json.BeginObject();
    json.Member("kind", NameOf(declaration.kind));
    json.Member("name", declaration.name);
    if (!declaration.scope.empty()) json.Member("scope", declaration.scope);
    json.Member("text", declaration.text);
    json.Member("line", declaration.place.line);
    json.Member("column", declaration.place.column);
    if (const std::string_view visibility = VisibilityOf(declaration.visibility); !visibility.empty())
        json.Member("visibility", visibility);
    if (declaration.classRecord != nullptr) {
        json.Member("classKind", KindOf(*declaration.classRecord));
        if (HasBase(*declaration.classRecord)) json.Member("base", declaration.classRecord->parent);
    }
    json.EndObject();
}

// A statement stands once, however many names it declares.
void PrintOutline(const Request& request, const std::string& file,
                  const std::vector<OutlineEntry>& declarations, std::string& out) {
    for (std::size_t i = 0; i < declarations.size(); ++i)
        if (i == 0 || !SharesStatement(declarations[i - 1], declarations[i]))
            PrintText(request, file, declarations[i], out);
}

struct FileOutline {
    std::string file;
    std::vector<OutlineEntry> declarations;
};

void OutlineJson(JsonWriter& json, const FileOutline& outline) {
    json.BeginObject();
    json.Member("file", outline.file);
    json.List("declarations", outline.declarations,
              [&](const OutlineEntry& declaration) { DeclarationJson(json, declaration); });
    json.EndObject();
}

void Answer(const Request& request, const Session& session, const std::vector<std::string>& files,
            Result& result) {
    bool found = false;
    const auto outlineOf = [&](const std::string& file) {
        FileOutline outline{session.Shown(file), DeclarationsOf(session.Table(), file)};
        found = found || !outline.declarations.empty();
        return outline;
    };
    if (request.format == Format::Text) {
        for (const std::string& file : files) {
            const FileOutline outline = outlineOf(file);
            PrintOutline(request, outline.file, outline.declarations, result.out);
        }
    } else {
        JsonAnswer answer(request, [&](std::string_view piece) { result.out += piece; });
        answer.List("files", files, false,
                    [&](JsonWriter& json, const std::string& file) { OutlineJson(json, outlineOf(file)); });
        answer.Close();
    }
    if (!found) ++result.notFound;
}

void RunOutline(Run& run) {
    AnswerFromTable(run, Answer);
}

constexpr std::span<const Option> options[] = {tableFileOptions, outputOptions, workspaceOptions,
                                               missingOptions};

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
