#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <ostraka/syntax/TAPListOfArgs.h>

#include "support/Source.h"

namespace {

// Tells when it goes.
class Mortal : public TAPSyntaxe {
public:
    Mortal(TAPSyntaxe* father, int id, std::vector<int>& log)
        : TAPSyntaxe(STYPE_Bloc, father, id, -1, 1), number(id), deaths(log) {}
    ~Mortal() override { deaths.push_back(number); }

private:
    int number;
    std::vector<int>& deaths;
    [[maybe_unused]] char larger[64] = {}; // than the blocks of the pool
};

TEST(NodeLife, ParentsHoldTheirChildren) {
    Source source("x;");
    std::vector<int> deaths;
    auto* root = new TAPSyntaxe(STYPE_File, source.file, 0, 0, -1);
    EXPECT_EQ(source.file->count, 2);
    TAPSyntaxe* node = root;
    for (int id = 1; id <= 6; ++id) { // 1 holds 2 and 3, 3 holds 4, 5 and 6
        auto* child = new Mortal(node, id, deaths);
        EXPECT_EQ(child->GetSize(), 0);
        node->Append(child);
        child->Release();
        if (id == 1 || id == 3) node = child;
    }
    EXPECT_EQ(node->depth, 2);
    EXPECT_EQ(source.file->count, 8);
    TAPSyntaxe* kept = node->Child(2);
    kept->AddRef();
    root->Release();
    EXPECT_EQ(deaths, (std::vector<int>{1, 2, 3, 4, 6}));
    EXPECT_EQ(source.file->count, 2);
    kept->Release();
    EXPECT_EQ(source.file->count, 1);
}

TEST(NodeLife, RoomForChildrenGrowsByFive) {
    Source source("x;");
    auto* root = new TAPSyntaxe(STYPE_File, source.file, 0, 0, -1);
    std::vector<int> capacities;
    for (int i = 1; i <= 40; ++i) {
        auto* child = new TAPBloc(root, i, 0, i);
        root->Append(child);
        root->Append(nullptr);
        child->Release();
        if (capacities.empty() || capacities.back() != root->childCapacity)
            capacities.push_back(root->childCapacity);
    }
    EXPECT_EQ(capacities, (std::vector<int>{2, 7, 12, 17, 22, 27, 32, 37, 42}));
    for (int i = 1; i <= 40; ++i) EXPECT_EQ(root->Child(i)->GetBegin(), i);
    root->Release();
}

TEST(NodeLife, DeepTreesNeedNoStack) {
    Source source("x;");
    auto* root = new TAPSyntaxe(STYPE_File, source.file, 0, 2, -1);
    TAPSyntaxe* node = root;
    for (int i = 0; i < 1000000; ++i) {
        auto* child = new TAPListOfArgs(node, 0, 1, 1);
        node->Append(child);
        child->Release();
        node = child;
    }
    NUBListPtrTAPSyntaxe found;
    NUBListValNUBString pieces;
    EXPECT_EQ(root->GetLastLeaf(), node);
    EXPECT_EQ(root->FindOccurrences("x", found), 1);
    EXPECT_EQ(root->GetListOfString(pieces), 1);
    EXPECT_EQ(node->Build(), 1);
    EXPECT_EQ(TAPSyntaxe::ErrMsg, "Depth too high when building a TAPListOfArgs : 1000000");
    root->Release();
    EXPECT_EQ(source.file->count, 1);
}

TEST(NodeLife, TextIsCopiedOnce) {
    Source source("class X {};");
    TAPSyntaxe* name = source.Build()->Child(1)->Child(1);
    char* text = name->GetContent();
    EXPECT_STREQ(text, "X");
    EXPECT_EQ(name->GetContent(), text);
    Source broken("interface ");
    broken.Build();
    TAPInstruction instruction(broken.root, 0, 10, 1); // its name would stand behind the stream
    EXPECT_EQ(instruction.Build(), 0);
    EXPECT_STREQ(instruction.Child(1)->GetContent(), "");
    int line = 0;
    int col = 0;
    EXPECT_EQ(instruction.Child(1)->GetPos(line, col), 1);
}

} // namespace
