#pragma once

// Which file includes which: as the library follows the includes of a file that a table has loaded, or as the
// files of a code base tell it.

#include <string>
#include <utility>
#include <vector>

#include <answers/facts/Place.h>
#include <answers/resolve/CodeBase.h>

class TAPSymbolTable;

namespace ostraka::answers {

struct Include {
    std::string name;
    int target = -1;           // index of the file that it means; -1 where there is none
    Place place;               // of the name in the text, where it stands first
    bool isOfLanguage = false; // nothing is found, but that is expected: it comes with a language or a system
};

struct IncludedFile {
    std::string path;              // as the table or the code base knows it
    bool isRead = false;           // of a file that failed to load nothing is known
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
// The same by the facts of the files, whatever their layout.
IncludeGraph FollowIncludes(CodeBase& base, int file);

// A file that leads to another one by its includes, on the shortest way.
struct Includer {
    int file = -1;     // of the code base
    Place place;       // of the include
    int includes = -1; // which file of the code base it includes there
    int distance = 0;  // how many includes there are on the way
    IncludeRule rule = IncludeRule::None;
};

struct Includers {
    std::vector<Includer> files; // by distance, then by the way, then by path
    std::vector<std::pair<int, int>>
        arrows;              // every include between these files and the one that was asked for
    std::vector<int> unread; // files that can't be read
};

// Who includes the file, followed, among all files of the code base and those that they include.
Includers FindIncluders(CodeBase& base, int file);

} // namespace ostraka::answers
