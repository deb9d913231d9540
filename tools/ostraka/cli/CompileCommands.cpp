#include "cli/CompileCommands.h"

#include <filesystem>
#include <iterator>
#include <string_view>
#include <unordered_set>

#include <nlohmann/json.hpp>

#include <answers/facts/RawFile.h>
#include <ostraka/foundation/TAFileBuffer.h>

namespace fs = std::filesystem;

namespace ostraka::tool {

namespace {

// A folder stands behind them, or as the next word.
constexpr std::string_view folderOptions[] = {"-I", "-isystem", "-iquote"};

// A command as a shell takes it apart.
std::vector<std::string> WordsOf(std::string_view command) {
    std::vector<std::string> words;
    std::string word;
    bool isOpen = false;
    char quote = '\0';
    for (std::size_t i = 0; i < command.size(); ++i) {
        const char c = command[i];
        if (c == '\\' && quote != '\'' && i + 1 < command.size()) {
            word += command[++i];
            isOpen = true;
        } else if (c == quote) {
            quote = '\0';
        } else if (quote == '\0' && (c == '"' || c == '\'')) {
            quote = c;
            isOpen = true;
        } else if (quote == '\0' && (c == ' ' || c == '\t' || c == '\n')) {
            if (isOpen) words.push_back(std::move(word));
            word.clear();
            isOpen = false;
        } else {
            word += c;
            isOpen = true;
        }
    }
    if (isOpen) words.push_back(std::move(word));
    return words;
}

// The folders that the words name, as they stand there.
std::vector<std::string> FoldersIn(const std::vector<std::string>& words) {
    std::vector<std::string> folders;
    for (std::size_t i = 0; i < words.size(); ++i) {
        for (const std::string_view option : folderOptions) {
            if (!words[i].starts_with(option)) continue;
            if (words[i].size() > option.size()) {
                folders.push_back(words[i].substr(option.size()));
            } else if (i + 1 < words.size()) {
                folders.push_back(words[++i]);
            }
            break;
        }
    }
    return folders;
}

class Reading {
public:
    void Take(const nlohmann::json& entry) {
        const fs::path directory = entry.value("directory", "");
        Add(commands.files, knownFiles, directory / entry.at("file").get<std::string>());
        const auto arguments = entry.find("arguments");
        const auto words = arguments != entry.end() ? arguments->get<std::vector<std::string>>()
                                                    : WordsOf(entry.value("command", ""));
        for (const std::string& folder : FoldersIn(words))
            Add(commands.folders, knownFolders, directory / folder);
    }

    CompileCommands commands;

private:
    static void Add(std::vector<std::string>& list, std::unordered_set<std::string>& known,
                    const fs::path& path) {
        std::string text = path.lexically_normal().string();
        if (known.insert(text).second) list.push_back(std::move(text));
    }

    std::unordered_set<std::string> knownFiles;
    std::unordered_set<std::string> knownFolders;
};

} // namespace

CompileCommands ReadCompileCommands(const std::string& path) {
    Reading reading;
    const auto buffer = answers::ReadFile(path, reading.commands.problem);
    if (!buffer) return std::move(reading.commands);
    try {
        const std::string_view text(buffer->buffer, static_cast<std::size_t>(buffer->size));
        for (const nlohmann::json& entry : nlohmann::json::parse(text)) reading.Take(entry);
    } catch (const nlohmann::json::exception&) {
        reading.commands.problem = "is no list of compile commands";
    }
    return std::move(reading.commands);
}

} // namespace ostraka::tool
