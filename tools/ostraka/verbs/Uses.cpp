#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include <fmt/format.h>

#include <answers/resolve/NodeSearch.h>
#include <answers/resolve/Uses.h>

#include "cli/Options.h"
#include "cli/Run.h"
#include "formats/JsonWriter.h"
#include "formats/Text.h"
#include "verbs/CodeSession.h"
#include "verbs/Verbs.h"

namespace ostraka::tool {

namespace {

// The line of a text around a byte, without the blanks at its ends.
std::string_view LineAround(std::string_view text, std::size_t at) {
    std::size_t begin = at;
    while (begin > 0 && text[begin - 1] != '\n') --begin;
    std::string_view line = text.substr(begin, std::min(text.find('\n', at), text.size()) - begin);
    while (!line.empty() && static_cast<unsigned char>(line.front()) <= ' ') line.remove_prefix(1);
    while (!line.empty() && static_cast<unsigned char>(line.back()) <= ' ') line.remove_suffix(1);
    return line;
}

const char* CertaintyOf(const Use& use) {
    return use.isCertain ? "certain" : "possible";
}

// The declarations that the question means, a place or a name.
std::vector<NamedPlace> Declarations(CodeSession& session, UseSearch& search, const std::string& asked) {
    if (const auto place = ParseFilePlace(asked)) {
        const int file = session.FileAt(place->file);
        Resolver& resolver = session.Ask();
        if (!resolver.Open(file)) return {};
        return search.MeantAt(file, resolver.Opened().OffsetOf(place->place));
    }
    return search.DeclarationsOf(asked);
}

void PrintText(const Request& request, CodeSession& session, const std::vector<Use>& uses, std::string& out) {
    constexpr std::size_t shownText = 100;
    std::string bytes;
    int readFile = -1;
    for (const Use& use : uses) {
        if (use.file != readFile) CodeBase::ReadBytes(session.Base().PathOf(use.file), bytes);
        readFile = use.file;
        std::string line;
        AppendOneLine(line, Shortened(use.at < bytes.size() ? LineAround(bytes, use.at) : "", shownText));
        fmt::format_to(std::back_inserter(out), "{}: {:<8} {:<11}  {}\n",
                       PlaceText(request, session.Shown(use.file), use.place), CertaintyOf(use),
                       NameOf(use.part), line);
    }
}

void PrintFiles(CodeSession& session, const std::vector<Use>& uses, std::string& out) {
    for (std::size_t first = 0; first < uses.size();) {
        std::size_t past = first;
        std::size_t certain = 0;
        for (; past < uses.size() && uses[past].file == uses[first].file; ++past)
            certain += uses[past].isCertain ? 1 : 0;
        fmt::format_to(std::back_inserter(out), "{}: {} certain, {} possible\n",
                       session.Shown(uses[first].file), certain, past - first - certain);
        first = past;
    }
}

void Members(JsonWriter& json, CodeSession& session, const std::string& asked,
             const std::vector<NamedPlace>& declared, const std::vector<Use>& uses) {
    json.Member("of", asked);
    json.List("declared", declared, [&](const NamedPlace& each) {
        json.Object([&] {
            json.PlaceMembers(session.Shown(each.file), session.Base().FactsOf(each.file).PlaceOf(each.at));
        });
    });
    json.List("uses", uses, [&](const Use& use) {
        json.BreakLine();
        json.Object([&] {
            json.PlaceMembers(session.Shown(use.file), use.place);
            json.Member("certainty", CertaintyOf(use));
            json.Member("part", NameOf(use.part));
        });
    });
}

void Answer(const Request& request, const std::string& asked, Result& result) {
    const auto place = ParseFilePlace(asked);
    CodeSession session(request, {place ? place->file : std::string(".")});
    session.TellFailures(result);
    UseSearch search(session.Base(), session.AllNames(), session.Ask());
    const std::vector<NamedPlace> declared = Declarations(session, search, asked);
    std::vector<Use> uses = search.Find(declared);
    if (request.certainOnly)
        uses.erase(std::remove_if(uses.begin(), uses.end(), [](const Use& use) { return !use.isCertain; }),
                   uses.end());
    if (declared.empty()) {
        ++result.notFound;
        result.Note(request, place ? "nothing is known of what stands there"
                                   : fmt::format("nothing declares {}", asked));
    }
    if (request.format == Format::Json) {
        WriteAnswer(request, result.out,
                    [&](JsonWriter& json) { Members(json, session, asked, declared, uses); });
    } else if (request.byFile) {
        PrintFiles(session, uses, result.out);
    } else {
        PrintText(request, session, uses, result.out);
    }
}

void RunUses(Run& run) {
    run.Ask(run.request.paths.front(), Answer);
}

constexpr const char* groupWords[] = {"file"};

constexpr Option operands[] = {
    {"NAME|PLACE", nullptr, "A name, as Ship::Accept, or FILE:LINE:COLUMN", Operand{TakePath, true}}};
constexpr Option ownOptions[] = {{"--certain", nullptr, "Leave out what the name alone tells",
                                  Flag{[](Request& r) { r.certainOnly = true; }}},
                                 {"--by", nullptr, "Count the uses in each file",
                                  Word{groupWords, [](Request& r, std::size_t) { r.byFile = true; }}}};
constexpr std::span<const Option> options[] = {operands, ownOptions, workspaceOptions, searchOptions,
                                               outputOptions};

} // namespace

const Verb usesVerb = {
    "uses",
    "Find where something is used: each place, with its part and how certain that is",
    {"ostraka uses -w harbour:coast Ship::Heaviest", "ostraka uses -w harbour:coast Ship --by file",
     "ostraka uses -w harbour:coast harbour/Ships/Ships.m/src/Ship.cpp:66:12"},
    answerFormats,
    options,
    nullptr,
    RunUses,
};

} // namespace ostraka::tool
