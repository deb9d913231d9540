#pragma once

// A symbol table with its workspaces, for the verbs that ask one. It owns the table, whose records and trees
// end with it.
//
// The table takes paths as texts, so a file must always be spelled the same: the session hands it absolute
// paths, and shows them as they are from the working directory. Standard input stays "-".

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <ostraka/symbols/TAPSymbolTable.h>

#include "cli/Run.h"
#include "formats/Text.h"

namespace ostraka::tool {

// Those that the request names, as it spells them.
std::vector<std::string> WorkspacesOf(const Request& request);

// Words that the files are read without: those that the request names, then those of the roots.
std::vector<std::string> DroppedWordsOf(const Request& request, const std::vector<std::string>& roots);

class Session {
public:
    // Where the request names no workspaces, those are taken in which the paths lie; where it names no
    // operating system and the environment doesn't either, the first for which headers are generated there.
    Session(const Request& asked, const std::vector<std::string>& paths);

    TAPSymbolTable& Table() const { return *table; }

    // Loads a file, C++ or IDL, with all that it includes, and gives its root. Each file that fails is told
    // in the result with its place and cause, a header with the file that includes it. Null for a file that
    // can't be read or has no whole tree.
    TAPSyntaxe* Load(const std::string& path, Result& result);

    // The same for one of many files. What fails is told by TellFailures, once all are loaded.
    void LoadOneOfMany(const Input& input);
    void TellFailures(Result& result) const;

    // Files that were read or that couldn't be.
    int FileCount() const { return table->sources.size + static_cast<int>(unread.size()); }

    // How a path is spelled for the table, and for the user.
    static std::string Absolute(const std::string& path);
    std::string Shown(std::string_view path) const;

private:
    struct Release {
        void operator()(TARefCounter* counted) const { counted->Release(); }
    };

    void TellFailedSources(const std::string& loaded, Result& result) const;
    void TellFailure(const std::string& path, const Failure& failure, std::string_view includer,
                     Result& result) const;
    void TellMissingRoots(Result& result) const;
    void TellNuls(Result& result) const;
    void TellRefusedArguments(Result& result) const;
    std::string Read(const std::string& absolute);

    const Request& request;
    std::string workingFolder; // with a slash at its end
    std::vector<std::string> missingRoots;
    std::vector<Input> unread;                         // by absolute path, with the problem
    std::vector<std::pair<std::string, Failure>> nuls; // named files that a NUL ends early, by absolute path
    std::unique_ptr<TAPSymbolTable, Release> table;
};

} // namespace ostraka::tool
