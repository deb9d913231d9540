#pragma once

#include <vector>

#include <ostraka/Export.h>
#include <ostraka/syntax/TAPSyntaxe.h>

// A walk through a tree from the front, a parent before its children. It keeps its way on a stack of its own,
// so that a tree may be as deep as it likes. It takes no references: the tree has to outlive it, and stays as
// it is meanwhile.
//
//     for (TAPSyntaxeWalk walk(*root); walk.Node() != nullptr; walk.Next()) ...
class OSTRAKA_EXPORT TAPSyntaxeWalk {
public:
    // Starts at `top` and goes down to `levels` levels below it; -1 for all.
    explicit TAPSyntaxeWalk(TAPSyntaxe& top, int levels = -1) : node(&top), deepest(levels) {}

    // The node reached; null behind the last one.
    TAPSyntaxe* Node() const { return node; }

    // How far below the top that is.
    int Level() const { return static_cast<int>(open.size()); }

    // Goes on: to the first child of the node, else to what follows it. Not to be called behind the last
    // node.
    void Next();

    // Goes on behind the node, without what is below it.
    void NextBehind();

private:
    struct Parent {
        TAPSyntaxe* node;
        int child; // the one that was visited last
    };

    std::vector<Parent> open;
    TAPSyntaxe* node;
    int deepest;
};
