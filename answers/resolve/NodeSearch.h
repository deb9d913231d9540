#pragma once

// From a place, as an editor gives it, to the node of the tree that stands there.

#include <optional>
#include <string>

#include <answers/facts/Place.h>

class TAPSyntaxe;

namespace ostraka::answers {

struct FilePlace {
    std::string file;
    Place place;
};

// "FILE:LINE" or "FILE:LINE:COLUMN", the column being 0 where it isn't given; none for other words.
std::optional<FilePlace> ParseFilePlace(const std::string& words);

struct NodeAt {
    TAPSyntaxe* node;
    Place place;    // of the character that was taken
    bool isNearest; // nothing of the code stands at the place that was asked for
};

// The innermost node that holds the character at the place; the braces of a block belong to it. Column 0
// means the first character of the line. At a blank, in a comment, in a directive and where a line holds
// nothing, the nearest character of the line counts, the one before it first; else the next one behind it.
// None where no code stands on the line or behind.
std::optional<NodeAt> FindNodeAt(TAPSyntaxe& root, Place asked);

} // namespace ostraka::answers
