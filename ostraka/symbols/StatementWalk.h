#pragma once

#include <vector>

#include <ostraka/syntax/TAPSyntaxe.h>

// Walks over what may hold statements. Instructions, declarations and blocks lie below one another only,
// never below an expression, so that no walk for them enters one. The walks keep stacks of their own.
namespace ostraka::detail {

// Whether instructions, declarations or blocks can lie below the node.
inline bool HoldsStatements(const TAPSyntaxe& node) {
    switch (node.GetType()) {
    case STYPE_Expression:
    case STYPE_Identifiant:
    case STYPE_ListOfArgs:
    case STYPE_NULL: return false;
    default: return true;
    }
}

enum class Then { GoBelow, PassBy, Stop };

// Walks the nodes that may hold statements, in text order; `visit` says what to do with what lies below one.
// Whether it stopped the walk.
template <class Visit>
bool WalkStatements(TAPSyntaxe* top, Visit visit) {
    std::vector<TAPSyntaxe*> waiting = {top}; // the next one last
    while (!waiting.empty()) {
        TAPSyntaxe* node = waiting.back();
        waiting.pop_back();
        if (!HoldsStatements(*node)) continue;
        const Then then = visit(node);
        if (then == Then::Stop) return true;
        for (int i = node->ChildCount(); then == Then::GoBelow && i >= 1; --i)
            waiting.push_back(node->Child(i));
    }
    return false;
}

} // namespace ostraka::detail
