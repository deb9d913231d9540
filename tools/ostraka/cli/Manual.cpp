#include "cli/Manual.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include <fmt/format.h>

namespace ostraka::tool {

namespace {

// An option as all forms want it.
struct Flagged {
    std::vector<std::string> names; // with their dashes
    std::string value;              // what stands for its value; empty for one that takes none
    std::string description;
    std::vector<std::string> choices; // of the value, where it is one of a few words
};

struct Command {
    std::string name;
    std::string summary;
    std::string operands;
    std::vector<Flagged> flags;
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

// The words that the value of an option is one of; none for other values.
std::vector<std::string> ChoicesOf(const Verb& verb, const Option& option) {
    if (const auto* word = std::get_if<Word>(&option.kind)) return {word->words.begin(), word->words.end()};
    std::vector<std::string> choices;
    if (std::holds_alternative<FormatWord>(option.kind))
        for (const Format format : verb.formats) choices.emplace_back(FormatName(format));
    return choices;
}

Flagged FlagOf(const Verb& verb, const Option& option) {
    Flagged flag{Split(option.names, ','), "", option.description, ChoicesOf(verb, option)};
    flag.value = option.value != nullptr ? option.value : fmt::format("{}", fmt::join(flag.choices, "|"));
    return flag;
}

void AppendOperand(std::string& operands, const char* name, const Operand& operand) {
    const std::string text = fmt::format("{}{}", name, operand.isRepeated ? "..." : "");
    operands += operands.empty() ? "" : " ";
    operands += operand.isRequired ? text : fmt::format("[{}]", text);
}

// Each verb has it from the parser.
constexpr Option helpOption = {"-h,--help", nullptr, "Print this help message and exit", Flag{nullptr}};

Command CommandOf(const Verb& verb) {
    Command command{verb.name, verb.summary, "", {}, {verb.examples.begin(), verb.examples.end()}};
    command.flags.push_back(FlagOf(verb, helpOption));
    for (const std::span<const Option> group : verb.options)
        for (const Option& option : group)
            if (const auto* operand = std::get_if<Operand>(&option.kind))
                AppendOperand(command.operands, option.names, *operand);
            else
                command.flags.push_back(FlagOf(verb, option));
    return command;
}

std::vector<Command> CommandsOf(std::span<const Verb* const> verbs) {
    std::vector<Command> commands;
    for (const Verb* verb : verbs) commands.push_back(CommandOf(*verb));
    return commands;
}

using Commands = const std::vector<Command>&;

std::string Names(Commands commands) {
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

void AppendFlag(std::string& out, const Flagged& flag) {
    std::string names;
    for (const std::string& name : flag.names)
        names += fmt::format("{}\\fB{}\\fR", names.empty() ? "" : ", ", Troff(name));
    if (!flag.value.empty()) names += fmt::format(" \\fI{}\\fR", Troff(flag.value));
    fmt::format_to(std::back_inserter(out), ".TP\n{}\n{}\n", names, Troff(flag.description));
}

std::string Man(Commands commands) {
    std::string out =
        fmt::format(".TH OSTRAKA 1 \"\" \"ostraka {}\" \"User Commands\"\n"
                    ".SH NAME\nostraka \\- asks C++ and IDL sources that don't build\n"
                    ".SH SYNOPSIS\n.B ostraka\n\\fIVERB\\fR [\\fIOPTION\\fR...] [\\fIOPERAND\\fR...]\n"
                    ".SH DESCRIPTION\n{}\n.SH VERBS\n",
                    OSTRAKA_VERSION, Troff(programSummary));
    for (const Command& command : commands) {
        fmt::format_to(std::back_inserter(out), ".SS {} {}\n{}.\n", Troff(command.name),
                       Troff(command.operands), Troff(command.summary));
        for (const Flagged& flag : command.flags) AppendFlag(out, flag);
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

std::string Bash(Commands commands) {
    std::string values;
    std::string flags;
    for (const Command& command : commands) {
        std::vector<std::string> words;
        for (const Flagged& flag : command.flags) {
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

std::string Zsh(Commands commands) {
    std::string verbs;
    std::string cases;
    for (const Command& command : commands) {
        fmt::format_to(std::back_inserter(verbs), "        '{}:{}'\n", command.name,
                       ZshText(command.summary));
        fmt::format_to(std::back_inserter(cases), "        {}) _arguments \\\n", command.name);
        for (const Flagged& flag : command.flags) {
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

std::string Fish(Commands commands) {
    std::string out = "# fish completion of ostraka\n";
    for (const Command& command : commands)
        fmt::format_to(std::back_inserter(out),
                       "complete -c ostraka -f -n 'not __fish_seen_subcommand_from {}' -a {} -d {}\n",
                       Names(commands), command.name, FishText(command.summary));
    for (const Command& command : commands) {
        for (const Flagged& flag : command.flags) {
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
    std::string (*render)(Commands commands);
};

constexpr Form forms[] = {{"man", Man}, {"bash", Bash}, {"zsh", Zsh}, {"fish", Fish}};

} // namespace

std::string ExitCodesText(std::string_view failedCheck) {
    return fmt::format(
        "Exit codes: 0 done, 1 nothing found{}, 2 wrong usage, 3 some file failed and the rest is valid",
        failedCheck);
}

std::optional<std::string> RenderManual(std::span<const Verb* const> verbs, std::string_view form) {
    const auto* found =
        std::find_if(std::begin(forms), std::end(forms), [=](const Form& row) { return row.name == form; });
    if (found == std::end(forms)) return std::nullopt;
    return found->render(CommandsOf(verbs));
}

} // namespace ostraka::tool
