#include "formats/TreeWalk.h"

#include <charconv>
#include <utility>

#include <ostraka/syntax/TAPSyntaxe.h>

namespace ostraka::tool {

namespace {

constexpr const char* rootPath = "0";

void AppendNumber(std::string& out, int number) {
    char digits[16];
    out.append(digits, std::to_chars(std::begin(digits), std::end(digits), number).ptr);
}

} // namespace

TreeWalk::TreeWalk(TAPSyntaxe& top, std::string topPath, int levels)
    : node(&top), path(topPath.empty() ? rootPath : std::move(topPath)), deepest(levels) {}

void TreeWalk::Enter(int child) {
    Parent& parent = open.back();
    parent.child = child;
    node = parent.node->Child(child);
    path.resize(parent.pathLength);
    if (!path.empty()) path += '.';
    AppendNumber(path, node->GetPosInFather());
}

void TreeWalk::Next() {
    if (node->ChildCount() > 0 && Level() != deepest) {
        open.push_back({node, 0, path == rootPath ? 0 : path.size()});
        return Enter(1);
    }
    while (!open.empty() && open.back().child == open.back().node->ChildCount()) open.pop_back();
    if (open.empty()) {
        node = nullptr;
        return;
    }
    Enter(open.back().child + 1);
}

} // namespace ostraka::tool
