#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <ostraka/syntax/TAPSyntaxePath.h>

#include "support/Source.h"

namespace {

std::string Pieces(TAPSyntaxe* node) {
    NUBListValNUBString pieces;
    EXPECT_EQ(node->GetListOfString(pieces), 1);
    std::string all;
    for (int i = 1; i <= pieces.Size(); ++i)
        all += (i > 1 ? "|" : "") + std::string(pieces[i].CastToCharPtr());
    return all;
}

TEST(Navigation, WalksAndTests) {
    Source source("x=foo(a,*b);Foo_var y;delete p1;");
    TAPSyntaxe* root = source.Build();
    TAPSyntaxe* call = root->Child(1)->Child(1)->Child(2);
    EXPECT_EQ(root->Navigate(SNAV_Child, 1, SNAV_Test, STYPE_Declaration, 0), nullptr);
    EXPECT_EQ(root->Navigate(SNAV_Child, 1, SNAV_Child, 1, SNAV_ExprTest, "=", SNAV_Child, 2, SNAV_ExprTest,
                             "mt", 0),
              call);
    EXPECT_EQ(call->Navigate(SNAV_Parent, SNAV_Parent, SNAV_Parent, 0), root);
    EXPECT_EQ(call->Navigate(0, SNAV_Parent), call);
    EXPECT_EQ(call->Navigate(SNAV_Child, 3, 0), nullptr);
    EXPECT_EQ(root->Navigate(SNAV_Parent, 0), nullptr);
    EXPECT_EQ(root->Navigate(SNAV_ExprTest, "mt", 0), nullptr);
    EXPECT_EQ(call->Navigate(SNAV_StringContent, "foo(a,*b)", SNAV_BeginWith, "foo", 0), call);
    EXPECT_EQ(call->Navigate(SNAV_SyntaxeContent, root->Child(2), 0), nullptr);
    EXPECT_NE(call->Navigate(SNAV_Child, 2, SNAV_Child, 2, SNAV_Child, 1, SNAV_NullTest, 1, 0), nullptr);
    EXPECT_NE(root->Navigate(SNAV_Child, 3, SNAV_InstTest, SINST_Delete, 0), nullptr);
    EXPECT_EQ(TAPSyntaxe::NavigateFrom(nullptr, SNAV_Parent, 0), nullptr);
    EXPECT_EQ(TAPSyntaxe::NavigateFrom2(root, -1, nullptr), root);
    EXPECT_DEATH(root->Navigate(SNAV_Child, 0), "not enought args for SNAV_Child");
    EXPECT_DEATH(root->Navigate(77, 0), "TAPSyntaxe::Navigate bad argument");
    EXPECT_DEATH(root->Child(4), "TAPSyntaxe::Child bad index");
}

TEST(Navigation, ComparesTexts) {
    Source source("abcd;Foo_var;int x=abcd;p*;");
    TAPSyntaxe* root = source.Build();
    TAPSyntaxe* word = root->Child(1);
    const TAPSyntaxe* handle = root->Child(2);
    EXPECT_EQ(word->TestContent("abc", -1), 1);
    EXPECT_EQ(word->TestContent("abc", 3), 0);
    EXPECT_EQ(word->TestContent("abc", 4), 1);
    EXPECT_LT(word->TestContent("abxd", -1), 0);
    EXPECT_EQ(word->TestContent(root->Child(3)->GetLastLeaf()), 0);
    EXPECT_EQ(word->TestContent(static_cast<TAPSyntaxe*>(nullptr)), 1);
    for (const char* head : {"", "ab", "abcd"}) EXPECT_EQ(word->StartWith(head), 1) << head;
    for (const char* tail : {"", "cd", "abcd"}) EXPECT_EQ(word->EndWith(tail), 1) << tail;
    EXPECT_EQ(word->StartWith("abcde"), 0);
    for (const char* tail : {"xabcd", "ab"}) EXPECT_EQ(word->EndWith(tail), 0) << tail;
    EXPECT_EQ(handle->IsHandler(), 1);
    EXPECT_EQ(word->IsHandler(), 1); // too short to be told
    EXPECT_EQ(root->Child(3)->IsHandler(), 0);
    EXPECT_EQ(word->IsPointer(), 0);
    NUBListPtrTAPSyntaxe found;
    EXPECT_EQ(root->FindOccurrences("abcd", found), 1);
    EXPECT_EQ(root->FindOccurrences(word, found), 1);
    EXPECT_EQ(found.Size(), 4);
    EXPECT_EQ(Source("").Build()->FindOccurrences("abcd", found), 1); // what it held before counts
}

TEST(Navigation, ReadsTreesBack) {
    struct Row {
        const char* source;
        const char* pieces;
    };
    const Row rows[] = {
        {"x=a[i],b;", "x|=|a|[|i|]|,|b"},
        {"foo(a,*b);", "foo|(|a|,|*|b|)"},
        {"(int)&x;", "(|int|)|&|x"},
        {"aa&&bb;", "aa|&&|bb"},
        {"x1+y1;", "x1|y1"},
        {"foo();", "foo|(|)"},
        {"xx={a1a;b1b;}", "xx|=|{|a1a|b1b|}"},
        {"\"abc\";", ""},
    };
    for (const Row& row : rows) {
        Source source(row.source);
        EXPECT_EQ(Pieces(source.Build()), row.pieces) << row.source;
    }
}

TEST(Navigation, NeighboursAndPlaces) {
    Source source("aa;bb;\nif(c) { c1;\n dd;\n}\n{}ee;");
    TAPSyntaxe* root = source.Build();
    ASSERT_EQ(
        OneLine(root),
        "file(inst(id(aa)) inst(id(bb)) decl(id(c) bloc) bloc(inst(id(c1)) inst(id(dd))) bloc inst(id(ee)))");
    EXPECT_EQ(root->GetPrevious(root->Child(2)), root->Child(1));
    EXPECT_EQ(root->GetPrevious(root->Child(1)), nullptr);
    EXPECT_EQ(root->GetNext(root->Child(2)), root->Child(3));
    EXPECT_EQ(root->GetNext(root->Child(6)), nullptr);
    EXPECT_EQ(root->GetNext(root), nullptr);
    EXPECT_EQ(root->Child(2)->PreviousSibling(), root->Child(1));
    EXPECT_EQ(root->Child(1)->PreviousSibling(), nullptr);
    EXPECT_EQ(root->Child(5)->NextSibling(), root->Child(6));
    EXPECT_EQ(root->Child(6)->NextSibling(), nullptr);
    EXPECT_EQ(root->NextSibling(), nullptr);
    EXPECT_EQ(root->PreviousSibling(), nullptr);
    EXPECT_EQ(root->Child(4)->GetBlocSize(), 2);
    EXPECT_EQ(root->Child(5)->GetBlocSize(), 1);
    EXPECT_EQ(root->Child(1)->GetBlocSize(), 0);
    int line = 0;
    int col = 0;
    EXPECT_EQ(root->Child(4)->GetPosEndOfScope(line, col), 0);
    EXPECT_EQ(std::pair(line, col), std::pair(4, 2));
    EXPECT_EQ(root->GetPosEndOfScope(line, col), 1);
    TAPSyntaxe* nodes[] = {root->Child(2), root->Child(1)};
    EXPECT_EQ(compare(&nodes[0], &nodes[1]), 1);
    EXPECT_EQ(compare(&nodes[1], &nodes[0]), -1);
    NUBListPtrTAPSyntaxe list;
    for (int i : {4, 2, 6, 2, 1}) list.Append(root->Child(i));
    list.QuickSort(compare);
    std::string names;
    for (int i = 1; i <= list.Size(); ++i) names += std::to_string(list[i]->posInFather);
    EXPECT_EQ(names, "12246");
}

// A tool may append a node at another position than it was given, or not at all.
TEST(Navigation, NeighboursOfNodesMadeByHand) {
    Source source("aa;bb;cc;");
    TAPSyntaxe* root = source.Build();
    for (int position : {-1, 0, 1, 2, 9}) {
        auto* top = new TAPSyntaxe(STYPE_Bloc, source.file, 0, 0, -1);
        TAPSyntaxe* const others[] = {root->Child(1), root->Child(2)};
        auto* node = new TAPIdentifiant(top, 0, 2, position);
        EXPECT_EQ(node->NextSibling(), nullptr) << position;
        for (TAPSyntaxe* child : {others[0], static_cast<TAPSyntaxe*>(node), others[1]}) top->Append(child);
        EXPECT_EQ(node->PreviousSibling(), others[0]) << position;
        EXPECT_EQ(node->NextSibling(), others[1]) << position;
        node->Release();
        top->Release();
    }
}

// The paths of the nodes in the order of a walk.
std::string Walked(TAPSyntaxeWalk walk, const TAPSyntaxe* unopened) {
    std::string line;
    while (walk.Node() != nullptr) {
        line += std::to_string(walk.Level()) + walk.Node()->GetContent() + " ";
        walk.Node() == unopened ? walk.NextBehind() : walk.Next();
    }
    return line;
}

TEST(Navigation, WalksFromTheFront) {
    Source source("aa;b=c;dd;");
    TAPSyntaxe* root = source.Build();
    EXPECT_EQ(Walked(TAPSyntaxeWalk(*root), nullptr),
              "0aa;b=c;dd; 1aa 2aa 3aa 1b=c 2b=c 3b 4b 3c 4c 1dd 2dd 3dd ");
    EXPECT_EQ(Walked(TAPSyntaxeWalk(*root), root->Child(2)), "0aa;b=c;dd; 1aa 2aa 3aa 1b=c 1dd 2dd 3dd ");
    EXPECT_EQ(Walked(TAPSyntaxeWalk(*root, 1), nullptr), "0aa;b=c;dd; 1aa 1b=c 1dd ");
    EXPECT_EQ(Walked(TAPSyntaxeWalk(*root, 0), nullptr), "0aa;b=c;dd; ");
    EXPECT_EQ(Walked(TAPSyntaxeWalk(*root->Child(3)), nullptr), "0dd 1dd 2dd ");
    EXPECT_EQ(Walked(TAPSyntaxeWalk(*root), root), "0aa;b=c;dd; ");
}

TEST(Paths, OutliveTheirTree) {
    auto source = std::make_unique<Source>("int x;\n{ {}\nf(a); }");
    TAPSyntaxe* block = source->Build()->Child(2);
    auto* path = new TAPSyntaxePath(block->Child(1));
    auto* ofRoot = new TAPSyntaxePath(source->root);
    auto* ofName = new TAPSyntaxePath(block->GetLastLeaf());
    source.reset();
    EXPECT_EQ(path->GetFilePath(), "memory.cpp");
    EXPECT_EQ(std::pair(path->GetBeginPoint().GetLine(), path->GetBeginPoint().GetCol()), std::pair(2, 4));
    EXPECT_EQ(path->GetEndPoint().GetCol(), 5); // the two braces
    EXPECT_EQ(ofRoot->GetPosInTree().Size(), 0);
    EXPECT_EQ(ofRoot->GetEndPoint().GetLine(), 3);
    *path = *ofName;
    std::vector<int> positions;
    for (int i = 1; i <= path->posInTree.Size(); ++i) positions.push_back(path->posInTree[i]);
    EXPECT_EQ(positions, (std::vector<int>{2, 2, 1, 2, 1, 1}));
    for (TAPSyntaxePath* each : {path, ofRoot, ofName}) each->Release();
}

} // namespace
