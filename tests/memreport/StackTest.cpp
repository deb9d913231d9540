#include <ostraka/memreport/Stack.h>
#include <ostraka/memreport/TAPIndexContainer.h>

#include <algorithm>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace {

// Calls named by letters, "a" of the framework A and so on; upper case has no framework.
class Calls {
public:
    explicit Calls(const std::string& letters) {
        for (const char letter : letters) {
            const auto upper = static_cast<char>(letter - 'a' + 'A');
            const std::string line(1, letter);
            const std::string place = std::string(" [/w/") + upper + "/M.m/src/" + letter + ".cpp:1]";
            held.push_back(std::make_unique<Call>((letter >= 'a' ? line + place : line).c_str(), &index()));
            pointers.push_back(held.back().get());
        }
    }
    operator Call**() { return pointers.data(); }
    int size() const { return static_cast<int>(pointers.size()); }

    static TAIndexCall& index() { return TAPIndexContainer::LongCallIndex; }

private:
    std::vector<std::unique_ptr<Call>> held;
    std::vector<Call*> pointers;
};

class StackTest : public testing::Test {
protected:
    Stack& make(const std::string& letters, int start = 0) {
        calls.push_back(std::make_unique<Calls>(letters));
        stacks.push_back(std::make_unique<Stack>(nullptr, *calls.back(), calls.back()->size(), &index,
                                                 &ignoredResponsibles, &ignoredCalls, nullptr, start));
        return *stacks.back();
    }

    static std::string lettersOf(const Stack& stack) {
        std::string letters;
        for (int i = 0; i < stack.GetSize(); ++i) letters += stack.GetCall(i)->GetCall()[0];
        return letters;
    }
    static std::string chargedBy(const Stack& stack) {
        return stack.GetFwResponsible() != nullptr ? stack.GetFwResponsible() : "";
    }

    TAIndexBStack index{20};
    TAIndex ignoredResponsibles, ignoredCalls;
    std::vector<std::unique_ptr<Calls>> calls;
    std::vector<std::unique_ptr<Stack>> stacks;
};

TEST_F(StackTest, EqualStacksShareKeyAndId) {
    const Stack &first = make("XYZ"), &other = make("XY"), &again = make("XYZ");
    EXPECT_EQ(again.bitStack, first.bitStack);
    EXPECT_EQ(again.GetId(), first.GetId());
    EXPECT_EQ(other.GetId(), first.GetId() + 1);
    EXPECT_EQ(Stack::globalId, other.GetId());
    EXPECT_EQ(index[first.bitStack], &first);
    EXPECT_EQ(first.GetHisto(), 1);
    EXPECT_EQ(first.GetStack(), nullptr);

    std::intptr_t words[20];
    ConvertStackFromCharToBit(reinterpret_cast<int*>(words), *calls[0], 3);
    EXPECT_EQ(index.IsIn(words), index.IsIn(first.bitStack));

    TAIndexStack byText;
    Calls list("X");
    const Stack named("any text", list, 1, &byText, nullptr, nullptr, nullptr, 0);
    EXPECT_STREQ(named.GetStack(), "any text");
    EXPECT_EQ(named.GetStack(1), "any text");
    EXPECT_EQ(named.bitStack, nullptr);
}

TEST_F(StackTest, JoinsAndCutsCalls) {
    const struct {
        const char* letters;
        const char* joined;
        int size;
    } rows[] = {{"", "", 0},
                {"X", "X", 1},
                {"XYX", "X!Y!X", 3},
                {"ABCDEFGHIJKLMNOPQRST", "A!B!C!D!E!F!G!H!I!J!K!L!M!N!O!P!Q!R!S!T", 20},
                {"ABCDEFGHIJKLMNOPQRSTUV", "A!B!C!D!E!F!G!H!I!J!K!L!M!N!O!P!Q!R!S!T", 20}};
    for (const auto& row : rows) {
        const Stack& stack = make(row.letters);
        EXPECT_EQ(stack.GetStack(0), row.joined);
        EXPECT_EQ(stack.GetSize(), row.size);
        EXPECT_EQ(stack.GetToExtend(), static_cast<int>(std::string(row.letters).size()));
    }
}

TEST_F(StackTest, ChargesTheFirstCallThatCounts) {
    TAPIndexContainer::respForFwIndex.Append("B", "bob", 0);
    TAPIndexContainer::respForFwIndex.Append("N", nullptr, 0);
    for (const char* text : {"bob", "."}) ignoredResponsibles.Append(text, nullptr, 0);
    const int dot = ignoredResponsibles.IsIn(".");
    const struct {
        const char* letters;
        int start;
        const char* framework;
        int result;
    } rows[] = {{"XbaY", -5, "A", 0}, {"Xcca", 0, "A", 0}, {"aXd", 1, "D", 0}, {"aX", 2, "", 1},
                {"aX", 3, "", 0},     {"", 0, "", 1},      {"Nna", 0, "A", 0}, {"bXb", 0, "", 1}};
    ignoredCalls.Append("c", nullptr, 0);
    ignoredResponsibles.RemovePosition(dot);
    for (const auto& row : rows) {
        Stack& stack = make(row.letters, row.start);
        EXPECT_EQ(chargedBy(stack), row.framework) << row.letters;
        EXPECT_EQ(stack.BuildResponsible(&ignoredResponsibles, &ignoredCalls, nullptr, row.start),
                  row.result);
    }
    Stack& stack = make("Xbd");
    EXPECT_STREQ(stack.GetResponsible(), ".");
    EXPECT_EQ(stack.GetFirstKetchCall(), stack.GetCall(1));
    EXPECT_EQ(make("XX").GetFirstKetchCall(), nullptr);
    EXPECT_EQ(make("XYX").HasCall(stack.GetCall(0)), 2);
    EXPECT_EQ(make("").HasCall(stack.GetCall(0)), -1);
}

TEST_F(StackTest, Resizes) {
    ignoredResponsibles.Append("bob", nullptr, 0);
    const struct {
        int first, last, result;
        const char* letters;
        const char* framework;
    } rows[] = {{2, 4, 0, "cXY", "C"},   {0, 5, 0, "aXcXYZ", "A"},  {3, 5, 0, "XYZ", "A"},
                {5, 4, 0, "", "A"},      {-1, 2, 1, "aXcXYZ", "A"}, {0, 6, 1, "aXcXYZ", "A"},
                {4, 2, 1, "aXcXYZ", "A"}};
    for (const auto& row : rows) {
        index.Reset();
        Stack& stack = make("aXcXYZ");
        EXPECT_EQ(stack.Resize(row.first, row.last, &index, &ignoredResponsibles, &ignoredCalls, nullptr),
                  row.result);
        EXPECT_EQ(lettersOf(stack), row.letters);
        EXPECT_EQ(chargedBy(stack), row.framework) << row.letters;
        EXPECT_EQ(index.size, 1);
        EXPECT_EQ(index[stack.bitStack], &stack);
        EXPECT_EQ(stack.GetToExtend(), 6);
    }
    // The part is a stack that is there already.
    index.Reset();
    const Stack& part = make("XY");
    Stack& whole = make("aXYZ");
    whole.Resize(1, 2, &index, nullptr, nullptr, nullptr);
    EXPECT_EQ(whole.bitStack, part.bitStack);
    EXPECT_EQ(index[whole.bitStack], &part);
    EXPECT_EQ(index.size, 1);
    EXPECT_DEATH(whole.Resize(0, 0, &TAPIndexContainer::LeaksLongStackIndex, nullptr, nullptr, nullptr),
                 "Trying to resize a stack not in index !\\?!\\?!\\?!");
    TAIndexStack byText;
    Stack named("text", *calls[0], 3, &byText, nullptr, nullptr, nullptr, 0);
    EXPECT_EQ(named.Resize(0, 1, &index, nullptr, nullptr, nullptr), 1);
    EXPECT_EQ(named.GetSize(), 3);
}

TEST_F(StackTest, NumbersGoOnBehindASetOne) {
    Stack::globalId = 3;
    Stack& stack = make("PQ");
    EXPECT_EQ(stack.GetId(), 4);
    EXPECT_EQ(stack.SetId(41), 0);
    EXPECT_EQ(make("QP").GetId(), 43);
    stack.SetId(7);
    EXPECT_EQ(make("QQ").GetId(), 44);
}

} // namespace
