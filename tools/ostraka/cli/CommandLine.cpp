// The rows of the verbs become the options of CLI11, which cuts the command line into words for them; what a
// word means is theirs. Wrong usage of any kind ends in one place.

#include "cli/CommandLine.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <string_view>
#include <unistd.h>
#include <vector>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/Manual.h"
#include "cli/Nearest.h"
#include "cli/Options.h"

namespace ostraka::tool {

namespace {

// `verb` is empty where none is known.
ExitCode FailUsage(std::string_view text, std::string_view verb = {}) {
    fmt::print(stderr, "ostraka: {}\nostraka: see ostraka {}{}--help\n", text, verb, verb.empty() ? "" : " ");
    return ExitUsage;
}

std::vector<std::string> OptionNames(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::Option* option : app.get_options())
        for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    return names;
}

std::string RangeText(const Number& number) {
    if (number.most == std::numeric_limits<int>::max()) return fmt::format("{} or more", number.least);
    return fmt::format("{} to {}", number.least, number.most);
}

int ParseNumber(std::string_view name, const Number& number, const std::string& word) {
    int value = 0;
    const char* past = word.data() + word.size();
    const auto [end, error] = std::from_chars(word.data(), past, value);
    if (error != std::errc() || end != past || value < number.least || value > number.most)
        throw WrongUsage(fmt::format("{} takes {}, not '{}'", name, RangeText(number), word));
    return value;
}

// Adds the option of a row to the parser, by the way in which it takes words. What the parser keeps outlives
// this, and refers to the request only.
class AddOption {
public:
    AddOption(CLI::App& theApp, const Verb& ofVerb, const Option& theRow, Request& theRequest)
        : app(theApp), verb(ofVerb), row(theRow), request(theRequest),
          name(std::string_view(row.names).substr(std::string_view(row.names).rfind(',') + 1)) {}

    void operator()(const Flag& flag) const {
        const auto take = [&taken = request, flag](std::int64_t) { flag.take(taken); };
        app.add_flag_function(row.names, take, row.description);
    }
    void operator()(const Number& number) const {
        const auto take = [&taken = request, number, name = name](const std::string& word) {
            number.take(taken, ParseNumber(name, number, word));
        };
        Add(take)->type_name(row.value);
    }
    void operator()(const Word& word) const {
        const auto take = [&taken = request, word, name = name](const std::string& text) {
            word.take(taken, PositionOf(name, text, word.words));
        };
        if (word.isList)
            AddRepeated(take)->allow_extra_args(false)->delimiter(',')->type_name(row.value);
        else
            Add(take)->type_name(fmt::format("{}", fmt::join(word.words, "|")));
    }
    void operator()(const FormatWord&) const {
        std::vector<const char*> names;
        for (const Format format : verb.formats) names.push_back(FormatName(format));
        const auto take = [&taken = request, names, name = name,
                           formats = verb.formats](const std::string& text) {
            taken.format = formats[PositionOf(name, text, names)];
        };
        Add(take)->type_name(fmt::format("{}", fmt::join(names, "|")));
    }
    void operator()(const Text& text) const {
        const auto take = [&taken = request, text](const std::string& word) { text.take(taken, word); };
        (text.isRepeated ? AddRepeated(take)->allow_extra_args(false) : Add(take))->type_name(row.value);
    }
    void operator()(const Operand& operand) const {
        const auto take = [&taken = request, operand](const std::string& word) { operand.take(taken, word); };
        (operand.isRepeated ? AddRepeated(take) : Add(take))->type_name("")->required(operand.isRequired);
    }

private:
    template <class Take>
    CLI::Option* Add(Take take) const {
        return app.add_option_function<std::string>(row.names, take, row.description);
    }
    template <class Take>
    CLI::Option* AddRepeated(Take take) const {
        const auto takeAll = [take](const std::vector<std::string>& words) {
            for (const std::string& word : words) take(word);
        };
        return app.add_option_function<std::vector<std::string>>(row.names, takeAll, row.description);
    }

    CLI::App& app;
    const Verb& verb;
    const Option& row;
    Request& request;
    std::string_view name; // the long one
};

void AddVerb(CLI::App& app, const Verb& verb, Request& request) {
    CLI::App* added = app.add_subcommand(verb.name, verb.summary);
    added->allow_extras();
    added->footer(fmt::format("Examples:\n  {}\n\n{}", fmt::join(verb.examples, "\n  "),
                              ExitCodesText(verb.failedCheck)));
    for (const std::span<const Option> group : verb.options)
        for (const Option& row : group) std::visit(AddOption(*added, verb, row, request), row.kind);
}

bool ColorFor(ColorMode mode, int descriptor) {
    if (mode != ColorMode::Auto) return mode == ColorMode::Always;
    const char* noColor = std::getenv("NO_COLOR");
    const char* terminal = std::getenv("TERM");
    if (noColor != nullptr && *noColor != 0) return false;
    return isatty(descriptor) != 0 && terminal != nullptr && std::string_view(terminal) != "dumb";
}

// Looks at the request as a whole.
void Finish(const CLI::App& chosen, const Verb& verb, Request& request) {
    std::vector<std::string> extras = chosen.remaining();
    std::erase(extras, "--"); // the end of the options stays among them
    if (!extras.empty())
        throw WrongUsage(fmt::format("{} has no option {}{}", verb.name, extras.front(),
                                     Hint(extras.front(), OptionNames(chosen))));
    request.verb = verb.name;
    if (verb.check != nullptr) verb.check(request);
    request.colorOutput = ColorFor(request.color, STDOUT_FILENO);
    request.colorErrors = ColorFor(request.color, STDERR_FILENO);
}

// The first word that is no option names the verb; "help" stands for the option. A place in standard input,
// as "-:3:1", is no option either.
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
ExitCode PrintManual(Verbs verbs, const std::vector<std::string>& words) {
    const auto manual = RenderManual(verbs, words.size() == 2 ? words[1] : "");
    if (!manual) return FailUsage("--generate takes man, bash, zsh or fish");
    std::fputs(manual->c_str(), stdout);
    return ExitDone;
}

const Verb* FindVerb(Verbs verbs, std::string_view name) {
    const auto found =
        std::find_if(verbs.begin(), verbs.end(), [=](const Verb* verb) { return verb->name == name; });
    return found == verbs.end() ? nullptr : *found;
}

std::vector<std::string> NamesOf(Verbs verbs) {
    std::vector<std::string> names;
    std::transform(verbs.begin(), verbs.end(), std::back_inserter(names),
                   [](const Verb* verb) { return verb->name; });
    return names;
}

// CLI11 takes the words from the back.
void Parse(CLI::App& app, std::vector<std::string> words) {
    std::reverse(words.begin(), words.end());
    app.parse(words);
}

} // namespace

std::variant<const Verb*, ExitCode> ParseCommandLine(int argc, char** argv, Verbs verbs, Request& request) {
    CLI::App app(programSummary, "ostraka");
    app.set_version_flag("--version", "ostraka " OSTRAKA_VERSION);
    app.footer(fmt::format("Each verb has its own --help with examples.\n{}", ExitCodesText(anyCheckFailed)));
    for (const Verb* verb : verbs) AddVerb(app, *verb, request);

    const std::vector<std::string> words = Words(argc, argv);
    if (words.empty()) return FailUsage("a verb is missing");
    const std::string& first = words.front();
    if (first == "--generate") return PrintManual(verbs, words);
    const Verb* verb = FindVerb(verbs, first);
    if (verb == nullptr && !first.starts_with('-'))
        return FailUsage(fmt::format("there is no verb {}{}", first, Hint(first, NamesOf(verbs))));
    const std::string_view name = verb != nullptr ? verb->name : "";
    try {
        Parse(app, words);
        if (verb == nullptr) return FailUsage("a verb is missing");
        Finish(*app.get_subcommand(verb->name), *verb, request);
        return verb;
    } catch (const CLI::Success& help) {
        return static_cast<ExitCode>(app.exit(help));
    } catch (const CLI::ExtrasError&) {
        return FailUsage(fmt::format("there is no option {}{}", app.remaining().front(),
                                     Hint(app.remaining().front(), OptionNames(app))));
    } catch (const CLI::ParseError& error) {
        return FailUsage(error.what(), name);
    } catch (const WrongUsage& error) {
        return FailUsage(error.what(), name);
    }
}

} // namespace ostraka::tool
