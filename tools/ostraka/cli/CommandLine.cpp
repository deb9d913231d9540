#include "cli/CommandLine.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <span>
#include <string_view>

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <unistd.h>

#include "cli/Manual.h"
#include "cli/Nearest.h"
#include "cli/OptionChoice.h"
#include "cli/ReportOptions.h"
#include "verbs/TableVerbs.h"
#include <answers/resolve/NodeSearch.h>

namespace ostraka::tool {

namespace {

struct VerbInfo {
    Verb verb;
    const char* name;
    const char* summary;
    std::array<const char*, 3> examples;
};

constexpr VerbInfo verbs[] = {
    {Verb::Stream,
     "stream",
     "Print the normalised text of files: without comments, directives and needless blanks",
     {"ostraka stream harbour/Berths/PublicInterfaces/Berth.h",
      "ostraka stream --map --quiet harbour/Berths harbour/Ships",
      "ostraka stream --includes --macros harbour/Berths/PublicInterfaces/Berth.h"}},
    {Verb::Tree,
     "tree",
     "Print the syntax tree of files, one node a line",
     {"ostraka tree --depth 1 harbour/Berths/Berths.m/src/Berth.cpp",
      "ostraka tree --node 12.3 harbour/Berths/Berths.m/src/Berth.cpp",
      "ostraka tree --format jsonl --jobs 2 harbour"}},
    {Verb::At,
     "at",
     "Tell what stands at a place, as an editor gives it: node, type, declaration, class, method, object",
     {"ostraka at -w harbour:coast harbour/Ships/Ships.m/src/Ship.cpp:66:12",
      "ostraka at -w harbour:coast harbour/Berths/Berths.m/src/Berth.cpp:40:23",
      "ostraka at -w harbour:coast --format json harbour/Berths/PublicInterfaces/IBerth.idl:16"}},
    {Verb::Header,
     "header",
     "Tell which file an include means, and why, or where it was looked for",
     {"ostraka header -w harbour:coast IBerth.h --from harbour/Berths/Berths.m/src/Berth.cpp",
      "ostraka header -w harbour:coast TideLimits.h --from coast/Tides/Tides.m/src/TideTable.cpp",
      "ostraka header -w harbour:coast --os unix_b TideCatalog.h --from "
      "coast/Tides/Tides.m/src/TideTable.cpp"}},
    {Verb::Includes,
     "includes",
     "Follow the includes of a file",
     {"ostraka includes -w harbour:coast harbour/Ships/Ships.m/src/Ship.cpp",
      "ostraka includes -w harbour:coast --missing harbour/Traffic/Traffic.m/src/TrafficControl.cpp",
      "ostraka includes -w harbour:coast --format dot harbour/Berths/Berths.m/src/Quay.cpp"}},
    {Verb::Outline,
     "outline",
     "Tell what files declare and implement, in the order of the text",
     {"ostraka outline -w harbour:coast harbour/Berths/PublicInterfaces/Berth.h",
      "ostraka outline -w harbour:coast harbour/Ships/Ships.m",
      "ostraka outline -w harbour:coast --format json harbour/Berths/PublicInterfaces/IBerth.idl"}},
    {Verb::Classes,
     "classes",
     "List classes with kind, base, framework and place",
     {"ostraka classes -w harbour:coast", "ostraka classes -w harbour:coast --kind interface",
      "ostraka classes -w harbour:coast --derived-from CoastObject harbour"}},
    {Verb::Show,
     "show",
     "Show one class whole: bases, ties, members, methods, and where they are",
     {"ostraka show Berth -w harbour:coast", "ostraka show IBerth -w harbour:coast",
      "ostraka show Ship -w harbour:coast --format json"}},
    {Verb::Hierarchy,
     "hierarchy",
     "Tell who derives from whom, and which interface is tied to which class",
     {"ostraka hierarchy -w harbour:coast", "ostraka hierarchy Ship -w harbour:coast",
      "ostraka hierarchy -w harbour:coast --format dot"}},
    {Verb::Tags,
     "tags",
     "Write a tags file that editors take",
     {"ostraka tags -w harbour:coast", "ostraka tags -w harbour:coast harbour/Ships",
      "ostraka tags harbour/Berths/PublicInterfaces"}},
    {Verb::Triage,
     "triage",
     "Add up memory reports: equal stacks once, the framework and the owner charged, what is new",
     {"ostraka triage --owners ownership/frameworks.txt reports/nightly.txt",
      "ostraka triage --owners ownership/frameworks.txt --by owner,type reports/nightly.txt",
      "ostraka triage --ignore-calls reports/ignored_calls.txt --filter reports/known.txt --explain "
      "reports/nightly.txt"}},
    {Verb::Mask,
     "mask",
     "Tell which stacks of memory reports a mask matches, and which call each of its elements took",
     {"ostraka mask @!Berth::Berth(@!@@!main@ reports/nightly.txt",
      "ostraka mask --format json @!Ship::Accept(@ reports/nightly.txt",
      "ostraka mask --masks reports/known.txt reports/nightly.txt"}},
    {Verb::Frameworks,
     "frameworks",
     "List code and test frameworks, with their owners; tell those without, and owners of nothing",
     {"ostraka frameworks harbour:coast",
      "ostraka frameworks --owners ownership/frameworks.txt --people ownership/people.txt harbour:coast",
      "ostraka frameworks --format jsonl harbour"}},
};

constexpr const char* classKinds[] = {"plain", "interface", "component"};

constexpr std::string_view exitCodes =
    "Exit codes: 0 done, 1 nothing found{}, 2 wrong usage, 3 some file failed and the rest is valid";

std::string Footer(const VerbInfo& info) {
    return fmt::format("Examples:\n  {}\n\n{}", fmt::join(info.examples, "\n  "),
                       fmt::format(exitCodes, info.verb == Verb::Triage ? ", or --fail-on failed" : ""));
}

int FailUsage(std::string_view text) {
    fmt::print(stderr, "ostraka: {}\nostraka: see ostraka --help\n", text);
    return ExitUsage;
}

std::vector<std::string> OptionNames(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::Option* option : app.get_options())
        for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    return names;
}

std::vector<std::string> VerbNames() {
    std::vector<std::string> names;
    std::transform(std::begin(verbs), std::end(verbs), std::back_inserter(names),
                   [](const VerbInfo& info) { return info.name; });
    return names;
}

// "1.4.2"; the root is "0".
std::string CheckNode(const std::string& text) {
    const bool shaped = !text.empty() && text.find_first_not_of("0123456789.") == std::string_view::npos &&
                        text.find("..") == std::string_view::npos && text.front() != '.' &&
                        text.back() != '.';
    return shaped ? "" : "a node is a path of positions such as 1.4.2, not " + text;
}

std::vector<int> ParseNode(const std::string& text) {
    std::vector<int> path;
    if (text == "0") return path;
    for (std::size_t at = 0; at < text.size();
         at = text.find('.', at) == std::string_view::npos ? text.size() : text.find('.', at) + 1)
        path.push_back(static_cast<int>(std::min(std::strtol(text.c_str() + at, nullptr, 10), 1L << 30)));
    return path;
}

constexpr Choice<Format> streamFormats[] = {
    {"text", Format::Text}, {"json", Format::Json}, {"jsonl", Format::JsonLines}};
constexpr Choice<Format> treeFormats[] = {
    {"text", Format::Text}, {"json", Format::Json}, {"jsonl", Format::JsonLines}, {"dump", Format::Dump}};
constexpr Choice<Format> questionFormats[] = {{"text", Format::Text}, {"json", Format::Json}};
constexpr Choice<Format> tagsFormats[] = {{"ctags", Format::Tags}};
constexpr Choice<Format> graphFormats[] = {
    {"text", Format::Text}, {"json", Format::Json}, {"dot", Format::Dot}};

void AddCommonOptions(CLI::App& app, Request& request, std::span<const Choice<Format>> formats,
                      const char* jobs = "Share the files among N processes") {
    app.add_option("FILE", request.paths, "Files, folders to walk, or - for standard input")->type_name("");
    app.add_option("--files-from", request.filesFrom, "Take the files that LIST names, one a line")
        ->type_name("LIST");
    app.add_option("--compile-commands", request.compileCommands, "Take the files of a compile_commands.json")
        ->type_name("JSON");
    app.add_option("--jobs", request.jobs, jobs)->check(CLI::Range(1, 256).description(""))->type_name("N");
    AddOutputOptions(app, request, formats);
}

void AddWorkspaceOptions(CLI::App& app, Request& request) {
    app.add_option_function<std::vector<std::string>>(
           "-w,--workspaces",
           [&request](const std::vector<std::string>& lists) {
               request.workspaces = fmt::format("{}", fmt::join(lists, ":"));
           },
           "The workspaces, the first having precedence")
        ->type_name("ROOT[:ROOT...]")
        ->allow_extra_args(false);
    app.add_option("--os", request.osName, "The level of the generated directories")->type_name("NAME");
}

// For verbs that ask a symbol table; `what` is the one word that they take.
void AddQuestionOptions(CLI::App& app, Request& request, const char* what, const char* description,
                        std::span<const Choice<Format>> formats) {
    app.add_option(what, request.paths, description)->type_name("")->required()->expected(1);
    AddWorkspaceOptions(app, request);
    AddOutputOptions(app, request, formats);
}

void AddAtOptions(CLI::App& app, Request& request) {
    AddQuestionOptions(app, request, "PLACE", "FILE:LINE or FILE:LINE:COLUMN", questionFormats);
}

void AddHeaderOptions(CLI::App& app, Request& request) {
    AddQuestionOptions(app, request, "NAME", "The name as the include gives it", questionFormats);
    app.add_option("--from", request.from, "The file that includes it")->type_name("FILE")->required();
}

void AddIncludesOptions(CLI::App& app, Request& request) {
    AddQuestionOptions(app, request, "FILE", "The file to begin with", graphFormats);
    app.add_flag("--missing", request.missingOnly, "Print only those that aren't found");
    AddLimitOption(app, request);
}

// For verbs over all files of a run, which stand in one table.
void AddTableOptions(CLI::App& app, Request& request, std::span<const Choice<Format>> formats) {
    AddCommonOptions(app, request, formats, "Taken as by other verbs; one process fills the one table");
    AddWorkspaceOptions(app, request);
    app.add_flag("--missing", request.missingOnly, "List the includes that find no header");
}

void AddClassesOptions(CLI::App& app, Request& request) {
    const auto takeKinds = [&request](const std::string& list) {
        for (const std::string& kind : CLI::detail::split(list, ',')) {
            if (std::find(std::begin(classKinds), std::end(classKinds), kind) == std::end(classKinds))
                throw CLI::ValidationError(
                    fmt::format("there is no kind of class {}{}", kind,
                                Hint(kind, {std::begin(classKinds), std::end(classKinds)})));
            request.kinds.push_back(kind);
        }
    };
    AddTableOptions(app, request, listFormats);
    app.add_option_function<std::string>("--kind", takeKinds, "Only classes of one of these kinds")
        ->type_name("plain,interface,component");
    app.add_option("--derived-from", request.derivedFrom, "Only classes with this one among their bases")
        ->type_name("NAME");
}

void AddShowOptions(CLI::App& app, Request& request) {
    app.add_option("CLASS", request.className, "The class")->type_name("")->required();
    AddTableOptions(app, request, questionFormats);
}

void AddHierarchyOptions(CLI::App& app, Request& request) {
    app.add_option("CLASS", request.className, "The class around which to look; all without one")
        ->type_name("");
    AddTableOptions(app, request, graphFormats);
    AddLimitOption(app, request);
}

void AddStreamOptions(CLI::App& app, Request& request) {
    app.add_flag("--map", request.map, "Print the text in pieces, each with the place it comes from");
    app.add_flag("--includes", request.includes, "Print the names of the included files");
    app.add_flag("--macros", request.macros, "Print the macros with the first word of their text");
}

void AddTreeOptions(CLI::App& app, Request& request) {
    const auto takeNode = [&request](const std::string& text) {
        if (const std::string problem = CheckNode(text); !problem.empty())
            throw CLI::ValidationError(problem);
        request.node = ParseNode(text);
    };
    app.add_option("--depth", request.depth, "Print N levels below the first node")
        ->check(CLI::Range(0, 1000).description(""))
        ->type_name("N");
    app.add_option_function<std::string>("--node", takeNode, "Print this node and what is below, as in 1.4.2")
        ->type_name("PATH");
    app.add_flag("--full", request.fullText, "Print the texts of the nodes whole");
}

CLI::App* AddVerb(CLI::App& app, const VerbInfo& info, Request& request) {
    CLI::App* verb = app.add_subcommand(info.name, info.summary);
    verb->allow_extras();
    verb->footer(Footer(info));
    switch (info.verb) {
    case Verb::Stream:
        AddCommonOptions(*verb, request, streamFormats);
        AddStreamOptions(*verb, request);
        break;
    case Verb::Tree:
        AddCommonOptions(*verb, request, treeFormats);
        AddTreeOptions(*verb, request);
        break;
    case Verb::At: AddAtOptions(*verb, request); break;
    case Verb::Header: AddHeaderOptions(*verb, request); break;
    case Verb::Includes: AddIncludesOptions(*verb, request); break;
    case Verb::Outline: AddTableOptions(*verb, request, listFormats); break;
    case Verb::Classes: AddClassesOptions(*verb, request); break;
    case Verb::Show: AddShowOptions(*verb, request); break;
    case Verb::Hierarchy: AddHierarchyOptions(*verb, request); break;
    case Verb::Tags: AddTableOptions(*verb, request, tagsFormats); break;
    case Verb::Triage: AddTriageOptions(*verb, request); break;
    case Verb::Mask: AddMaskOptions(*verb, request); break;
    case Verb::Frameworks: AddFrameworksOptions(*verb, request); break;
    }
    return verb;
}

bool ColorFor(ColorMode mode, int descriptor) {
    if (mode != ColorMode::Auto) return mode == ColorMode::Always;
    const char* noColor = std::getenv("NO_COLOR");
    const char* terminal = std::getenv("TERM");
    if (noColor != nullptr && *noColor != 0) return false;
    return isatty(descriptor) != 0 && terminal != nullptr && std::string_view(terminal) != "dumb";
}

// `hierarchy harbour/Ships` names no class.
void TakeFileForClass(Request& request) {
    if (request.verb != Verb::Hierarchy || request.className.empty()) return;
    if (access(request.className.c_str(), F_OK) != 0) return;
    request.paths.insert(request.paths.begin(), request.className);
    request.className.clear();
}

// Those take all of the workspaces.
bool MayNameNoFiles(const Request& request) {
    return request.verb == Verb::Frameworks || (IsTableVerb(request) && request.verb != Verb::Outline);
}

std::optional<int> Finish(const CLI::App& chosen, const VerbInfo& info, Request& request) {
    std::vector<std::string> extras = chosen.remaining();
    std::erase(extras, "--"); // the end of the options stays among them
    if (!extras.empty()) {
        return FailUsage(fmt::format("{} has no option {}{}", info.name, extras.front(),
                                     Hint(extras.front(), OptionNames(chosen))));
    }
    request.verb = info.verb;
    TakeFileForClass(request);
    if (info.verb == Verb::Mask && !TakeMask(request))
        return FailUsage("mask needs a mask, or a file with --masks");
    if (!MayNameNoFiles(request) && request.paths.empty() && request.filesFrom.empty() &&
        request.compileCommands.empty())
        return FailUsage(fmt::format("{} needs a file, a folder or a list of files", info.name));
    if (info.verb == Verb::At && !ParseFilePlace(request.paths.front()))
        return FailUsage(
            fmt::format("a place is FILE:LINE or FILE:LINE:COLUMN, not {}", request.paths.front()));
    request.colorOutput = ColorFor(request.color, STDOUT_FILENO);
    request.colorErrors = ColorFor(request.color, STDERR_FILENO);
    return std::nullopt;
}

// The first word that is no option names the verb; "help" stands for the option. A place in standard input,
// as
// "-:3:1", is no option either.
std::vector<std::string> Words(int argc, char** argv) {
    std::vector<std::string> words(argv + 1, argv + argc);
    if (!words.empty() && words.front() == "help") {
        words.erase(words.begin());
        words.emplace_back("--help");
    }
    const auto isOther = [](const std::string& word) { return !word.starts_with("-:"); };
    const auto places = std::stable_partition(words.begin(), words.end(), isOther);
    if (places != words.end()) words.insert(places, "--");
    return words;
}

// What is installed beside the program is made by it: --generate man, bash, zsh or fish.
int PrintManual(CLI::App& app, const std::vector<std::string>& words) {
    const auto manual = RenderManual(app, words.size() == 2 ? words[1] : "");
    if (!manual) return FailUsage("--generate takes man, bash, zsh or fish");
    std::fputs(manual->c_str(), stdout);
    return ExitDone;
}

} // namespace

std::optional<int> ParseCommandLine(int argc, char** argv, Request& request) {
    CLI::App app("Reads C++ and IDL sources that no compiler here can build.", "ostraka");
    app.set_version_flag("--version", "ostraka " OSTRAKA_VERSION);
    app.footer("Each verb has its own --help with examples.\n" +
               fmt::format(exitCodes, ", or a check failed"));
    std::vector<CLI::App*> chosen;
    for (const VerbInfo& info : verbs) chosen.push_back(AddVerb(app, info, request));

    std::vector<std::string> words = Words(argc, argv);
    if (words.empty()) return FailUsage("a verb is missing");
    if (words.front() == "--generate") return PrintManual(app, words);
    const std::vector<std::string> names = VerbNames();
    if (!words.front().starts_with('-') &&
        std::find(names.begin(), names.end(), words.front()) == names.end())
        return FailUsage(fmt::format("there is no verb {}{}", words.front(), Hint(words.front(), names)));
    try {
        std::reverse(words.begin(), words.end());
        app.parse(words);
    } catch (const CLI::Success& help) {
        return app.exit(help);
    } catch (const CLI::ExtrasError& error) {
        return FailUsage(fmt::format("there is no option {}{}", app.remaining().front(),
                                     Hint(app.remaining().front(), OptionNames(app))));
    } catch (const CLI::ParseError& error) {
        return FailUsage(error.what());
    }
    for (std::size_t i = 0; i < chosen.size(); ++i)
        if (chosen[i]->parsed()) return Finish(*chosen[i], verbs[i], request);
    return FailUsage("a verb is missing");
}

} // namespace ostraka::tool
