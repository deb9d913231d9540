#pragma once

#include <ostraka/symbols/NodeShape.h>

// The neighbours of a node under its parent; null where there is none. GetPrevious and GetNext search all
// children for the node; here it is found at once where it stands at the position that its creator gave it,
// so that asking every child for its neighbour stays linear.
namespace ostraka::detail {

inline bool StandsAtItsPosition(const TAPSyntaxe& node) {
    return node.posInFather >= 1 && ChildOf(node.parent, node.posInFather) == &node;
}

inline TAPSyntaxe* PreviousSibling(const TAPSyntaxe& node) {
    if (node.parent == nullptr) return nullptr;
    if (!StandsAtItsPosition(node)) return node.parent->GetPrevious(&node);
    return node.posInFather > 1 ? node.parent->Child(node.posInFather - 1) : nullptr;
}

inline TAPSyntaxe* NextSibling(const TAPSyntaxe& node) {
    if (node.parent == nullptr) return nullptr;
    if (!StandsAtItsPosition(node)) return node.parent->GetNext(&node);
    return ChildOf(node.parent, node.posInFather + 1);
}

// What stands before a block on its level: the head of a class or of a function. Null for other nodes.
inline TAPSyntaxe* HeadOf(const TAPSyntaxe* block) {
    return IsOfType(block, STYPE_Bloc) ? PreviousSibling(*block) : nullptr;
}

} // namespace ostraka::detail
