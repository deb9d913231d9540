#pragma once

// Questions to the shape of a tree, and to the text of a node without a copy of it. A null node has no
// children and no kind. A text is good as long as the node's source file.

#include <algorithm>
#include <cstddef>
#include <string_view>

#include <ostraka/foundation/TAIndex.h>
#include <ostraka/syntax/TAPExpression.h>
#include <ostraka/syntax/TAPInstruction.h>
#include <ostraka/syntax/TAPSyntaxe.h>

namespace ostraka::detail {

// The text of GetContent, read from the stream.
inline std::string_view TextOf(const TAPSyntaxe& node) {
    const int available = std::clamp(node.source->size - node.begin, 0, node.size);
    return available > 0 ? std::string_view(node.GetStream(), static_cast<std::size_t>(available)) : "";
}

// Whether the stream shows the text from the node's begin on; the node's end doesn't cut it.
inline bool StreamBeginsWith(const TAPSyntaxe& node, std::string_view text) {
    const int available = std::max(node.source->size - node.begin, 0);
    return available > 0 &&
           std::string_view(node.GetStream(), static_cast<std::size_t>(available)).starts_with(text);
}

inline TAPSyntaxe* ChildOf(const TAPSyntaxe* node, int i) {
    return node != nullptr && i <= node->ChildCount() ? node->Child(i) : nullptr;
}

// The test of SNAV_ExprTest: two bytes, so that "->" takes "->*" too.
inline bool IsOfKind(const TAPSyntaxe* node, std::string_view kind) {
    if (node == nullptr || node->GetType() != STYPE_Expression) return false;
    const char* own = static_cast<const TAPExpression*>(node)->kind;
    return own[0] == kind[0] && own[1] == (kind.size() > 1 ? kind[1] : '\0');
}

inline bool IsOfPreciseType(const TAPSyntaxe* node, int preciseType) {
    return node != nullptr && node->GetType() == STYPE_Instruction &&
           static_cast<const TAPInstruction*>(node)->GetPreciseType() == preciseType;
}

// Child i if it is of the kind, respectively of the type; else null.
inline TAPSyntaxe* ChildOfKind(const TAPSyntaxe* node, int i, std::string_view kind) {
    TAPSyntaxe* child = ChildOf(node, i);
    return IsOfKind(child, kind) ? child : nullptr;
}
inline TAPSyntaxe* ChildOfType(const TAPSyntaxe* node, int i, int type) {
    TAPSyntaxe* child = ChildOf(node, i);
    return child != nullptr && child->GetType() == type ? child : nullptr;
}

// The operators that stand between a type and what is declared with it.
inline constexpr std::string_view typeMarks[] = {"&&", "&", "*"};

// The mark that is the kind of the node; empty if it is of none of them.
inline std::string_view MarkOf(const TAPSyntaxe* node) {
    for (std::string_view mark : typeMarks)
        if (IsOfKind(node, mark)) return mark;
    return {};
}

inline TAPSyntaxe* MarkedChild(const TAPSyntaxe* node, int i) {
    TAPSyntaxe* child = ChildOf(node, i);
    return MarkOf(child).empty() ? nullptr : child;
}

inline bool Holds(const TAIndex& index, std::string_view key) {
    return index.IsIn(key.data(), static_cast<int>(key.size())) >= 0;
}

} // namespace ostraka::detail
