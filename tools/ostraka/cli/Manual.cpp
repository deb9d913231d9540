#include "cli/Manual.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace ostraka::tool {

namespace {

// An option as all forms want it.
struct Flag {
    std::vector<std::string> names; // with their dashes
    std::string value;              // what stands for its value; empty for one that takes none
    std::string description;
    std::vector<std::string> choices; // of the value, where it is one of a few words
};

struct Command {
    std::string name;
    std::string summary;
    std::string operands;
    std::vector<Flag> flags;
    std::vector<std::string> examples;
};

std::vector<std::string> Split(const std::string& text, char separator) {
    std::vector<std::string> parts = {""};
    for (char c : text) {
        if (c == separator)
            parts.emplace_back();
        else
            parts.back() += c;
    }
    return parts;
}

// A value that is written as "text|json" is one of these words.
std::vector<std::string> ChoicesIn(const std::string& value) {
    const std::vector<std::string> parts = Split(value, '|');
    return parts.size() > 1 ? parts : std::vector<std::string>();
}

Flag FlagOf(const CLI::Option& option) {
    Flag flag;
    for (const std::string& name : option.get_snames()) flag.names.push_back("-" + name);
    for (const std::string& name : option.get_lnames()) flag.names.push_back("--" + name);
    if (option.get_expected_max() > 0) flag.value = option.get_type_name();
    flag.description = option.get_description();
    flag.choices = ChoicesIn(flag.value);
    return flag;
}

std::vector<std::string> ExamplesIn(const std::string& footer) {
    std::vector<std::string> examples;
    for (const std::string& line : Split(footer, '\n'))
        if (line.starts_with("  ")) examples.push_back(line.substr(2));
    return examples;
}

Command CommandOf(const CLI::App& verb) {
    Command command{verb.get_name(), verb.get_description(), "", {}, ExamplesIn(verb.get_footer())};
    for (const CLI::Option* option : verb.get_options()) {
        if (option->get_positional())
            command.operands +=
                fmt::format("{}{}{}", command.operands.empty() ? "" : " ", option->get_name(true),
                            option->get_expected_max() > 1 ? "..." : "");
        else
            command.flags.push_back(FlagOf(*option));
    }
    return command;
}

std::vector<Command> CommandsOf(CLI::App& app) {
    std::vector<Command> commands;
    for (const CLI::App* verb : app.get_subcommands([](const CLI::App*) { return true; }))
        commands.push_back(CommandOf(*verb));
    return commands;
}

std::string Names(const std::vector<Command>& commands) {
    std::string names;
    for (const Command& command : commands) names += (names.empty() ? "" : " ") + command.name;
    return names;
}

// ---- man

std::string Troff(std::string_view text) {
    std::string escaped;
    for (char c : text) {
        if (c == '\\')
            escaped += "\\e";
        else if (c == '-')
            escaped += "\\-";
        else
            escaped += c;
    }
    // A control character at the front of a line.
    if (escaped.starts_with('.') || escaped.starts_with('\'')) escaped.insert(0, "\\&");
    return escaped;
}

void AppendFlag(std::string& out, const Flag& flag) {
    std::string names;
    for (const std::string& name : flag.names)
        names += fmt::format("{}\\fB{}\\fR", names.empty() ? "" : ", ", Troff(name));
    if (!flag.value.empty()) names += fmt::format(" \\fI{}\\fR", Troff(flag.value));
    fmt::format_to(std::back_inserter(out), ".TP\n{}\n{}\n", names, Troff(flag.description));
}

std::string Man(CLI::App& app) {
    std::string out =
        fmt::format(".TH OSTRAKA 1 \"\" \"ostraka {}\" \"User Commands\"\n"
                    ".SH NAME\nostraka \\- asks C++ and IDL sources that don't build\n"
                    ".SH SYNOPSIS\n.B ostraka\n\\fIVERB\\fR [\\fIOPTION\\fR...] [\\fIOPERAND\\fR...]\n"
                    ".SH DESCRIPTION\n{}\n.SH VERBS\n",
                    OSTRAKA_VERSION, Troff(app.get_description()));
    const std::vector<Command> commands = CommandsOf(app);
    for (const Command& command : commands) {
        fmt::format_to(std::back_inserter(out), ".SS {} {}\n{}.\n", Troff(command.name),
                       Troff(command.operands), Troff(command.summary));
        for (const Flag& flag : command.flags) AppendFlag(out, flag);
    }
    out += ".SH EXAMPLES\n.nf\n";
    for (const Command& command : commands)
        if (!command.examples.empty()) out += Troff(command.examples.front()) + "\n";
    out += ".fi\n.SH EXIT STATUS\n0 done; 1 nothing found, or a check failed; 2 wrong usage; 3 some file "
           "failed and the rest is valid.\n.SH ENVIRONMENT\n.TP\n\\fBQxqxOS_VAR\\fR\nThe level of the "
           "generated directories, where \\fB\\-\\-os\\fR doesn't tell it.\n.TP\n\\fBNO_COLOR\\fR\nNo "
           "colour.\n";
    return out;
}

// ---- shells

std::string Joined(const std::vector<std::string>& words) {
    return fmt::format("{}", fmt::join(words, " "));
}

std::string Bash(CLI::App& app) {
    const std::vector<Command> commands = CommandsOf(app);
    std::string values;
    std::string flags;
    for (const Command& command : commands) {
        std::vector<std::string> words;
        for (const Flag& flag : command.flags) {
            words.insert(words.end(), flag.names.begin(), flag.names.end());
            if (!flag.choices.empty())
                fmt::format_to(std::back_inserter(values), "        {}:{}) words=\"{}\" ;;\n", command.name,
                               flag.names.back(), Joined(flag.choices));
        }
        fmt::format_to(std::back_inserter(flags), "            {}) words=\"{}\" ;;\n", command.name,
                       Joined(words));
    }
    return fmt::format(R"(# bash completion of ostraka
_ostraka() {{
    local word=${{COMP_WORDS[COMP_CWORD]}} before=${{COMP_WORDS[COMP_CWORD - 1]}} words=
    if [ "$COMP_CWORD" = 1 ]; then
        words="{} --help --version"
    else
        case ${{COMP_WORDS[1]}}:$before in
{}        esac
        if [ -z "$words" ] && [[ $word == -* ]]; then
            case ${{COMP_WORDS[1]}} in
{}            esac
        fi
    fi
    if [ -n "$words" ]; then
        COMPREPLY=($(compgen -W "$words" -- "$word"))
    else
        COMPREPLY=($(compgen -f -- "$word"))
    fi
}}
complete -o filenames -F _ostraka ostraka
)",
                       Names(commands), values, flags);
}

// Within single quotes; brackets and colons mean something to zsh.
std::string ZshText(std::string_view text) {
    std::string quoted;
    for (char c : text) {
        if (c == '\'')
            quoted += "'\\''";
        else if (c == '[' || c == ']' || c == ':' || c == '\\')
            (quoted += '\\') += c;
        else
            quoted += c;
    }
    return quoted;
}

std::string Zsh(CLI::App& app) {
    std::string verbs;
    std::string cases;
    for (const Command& command : CommandsOf(app)) {
        fmt::format_to(std::back_inserter(verbs), "        '{}:{}'\n", command.name,
                       ZshText(command.summary));
        fmt::format_to(std::back_inserter(cases), "        {}) _arguments \\\n", command.name);
        for (const Flag& flag : command.flags) {
            for (const std::string& name : flag.names) {
                fmt::format_to(std::back_inserter(cases), "            '{}[{}]", name,
                               ZshText(flag.description));
                if (!flag.choices.empty())
                    fmt::format_to(std::back_inserter(cases), ":value:({})", Joined(flag.choices));
                else if (!flag.value.empty())
                    fmt::format_to(std::back_inserter(cases), ":{}:_files", ZshText(flag.value));
                cases += "' \\\n";
            }
        }
        cases += "            '*:file:_files' ;;\n";
    }
    return fmt::format(R"(#compdef ostraka
_ostraka() {{
    local -a verbs
    verbs=(
{}    )
    if (( CURRENT == 2 )); then
        _describe verb verbs
        return
    fi
    local verb=$words[2]
    shift words
    (( CURRENT-- ))
    case $verb in
{}    esac
}}
_ostraka "$@"
)",
                       verbs, cases);
}

std::string FishText(std::string_view text) {
    std::string quoted = "'";
    for (char c : text) {
        if (c == '\'' || c == '\\') quoted += '\\';
        quoted += c;
    }
    return quoted + "'";
}

std::string Fish(CLI::App& app) {
    const std::vector<Command> commands = CommandsOf(app);
    std::string out = "# fish completion of ostraka\n";
    for (const Command& command : commands)
        fmt::format_to(std::back_inserter(out),
                       "complete -c ostraka -f -n 'not __fish_seen_subcommand_from {}' -a {} -d {}\n",
                       Names(commands), command.name, FishText(command.summary));
    for (const Command& command : commands) {
        for (const Flag& flag : command.flags) {
            fmt::format_to(std::back_inserter(out), "complete -c ostraka -n '__fish_seen_subcommand_from {}'",
                           command.name);
            for (const std::string& name : flag.names)
                fmt::format_to(std::back_inserter(out), " {} {}", name.starts_with("--") ? "-l" : "-s",
                               name.substr(name.find_first_not_of('-')));
            if (!flag.choices.empty())
                fmt::format_to(std::back_inserter(out), " -x -a '{}'", Joined(flag.choices));
            else if (!flag.value.empty())
                out += " -r";
            fmt::format_to(std::back_inserter(out), " -d {}\n", FishText(flag.description));
        }
    }
    return out;
}

struct Form {
    std::string_view name;
    std::string (*render)(CLI::App& app);
};

constexpr Form forms[] = {{"man", Man}, {"bash", Bash}, {"zsh", Zsh}, {"fish", Fish}};

} // namespace

std::optional<std::string> RenderManual(CLI::App& app, std::string_view form) {
    const auto* found =
        std::find_if(std::begin(forms), std::end(forms), [=](const Form& row) { return row.name == form; });
    if (found == std::end(forms)) return std::nullopt;
    return found->render(app);
}

} // namespace ostraka::tool
