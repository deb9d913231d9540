#pragma once

// The files of a code base and what they say, read when they are asked for: which file an include means,
// which files a file sees, the facts of each. Files have numbers, in the order in which they were met, that
// stay good as long as the code base, which expects its files to stay as they are meanwhile.

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <answers/facts/Facts.h>

namespace ostraka::answers {

// By what an include was found.
enum class IncludeRule : std::uint8_t {
    None,
    Beside, // the folder of the file that has it
    Folder, // a folder that was named for headers
    Ending, // a file of the code base whose path ends with the name
};

struct CodeBaseSettings {
    std::vector<std::string> roots;        // folders, absolute
    std::vector<std::string> folders;      // for headers, absolute
    std::vector<std::string> droppedWords = {}; // see TAPLexicalSettings
};

class CodeBase {
public:
    explicit CodeBase(CodeBaseSettings named);
    CodeBase(const CodeBase&) = delete;
    CodeBase& operator=(const CodeBase&) = delete;

    // The number of the file at an absolute path, which needn't exist.
    int FileAt(const std::string& path);
    const std::string& PathOf(int file) const { return files[static_cast<std::size_t>(file)].path; }
    int FileCount() const { return static_cast<int>(files.size()); }

    // All sources and headers below the roots, by path.
    const std::vector<int>& AllFiles();

    // The file without its bodies; without anything where it can't be read.
    const FileFacts& FactsOf(int file);
    bool IsRead(int file) const { return files[static_cast<std::size_t>(file)].facts != nullptr; }

    // The file that an include of `from` means; -1 where there is none.
    int FindInclude(int from, std::string_view name, char delimiter, IncludeRule* rule = nullptr);

    // The files that the file's includes mean, in their order.
    const std::vector<int>& IncludesOf(int file);

    // All that is seen from the file: what its includes lead to in the order in which a compiler meets it,
    // the file itself last.
    std::vector<int> SeenFrom(int file);

    // Words that the tokens of all its files are without.
    const std::vector<std::string>& DroppedWords() const { return settings.droppedWords; }

    // The bytes of a file; false where it can't be read.
    static bool ReadBytes(const std::string& path, std::string& bytes);

private:
    struct File {
        std::string path;
        std::unique_ptr<FileFacts> facts;
        std::vector<int> includes;
        bool hasIncludes = false;
    };

    void ListFiles();
    int FindByEnding(const std::string& from, std::string_view name);

    CodeBaseSettings settings;
    std::deque<File> files;
    std::unordered_map<std::string, int> numbers; // by path
    std::vector<int> listed;
    std::unordered_map<std::string, std::vector<int>> byName; // listed files by the last part of their paths
    bool isListed = false;
};

// Whether the path's ending is one of C, C++ or IDL.
bool IsSourcePath(std::string_view path);

// Whether a file of such a path is compiled by itself, and so included by nobody.
bool IsCompiledPath(std::string_view path);

} // namespace ostraka::answers
