// What files declare, as tags for editors.

#include <algorithm>
#include <iterator>
#include <map>
#include <set>

#include <fmt/format.h>

#include <answers/facts/RawFile.h>
#include <answers/resolve/Declarations.h>
#include <ostraka/symbols/TAPSymbolTable.h>

#include "cli/Options.h"
#include "formats/Text.h"
#include "verbs/ClassRecords.h"
#include "verbs/Session.h"
#include "verbs/TableRun.h"
#include "verbs/Verbs.h"

namespace ostraka::tool {

namespace {

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

void Answer(const Request& request, const Session& session, const std::vector<std::string>& files,
            Result& result) {
    std::vector<std::string> tags;
    for (const std::string& file : files) CollectTags(request, session, file, tags, result);
    std::sort(tags.begin(), tags.end());
    tags.erase(std::unique(tags.begin(), tags.end()), tags.end());
    result.out = tagsHead;
    for (const std::string& tag : tags) result.out += tag;
    if (tags.empty()) ++result.notFound;
}

void RunTags(Run& run) {
    AnswerFromTable(run, Answer);
}

constexpr std::span<const Option> options[] = {tableFileOptions, outputOptions, workspaceOptions,
                                               missingOptions};
constexpr Format formats[] = {Format::Tags};

} // namespace

const Verb tagsVerb = {
    "tags",
    "Write a tags file that editors take",
    {"ostraka tags -w harbour:coast", "ostraka tags -w harbour:coast harbour/Ships",
     "ostraka tags harbour/Berths/PublicInterfaces"},
    formats,
    options,
    nullptr,
    RunTags,
};

} // namespace ostraka::tool
