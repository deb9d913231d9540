#include <ostraka/syntax/TAPSyntaxeWalk.h>

void TAPSyntaxeWalk::Next() {
    if (node->ChildCount() == 0 || Level() == deepest) return NextBehind();
    open.push_back({node, 1});
    node = node->Child(1);
}

void TAPSyntaxeWalk::NextBehind() {
    while (!open.empty() && open.back().child == open.back().node->ChildCount()) open.pop_back();
    node = open.empty() ? nullptr : open.back().node->Child(++open.back().child);
}
