#include <algorithm>
#include <deque>
#include <new>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <ostraka/memreport/Stack.h>
#include <ostraka/memreport/TAPIndexContainer.h>

namespace {

// Stacks of calls that are named by letters: "a" is of the framework A and so on, upper case of none.
class StackTest : public testing::Test {
protected:
    std::vector<Call*> CallsOf(const std::string& letters) {
        std::vector<Call*> made;
        for (const char letter : letters) {
            const std::string framework(1, static_cast<char>(letter - 'a' + 'A'));
            const std::string place = " [/w/" + framework + "/M.m/src/" + letter + ".cpp:1]";
            calls.emplace_back((std::string(1, letter) + (letter >= 'a' ? place : "")).c_str(), &lines);
            made.push_back(&calls.back());
        }
        return made;
    }

    Stack& Make(const std::string& letters, int start = 0) {
        const auto given = CallsOf(letters);
        return stacks.emplace_back(nullptr, given.data(), static_cast<int>(given.size()), &index,
                                   &ignoredResponsibles, &ignoredCalls, nullptr, start);
    }

    static std::string LettersOf(const Stack& stack) {
        std::string letters;
        for (int i = 0; i < stack.GetSize(); ++i) letters += stack.GetCall(i)->GetCall()[0];
        return letters;
    }
    static std::string ChargedBy(const Stack& stack) {
        return stack.GetFwResponsible() != nullptr ? stack.GetFwResponsible() : "";
    }

    TAIndexCall lines;
    TAIndexBStack index{20};
    TAIndex ignoredResponsibles, ignoredCalls;
    std::deque<Call> calls;
    std::deque<Stack> stacks;
};

TEST_F(StackTest, EqualStacksShareKeyAndId) {
    Stack::globalId = 3;
    Stack &first = Make("XYZ"), &again = Make("XYZ");
    EXPECT_TRUE(again.bitStack == first.bitStack && index[first.bitStack] == &first);
    EXPECT_TRUE(first.GetId() == 4 && again.GetId() == 4 && Stack::globalId == 4);
    first.SetId(41);
    EXPECT_EQ(Make("XY").GetId(), 43);
    first.SetId(7);
    EXPECT_EQ(Make("YX").GetId(), 44);

    std::intptr_t words[20];
    ConvertStackFromCharToBit(reinterpret_cast<int*>(words), CallsOf("XYZ").data(), 3);
    EXPECT_EQ(index[words], &first);

    // A stack where one was before that is gone is none of a new key.
    alignas(Stack) unsigned char place[sizeof(Stack)];
    for (int i = 0; i < 2; ++i) {
        auto* stack =
            new (place) Stack(nullptr, CallsOf("Q").data(), 1, &index, nullptr, nullptr, nullptr, 0);
        EXPECT_EQ(stack->GetId(), i == 0 ? 45 : 0);
        stack->~Stack();
    }
    EXPECT_EQ(Stack::globalId, 45);

    TAIndexStack byText;
    Stack named("any text", CallsOf("XY").data(), 2, &byText, nullptr, nullptr, nullptr, 0);
    EXPECT_STREQ(named.GetStack(), "any text");
    EXPECT_EQ(named.GetStack(1), "any text");
    EXPECT_TRUE(named.bitStack == nullptr && first.GetStack() == nullptr);
    EXPECT_EQ(named.Resize(0, 0, &index, nullptr, nullptr, nullptr), 1);
    EXPECT_EQ(named.GetSize(), 2);
}

TEST_F(StackTest, JoinsAndCutsCalls) {
    const std::string letters = "ABCDEFGHIJKLMNOPQRSTUV";
    for (const int n : {0, 1, 19, 20, 21, 22}) {
        const Stack& stack = Make(letters.substr(0, static_cast<std::size_t>(n)));
        std::string joined;
        for (int i = 0; i < std::min(n, 20); ++i)
            joined += (i > 0 ? "!" : "") + letters.substr(static_cast<std::size_t>(i), 1);
        EXPECT_EQ(stack.GetStack(0), joined.c_str());
        EXPECT_TRUE(stack.GetSize() == std::min(n, 20) && stack.GetToExtend() == n);
    }
}

TEST_F(StackTest, ChargesTheFirstCallThatCounts) {
    TAPIndexContainer::respForFwIndex.Append("B", "bob", 0);
    TAPIndexContainer::respForFwIndex.Append("N", nullptr, 0);
    ignoredResponsibles.Append("bob", nullptr, 0);
    for (const char* call : {"c", "C"}) ignoredCalls.Append(call, nullptr, 0);
    const struct {
        const char* letters;
        int start;
        const char* framework;
        int result;
        const char* charges; // of each call: charged, behind or why not
    } rows[] = {{"XbaY", -5, "A", 0, "nr+n"}, {"Xccae", 0, "A", 0, "ncc+-"}, {"aXdd", 1, "D", 0, "-n+-"},
                {"aX", 2, "", 1, "-n"},       {"aX", 3, "", 0, "-n"},        {"", 0, "", 1, ""},
                {"Nna", 0, "A", 0, "nn+"},    {"bXc", 0, "", 1, "rnc"},      {"cCb", 0, "", 1, "ccr"}};
    for (const auto& row : rows) {
        Stack& stack = Make(row.letters, row.start);
        EXPECT_EQ(ChargedBy(stack), row.framework) << row.letters;
        EXPECT_EQ(stack.BuildResponsible(&ignoredResponsibles, &ignoredCalls, nullptr, row.start),
                  row.result);
        std::string charges;
        for (int i = 0; i < stack.GetSize(); ++i)
            charges += "+crn-"[static_cast<int>(stack.ChargeOf(i, &ignoredResponsibles, &ignoredCalls))];
        EXPECT_EQ(charges, row.charges) << row.letters;
    }
    const Stack& stack = Make("XbdX");
    EXPECT_STREQ(stack.GetResponsible(), ".");
    EXPECT_EQ(stack.GetFirstKetchCall(), stack.GetCall(1));
    EXPECT_EQ(Make("XX").GetFirstKetchCall(), nullptr);
    EXPECT_EQ(stack.HasCall(stack.GetCall(0)), 3);
    EXPECT_EQ(Make("").HasCall(stack.GetCall(0)), -1);
    ignoredResponsibles.Append(".", nullptr, 0);
    EXPECT_EQ(ChargedBy(Make("ad")), "");
}

TEST_F(StackTest, Resizes) {
    const struct {
        int first, last, result;
        const char *letters, *framework;
        int charged;
    } rows[] = {{2, 4, 0, "cXY", "C", 0},    {0, 5, 0, "aXcXYZ", "A", 0}, {3, 5, 0, "XYZ", "A", -1},
                {1, 3, 0, "XcX", "C", 1},    {5, 4, 0, "", "A", -1},      {-1, 2, 1, "aXcXYZ", "A", 0},
                {0, 6, 1, "aXcXYZ", "A", 0}, {4, 2, 1, "aXcXYZ", "A", 0}};
    for (const auto& row : rows) {
        index.Reset();
        Stack& stack = Make("aXcXYZ");
        EXPECT_EQ(stack.Resize(row.first, row.last, &index, nullptr, nullptr, nullptr), row.result);
        EXPECT_EQ(LettersOf(stack), row.letters);
        EXPECT_EQ(ChargedBy(stack), row.framework) << row.letters;
        EXPECT_EQ(stack.chargedCall, row.charged) << row.letters;
        EXPECT_TRUE(index.size == 1 && index[stack.bitStack] == &stack && stack.GetToExtend() == 6);
    }
    // The part is a stack that is there already.
    index.Reset();
    const Stack& part = Make("XY");
    Stack& whole = Make("aXYZ");
    whole.Resize(1, 2, &index, nullptr, nullptr, nullptr);
    EXPECT_TRUE(whole.bitStack == part.bitStack && index[whole.bitStack] == &part && index.size == 1);
    TAIndexBStack other(20);
    EXPECT_DEATH(whole.Resize(0, 0, &other, nullptr, nullptr, nullptr),
                 "resize a stack not in index !\\?!\\?!\\?!");
}

} // namespace
