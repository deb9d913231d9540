#include <answers/facts/Place.h>

#include <algorithm>

#include <ostraka/syntax/TAPSourceFile.h>

namespace ostraka::answers {

Place PlaceOf(const TAPSyntaxePoint& point) {
    return {std::max(1, point.GetLine()), std::max(1, point.GetCol() - 1)};
}

Place PlaceAt(const TAPSourceFile& source, int pos) {
    if (source.GetSize() == 0) return {};
    return PlaceOf(source.GetPoint(std::clamp(pos, 0, source.GetSize() - 1)));
}

} // namespace ostraka::answers
