#include "verbs/CodeSession.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <system_error>

#include "formats/Text.h"
#include "verbs/RootSettings.h"
#include "verbs/Session.h"

namespace fs = std::filesystem;

namespace ostraka::tool {

namespace {

// What lies at the top of a code base.
constexpr const char* topMarks[] = {".ostraka", ".git", ".hg", ".svn", "compile_commands.json"};

bool IsTop(const fs::path& folder) {
    std::error_code ignored;
    return std::any_of(std::begin(topMarks), std::end(topMarks),
                       [&](const char* mark) { return fs::exists(folder / mark, ignored); });
}

std::string RootOf(const std::string& path, const std::string& workingFolder) {
    std::error_code ignored;
    const fs::path whole = path;
    const fs::path own = fs::is_directory(whole, ignored) ? whole : whole.parent_path();
    for (fs::path folder = own; folder.has_relative_path(); folder = folder.parent_path())
        if (IsTop(folder)) return folder.string();
    if ((own.string() + "/").starts_with(workingFolder))
        return workingFolder.substr(0, workingFolder.size() - 1);
    return own.string();
}

void TakeRootSettings(const Request& request, CodeBaseSettings& settings) {
    RootSettings said = ReadRootSettings(settings.roots);
    std::move(said.folders.begin(), said.folders.end(), std::back_inserter(settings.folders));
    settings.droppedWords = request.droppedWords;
    std::move(said.droppedWords.begin(), said.droppedWords.end(), std::back_inserter(settings.droppedWords));
}

CodeBaseSettings SettingsFor(const Request& request, const std::vector<std::string>& paths) {
    CodeBaseSettings settings;
    for (const std::string& root : WorkspacesOf(request)) settings.roots.push_back(Session::Absolute(root));
    for (const std::string& folder : request.headerFolders)
        settings.folders.push_back(Session::Absolute(folder));
    if (settings.roots.empty()) {
        const std::string workingFolder = Session::Absolute(".") + "/";
        for (const std::string& path : paths) {
            std::string root = RootOf(Session::Absolute(path), workingFolder);
            if (std::find(settings.roots.begin(), settings.roots.end(), root) == settings.roots.end())
                settings.roots.push_back(std::move(root));
        }
    }
    TakeRootSettings(request, settings);
    return settings;
}

} // namespace

CodeSession::CodeSession(const Request& request, const std::vector<std::string>& paths)
    : workingFolder(Session::Absolute(".") + "/"), base(SettingsFor(request, paths)) {}

int CodeSession::FileAt(const std::string& path) {
    return base.FileAt(Session::Absolute(path));
}

std::string CodeSession::Shown(int file) const {
    std::string_view path = base.PathOf(file);
    if (path.starts_with(workingFolder)) path.remove_prefix(workingFolder.size());
    return std::string(ShownPath(path));
}

} // namespace ostraka::tool
