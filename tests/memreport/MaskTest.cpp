#include <deque>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <ostraka/memreport/Call.h>
#include <ostraka/memreport/StackMask.h>

namespace {

// Rows "pattern matched result", where '' is the empty text.
class Rows {
public:
    explicit Rows(const char* text) : rest(text) {}
    bool Next() {
        rest >> pattern >> matched >> result;
        for (std::string* text : {&pattern, &matched})
            if (*text == "''") text->clear();
        return !rest.fail();
    }
    std::string pattern, matched;
    int result = 0;

private:
    std::istringstream rest;
};

TEST(MaskTest, MatchesTexts) {
    Rows rows("'' '' 1   '' a 0   ab ab 1   ab abc 0   @ '' 1   @ a 1   a@ ab 1   ab@ a 0   @b ab 1   "
              "@b bb 0   @ab b 0   @@ '' 1   @@b ab 1   @foo@bar a,foo,x,bar 1   @foo@bar bar,foo 0   "
              "@a@a a 0   @a@a aaa 0   a@b@ axxb 1   a@b@c abbc 1   @ab@b abab 1   a@@c ac 1   . x 0");
    while (rows.Next())
        EXPECT_EQ(strMatch(rows.pattern.c_str(), rows.matched.c_str()), rows.result)
            << rows.pattern << " " << rows.matched;
}

// Calls of one letter each; "_" is the call of empty text.
std::vector<Call*> CallsOf(const std::string& letters) {
    static TAIndexCall index;
    static std::deque<Call> held;
    std::vector<Call*> calls;
    for (const char letter : letters) {
        held.emplace_back(letter == '_' ? "" : std::string(1, letter).c_str(), &index);
        calls.push_back(&held.back());
    }
    return calls;
}

// That the elements took the calls up to `past` in order: stars any number, all others one call that they
// match.
void ExpectTaken(const StackMask& mask, const std::vector<CallRange>& taken, Call* const* calls, int past) {
    int next = 0;
    for (int i = 0; i < mask.Size(); ++i) {
        const auto [begin, end] = taken[static_cast<std::size_t>(i)];
        const int size = end - begin;
        EXPECT_TRUE(begin == next && size >= 0) << mask.GetStackMask() << " " << i;
        const bool fits = size == 1 && mask.AreEqual(i, 1, calls, begin, past) == 1;
        EXPECT_TRUE(fits || *mask.GetMaskCall(i) == '@') << mask.GetStackMask() << " " << i;
        next = end;
    }
    EXPECT_EQ(next, past);
}

// In turn: masks without two stars; single stars, whose first place is final; double stars, which try their
// places from the last on; double stars that are one call since no single one follows or they stand directly
// behind a star; stars side by side; as many elements as there can be, and one more.
TEST(MaskTest, MatchesStacks) {
    Rows rows(". ab 1   . '' -1   @ '' 0   @@ ab 0   a!@ abc 1   a!@ ba -1   a!b abc 2   a!b!c ab -1   "
              "'' _a 1   '' a -1   a!!b a_b 3   @!a bacada 2   @@!a bacada 6   @!a!d aacad 5   "
              "@!z abc -1   b!@!a bca 3   b!@!a cba -1   @!a!@!b caxbab 4   @!a!@!a!c aabac 5   "
              "@!x!@!z axbx -1   @@!a!@!b axabxa 4   @@!a!@!b!c abcabx 3   @@!a!@ aba 3   "
              "@@!a!@!z aaa -1   @@!a!@@!b!@ abab 4   @@!b!@@!a!@ abab 3   @!a!@@!b!@ abab 4   "
              "@!x!@@!a!@ axbx -1   @!@@!b ab 2   @!@@!b b -1   @@!@@ abc 3   @!@@!a!@@!b!@ xaxb 4   "
              "a!@@!b!@@!c axbyc 5   @!a!@@ ba -1   @!a!@@!b abb 3   @!@!b abb 2   @@!@!b abb 2   "
              "@!@ ab 0   a!b!c!d!e!f!g!h!i!j!k!l!m!n!o!p!q!r!s!t abcdefghijklmnopqrst 20   "
              ".!.!.!.!.!.!.!.!.!.!.!.!.!.!.!.!.!.!.!.!. abcdefghijklmnopqrstu -1");
    while (rows.Next()) {
        const auto calls = CallsOf(rows.matched);
        const StackMask mask(rows.pattern.c_str(), nullptr);
        const int size = static_cast<int>(calls.size());
        EXPECT_EQ(mask.MatchMask(calls.data(), size), rows.result) << rows.pattern << " " << rows.matched;
        EXPECT_EQ(mask.GetStackMask(), rows.pattern);
        std::vector<CallRange> taken(static_cast<std::size_t>(mask.Size()), {-1, -1});
        EXPECT_EQ(mask.MatchMask(calls.data(), size, taken.data()), rows.result);
        if (rows.result >= 0) ExpectTaken(mask, taken, calls.data(), rows.result);
        EXPECT_TRUE(rows.result >= 0 || taken.empty() || taken[0].past == -1) << rows.pattern;
    }
}

TEST(MaskTest, ShowsItsElements) {
    const StackMask mask("@!a!@@!!@", "LEAK"), same("a!", std::string("LEAK").c_str());
    const char* elements[] = {"@", "a", "@@", "", "@"};
    ASSERT_EQ(mask.Size(), 5);
    for (int i = 0; i < 5; ++i) EXPECT_STREQ(mask.GetMaskCall(i), elements[i]);
    EXPECT_EQ(mask.GetType(), same.GetType());
    EXPECT_EQ(StackMask("x", nullptr).GetType(), nullptr);
    EXPECT_TRUE(mask.HasAStar(1) == 4 && mask.HasADoubleStar(0) == 2 && mask.HasADoubleStar(3) == -1);
    EXPECT_EQ(StackMask(std::string(20, '!').c_str(), nullptr).Size(), 0);

    const auto calls = CallsOf("a_a_a");
    NUBRawCollint found(0);
    EXPECT_EQ(same.FindListOfEqual(0, 1, calls.data(), 0, found, 5), 3);
    ASSERT_EQ(same.FindListOfEqual(0, 2, calls.data(), 1, found, 5), 1);
    EXPECT_EQ(found[1], 2);
    EXPECT_EQ(same.AreEqual(0, 2, calls.data(), 4, 5), -1);
}

} // namespace
