// What files declare: as an outline, and as tags for editors.

#include <algorithm>
#include <iterator>
#include <map>
#include <set>

#include <fmt/format.h>
#include <ostraka/symbols/TAPSymbolTable.h>

#include "Declarations.h"
#include "Json.h"
#include "RawFile.h"
#include "Session.h"
#include "TableVerbs.h"

namespace ostraka::tool {

namespace {

bool IsInClass(const OutlineEntry& declaration) {
    return declaration.kind == DeclarationKind::Method || declaration.kind == DeclarationKind::Member;
}

std::string_view AccessOf(const OutlineEntry& declaration) {
    if (declaration.method != nullptr) return VisibilityOf(declaration.method->visibility);
    return declaration.variable != nullptr ? VisibilityOf(declaration.variable->visibility) : "";
}

// "component class" of a class that has a record.
std::string KindText(const OutlineEntry& declaration) {
    if (declaration.classRecord == nullptr) return NameOf(declaration.kind);
    const std::string kind = KindOf(*declaration.classRecord);
    return kind == "plain" ? "class" : kind;
}

void PrintText(const Request& request, const std::string& file, const OutlineEntry& declaration,
               std::string& out) {
    fmt::format_to(std::back_inserter(out), "{}{}:{}:{}:{} {}", Color(request.colorOutput, colorPlace), file,
                   declaration.place.line, declaration.place.column, Color(request.colorOutput, colorOff),
                   IsInClass(declaration) ? "  " : "");
    // Most declarations begin with the word for what they are.
    if (const std::string kind = KindText(declaration); !declaration.text.starts_with(kind + " "))
        fmt::format_to(std::back_inserter(out), "{}{}{} ", Color(request.colorOutput, colorClass), kind,
                       Color(request.colorOutput, colorOff));
    if (IsInClass(declaration))
        if (const std::string_view visibility = AccessOf(declaration); !visibility.empty())
            fmt::format_to(std::back_inserter(out), "{} ", visibility);
    out += declaration.text;
    out += '\n';
}

JsonValue JsonOf(const OutlineEntry& declaration) {
    JsonValue item = {{"kind", NameOf(declaration.kind)}, {"name", declaration.name}};
    if (!declaration.scope.empty()) item["class"] = declaration.scope;
    item["text"] = declaration.text;
    item["line"] = declaration.place.line;
    item["column"] = declaration.place.column;
    if (const std::string_view visibility = AccessOf(declaration); !visibility.empty())
        item["visibility"] = visibility;
    if (declaration.classRecord != nullptr) {
        item["classKind"] = KindOf(*declaration.classRecord);
        if (declaration.classRecord->parent != nullptr) item["base"] = declaration.classRecord->parent;
    }
    return item;
}

// ---- tags

// A kind of the tags format by its letter, and the words of the comments that explain the letters.
struct TagKind {
    DeclarationKind kind;
    char letter;
    const char* name;
};

constexpr TagKind tagKinds[] = {
    {DeclarationKind::Class, 'c', "class"},        {DeclarationKind::Enum, 'g', "enum"},
    {DeclarationKind::Typedef, 't', "typedef"},    {DeclarationKind::Method, 'p', "prototype"},
    {DeclarationKind::Member, 'm', "member"},      {DeclarationKind::Implementation, 'f', "function"},
    {DeclarationKind::Function, 'p', "prototype"}, {DeclarationKind::FunctionBody, 'f', "function"},
    {DeclarationKind::Variable, 'v', "variable"},
};

const TagKind* TagKindOf(DeclarationKind kind) {
    const auto* found = std::find_if(std::begin(tagKinds), std::end(tagKinds),
                                     [=](const TagKind& row) { return row.kind == kind; });
    return found == std::end(tagKinds) ? nullptr : found;
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
// and not held at its end.
std::string PatternFor(std::string_view line) {
    constexpr std::size_t longest = 96;
    std::string pattern = "/^";
    const bool cut = line.size() > longest;
    if (cut) line = line.substr(0, Shortened(line, longest).size() - 3);
    for (char c : line) {
        if (c == '\\' || c == '/') pattern += '\\';
        pattern += c;
    }
    if (!cut) pattern += '$';
    return pattern + '/';
}

// Field values stand between tabs.
std::string FieldText(std::string_view text) {
    std::string value;
    for (char c : text) {
        if (c == '\\')
            value += "\\\\";
        else if (c == '\t')
            value += "\\t";
        else
            value += c;
    }
    return value;
}

bool IsTagName(const std::string& name) {
    return !name.empty() && name.find_first_of(" \t\n!") == name.npos;
}

std::string TagLine(const std::string& file, const OutlineEntry& declaration, const TagKind& kind,
                    std::string_view line) {
    std::string tag = fmt::format("{}\t{}\t", declaration.name, file);
    // Whoever wrote the line breaks as single carriage returns has one line.
    if (line.find('\r') == line.npos && !line.empty()) {
        tag += PatternFor(line);
    } else {
        tag += std::to_string(declaration.place.line);
    }
    fmt::format_to(std::back_inserter(tag), ";\"\t{}\tline:{}", kind.letter, declaration.place.line);
    if (!declaration.scope.empty())
        fmt::format_to(std::back_inserter(tag), "\tclass:{}", FieldText(declaration.scope));
    if (const std::string_view access = AccessOf(declaration); !access.empty())
        fmt::format_to(std::back_inserter(tag), "\taccess:{}", access);
    if (declaration.method != nullptr && declaration.method->path != nullptr)
        fmt::format_to(std::back_inserter(tag), "\tsignature:{}",
                       FieldText(ArgumentsOf(*declaration.method)));
    if (declaration.classRecord != nullptr && declaration.classRecord->parent != nullptr)
        fmt::format_to(std::back_inserter(tag), "\tinherits:{}", FieldText(declaration.classRecord->parent));
    return tag + "\n";
}

void CollectTags(const Session& session, const std::string& path, std::vector<std::string>& tags) {
    std::string problem;
    const auto buffer = ReadFile(path, problem);
    const std::vector<std::string_view> lines =
        LinesOf(buffer ? std::string_view(buffer->buffer, buffer->size) : std::string_view());
    const std::string shown = session.Shown(path);
    for (const OutlineEntry& declaration : DeclarationsOf(session.Table(), path)) {
        const TagKind* kind = TagKindOf(declaration.kind);
        if (kind == nullptr || !IsTagName(declaration.name)) continue;
        const auto line = static_cast<std::size_t>(declaration.place.line);
        tags.push_back(TagLine(shown, declaration, *kind,
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
        const std::vector<OutlineEntry> declarations = DeclarationsOf(session.Table(), file);
        const std::string shown = session.Shown(file);
        found = found || !declarations.empty();
        JsonValue items = JsonValue::array();
        for (const OutlineEntry& declaration : declarations) {
            if (request.format == Format::Text) {
                PrintText(request, shown, declaration, result.out);
            } else {
                items.push_back(JsonOf(declaration));
            }
        }
        if (request.format != Format::Text)
            list.push_back({{"file", shown}, {"declarations", std::move(items)}});
    }
    if (request.format == Format::Json) result.out = Document("outline", {{"files", std::move(list)}});
    if (!found) ++result.notFound;
}

void AnswerTags(const Request&, const Session& session, const std::vector<std::string>& files,
                Result& result) {
    std::vector<std::string> tags;
    for (const std::string& file : files) CollectTags(session, file, tags);
    std::sort(tags.begin(), tags.end());
    tags.erase(std::unique(tags.begin(), tags.end()), tags.end());
    result.out = tagsHead;
    for (const std::string& tag : tags) result.out += tag;
    if (tags.empty()) ++result.notFound;
}

} // namespace ostraka::tool
