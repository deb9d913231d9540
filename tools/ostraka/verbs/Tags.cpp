// What files declare, as tags for editors.

#include <algorithm>
#include <iterator>

#include <fmt/format.h>

#include <answers/resolve/Declarations.h>

#include "cli/Options.h"
#include "formats/Text.h"
#include "verbs/CodeSession.h"
#include "verbs/Declared.h"
#include "verbs/TableRun.h"
#include "verbs/Verbs.h"

namespace ostraka::tool {

namespace {

// The kinds of the tags format; functions have another where their body stands.
constexpr char bodyLetter = 'f';
constexpr char macroLetter = 'd';

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
char TagLetterOf(const OutlineEntry& entry) {
    if (entry.hasBody) return bodyLetter;
    const auto* found = std::find_if(std::begin(tagKinds), std::end(tagKinds),
                                     [&](const TagKind& row) { return row.kind == entry.kind; });
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

// "A, public B" as tags name them: names alone, with a comma between them.
std::string InheritsText(const OutlinedFile& file, const OutlineEntry& entry) {
    std::string text;
    if (entry.declared < 0) return text;
    const Declared& declared = file.DeclaredOf(entry);
    for (int i = 0; i < declared.bases; ++i)
        text.append(text.empty() ? "" : ",")
            .append(file.Facts().bases[static_cast<std::size_t>(declared.firstBase + i)].name);
    return text;
}

// The tags of one file.
class FileTags {
public:
    FileTags(std::string shownPath, std::vector<std::string_view> itsLines, std::vector<std::string>& all)
        : file(std::move(shownPath)), lines(std::move(itsLines)), tags(all) {}

    // The line as far as it stands for every kind; the fields follow.
    std::string Begin(std::string_view name, char letter, int number) const {
        const auto at = static_cast<std::size_t>(number);
        const std::string_view line = at >= 1 && at <= lines.size() ? lines[at - 1] : std::string_view();
        // Whoever wrote the line breaks as single carriage returns has one line.
        const std::string address = line.empty() || line.find('\r') != std::string_view::npos
                                        ? std::to_string(number)
                                        : PatternFor(line);
        return fmt::format("{}\t{}\t{};\"\t{}\tline:{}", name, file, address, letter, number);
    }

    void Add(const OutlinedFile& read, const OutlineEntry& entry) {
        const char letter = TagLetterOf(entry);
        if (letter == '\0' || !IsTagName(entry.name)) return;
        std::string tag = Begin(entry.name, letter, entry.namePlace.line);
        AppendField(tag, NameOf(entry.scopeKind), entry.scope);
        AppendField(tag, "access", WordOf(entry.access));
        AppendField(tag, "signature", entry.arguments);
        AppendField(tag, "inherits", InheritsText(read, entry));
        tags.push_back(tag + "\n");
    }

    void Add(const FileFacts& facts, const MacroDefined& macro) {
        std::string tag = Begin(macro.name, macroLetter, facts.PlaceOf(macro.at).line);
        AppendField(tag, "signature", macro.arguments);
        tags.push_back(tag + "\n");
    }

private:
    std::string file;
    std::vector<std::string_view> lines;
    std::vector<std::string>& tags;
};

void CollectTags(const Request& request, CodeSession& code, const std::string& path,
                 std::vector<std::string>& tags, Result& result) {
    const std::string shown = code.Shown(code.FileAt(path));
    if (shown.find_first_of("\t\n") != std::string::npos) {
        AppendMessage(result.err, shown, std::nullopt, "warning", "a tags file can't hold this name",
                      request.colorErrors);
        return;
    }
    std::string bytes;
    CodeBase::ReadBytes(path, bytes);
    const OutlinedFile read(path, code.Base().DroppedWords());
    std::vector<OutlineEntry> entries = read.Entries();
    TakeAccess(code, path, entries);
    FileTags file(shown, LinesOf(bytes), tags);
    for (const OutlineEntry& entry : entries) file.Add(read, entry);
    for (const MacroDefined& macro : read.Facts().macros)
        if (!macro.value.empty() || !macro.arguments.empty()) // else a guard or a switch
            file.Add(read.Facts(), macro);
}

constexpr std::string_view tagsHead = "!_TAG_FILE_FORMAT\t2\t/extended format/\n"
                                      "!_TAG_FILE_SORTED\t1\t/0=unsorted, 1=sorted, 2=foldcase/\n"
                                      "!_TAG_PROGRAM_NAME\tostraka\t//\n"
                                      "!_TAG_PROGRAM_VERSION\t" OSTRAKA_VERSION "\t//\n";

void Answer(const Request& request, const Session& session, const std::vector<std::string>& files,
            Result& result) {
    std::vector<std::string> tags;
    CodeSession code(request, files, &session);
    for (const std::string& file : files) CollectTags(request, code, file, tags, result);
    std::sort(tags.begin(), tags.end());
    tags.erase(std::unique(tags.begin(), tags.end()), tags.end());
    result.out = tagsHead;
    for (const std::string& tag : tags) result.out += tag;
    code.TellHeads(files, result);
    if (tags.empty()) ++result.notFound;
}

void RunTags(Run& run) {
    AnswerFromTable(run, Answer);
}

constexpr std::span<const Option> options[] = {tableFileOptions, outputOptions, workspaceOptions,
                                               missingOptions, headerFolderOptions};
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
