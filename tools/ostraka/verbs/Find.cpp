#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include <fmt/format.h>

#include <answers/resolve/Finding.h>

#include "cli/Options.h"
#include "cli/Run.h"
#include "formats/JsonWriter.h"
#include "formats/Text.h"
#include "verbs/CodeSession.h"
#include "verbs/Declared.h"
#include "verbs/Verbs.h"

namespace ostraka::tool {

namespace {

constexpr const char* kindWords[] = {"class",      "struct",  "union",    "interface", "enum",
                                     "enumerator", "typedef", "method",   "function",  "member",
                                     "variable",   "macro",   "namespace"};

std::string TextOf(const FoundDeclaration& found) {
    const PlaceAnswer& what = found.answer;
    std::string name = what.scope.empty() ? what.name : what.scope + "::" + what.name;
    std::string text = fmt::format("{} {}{}", WordFor(what), name, found.signature);
    if (!what.type.empty() && !what.isMacro) text += ": " + what.type;
    return text;
}

void Answer(const Request& request, const std::string& name, Result& result) {
    CodeSession session(request, {"."});
    session.TellFailures(result);
    std::vector<FoundDeclaration> found =
        FindDeclarations(session.Base(), session.AllNames(), name, request.byPrefix);
    if (!request.kinds.empty())
        found.erase(std::remove_if(found.begin(), found.end(),
                                   [&](const FoundDeclaration& each) {
                                       return std::find(request.kinds.begin(), request.kinds.end(),
                                                        WordFor(each.answer)) == request.kinds.end();
                                   }),
                    found.end());
    if (found.empty()) ++result.notFound;
    if (request.format == Format::Json) {
        WriteAnswer(request, result.out, [&](JsonWriter& json) {
            json.Member("name", name);
            json.List("found", found, [&](const FoundDeclaration& each) {
                json.BreakLine();
                json.Object([&] {
                    DeclaredMembers(json, session, each.answer);
                    json.Member("signature", OrNull(each.signature));
                    json.Member("body", each.hasBody);
                });
            });
        });
        return;
    }
    for (const FoundDeclaration& each : found) {
        const Place place = session.Base().FactsOf(each.answer.file).PlaceOf(each.answer.at);
        std::string line;
        AppendOneLine(line, TextOf(each));
        fmt::format_to(std::back_inserter(result.out), "{}: {}{}\n",
                       PlaceText(request, session.Shown(each.answer.file), place), line,
                       each.hasBody ? " {}" : "");
    }
}

void RunFind(Run& run) {
    run.Ask(run.request.paths.front(), Answer);
}

constexpr Option operands[] = {
    {"NAME", nullptr, "The name, as Accept or Ship::Accept", Operand{TakePath, true}}};
constexpr Option ownOptions[] = {
    {"--prefix", nullptr, "Find all whose name begins so", Flag{[](Request& r) { r.byPrefix = true; }}},
    {"--kind", "KIND[,KIND...]", "Only these kinds",
     Word{kindWords, [](Request& r, std::size_t kind) { r.kinds.emplace_back(kindWords[kind]); }, true}}};
constexpr std::span<const Option> options[] = {operands, ownOptions, workspaceOptions, searchOptions,
                                               outputOptions};

} // namespace

const Verb findVerb = {
    "find",
    "Find every declaration and implementation of a name",
    {"ostraka find -w harbour:coast Ship", "ostraka find -w harbour:coast Ship::Heaviest",
     "ostraka find -w harbour:coast --prefix --kind class,interface I"},
    answerFormats,
    options,
    nullptr,
    RunFind,
};

} // namespace ostraka::tool
