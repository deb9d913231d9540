#include "Session.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <unordered_map>

#include <fmt/format.h>

#include "Diagnosis.h"
#include "RawFile.h"
#include "SourceUnit.h"

namespace fs = std::filesystem;

namespace ostraka::tool {

namespace {

// The table reads its level of the generated directories from the environment and ends the process without
// it.
constexpr const char* osVariable = "QxqxOS_VAR";
constexpr const char* noOs = "none";

TAPSymbolTable* MakeTable(const std::string& osName) {
    if (!osName.empty()) setenv(osVariable, osName.c_str(), 1);
    setenv(osVariable, noOs, 0);
    return new TAPSymbolTable;
}

std::string AbsoluteList(const std::string& list) {
    std::string absolute;
    for (std::size_t begin = 0; begin < list.size();) {
        const std::size_t past = std::min(list.find(':', begin), list.size());
        if (past > begin) absolute += Session::Absolute(list.substr(begin, past - begin)) + ":";
        begin = past + 1;
    }
    return absolute;
}

} // namespace

Session::Session(const Request& asked)
    : request(asked), workingFolder(Absolute(".") + "/"), table(MakeTable(asked.osName)) {
    table->SetConcatenation(AbsoluteList(request.workspaces).c_str());
}

std::string Session::Absolute(const std::string& path) {
    std::error_code error;
    std::string absolute = fs::absolute(path, error).lexically_normal().string();
    if (error) return path;
    while (absolute.size() > 1 && absolute.back() == '/') absolute.pop_back();
    return absolute;
}

std::string Session::Shown(std::string_view path) const {
    if (path.size() > workingFolder.size() && path.starts_with(workingFolder))
        path.remove_prefix(workingFolder.size());
    return std::string(path);
}

TAPSyntaxe* Session::Load(const std::string& path, Result& result) {
    const std::string absolute = Absolute(path);
    std::string problem;
    if (auto buffer = ReadFile(absolute, problem)) {
        PrintedErrors printed;
        if (absolute.ends_with(".idl")) {
            table->LoadIdlFile(buffer.release(), 1);
        } else {
            table->LoadFile(buffer.release(), 1);
        }
    }
    if (problem.empty()) {
        TellFailures(absolute, result);
    } else {
        TellFailure(absolute, "", result);
    }
    return static_cast<TAPSyntaxe*>(table->trees[absolute.c_str()]);
}

// A file without a tree failed, and so may one with an empty tree, which is what an unreadable file gets.
void Session::TellFailures(const std::string& loaded, Result& result) const {
    std::unordered_map<std::string_view, std::string_view> includers;
    for (int i = 0; i < table->sources.size; ++i) {
        const auto* source = static_cast<const TAPDefSource*>(table->sources.values[i]);
        for (int k = 1; k <= source->includes.Size(); ++k)
            includers.try_emplace(source->includes[k]->name.View(), source->name.View());
    }
    for (int i = 0; i < table->sources.size; ++i) {
        const std::string path = table->sources.keys[i];
        const auto* root = static_cast<const TAPSyntaxe*>(table->trees[path.c_str()]);
        if (root == nullptr || root->GetSize() == 0)
            TellFailure(path, path == loaded ? std::string_view() : includers[path], result);
    }
    result.headers += std::max(table->sources.size - 1, 0);
}

void Session::TellFailure(const std::string& path, std::string_view includer, Result& result) const {
    const Input input{path, ""};
    SourceUnit unit(input);
    if (unit.Load()) unit.Build();
    if (!unit.GetFailure()) return;
    ++result.failed;
    std::string cause = unit.GetFailure()->cause;
    if (!includer.empty()) cause += fmt::format(", included by {}", Shown(includer));
    AppendMessage(result.err, Shown(path), unit.GetFailure()->place, "error", cause, request.colorErrors);
}

} // namespace ostraka::tool
