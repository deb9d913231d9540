#pragma once

// Where something stands in a file, and why a file couldn't be read whole.

#include <optional>
#include <string>

class TAPSourceFile;
class TAPSyntaxePoint;

namespace ostraka::answers {

// A line and a column from 1, as editors count; a column counts bytes.
struct Place {
    int line = 1;
    int column = 1;
};

// Why a file has no stream or no complete tree, and where that shows if it can be told.
struct Failure {
    std::optional<Place> place;
    std::string cause;
};

// What the library counts from column 2, or from 1 at a blank that stands for a line's end, which counts as
// the first column of the line behind it.
Place PlaceOf(const TAPSyntaxePoint& point);

// The place of a stream position. One outside the stream counts as the nearest inside.
Place PlaceAt(const TAPSourceFile& source, int pos);

} // namespace ostraka::answers
