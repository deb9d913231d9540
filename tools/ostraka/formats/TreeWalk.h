#pragma once

// A walk through a tree that knows the path of each node.

#include <string>
#include <vector>

#include <ostraka/syntax/TAPSyntaxeWalk.h>

namespace ostraka::tool {

// for (TreeWalk walk(node, "1.4", -1); walk.Node() != nullptr; walk.Next()) ...
class TreeWalk {
public:
    // From `top`, whose own path is `topPath`, down to `levels` levels below it; -1 for all.
    TreeWalk(TAPSyntaxe& top, std::string topPath, int levels);

    // The node reached, null at the end, with its level below the top and its path from the root of the file:
    // the positions to take, joined by dots; 0 for the root itself.
    TAPSyntaxe* Node() const { return walk.Node(); }
    int Level() const { return walk.Level(); }
    const std::string& Path() const { return path; }

    void Next();

private:
    TAPSyntaxeWalk walk;
    std::string path;
    std::vector<std::size_t> lengths; // of the paths of the nodes above, from the top on
};

} // namespace ostraka::tool
