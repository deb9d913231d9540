#include "verbs/Session.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <set>
#include <system_error>
#include <unordered_map>
#include <unordered_set>

#include <fmt/format.h>

#include <answers/facts/Diagnosis.h>
#include <answers/facts/RawFile.h>
#include <ostraka/foundation/Directory.h>

#include "verbs/FileId.h"
#include "verbs/RootSettings.h"

namespace fs = std::filesystem;

namespace ostraka::tool {

namespace {

// The table reads its level of the generated directories from the environment and ends the process without
// it.
constexpr const char* osVariable = "QxqxOS_VAR";
constexpr const char* noOs = "none";

constexpr const char* frameworkMark = "IdentityCard";
constexpr const char* generatedDirectories[] = {"PublicGenerated", "ProtectedGenerated", "PrivateGenerated"};

bool IsFolder(const fs::path& path) {
    std::error_code ignored;
    return fs::is_directory(path, ignored);
}

bool HoldsFrameworks(const fs::path& folder) {
    std::error_code error;
    for (fs::directory_iterator entry(folder, error); !error && entry != fs::directory_iterator();
         entry.increment(error))
        if (IsFolder(entry->path() / frameworkMark)) return true;
    return false;
}

// The workspace in which a file or a folder lies, or which a folder is; empty if there is none.
std::string RootAround(const std::string& path) {
    const fs::path whole = Session::Absolute(path);
    for (fs::path folder = whole; folder.has_relative_path(); folder = folder.parent_path())
        if (IsFolder(folder / frameworkMark)) return folder.parent_path().string();
    return IsFolder(whole) && HoldsFrameworks(whole) ? whole.string() : "";
}

std::vector<std::string> RootsAround(const std::vector<std::string>& paths) {
    std::vector<std::string> roots;
    std::set<FileId> ids;
    std::string lastFolder;
    for (const std::string& path : paths) {
        std::string folder = fs::path(path).parent_path().string();
        if (folder == lastFolder && !roots.empty()) continue;
        lastFolder = std::move(folder);
        std::string root = RootAround(path);
        if (!root.empty() && ids.insert(IdOf(root)).second) roots.push_back(std::move(root));
    }
    return roots;
}

// Spells each workspace as the first path does that leads into it, perhaps through a link, so that a file
// has one name whether it was named or found as a header.
void SpellLikePaths(std::vector<std::string>& roots, const std::vector<std::string>& paths) {
    std::map<FileId, std::string*> waiting;
    for (std::string& root : roots) waiting.try_emplace(IdOf(root), &root);
    std::unordered_set<std::string> seen;
    for (const std::string& path : paths) {
        for (fs::path folder = Session::Absolute(path); !waiting.empty() && folder.has_relative_path();
             folder = folder.parent_path()) {
            if (!seen.insert(folder.string()).second) break;
            const auto root = waiting.find(IdOf(folder.string()));
            if (root == waiting.end()) continue;
            *root->second = folder.string();
            waiting.erase(root);
        }
    }
}

// The first system, by name, for which a workspace has generated headers.
std::string SystemIn(const std::vector<std::string>& roots) {
    std::string first;
    for (const std::string& root : roots) {
        for (const char* directory : generatedDirectories) {
            NUBListValNUBString paths;
            ReadDirectory(fmt::format("{}/*/{}/*", root, directory).c_str(), paths);
            for (const NUBString& path : paths) {
                const std::string system = fs::path(path.View()).filename().string();
                if (first.empty() || system < first) first = system;
            }
        }
    }
    return first.empty() ? noOs : first;
}

// As "argument 'long iX' lacks a direction, a type or a name; it and those behind it aren't read".
std::string CauseOf(const RefusedArgument& argument) {
    const bool tooFew = argument.cause == RefusedArgument::Cause::TooFewWords;
    return fmt::format("argument '{}' {}; it and those behind it aren't read", argument.text.View(),
                       tooFew ? "lacks a direction, a type or a name" : "begins with no in, out or inout");
}

TAPSymbolTable* MakeTable(const std::string& osName, const std::vector<std::string>& roots) {
    if (!osName.empty()) setenv(osVariable, osName.c_str(), 1);
    if (std::getenv(osVariable) == nullptr) setenv(osVariable, SystemIn(roots).c_str(), 0);
    auto* table = new TAPSymbolTable;
    table->headersByEnding = true;
    table->RememberFolders(true);
    table->SetConcatenation(fmt::format("{}", fmt::join(roots, ":")).c_str());
    return table;
}

} // namespace

std::vector<std::string> WorkspacesOf(const Request& request) {
    const std::string& list = request.workspaces;
    std::vector<std::string> roots;
    for (std::size_t begin = 0; begin < list.size();) {
        const std::size_t past = std::min(list.find(':', begin), list.size());
        if (past > begin) roots.push_back(list.substr(begin, past - begin));
        begin = past + 1;
    }
    return roots;
}

std::vector<std::string> DroppedWordsOf(const Request& request, const std::vector<std::string>& roots) {
    std::vector<std::string> words = request.droppedWords;
    const RootSettings said = ReadRootSettings(roots);
    words.insert(words.end(), said.droppedWords.begin(), said.droppedWords.end());
    return words;
}

Session::Session(const Request& asked, const std::vector<std::string>& paths)
    : request(asked), workingFolder(Absolute(".") + "/") {
    std::vector<std::string> roots = WorkspacesOf(request);
    std::transform(roots.begin(), roots.end(), roots.begin(), Absolute);
    SpellLikePaths(roots, paths);
    if (roots.empty()) roots = RootsAround(paths);
    for (const std::string& root : roots)
        if (!IsFolder(root)) missingRoots.push_back(root);
    table.reset(MakeTable(request.osName, roots));
    TAPLexicalSettings lexical = TAPLexicalSettings::ForRealFiles();
    lexical.droppedWords = DroppedWordsOf(request, roots);
    table->lexicalSettings = std::make_shared<const TAPLexicalSettings>(std::move(lexical));
}

std::string Session::Absolute(const std::string& path) {
    if (path == "-") return path;
    std::error_code error;
    std::string absolute = fs::absolute(path, error).lexically_normal().string();
    if (error) return path;
    while (absolute.size() > 1 && absolute.back() == '/') absolute.pop_back();
    return absolute;
}

std::string Session::Shown(std::string_view path) const {
    if (path == workingFolder.substr(0, workingFolder.size() - 1)) return ".";
    if (path.size() > workingFolder.size() && path.starts_with(workingFolder))
        path.remove_prefix(workingFolder.size());
    return std::string(ShownPath(path));
}

// Empty, or the reason why the file can't be read.
std::string Session::Read(const std::string& absolute) {
    std::string problem;
    auto buffer = ReadFile(absolute, problem);
    if (!buffer) return problem;
    if (auto nul = FindNul({buffer->buffer, buffer->size})) nuls.emplace_back(absolute, std::move(*nul));
    const SilentTraces silence;
    if (TAPSymbolTable::EndsAsIdl(absolute.c_str())) {
        table->LoadIdlFile(buffer.release(), 1);
    } else {
        table->LoadFile(buffer.release(), 1);
    }
    return "";
}

TAPSyntaxe* Session::Load(const std::string& path, Result& result) {
    const std::string absolute = Absolute(path);
    TellMissingRoots(result);
    const std::string problem = Read(absolute);
    if (problem.empty()) {
        TellNuls(result);
        TellFailedSources(absolute, result);
        result.files += std::max(table->sources.size - 1, 0);
    } else {
        TellFailure(absolute, {std::nullopt, problem}, "", result);
    }
    return static_cast<TAPSyntaxe*>(table->trees[absolute.c_str()]);
}

void Session::LoadOneOfMany(const Input& input) {
    const std::string absolute = Absolute(input.path);
    if (table->GetSource(absolute.c_str()) != nullptr) return;
    const std::string problem = input.problem.empty() ? Read(absolute) : input.problem;
    if (!problem.empty()) unread.push_back({absolute, problem});
}

void Session::TellFailures(Result& result) const {
    TellMissingRoots(result);
    TellNuls(result);
    for (const Input& input : unread) TellFailure(input.path, {std::nullopt, input.problem}, "", result);
    TellFailedSources("", result);
    TellRefusedArguments(result);
}

void Session::TellMissingRoots(Result& result) const {
    for (const std::string& root : missingRoots) {
        ++result.failed;
        AppendMessage(result.err, Shown(root), std::nullopt, "error", "is no folder, and so no workspace",
                      request.colorErrors);
    }
}

void Session::TellNuls(Result& result) const {
    if (request.quiet) return;
    for (const auto& [path, nul] : nuls)
        AppendMessage(result.err, Shown(path), nul.place, "warning", nul.cause, request.colorErrors);
}

void Session::TellRefusedArguments(Result& result) const {
    if (request.quiet) return;
    for (int i = 0; i < table->sources.size; ++i) {
        const auto* source = static_cast<const TAPDefSource*>(table->sources.values[i]);
        for (const RefusedArgument& argument : source->refusedArguments)
            AppendMessage(result.err, Shown(source->name.View()), PlaceOf(argument.point), "warning",
                          CauseOf(argument), request.colorErrors);
    }
}

void Session::TellFailedSources(const std::string& loaded, Result& result) const {
    std::unordered_map<std::string_view, std::string_view> includers;
    for (int i = 0; i < table->sources.size; ++i) {
        const auto* source = static_cast<const TAPDefSource*>(table->sources.values[i]);
        for (int k = 1; k <= source->includes.Size(); ++k)
            includers.try_emplace(source->includes[k]->name.View(), source->name.View());
    }
    for (int i = 0; i < table->sources.size; ++i) {
        const auto* source = static_cast<const TAPDefSource*>(table->sources.values[i]);
        const std::string path = table->sources.keys[i];
        if (const auto failure = FailureOf(source->failure))
            TellFailure(path, *failure, path == loaded ? std::string_view() : includers[path], result);
    }
}

void Session::TellFailure(const std::string& path, const Failure& failure, std::string_view includer,
                          Result& result) const {
    ++result.failed;
    std::string cause = failure.cause;
    if (!includer.empty()) cause += fmt::format(", included by {}", Shown(includer));
    AppendMessage(result.err, Shown(path), failure.place, "error", cause, request.colorErrors);
}

} // namespace ostraka::tool
