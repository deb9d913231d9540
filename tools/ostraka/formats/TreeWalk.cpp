#include "formats/TreeWalk.h"

#include <charconv>
#include <utility>

namespace ostraka::tool {

namespace {

constexpr const char* rootPath = "0";

void AppendNumber(std::string& out, int number) {
    char digits[16];
    out.append(digits, std::to_chars(std::begin(digits), std::end(digits), number).ptr);
}

} // namespace

TreeWalk::TreeWalk(TAPSyntaxe& top, std::string topPath, int levels)
    : walk(top, levels), path(topPath.empty() ? rootPath : std::move(topPath)) {}

void TreeWalk::Next() {
    const auto before = static_cast<std::size_t>(Level());
    walk.Next();
    if (Node() == nullptr) return;
    const auto level = static_cast<std::size_t>(Level());
    if (level > before) lengths.push_back(path == rootPath ? 0 : path.size());
    lengths.resize(level);
    path.resize(lengths.back());
    if (!path.empty()) path += '.';
    AppendNumber(path, Node()->GetPosInFather());
}

} // namespace ostraka::tool
