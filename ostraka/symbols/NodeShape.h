#pragma once

#include <cstddef>
#include <string_view>

#include <ostraka/foundation/TAIndex.h>
#include <ostraka/syntax/TAPExpression.h>
#include <ostraka/syntax/TAPInstruction.h>
#include <ostraka/syntax/TAPSyntaxe.h>

// Short questions about the shape of a tree, for the recognisers and walks of this room. Nodes and texts that
// they give live as long as the tree. A null node has no children, no kind and no type.
namespace ostraka::detail {

// The stream from the node's begin on; the node's end doesn't cut it. Empty for a node that lies behind the
// stream, which a text that breaks off behind its keyword can have.
inline std::string_view StreamOf(const TAPSyntaxe& node) {
    const TAPSourceFile* source = node.source;
    if (source == nullptr || node.begin >= source->size) return "";
    return {node.GetStream(), static_cast<std::size_t>(source->size - node.begin)};
}

// The text of GetContent, read from the stream.
inline std::string_view TextOf(const TAPSyntaxe& node) {
    return StreamOf(node).substr(0, static_cast<std::size_t>(node.size));
}

// Whether the node is an expression whose kind begins as `kind` does, in two characters.
inline bool IsOfKind(const TAPSyntaxe* node, std::string_view kind) {
    if (node == nullptr || node->type != STYPE_Expression) return false;
    const char* own = static_cast<const TAPExpression*>(node)->kind;
    return own[0] == kind[0] && own[1] == (kind.size() > 1 ? kind[1] : '\0');
}

inline bool IsOfType(const TAPSyntaxe* node, int type) {
    return node != nullptr && node->type == type;
}

inline bool IsOfPreciseType(const TAPSyntaxe* node, int preciseType) {
    return IsOfType(node, STYPE_Instruction) &&
           static_cast<const TAPInstruction*>(node)->GetPreciseType() == preciseType;
}

// Child i, from 1; null where there is none, and of a null node.
inline TAPSyntaxe* ChildOf(const TAPSyntaxe* node, int i) {
    return node != nullptr && i <= node->childCount ? node->Child(i) : nullptr;
}

// Child i if it is of the kind, respectively of the type; else null.
inline TAPSyntaxe* ChildOfKind(const TAPSyntaxe* node, int i, std::string_view kind) {
    TAPSyntaxe* child = ChildOf(node, i);
    return IsOfKind(child, kind) ? child : nullptr;
}
inline TAPSyntaxe* ChildOfType(const TAPSyntaxe* node, int i, int type) {
    TAPSyntaxe* child = ChildOf(node, i);
    return IsOfType(child, type) ? child : nullptr;
}

// The operators that stand between a type and what is declared with it.
inline constexpr std::string_view typeMarks[] = {"&&", "&", "*"};

// The mark that is the kind of the node; empty if it is of none of them.
inline std::string_view MarkOf(const TAPSyntaxe* node) {
    for (std::string_view mark : typeMarks)
        if (IsOfKind(node, mark)) return mark;
    return {};
}

// Child i if its kind is a mark; else null.
inline TAPSyntaxe* MarkedChild(const TAPSyntaxe* node, int i) {
    TAPSyntaxe* child = ChildOf(node, i);
    return MarkOf(child).empty() ? nullptr : child;
}

// What stands before a block on its level: the head of a class or of a function. Null for other nodes.
inline TAPSyntaxe* HeadOf(const TAPSyntaxe* block) {
    return IsOfType(block, STYPE_Bloc) ? block->PreviousSibling() : nullptr;
}

// Whether the index has the key, which needn't end in NUL.
inline bool Holds(const TAIndex& index, std::string_view key) {
    return index.Holds(key.data(), static_cast<int>(key.size()));
}

} // namespace ostraka::detail
