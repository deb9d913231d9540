#pragma once

// The code base that a request is about, for the verbs that ask what names mean. Paths are absolute inside,
// and shown as they are from the working directory.

#include <string>
#include <string_view>
#include <vector>

#include <answers/resolve/CodeBase.h>
#include <answers/resolve/Names.h>
#include <answers/resolve/Resolver.h>

#include "cli/Request.h"

namespace ostraka::tool {

class CodeSession {
public:
    // Where the request names no workspaces, the code base is the one around the paths: the folder above each
    // that is under version control or says how it is built; else the working directory where it holds the
    // path; else the path's own folder.
    CodeSession(const Request& request, const std::vector<std::string>& paths);

    // The number of the file, as the user names it.
    int FileAt(const std::string& path);
    // How a file is shown.
    std::string Shown(int file) const;

    CodeBase& Base() { return base; }
    Names& AllNames() { return names; }
    Resolver& Ask() { return resolver; }

private:
    std::string workingFolder; // with a slash at its end
    CodeBase base;
    Names names{base};
    Resolver resolver{base, names};
};

} // namespace ostraka::tool
