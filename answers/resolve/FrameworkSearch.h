#pragma once

// The search of headers that workspaces with frameworks have of their own, for the files that lie in them.

#include <functional>
#include <string>
#include <string_view>
#include <vector>

class TAPSymbolTable;

namespace ostraka::answers {

// A table that has its concatenation, and lives as long as whoever asks. Null where there is none.
using GiveTable = std::function<const TAPSymbolTable*()>;

class FrameworkSearch {
public:
    // The table is asked for with the first question.
    explicit FrameworkSearch(GiveTable giveTable) : give(std::move(giveTable)) {}

    // Whether the file's includes are those of frameworks: it lies in a workspace that has some, or outside
    // of all roots, as a file that was written for these workspaces.
    bool IsFor(std::string_view path, const std::vector<std::string>& roots);

    // What the include of a file means; empty where nothing is found.
    std::string Find(const std::string& from, const std::string& name);

private:
    struct Workspace {
        std::string folder;
        bool hasFrameworks;
    };

    void Open();

    GiveTable give; // empty once the table was asked for
    const TAPSymbolTable* table = nullptr;
    std::vector<Workspace> workspaces;
    bool hasAny = false; // whether one of them has frameworks
};

} // namespace ostraka::answers
