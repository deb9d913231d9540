#pragma once

// Goes through a tree from the front, a parent before its children, on a stack of its own.

#include <string>
#include <vector>

class TAPSyntaxe;

namespace ostraka::tool {

// for (TreeWalk walk(node, "1.4", -1); walk.Node() != nullptr; walk.Next()) ...
class TreeWalk {
public:
    // From `top`, whose own path is `topPath`, down to `levels` levels below it; -1 for all.
    TreeWalk(TAPSyntaxe& top, std::string topPath, int levels);

    // The node reached, null at the end, with its level below the top and its path from the root of the file:
    // the positions to take, joined by dots; 0 for the root itself.
    TAPSyntaxe* Node() const { return node; }
    int Level() const { return static_cast<int>(open.size()); }
    const std::string& Path() const { return path; }

    void Next();

private:
    struct Parent {
        TAPSyntaxe* node;
        int child; // the one that was visited last
        std::size_t pathLength;
    };

    void Enter(int child);

    std::vector<Parent> open;
    TAPSyntaxe* node;
    std::string path;
    int deepest;
};

} // namespace ostraka::tool
