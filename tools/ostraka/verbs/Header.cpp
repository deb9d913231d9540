#include <filesystem>
#include <iterator>
#include <system_error>

#include <fmt/format.h>

#include <answers/resolve/HeaderPlaces.h>

#include "cli/Options.h"
#include "formats/JsonWriter.h"
#include "verbs/Session.h"
#include "verbs/Verbs.h"

namespace ostraka::tool {

namespace {

// As "exported, in PublicInterfaces of Berths, workspace harbour".
std::string Described(const Session& session, const HeaderFile& file) {
    if (!file.place) return "unknown";
    std::string text =
        fmt::format("{}, in {} of {}", NameOf(file.place->rule), file.place->directory, OwnerOf(file));
    if (!file.place->root.empty()) text += fmt::format(", workspace {}", session.Shown(file.place->root));
    return text;
}

void PrintText(const Request& request, const Session& session, const HeaderAnswer& answer,
               std::string_view name, std::string& out) {
    const auto append = [&out](auto format, const auto&... values) {
        fmt::format_to(std::back_inserter(out), fmt::runtime(format), values...);
    };
    if (answer.found) {
        append("{}: {}\n", PlaceText(request, session.Shown(answer.found->path), {}),
               Described(session, *answer.found));
        for (const HeaderFile& file : answer.hidden)
            append("{}: hidden: {}\n", PlaceText(request, session.Shown(file.path), {}),
                   Described(session, file));
        return;
    }
    append("{} {} in any of\n", name, Colored(request, colorError, "isn't"));
    for (const HeaderPlace& place : answer.places) append("  {}\n", session.Shown(place.Pattern()));
    if (!answer.unseen.empty()) append("but there is\n");
    for (const std::string& path : answer.unseen) append("  {}\n", session.Shown(path));
}

void FileJson(JsonWriter& json, const Session& session, const HeaderFile& file) {
    const auto tell = [&](std::string_view key, auto of) {
        json.Member(key, file.place ? std::optional(std::string(of(*file.place))) : std::nullopt);
    };
    json.BeginObject();
    json.Member("file", session.Shown(file.path));
    tell("rule", [](const HeaderPlace& place) { return NameOf(place.rule); });
    tell("directory", [](const HeaderPlace& place) { return place.directory; });
    tell("owner", [&](const HeaderPlace&) { return OwnerOf(file); });
    json.Member("workspace", file.place && !file.place->root.empty()
                                 ? std::optional(session.Shown(file.place->root))
                                 : std::nullopt);
    json.EndObject();
}

void AnswerMembers(JsonWriter& json, const Session& session, const HeaderAnswer& answer,
                   const std::string& name, const std::string& from) {
    json.Member("name", name);
    json.Member("from", session.Shown(from));
    json.Key("found");
    answer.found ? FileJson(json, session, *answer.found) : json.Value(nullptr);
    json.List("hidden", answer.hidden, [&](const HeaderFile& file) { FileJson(json, session, file); });
    json.List("places", answer.places, [&](const HeaderPlace& place) {
        json.BeginObject();
        json.Member("rule", NameOf(place.rule));
        json.Member("pattern", session.Shown(place.Pattern()));
        json.EndObject();
    });
    json.List("unseen", answer.unseen, [&](const std::string& path) { json.Value(session.Shown(path)); });
}

void Answer(const Request& request, const std::string& name, Result& result) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(request.from, error)) {
        result.Fail(request, request.from, {std::nullopt, "is no file"});
    }
    const Session session(request, {request.from});
    const std::string from = Session::Absolute(request.from);
    const HeaderAnswer answer = FindHeader(session.Table(), from, name);
    if (!answer.found) ++result.notFound;
    if (request.format == Format::Json) {
        WriteAnswer(request, result.out,
                    [&](JsonWriter& json) { AnswerMembers(json, session, answer, name, from); });
    } else {
        PrintText(request, session, answer, name, result.out);
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
constexpr std::span<const Option> options[] = {operands, workspaceOptions, outputOptions, ownOptions};

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
