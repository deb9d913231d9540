#pragma once

// The places of a stream in short: a place is told where it doesn't follow from the one before it.

#include <ostraka/syntax/TAPSourceFile.h>

namespace ostraka::tool {

// Calls visit(position, line, column) for the first position of each longest run that stands on one line with
// columns rising by one, as `columnOf` tells them from a point.
template <class ColumnOf, class Visit>
void ForEachRun(const TAPSourceFile& file, ColumnOf columnOf, Visit visit) {
    int nextLine = -1;
    int nextColumn = -1;
    for (int pos = 0; pos < file.GetSize(); ++pos) {
        const TAPSyntaxePoint point = file.GetPoint(pos);
        const int column = columnOf(point);
        if (point.GetLine() != nextLine || column != nextColumn) visit(pos, point.GetLine(), column);
        nextLine = point.GetLine();
        nextColumn = column + 1;
    }
}

} // namespace ostraka::tool
