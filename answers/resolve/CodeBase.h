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
#include <utility>
#include <vector>

#include <answers/facts/Facts.h>
#include <answers/resolve/FrameworkSearch.h>
#include <answers/resolve/PathEndings.h>

namespace ostraka::answers {

// By what an include was found, in the order of the search.
enum class IncludeRule : std::uint8_t {
    None,
    Path,      // it names a file from the top
    Framework, // the search of the frameworks around the file that has it
    Beside,    // the folder of the file that has it
    Folder,    // a folder that was named for headers
    Ending,    // the nearest file of the code base whose path ends with the name
};

// "path", "framework" and so on; empty for None.
std::string_view NameOf(IncludeRule rule);

// What an include of a file gives, as the text has it.
struct FileInclude {
    std::string name;
    char delimiter = '"';
    Place place; // of the name, where it stands first
};

// One of the files that an include could mean.
struct IncludeCandidate {
    int file = -1;
    IncludeRule rule = IncludeRule::None;
};

// All of a search, but for that of frameworks, which has places of its own.
struct IncludeTrace {
    std::vector<IncludeCandidate> files;                     // by the order of the search, the first is meant
    std::vector<std::pair<IncludeRule, std::string>> places; // looked at: paths, ** standing for any folders
    std::vector<int> alike; // when there is none: files of that name elsewhere
};

struct CodeBaseSettings {
    std::vector<std::string> roots;   // folders, absolute
    std::vector<std::string> folders; // for headers, absolute
    GiveTable frameworks = nullptr;   // the table whose workspaces hold frameworks, where there are any
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

    // What the file includes, each name once, in the order of the text; false where it can't be read. Costs
    // less than its facts.
    bool ReadIncludes(int file, std::vector<FileInclude>& includes) const;

    // The file that an include of `from` means; -1 where there is none.
    int FindInclude(int from, std::string_view name, char delimiter, IncludeRule* rule = nullptr);
    // The same, but for files in frameworks only what their build finds: nothing by Beside or Ending.
    int FindInBuild(int from, std::string_view name, char delimiter, IncludeRule& rule);
    // The whole search to its end.
    IncludeTrace TraceInclude(int from, std::string_view name, char delimiter);
    // Whether frameworks tell first what the file's includes mean.
    bool IsInFrameworks(int file) { return frameworks.IsFor(PathOf(file), settings.roots); }

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
    PathEndings& Endings();
    bool IsFile(const std::string& path);
    int FindByFrameworks(int from, std::string_view name, IncludeRule& rule);
    int FindInFolders(int from, const std::string& name, IncludeRule& rule);
    int FindByEnding(int from, std::string_view name, char delimiter);
    bool IsOfLanguageCopy(const std::string& path, std::string_view name);

    CodeBaseSettings settings;
    FrameworkSearch frameworks;
    std::deque<File> files;
    std::unordered_map<std::string, int> numbers; // by path
    std::vector<int> listed;
    std::vector<std::string> paths;                 // below the roots, those of other files too
    std::unique_ptr<PathEndings> endings;           // of these: what is included is called anything
    std::unordered_map<std::string, bool> areFiles; // whether there is a file at the path
    bool isListed = false;
};

// Whether the path's ending is one of C, C++ or IDL.
bool IsSourcePath(std::string_view path);

// Whether a file of such a path is compiled by itself, and so included by nobody.
bool IsCompiledPath(std::string_view path);

} // namespace ostraka::answers
