#include <algorithm>
#include <filesystem>
#include <iterator>
#include <span>
#include <string>
#include <system_error>
#include <vector>

#include <fmt/format.h>

#include <answers/resolve/HeaderPlaces.h>
#include <answers/resolve/LanguageHeaders.h>

#include "cli/Options.h"
#include "formats/JsonWriter.h"
#include "verbs/CodeSession.h"
#include "verbs/Session.h"
#include "verbs/Verbs.h"

namespace ostraka::tool {

namespace {

// A file that the include could mean, with the rule and where that finds it. All as shown; empty is unknown,
// or none.
struct Told {
    std::string file;
    std::string rule;
    std::string directory;
    std::string owner;
    std::string workspace;
};

struct LookedAt {
    std::string rule;
    std::string pattern;
};

struct Search {
    std::vector<Told> files; // the first is meant
    std::vector<LookedAt> places;
    std::vector<std::string> unseen;
};

Told ToldBy(const CodeSession& code, const HeaderFile& file) {
    if (!file.place) return {code.Shown(file.path), "", "", "", ""};
    const HeaderPlace& place = *file.place;
    return {code.Shown(file.path), std::string(NameOf(place.rule)), place.directory, OwnerOf(file),
            place.root.empty() ? "" : code.Shown(place.root)};
}

// The directory is the one behind which the include's text stands.
Told ToldBy(CodeSession& code, const IncludeCandidate& candidate, std::string_view name) {
    const std::string path = code.Base().PathOf(candidate.file);
    const std::size_t behind = name.size() + 1;
    const bool isBehind = path.size() > behind && path.ends_with(name);
    const std::string directory =
        isBehind ? path.substr(0, path.size() - behind) : path.substr(0, path.rfind('/'));
    return {code.Shown(path), std::string(NameOf(candidate.rule)), code.Shown(directory), "", ""};
}

// What frameworks say; where they find nothing, what the folders hold that were named besides.
Search SearchFrameworks(CodeSession& code, int from, const std::string& name) {
    const HeaderAnswer answer = FindHeader(code.Frameworks().Table(), code.Base().PathOf(from), name);
    Search search;
    if (answer.found) search.files.push_back(ToldBy(code, *answer.found));
    for (const HeaderFile& file : answer.hidden) search.files.push_back(ToldBy(code, file));
    for (const HeaderPlace& place : answer.places)
        search.places.push_back({std::string(NameOf(place.rule)), code.Shown(place.Pattern())});
    for (const std::string& path : answer.unseen) search.unseen.push_back(code.Shown(path));
    const IncludeTrace trace = code.Base().TraceInclude(from, name, '"');
    for (const IncludeCandidate& candidate : trace.files)
        if (candidate.rule == IncludeRule::Folder) search.files.push_back(ToldBy(code, candidate, name));
    for (const auto& [rule, path] : trace.places)
        if (rule == IncludeRule::Folder)
            search.places.push_back({std::string(NameOf(rule)), code.Shown(path)});
    return search;
}

// As the file has it, or as one would write it.
char DelimiterOf(const CodeBase& base, int from, const std::string& name) {
    std::vector<FileInclude> includes;
    base.ReadIncludes(from, includes);
    const auto found = std::find_if(includes.begin(), includes.end(),
                                    [&](const FileInclude& include) { return include.name == name; });
    if (found != includes.end()) return found->delimiter;
    return IsLanguageHeader(name) ? '<' : '"';
}

Search SearchCode(CodeSession& code, int from, const std::string& name) {
    const IncludeTrace trace = code.Base().TraceInclude(from, name, DelimiterOf(code.Base(), from, name));
    Search search;
    for (const IncludeCandidate& candidate : trace.files)
        search.files.push_back(ToldBy(code, candidate, name));
    for (const auto& [rule, path] : trace.places)
        search.places.push_back({std::string(NameOf(rule)), code.Shown(path)});
    for (const int file : trace.alike) search.unseen.push_back(code.Shown(file));
    return search;
}

// As "exported, in PublicInterfaces of Berths, workspace harbour".
std::string Described(const Told& file) {
    if (file.rule.empty()) return "unknown";
    std::string text = fmt::format("{}, in {}", file.rule, file.directory);
    if (!file.owner.empty()) text += " of " + file.owner;
    if (!file.workspace.empty()) text += ", workspace " + file.workspace;
    return text;
}

void PrintText(const Request& request, const Search& search, std::string_view name, std::string& out) {
    const auto append = [&out](auto format, const auto&... values) {
        fmt::format_to(std::back_inserter(out), fmt::runtime(format), values...);
    };
    for (const Told& file : search.files)
        append("{}: {}{}\n", PlaceText(request, file.file, {}),
               &file == &search.files.front() ? "" : "hidden: ", Described(file));
    if (!search.files.empty()) return;
    append("{} {} in any of\n", name, Colored(request, colorError, "isn't"));
    for (const LookedAt& place : search.places) append("  {}\n", place.pattern);
    if (!search.unseen.empty()) append("but there is\n");
    for (const std::string& path : search.unseen) append("  {}\n", path);
}

void FileJson(JsonWriter& json, const Told& file) {
    json.BeginObject();
    json.Member("file", file.file);
    json.Member("rule", OrNull(file.rule));
    json.Member("directory", OrNull(file.directory));
    json.Member("owner", OrNull(file.owner));
    json.Member("workspace", OrNull(file.workspace));
    json.EndObject();
}

void AnswerMembers(JsonWriter& json, const Search& search, const std::string& name, const std::string& from) {
    json.Member("name", name);
    json.Member("from", from);
    json.Key("found");
    search.files.empty() ? json.Value(nullptr) : FileJson(json, search.files.front());
    const std::size_t found = std::min<std::size_t>(search.files.size(), 1);
    json.List("hidden", std::span(search.files).subspan(found),
              [&](const Told& file) { FileJson(json, file); });
    json.List("places", search.places, [&](const LookedAt& place) {
        json.BeginObject();
        json.Member("rule", place.rule);
        json.Member("pattern", place.pattern);
        json.EndObject();
    });
    json.List("unseen", search.unseen, [&](const std::string& path) { json.Value(path); });
}

void Answer(const Request& request, const std::string& name, Result& result) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(request.from, error)) {
        result.Fail(request, request.from, {std::nullopt, "is no file"});
    }
    CodeSession code(request, {request.from});
    code.TellFailures(result);
    const int from = code.FileAt(request.from);
    const Search search =
        code.Base().IsInFrameworks(from) ? SearchFrameworks(code, from, name) : SearchCode(code, from, name);
    if (search.files.empty()) ++result.notFound;
    if (request.format == Format::Json) {
        WriteAnswer(request, result.out,
                    [&](JsonWriter& json) { AnswerMembers(json, search, name, code.Shown(from)); });
    } else {
        PrintText(request, search, name, result.out);
    }
}

void RunHeader(Run& run) {
    run.Ask(run.request.paths.front(), Answer);
}

void CheckFrom(Request& request) {
    if (request.from.empty()) throw WrongUsage("--from is required");
}

constexpr Option operands[] = {
    {"NAME", nullptr, "The name as the include gives it", Operand{TakePath, true}}};
constexpr Option ownOptions[] = {{"--from", "FILE", "The file that includes it",
                                  Text{[](Request& r, const std::string& file) { r.from = file; }}}};
constexpr std::span<const Option> options[] = {operands, workspaceOptions, searchOptions, outputOptions,
                                               ownOptions};

} // namespace

const Verb headerVerb = {
    "header",
    "Tell which file an include means, and why, or where it was looked for",
    {"ostraka header -w harbour:coast IBerth.h --from harbour/Berths/Berths.m/src/Berth.cpp",
     "ostraka header -w harbour:coast TideLimits.h --from coast/Tides/Tides.m/src/TideTable.cpp",
     "ostraka header -w harbour:coast --os unix_b TideCatalog.h --from "
     "coast/Tides/Tides.m/src/TideTable.cpp"},
    answerFormats,
    options,
    CheckFrom,
    RunHeader,
};

} // namespace ostraka::tool
