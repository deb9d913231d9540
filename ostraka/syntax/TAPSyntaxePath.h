#pragma once

#include <basalt/NUBRawColl.h>
#include <basalt/NUBString.h>
#include <ostraka/Export.h>
#include <ostraka/foundation/TARefCounter.h>
#include <ostraka/foundation/TypedLists.h>
#include <ostraka/syntax/TAPSyntaxePoint.h>

class TAPSyntaxe;

// The address of a node, which stays meaningful when the node and its tree are gone: the file, the children
// to take from the root, and the places of the node's first and last character; those of a block are the
// places of its braces. It holds no reference on anything.
class OSTRAKA_EXPORT TAPSyntaxePath : public TARefCounter {
public:
    NUBString filePath;
    NUBRawCollint posInTree; // empty for a root
    TAPSyntaxePoint beginPoint;
    TAPSyntaxePoint endPoint;

    explicit TAPSyntaxePath(const TAPSyntaxe* node);
    ~TAPSyntaxePath() override;
    TAPSyntaxePath(const TAPSyntaxePath&) = delete;

    // Copies the four fields; the count of references is the object's own and stays.
    TAPSyntaxePath& operator=(const TAPSyntaxePath& other);

    NUBString GetFilePath() const { return filePath; }
    NUBRawCollint GetPosInTree() const { return posInTree; }
    TAPSyntaxePoint GetBeginPoint() const { return beginPoint; }
    TAPSyntaxePoint GetEndPoint() const { return endPoint; }
};

using NUBListPtrTAPSyntaxePath =
    ostraka::detail::PointerList<TAPSyntaxePath, ostraka::detail::ListKind::Plain>;
