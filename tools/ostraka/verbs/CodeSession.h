#pragma once

// The code base that a request is about, for the verbs that ask what names mean. Paths are absolute inside,
// and shown as they are from the working directory.

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <answers/resolve/CodeBase.h>
#include <answers/resolve/Names.h>
#include <answers/resolve/Resolver.h>

#include "cli/Run.h"

namespace ostraka::tool {

class Session;

class CodeSession {
public:
    // Where the request names no workspaces, the code base is the one around the paths: the folder above each
    // that is under version control or says how it is built; else the working directory where it holds the
    // path; else the path's own folder. Where headers of frameworks are looked for, `loaded` answers, or else
    // a session of its own.
    CodeSession(const Request& asked, const std::vector<std::string>& paths, const Session* loaded = nullptr);
    ~CodeSession();

    // Names the list of header folders if it couldn't be read. For verbs that don't take their files from it.
    void TellFailures(Result& result) const;

    // The number of the file, as the user names it.
    int FileAt(const std::string& path);
    // How a file is shown, or an absolute path.
    std::string Shown(int file) const { return Shown(base.PathOf(file)); }
    std::string Shown(std::string_view path) const;

    // The session whose table knows the frameworks.
    const Session& Frameworks();

    // Says how many statements of the files weren't understood, and where the first is.
    void TellHeads(const std::vector<std::string>& paths, Result& result);

    CodeBase& Base() { return base; }
    Names& AllNames() { return names; }
    Resolver& Ask() { return resolver; }

private:
    CodeBaseSettings SettingsFor(const std::vector<std::string>& paths);

    const Request& request;
    std::vector<std::string> namedPaths;
    const Session* frameworks;           // null until it is asked for
    std::unique_ptr<Session> ownSession; // where no other is there
    std::string workingFolder;           // with a slash at its end
    std::string problem;                 // of the list of header folders
    CodeBase base;
    Names names{base};
    Resolver resolver{base, names};
};

} // namespace ostraka::tool
