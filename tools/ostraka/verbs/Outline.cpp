// What files declare, as an outline.

#include <algorithm>
#include <iterator>
#include <map>
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

JsonValue JsonOf(const OutlineEntry& declaration) {
    JsonValue item = {{"kind", NameOf(declaration.kind)}, {"name", declaration.name}};
    if (!declaration.scope.empty()) item["scope"] = declaration.scope;
    item["text"] = declaration.text;
    item["line"] = declaration.place.line;
    item["column"] = declaration.place.column;
    if (const std::string_view visibility = VisibilityOf(declaration.visibility); !visibility.empty())
        item["visibility"] = visibility;
    if (declaration.classRecord != nullptr) {
        item["classKind"] = KindOf(*declaration.classRecord);
        if (HasBase(*declaration.classRecord)) item["base"] = declaration.classRecord->parent;
    }
    return item;
}

// A statement stands once, however many names it declares.
void PrintOutline(const Request& request, const std::string& file,
                  const std::vector<OutlineEntry>& declarations, std::string& out) {
    for (std::size_t i = 0; i < declarations.size(); ++i)
        if (i == 0 || !SharesStatement(declarations[i - 1], declarations[i]))
            PrintText(request, file, declarations[i], out);
}

JsonValue JsonOf(const std::string& file, const std::vector<OutlineEntry>& declarations) {
    JsonValue items = JsonValue::array();
    for (const OutlineEntry& declaration : declarations) items.push_back(JsonOf(declaration));
    return {{"file", file}, {"declarations", std::move(items)}};
}

void Answer(const Request& request, const Session& session, const std::vector<std::string>& files,
            Result& result) {
    JsonValue list = JsonValue::array();
    bool found = false;
    for (const std::string& file : files) {
        const std::string shown = session.Shown(file);
        const std::vector<OutlineEntry> declarations = DeclarationsOf(session.Table(), file);
        found = found || !declarations.empty();
        if (request.format == Format::Text)
            PrintOutline(request, shown, declarations, result.out);
        else if (request.format == Format::JsonLines)
            result.out += Document("outline", {{"files", JsonValue::array({JsonOf(shown, declarations)})}});
        else
            list.push_back(JsonOf(shown, declarations));
    }
    if (request.format == Format::Json) result.out = Document("outline", {{"files", std::move(list)}});
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
