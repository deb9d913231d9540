#pragma once

#include <ostraka/Export.h>
#include <ostraka/foundation/TypedLists.h>

// A place in a source file. Lines count from 1; the first character of a line has column 2, since the
// column goes up before a character is handled; (0, 0) is no place. A plain value.
class OSTRAKA_EXPORT TAPSyntaxePoint {
public:
    int line = 0;
    int col = 0;

    TAPSyntaxePoint() = default;
    TAPSyntaxePoint(int lineNumber, int column) : line(lineNumber), col(column) {}
    TAPSyntaxePoint(const TAPSyntaxePoint&) = default;
    TAPSyntaxePoint& operator=(const TAPSyntaxePoint&) = default;
    ~TAPSyntaxePoint() = default;

    void SetLine(int value) { line = value; }
    void SetCol(int value) { col = value; }
    int GetLine() const { return line; }
    int GetCol() const { return col; }
};

using NUBListPtrTAPSyntaxePoint =
    ostraka::detail::PointerList<TAPSyntaxePoint, ostraka::detail::ListKind::Plain>;
