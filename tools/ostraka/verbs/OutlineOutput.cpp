// What files declare: as an outline, and as tags for editors.

#include <algorithm>
#include <iterator>
#include <map>
#include <set>

#include <fmt/format.h>
#include <ostraka/symbols/TAPSymbolTable.h>

#include "formats/Json.h"
#include "verbs/ClassRecords.h"
#include "verbs/Session.h"
#include "verbs/TableVerbs.h"
#include <answers/facts/RawFile.h>
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
    const bool isTold = kind <= DeclarationKind::Namespace || kind == DeclarationKind::Enum ||
                        (kind == DeclarationKind::Typedef && declaration.text.starts_with("typedef "));
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

// ---- tags

// The kinds of the tags format; functions have another where their body stands.
constexpr char bodyLetter = 'f';

struct TagKind {
    DeclarationKind kind;
    char letter;
};

constexpr TagKind tagKinds[] = {
    {DeclarationKind::Class, 'c'},     {DeclarationKind::Struct, 's'},   {DeclarationKind::Union, 'u'},
    {DeclarationKind::Namespace, 'n'}, {DeclarationKind::Enum, 'g'},     {DeclarationKind::Enumerator, 'e'},
    {DeclarationKind::Typedef, 't'},   {DeclarationKind::Method, 'p'},   {DeclarationKind::Member, 'm'},
    {DeclarationKind::Function, 'p'},  {DeclarationKind::Variable, 'v'},
};

// 0 for what gets no tag.
char TagLetterOf(const OutlineEntry& declaration) {
    if (declaration.hasBody) return bodyLetter;
    const auto* found = std::find_if(std::begin(tagKinds), std::end(tagKinds),
                                     [&](const TagKind& row) { return row.kind == declaration.kind; });
    return found == std::end(tagKinds) ? '\0' : found->letter;
}

std::vector<std::string_view> LinesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(text.size(), line.size() + 1));
        if (line.ends_with('\r')) line.remove_suffix(1);
        lines.push_back(line);
    }
    return lines;
}

// The search pattern of a line: editors take it as it stands, but for these characters. A long line is cut
// and not held at its end, where a `$` would do that.
std::string PatternFor(std::string_view line) {
    constexpr std::size_t longest = 96;
    const bool cut = line.size() > longest;
    if (cut) line = line.substr(0, Shortened(line, longest).size() - 3);
    if (cut) line = line.substr(0, line.find_last_not_of('$') + 1);
    std::string pattern = "/^";
    for (char c : line) {
        if (c == '\\' || c == '/') pattern += '\\';
        pattern += c;
    }
    return pattern + (cut ? "/" : "$/");
}

// Field values stand between tabs.
std::string FieldText(std::string_view text) {
    std::string value;
    for (char c : text) {
        if (c == '\\') value += '\\';
        value += c;
    }
    return value;
}

bool IsTagName(const std::string& name) {
    return !name.empty() && !name.starts_with('!');
}

void AppendField(std::string& tag, const char* field, std::string_view value) {
    if (!value.empty()) fmt::format_to(std::back_inserter(tag), "\t{}:{}", field, FieldText(value));
}

std::string TagLine(const std::string& file, const OutlineEntry& declaration, char letter,
                    std::string_view line) {
    // Whoever wrote the line breaks as single carriage returns has one line.
    const std::string address = line.empty() || line.find('\r') != std::string_view::npos
                                    ? std::to_string(declaration.namePlace.line)
                                    : PatternFor(line);
    std::string tag = fmt::format("{}\t{}\t{};\"\t{}\tline:{}", declaration.name, file, address, letter,
                                  declaration.namePlace.line);
    AppendField(tag, NameOf(declaration.scopeKind), declaration.scope);
    AppendField(tag, "access", VisibilityOf(declaration.visibility));
    AppendField(tag, "signature", declaration.arguments);
    if (declaration.classRecord != nullptr) AppendField(tag, "inherits", BaseOf(*declaration.classRecord));
    return tag + "\n";
}

void CollectTags(const Request& request, const Session& session, const std::string& path,
                 std::vector<std::string>& tags, Result& result) {
    const std::string shown = session.Shown(path);
    if (shown.find_first_of("\t\n") != std::string::npos) {
        AppendMessage(result.err, shown, std::nullopt, "warning", "a tags file can't hold this name",
                      request.colorErrors);
        return;
    }
    std::string problem;
    const auto buffer = ReadFile(path, problem);
    const std::vector<std::string_view> lines =
        LinesOf(buffer ? std::string_view(buffer->buffer, buffer->size) : std::string_view());
    for (const OutlineEntry& declaration : DeclarationsOf(session.Table(), path)) {
        const char letter = TagLetterOf(declaration);
        if (letter == '\0' || !IsTagName(declaration.name)) continue;
        const auto line = static_cast<std::size_t>(declaration.namePlace.line);
        tags.push_back(TagLine(shown, declaration, letter,
                               line >= 1 && line <= lines.size() ? lines[line - 1] : std::string_view()));
    }
}

constexpr std::string_view tagsHead = "!_TAG_FILE_FORMAT\t2\t/extended format/\n"
                                      "!_TAG_FILE_SORTED\t1\t/0=unsorted, 1=sorted, 2=foldcase/\n"
                                      "!_TAG_PROGRAM_NAME\tostraka\t//\n"
                                      "!_TAG_PROGRAM_VERSION\t" OSTRAKA_VERSION "\t//\n";

} // namespace

void AnswerOutline(const Request& request, const Session& session, const std::vector<std::string>& files,
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

void AnswerTags(const Request& request, const Session& session, const std::vector<std::string>& files,
                Result& result) {
    std::vector<std::string> tags;
    for (const std::string& file : files) CollectTags(request, session, file, tags, result);
    std::sort(tags.begin(), tags.end());
    tags.erase(std::unique(tags.begin(), tags.end()), tags.end());
    result.out = tagsHead;
    for (const std::string& tag : tags) result.out += tag;
    if (tags.empty()) ++result.notFound;
}

} // namespace ostraka::tool
