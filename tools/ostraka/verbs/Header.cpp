#include <filesystem>
#include <iterator>
#include <system_error>

#include <fmt/format.h>

#include "cli/Options.h"
#include "formats/Json.h"
#include "verbs/Session.h"
#include "verbs/Verbs.h"
#include <answers/resolve/HeaderPlaces.h>

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

JsonValue ToJson(const Session& session, const HeaderFile& file) {
    JsonValue object = {{"file", session.Shown(file.path)},
                        {"rule", nullptr},
                        {"directory", nullptr},
                        {"owner", nullptr},
                        {"workspace", nullptr}};
    if (!file.place) return object;
    object["rule"] = NameOf(file.place->rule);
    object["directory"] = file.place->directory;
    object["owner"] = OwnerOf(file);
    if (!file.place->root.empty()) object["workspace"] = session.Shown(file.place->root);
    return object;
}

JsonValue ToJson(const Session& session, const HeaderAnswer& answer, const std::string& name,
                 const std::string& from) {
    JsonValue document = {{"name", name}, {"from", session.Shown(from)}, {"found", nullptr}};
    if (answer.found) document["found"] = ToJson(session, *answer.found);
    JsonValue& hidden = document["hidden"] = JsonValue::array();
    for (const HeaderFile& file : answer.hidden) hidden.push_back(ToJson(session, file));
    JsonValue& places = document["places"] = JsonValue::array();
    for (const HeaderPlace& place : answer.places)
        places.push_back({{"rule", NameOf(place.rule)}, {"pattern", session.Shown(place.Pattern())}});
    JsonValue& unseen = document["unseen"] = JsonValue::array();
    for (const std::string& path : answer.unseen) unseen.push_back(session.Shown(path));
    return document;
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
        result.out += Document("header", ToJson(session, answer, name, from));
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
