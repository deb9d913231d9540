#include <ostraka/syntax/TAPSyntaxePath.h>

#include <algorithm>

#include <ostraka/syntax/TAPSyntaxe.h>

// Records keep a great many paths, so the positions get no room to grow.
TAPSyntaxePath::TAPSyntaxePath(const TAPSyntaxe* node) : filePath(node->GetSource()), posInTree(node->depth) {
    const TAPSourceFile* file = node->GetTAPSourceFile();
    const int past = node->GetBegin() + node->GetSize();
    // The braces of a block lie just outside its range.
    const bool block = node->GetType() == STYPE_Bloc;
    beginPoint = file->GetPoint(block ? node->GetBegin() - 1 : node->GetBegin());
    endPoint = file->GetPoint(block ? past : std::max(past - 1, node->GetBegin()));
    node->GetTAPSyntaxePath(posInTree);
}

TAPSyntaxePath::~TAPSyntaxePath() = default;

TAPSyntaxePath& TAPSyntaxePath::operator=(const TAPSyntaxePath& other) {
    filePath = other.filePath;
    posInTree = other.posInTree;
    beginPoint = other.beginPoint;
    endPoint = other.endPoint;
    return *this;
}
