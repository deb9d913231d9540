#pragma once

// What an include means, and why: the library tells the file, and the place of the search at which that file
// lies tells the rule.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

class TAPSymbolTable;

namespace ostraka::answers {

enum class HeaderRule {
    Exported,  // in an interface directory that a framework shows to all
    Twin,      // there too: the IDL file behind a header
    Generated, // made from something else and shown to all
    Beside,    // in a private or local directory around the file that includes it
};

// "exported", "twin", "generated", "beside".
std::string_view NameOf(HeaderRule rule);

// One place of the search. Folders may hold a "*" for any framework.
struct HeaderPlace {
    HeaderRule rule;
    std::string root;      // the workspace, as it was named; empty for Beside
    std::string folder;    // of a framework or a module
    std::string directory; // in it, as PublicGenerated/unix_a
    std::string name;

    std::string Pattern() const { return folder + "/" + directory + "/" + name; }
};

// A file, and the place at which it was found.
struct HeaderFile {
    std::string path;
    std::optional<HeaderPlace> place; // none for what can't be told
};

struct HeaderAnswer {
    std::vector<HeaderPlace> places; // all, in the order of the search
    std::optional<HeaderFile> found;
    std::vector<HeaderFile> hidden;  // others at later places
    std::vector<std::string> unseen; // when nothing was found: files of that name that aren't looked at
};

// What `name` means in the file `from`. The table must have its concatenation.
HeaderAnswer FindHeader(const TAPSymbolTable& table, const std::string& from, const std::string& name);

// The name of the framework or the module that holds the file's directory.
std::string OwnerOf(const HeaderFile& file);

} // namespace ostraka::answers
