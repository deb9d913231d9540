#include <answers/facts/Place.h>

#include <algorithm>

#include <ostraka/syntax/TAPSourceFile.h>

namespace ostraka::answers {

Place PlaceAt(const TAPSourceFile& source, int pos) {
    if (source.GetSize() == 0) return {};
    const TAPSyntaxePoint point = source.GetPoint(std::clamp(pos, 0, source.GetSize() - 1));
    return {point.GetLine(), std::max(1, point.GetCol() - 1)};
}

} // namespace ostraka::answers
