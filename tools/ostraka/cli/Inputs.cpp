#include "cli/Inputs.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>
#include <system_error>

#include <answers/facts/RawFile.h>
#include <ostraka/foundation/TAFileBuffer.h>

#include "cli/CompileCommands.h"

namespace fs = std::filesystem;

namespace ostraka::tool {

namespace {

constexpr std::array<std::string_view, 16> sourceEndings = {".h",   ".hh",  ".hpp", ".hxx", ".H",   ".inl",
                                                            ".ipp", ".tcc", ".c",   ".cc",  ".cpp", ".cxx",
                                                            ".c++", ".C",   ".idl", ".IDL"};

bool IsSource(const fs::path& path) {
    const std::string ending = path.extension().string();
    return std::find(sourceEndings.begin(), sourceEndings.end(), ending) != sourceEndings.end();
}

bool IsHidden(const fs::path& path) {
    return path.filename().string().starts_with('.');
}

// Puts what one folder holds where it belongs.
void ListFolder(const fs::path& folder, FileFilter wanted, std::vector<fs::path>& folders,
                std::vector<Input>& found) {
    std::error_code error;
    fs::directory_iterator entry(folder, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        const fs::path path = entry->path();
        std::error_code ignored; // what can't be told from outside is no source
        if (IsHidden(path)) continue;
        if (entry->is_directory(ignored) && !entry->is_symlink(ignored)) folders.push_back(path);
        if (entry->is_regular_file(ignored) && wanted(path)) found.push_back({path.string(), ""});
    }
    if (error) found.push_back({folder.string(), error.message()});
}

void AddFolder(const std::string& top, FileFilter wanted, std::vector<Input>& inputs) {
    std::vector<Input> found;
    std::vector<fs::path> folders = {top};
    while (!folders.empty()) {
        const fs::path folder = folders.back();
        folders.pop_back();
        ListFolder(folder, wanted, folders, found);
    }
    std::sort(found.begin(), found.end(), [](const Input& a, const Input& b) { return a.path < b.path; });
    if (found.empty())
        found.push_back({top, wanted == IsSource ? "holds no source files" : "holds no files"});
    inputs.insert(inputs.end(), found.begin(), found.end());
}

void AddPath(const std::string& path, FileFilter wanted, std::vector<Input>& inputs) {
    std::error_code ignored; // whoever reads the file tells what is wrong
    if (fs::is_directory(path, ignored)) return AddFolder(path, wanted, inputs);
    inputs.push_back({path, ""});
}

// One path a line; or each ended by a NUL, as `find -print0` writes them.
void AddList(const std::string& text, FileFilter wanted, std::vector<Input>& inputs) {
    const char separator = text.find('\0') == std::string::npos ? '\n' : '\0';
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t past = std::min(text.find(separator, begin), text.size());
        if (past > begin) AddPath(text.substr(begin, past - begin), wanted, inputs);
        begin = past + 1;
    }
}

void AddCompileCommands(const std::string& path, std::vector<Input>& inputs) {
    const CompileCommands commands = ReadCompileCommands(path);
    for (const std::string& file : commands.files) inputs.push_back({file, ""});
    if (!commands.problem.empty()) inputs.push_back({path, commands.problem});
}

// False, and an input that says why, when the list can't be read.
bool ReadList(const std::string& path, std::string& text, std::vector<Input>& inputs) {
    std::string problem;
    const auto buffer = ReadFile(path, problem);
    if (buffer) text.assign(buffer->buffer, buffer->size);
    if (!buffer) inputs.push_back({path, problem});
    return buffer != nullptr;
}

} // namespace

std::vector<Input> CollectInputs(const Request& request) {
    return CollectInputs(request, IsSource);
}

std::vector<Input> CollectInputs(const Request& request, FileFilter wanted) {
    std::vector<Input> inputs;
    std::string text;
    for (const std::string& path : request.paths) AddPath(path, wanted, inputs);
    if (!request.filesFrom.empty() && ReadList(request.filesFrom, text, inputs))
        AddList(text, wanted, inputs);
    if (!request.compileCommands.empty()) AddCompileCommands(request.compileCommands, inputs);
    return inputs;
}

} // namespace ostraka::tool
