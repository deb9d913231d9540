#include <answers/resolve/FrameworkSearch.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <system_error>
#include <utility>

#include <ostraka/symbols/TAPSymbolTable.h>

namespace fs = std::filesystem;

namespace ostraka::answers {

namespace {

// One of these in a folder makes it a framework.
constexpr const char* frameworkMarks[] = {"IdentityCard", "PublicInterfaces", "ProtectedInterfaces",
                                          "PrivateInterfaces"};

bool IsFramework(const fs::path& folder) {
    std::error_code ignored;
    return std::any_of(std::begin(frameworkMarks), std::end(frameworkMarks),
                       [&](const char* mark) { return fs::is_directory(folder / mark, ignored); });
}

bool HoldsFrameworks(const fs::path& folder) {
    std::error_code error;
    for (fs::directory_iterator entry(folder, error); !error && entry != fs::directory_iterator();
         entry.increment(error)) {
        std::error_code ignored;
        if (entry->is_directory(ignored) && IsFramework(entry->path())) return true;
    }
    return false;
}

bool IsBelow(std::string_view path, std::string_view folder) {
    return path.size() > folder.size() && path.starts_with(folder) && path[folder.size()] == '/';
}

} // namespace

void FrameworkSearch::Open() {
    if (!give) return;
    table = std::exchange(give, nullptr)();
    if (table == nullptr) return;
    for (const NUBString& root : table->concatenation) {
        std::string folder(root.View());
        const bool hasFrameworks = HoldsFrameworks(folder);
        hasAny = hasAny || hasFrameworks;
        workspaces.push_back({std::move(folder), hasFrameworks});
    }
}

bool FrameworkSearch::IsFor(std::string_view path, const std::vector<std::string>& roots) {
    Open();
    if (!hasAny) return false;
    for (const Workspace& workspace : workspaces)
        if (IsBelow(path, workspace.folder)) return workspace.hasFrameworks;
    return std::none_of(roots.begin(), roots.end(),
                        [=](const std::string& root) { return IsBelow(path, root); });
}

std::string FrameworkSearch::Find(const std::string& from, const std::string& name) {
    const TAFileName found = table->SearchHeaderFile(from.c_str(), name.c_str());
    return found.IsNull() != 0 ? std::string() : std::string(static_cast<const char*>(found));
}

} // namespace ostraka::answers
