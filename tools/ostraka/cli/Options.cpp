#include "cli/Options.h"

#include <algorithm>

#include <fmt/format.h>

#include "cli/Nearest.h"

namespace ostraka::tool {

namespace {

constexpr const char* formatNames[] = {"text", "json",  "jsonl", "dump",
                                       "dot",  "ctags", "sarif", "html"}; // in the order of Format

} // namespace

const char* FormatName(Format format) {
    return formatNames[static_cast<int>(format)];
}

void CheckFiles(Request& request) {
    if (!NamesFiles(request))
        throw WrongUsage(fmt::format("{} needs a file, a folder or a list of files", request.verb));
}

std::string Alternatives(std::span<const char* const> words) {
    std::string text;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (i > 0) text += i + 1 == words.size() ? " or " : ", ";
        text += words[i];
    }
    return text;
}

std::size_t PositionOf(std::string_view option, const std::string& word, std::span<const char* const> words) {
    const auto found = std::find(words.begin(), words.end(), word);
    if (found != words.end()) return static_cast<std::size_t>(found - words.begin());
    throw WrongUsage(fmt::format("{} takes {}, not '{}'{}", option, Alternatives(words), word,
                                 Hint(word, {words.begin(), words.end()})));
}

} // namespace ostraka::tool
