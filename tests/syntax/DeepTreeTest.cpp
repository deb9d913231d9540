#include <algorithm>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include <ostraka/syntax/TAPSyntaxePath.h>

#include "support/HostileTexts.h"
#include "support/SmallStack.h"
#include "support/Source.h"

namespace {

constexpr int deepest = 901; // a name below the last expression that may be built

// So many blocks, in them so many instructions in instructions, and in those expressions of one form.
struct Nesting {
    int blocks;
    int instructions;
    std::string_view open;
    std::string_view close;
};

constexpr Nesting nestings[] = {
    {890, 0, "!", ""},  {0, 220, "!", ""},     {0, 0, "f(a,", ",b)"},
    {0, 0, "a[", "]"},  {0, 0, "a=b+c->", ""}, {0, 0, "(int)", ""},
    {0, 0, "new ", ""}, {0, 0, "*", ""},       {300, 70, "(*e)f(g[(b)*-new h[&", "]])"},
};

// `levels` fills up what the forms leave of the depth.
std::string Text(const Nesting& nesting, int units, int levels) {
    const auto repeat = [](std::string_view text, int count) {
        return texts::Repeat(text, static_cast<std::size_t>(count));
    };
    return repeat("{", nesting.blocks) + repeat("else if(a) inline ", nesting.instructions) +
           repeat(nesting.open, units) + repeat("!", levels) + "xx" + repeat(nesting.close, units) + ";" +
           repeat("}", nesting.blocks);
}

bool Builds(const std::string& text) {
    Source source(text);
    source.Build();
    return source.buildResult == 0;
}

// The largest number up to the bound for which the text can be built.
template <class TextOf>
int Most(TextOf textOf) {
    int good = 0;
    for (int bad = deepest + 1; bad - good > 1;) {
        const int middle = (good + bad) / 2;
        (Builds(textOf(middle)) ? good : bad) = middle;
    }
    return good;
}

void Walk(Source& source) {
    NUBListPtrTAPSyntaxe found;
    NUBListValNUBString pieces;
    EXPECT_EQ(source.root->FindOccurrences("xx", found), 1);
    source.root->GetListOfString(pieces);
    EXPECT_NE(std::find(pieces.begin(), pieces.end(), NUBString("xx")), pieces.end());
    const TAPSyntaxe* last = nullptr;
    for (TAPSyntaxeWalk walk(*source.root); walk.Node() != nullptr; walk.Next()) last = walk.Node();
    EXPECT_EQ(source.root->GetLastLeaf(), last);
    EXPECT_EQ(found[1]->depth, deepest);
    EXPECT_EQ(TAPSyntaxePath(found[1]).posInTree.Size(), deepest);
}

TEST(DeepTree, IsBuiltWalkedAndReleasedOnASmallStack) {
    for (const Nesting& nesting : nestings) {
        RunOnSmallStack([&] {
            const int units = Most([&](int count) { return Text(nesting, count, 0); });
            const int levels = Most([&](int count) { return Text(nesting, units, count); });
            Source source(Text(nesting, units, levels));
            source.Build();
            ASSERT_EQ(source.buildResult, 0);
            Walk(source);
            EXPECT_FALSE(Builds(Text(nesting, units, levels + 1)));
            EXPECT_NE(TAPSyntaxe::ErrMsg.FindPosition("TAPExpression : 901"), -1) << nesting.open;
        });
    }
}

} // namespace
