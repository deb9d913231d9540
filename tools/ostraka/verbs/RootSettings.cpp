#include "verbs/RootSettings.h"

#include <filesystem>
#include <fstream>

#include <fmt/format.h>

#include "cli/Nearest.h"
#include "cli/Verb.h"

namespace ostraka::tool {

namespace {

constexpr std::string_view blanks = " \t\r";

std::string_view Trimmed(std::string_view text) {
    const std::size_t begin = text.find_first_not_of(blanks);
    if (begin == text.npos) return {};
    return text.substr(begin, text.find_last_not_of(blanks) + 1 - begin);
}

void ReadLine(std::string_view line, const std::string& root, const std::string& place,
              RootSettings& settings) {
    const std::string_view text = Trimmed(line.substr(0, line.find('#')));
    if (text.empty()) return;
    const std::size_t past = std::min(text.find_first_of(blanks), text.size());
    const std::string word(text.substr(0, past));
    const std::string value(Trimmed(text.substr(past)));
    const std::size_t column = line.find_first_not_of(blanks) + 1;
    if (word != "drop-word" && word != "include")
        throw WrongUsage(fmt::format("{}:{}: '{}' is no setting{}", place, column, word,
                                     Hint(word, {"drop-word", "include"})));
    if (value.empty()) throw WrongUsage(fmt::format("{}:{}: {} needs a value", place, column, word));
    if (word == "drop-word") {
        settings.droppedWords.push_back(value);
    } else {
        settings.folders.push_back((std::filesystem::path(root) / value).lexically_normal().string());
    }
}

} // namespace

RootSettings ReadRootSettings(const std::vector<std::string>& roots) {
    RootSettings settings;
    for (const std::string& root : roots) {
        const std::filesystem::path path = std::filesystem::path(root) / ".ostraka";
        std::ifstream file(path, std::ios::binary);
        const std::string shown = path.lexically_proximate(std::filesystem::current_path()).string();
        int number = 0;
        for (std::string line; std::getline(file, line);)
            ReadLine(line, root, fmt::format("{}:{}", shown, ++number), settings);
    }
    return settings;
}

} // namespace ostraka::tool
