#include "verbs/CodeSession.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <system_error>
#include <unordered_set>
#include <utility>

#include <fmt/format.h>

#include "cli/CompileCommands.h"
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

// The roots around the paths, each once.
std::vector<std::string> RootsOf(const std::vector<std::string>& paths, const std::string& workingFolder) {
    std::vector<std::string> roots;
    std::unordered_set<std::string> folders;
    for (const std::string& path : paths) {
        const std::string absolute = Session::Absolute(path);
        std::error_code ignored;
        if (!fs::is_directory(absolute, ignored) &&
            !folders.insert(fs::path(absolute).parent_path().string()).second)
            continue;
        std::string root = RootOf(absolute, workingFolder);
        if (std::find(roots.begin(), roots.end(), root) == roots.end()) roots.push_back(std::move(root));
    }
    return roots;
}

} // namespace

CodeSession::CodeSession(const Request& asked, const std::vector<std::string>& paths, const Session* loaded)
    : request(asked), namedPaths(paths), frameworks(loaded), workingFolder(Session::Absolute(".") + "/"),
      base(SettingsFor(paths)) {}

CodeSession::~CodeSession() = default;

CodeBaseSettings CodeSession::SettingsFor(const std::vector<std::string>& paths) {
    CodeBaseSettings settings;
    for (const std::string& root : WorkspacesOf(request)) settings.roots.push_back(Session::Absolute(root));
    if (settings.roots.empty()) settings.roots = RootsOf(paths, workingFolder);
    for (const std::string& folder : request.headerFolders)
        settings.folders.push_back(Session::Absolute(folder));
    if (!request.compileCommands.empty()) {
        CompileCommands commands = ReadCompileCommands(request.compileCommands);
        for (const std::string& folder : commands.folders)
            settings.folders.push_back(Session::Absolute(folder));
        problem = std::move(commands.problem);
    }
    TakeRootSettings(request, settings);
    settings.frameworks = [this] { return &Frameworks().Table(); };
    return settings;
}

void CodeSession::TellFailures(Result& result) const {
    if (!problem.empty()) result.Fail(request, request.compileCommands, {std::nullopt, problem});
}

const Session& CodeSession::Frameworks() {
    if (frameworks == nullptr) {
        ownSession = std::make_unique<Session>(request, namedPaths);
        frameworks = ownSession.get();
    }
    return *frameworks;
}

void CodeSession::TellHeads(const std::vector<std::string>& paths, Result& result) {
    std::int64_t count = 0;
    std::string first;
    for (const std::string& path : paths) {
        const int file = FileAt(path);
        const FileFacts& facts = base.FactsOf(file);
        for (const FaultAt& fault : facts.faults)
            if (fault.fault == LexicalFault::Head && ++count == 1)
                first = PlaceText({}, Shown(base.PathOf(file)), facts.PlaceOf(fault.at));
    }
    if (count == 0) return;
    const std::string what = Counted(count, "head") + (count == 1 ? " wasn't" : " weren't");
    result.Note(request, fmt::format("{} understood, the first at {}", what, first));
}

int CodeSession::FileAt(const std::string& path) {
    return base.FileAt(Session::Absolute(path));
}

std::string CodeSession::Shown(std::string_view path) const {
    if (path == workingFolder.substr(0, workingFolder.size() - 1)) return ".";
    if (path.size() > workingFolder.size() && path.starts_with(workingFolder))
        path.remove_prefix(workingFolder.size());
    return std::string(ShownPath(path));
}

} // namespace ostraka::tool
