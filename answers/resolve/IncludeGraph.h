#pragma once

// Which file includes which, as the library follows the includes of a file that a table has loaded.

#include <string>
#include <vector>

#include <answers/facts/Place.h>

class TAPSymbolTable;

namespace ostraka::answers {

struct Include {
    std::string name;
    int target = -1; // index of the file that it means; -1 where there is none
    Place place;     // of the name in the text, where it stands first
};

struct IncludedFile {
    std::string path;     // as the table knows it
    bool hasTree = false; // a file that failed to load has none, and nothing is known of its includes
    std::vector<Include> includes; // in the order of the text, each name once
};

// The loaded file first, the others in the order in which they are met, each once.
using IncludeGraph = std::vector<IncludedFile>;

// An include that finds nothing.
struct MissingHeader {
    std::string file;
    Place place; // of the name in the text, where it stands first
    std::string name;
};

int CountMissingHeaders(const TAPSymbolTable& table);
// Those of all files of the table, by file and place.
std::vector<MissingHeader> MissingHeaders(const TAPSymbolTable& table);

IncludeGraph FollowIncludes(const TAPSymbolTable& table, const std::string& path);

} // namespace ostraka::answers
