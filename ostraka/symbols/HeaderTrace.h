#pragma once

// Why an include means the file that it means: the places at which TAPSymbolTable::SearchHeaderFile looks.

#include <string>
#include <string_view>
#include <vector>

#include <ostraka/Export.h>
#include <ostraka/foundation/TAFileName.h>

namespace ostraka {

// In the order of the search.
enum class HeaderRule {
    Exported,  // in an interface directory that a framework shows to all
    Twin,      // there too: the IDL file behind a header
    Generated, // made from something else and shown to all
    Beside,    // in a private or local directory around the file that includes it
};

// "exported", "twin", "generated", "beside".
OSTRAKA_EXPORT std::string_view NameOf(HeaderRule rule);

// One place of the search: a pattern of four parts.
struct HeaderPlace {
    HeaderRule rule;
    std::string root;      // the workspace, as it was named; empty for Beside
    std::string folder;    // of any framework of the workspace, "ROOT/*"; or around the file
    std::string directory; // in it, as "PublicGenerated/unix_a"
    std::string name;      // in that

    std::string Pattern() const { return folder + "/" + directory + "/" + name; }
};

struct HeaderTrace {
    std::vector<HeaderPlace> places; // all, in the order of the search, whatever was found
    TAFileName file;                 // what the search gives, or the null name
    int found = -1;                  // the index of the place that gave it; -1 when nothing was found
};

} // namespace ostraka
