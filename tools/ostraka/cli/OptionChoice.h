#pragma once

// Options that several verbs have, and those that take one of a few words, with a hint for a word that is
// none of them.

#include <algorithm>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include "cli/Nearest.h"
#include "cli/Request.h"

namespace ostraka::tool {

template <class Enum>
struct Choice {
    const char* name;
    Enum value;
};

inline constexpr Choice<Format> listFormats[] = {
    {"text", Format::Text}, {"json", Format::Json}, {"jsonl", Format::JsonLines}};
inline constexpr Choice<ColorMode> colorModes[] = {
    {"auto", ColorMode::Auto}, {"always", ColorMode::Always}, {"never", ColorMode::Never}};

// The value of the word, which the option has to know.
template <class Enum>
Enum ParseChoice(const char* option, const std::string& word, std::span<const Choice<Enum>> choices) {
    std::vector<std::string> names;
    for (const Choice<Enum>& choice : choices) {
        if (choice.name == word) return choice.value;
        names.emplace_back(choice.name);
    }
    throw CLI::ValidationError(fmt::format("{} doesn't take '{}'{}", option, word, Hint(word, names)));
}

// An option that takes one of a few words.
template <class Enum>
void AddChoice(CLI::App& app, const char* option, Enum& value, std::span<const Choice<Enum>> choices,
               const char* description) {
    std::vector<std::string> names;
    for (const Choice<Enum>& choice : choices) names.emplace_back(choice.name);
    const auto take = [=, &value](const std::string& word) { value = ParseChoice(option, word, choices); };
    app.add_option_function<std::string>(option, take, description)
        ->type_name(fmt::format("{}", fmt::join(names, "|")));
}

inline void AddOutputOptions(CLI::App& app, Request& request, std::span<const Choice<Format>> formats) {
    AddChoice<Format>(app, "--format", request.format, formats, "How to print");
    AddChoice<ColorMode>(app, "--color", request.color, colorModes, "When to use colour");
    app.add_flag("--quiet", request.quiet, "Print no warnings, no progress and no count of failures");
}

inline void AddLimitOption(CLI::App& app, Request& request) {
    app.add_option("--limit", request.limit, "Draw no more than N of them")
        ->check(CLI::Range(1, 1000000).description(""))
        ->type_name("N");
}

} // namespace ostraka::tool
