#include <ostraka/memreport/Call.h>
#include <ostraka/memreport/StackMask.h>

#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace {

TEST(MaskTest, MatchesTexts) {
    const struct {
        const char* pattern;
        const char* text;
        int result;
    } rows[] = {
        {"", "", 1},
        {"", "a", 0},
        {"ab", "ab", 1},
        {"ab", "abc", 0},
        {"@", "", 1},
        {"@", "a", 1},
        {"a@", "ab", 1},
        {"a@", "b", 0},
        {"ab@", "a", 0},
        {"@b", "ab", 1},
        {"@b", "bb", 0},
        {"@ab", "b", 0},
        {"@abc", "ab", 0},
        {"@@", "", 1},
        {"@@", "x", 1},
        {"@@b", "ab", 1},
        {"@foo@bar", "a foo x bar", 1},
        {"@foo@bar", "bar foo", 0},
        {"@a@a", "a", 0},
        {"@a@a", "aa", 1},
        {"@a@a", "aaa", 0},
        {"a@a", "a", 0},
        {"a@b@", "axxb", 1},
        {"a@b@c", "abbc", 1},
        {"@ab@b", "abab", 1},
        {"a@@c", "ac", 1},
        {".", "x", 0},
        {"\xe9@", "\xe9x", 1},
    };
    for (const auto& row : rows)
        EXPECT_EQ(strMatch(row.pattern, row.text), row.result) << row.pattern << " " << row.text;
}

// Calls of one letter each; "_" is the call of empty text.
std::vector<Call*> callsOf(const std::string& letters) {
    static TAIndexCall index;
    static std::vector<std::unique_ptr<Call>> held;
    std::vector<Call*> calls;
    for (const char letter : letters) {
        held.push_back(std::make_unique<Call>(letter == '_' ? "" : std::string(1, letter).c_str(), &index));
        calls.push_back(held.back().get());
    }
    return calls;
}

TEST(MaskTest, MatchesStacks) {
    const std::string twenty = "abcdefghijklmnopqrst";
    const struct {
        const char* mask;
        std::string stack;
        int result;
    } rows[] = {
        {".", "ab", 1},
        {".", "", -1},
        {"@", "", 0},
        {"@", "ab", 0},
        {"@@", "ab", 0},
        {"a!@", "abc", 1},
        {"a!@", "ba", -1},
        {"a!b", "abc", 2},
        {"a!b!c", "ab", -1},
        {"", "_a", 1},
        {"", "a", -1},
        {"a!!b", "a_b", 3},
        {"@!a", "bacada", 2},
        {"@@!a", "bacada", 6},
        {"@!a!d", "aacad", 5},
        {"@!a!d", "aacadad", 5},
        {"@!z", "abc", -1},
        {"b!@!a", "bca", 3},
        {"b!@!a", "cba", -1},
        // Between single stars the first place is final, whatever follows.
        {"@!a!@!b", "caxbab", 4},
        {"@!a!@!a!c", "aabac", 5},
        {"@!a!@@!b", "abb", 3},
        // A double star tries its places from the last on, as far as what follows allows.
        {"@@!a!@!b", "axabxa", 4},
        {"@@!a!@!b!c", "abcabx", 3},
        {"@@!a!@", "aba", 3},
        {"@@!a!@!z", "aaa", -1},
        {"@@!a!@@!b!@", "abab", 4},
        {"@@!b!@@!a!@", "abab", 3},
        {"@!a!@@!b!@", "abab", 4},
        {"@!x!@@!a!@", "axbx", -1},
        // A double star directly behind a star, or without a single one behind it, is one call.
        {"@!@@!b", "ab", 2},
        {"@!@@!b", "b", -1},
        {"@@!@@", "abc", 3},
        {"@!@@!a!@@!b!@", "xaxb", 4},
        {"a!@@!b!@@!c", "axbyc", 5},
        {"@!a!@@", "ba", -1},
        {"@!a!@@", "bac", 3},
        // Stars side by side: the first takes nothing.
        {"@!@!b", "abb", 2},
        {"@@!@!b", "abb", 2},
        {"@!@", "ab", 0},
        // As many elements as there can be, and more.
        {"a!b!c!d!e!f!g!h!i!j!k!l!m!n!o!p!q!r!s!t", twenty, 20},
        {".!.!.!.!.!.!.!.!.!.!.!.!.!.!.!.!.!.!.!.!.", twenty + "u", -1},
    };
    for (const auto& row : rows) {
        const auto calls = callsOf(row.stack);
        const StackMask mask(row.mask, nullptr);
        EXPECT_EQ(mask.MatchMask(calls.data(), static_cast<int>(calls.size())), row.result)
            << row.mask << " " << row.stack;
        EXPECT_STREQ(mask.GetStackMask(), row.mask);
    }
}

TEST(MaskTest, ShowsItsElements) {
    const StackMask mask("@!a!@@!!@", "LEAK"), same("x", std::string("LEAK").c_str());
    const char* elements[] = {"@", "a", "@@", "", "@"};
    EXPECT_EQ(mask.Size(), 5);
    for (int i = 0; i < 5; ++i) EXPECT_STREQ(mask.GetMaskCall(i), elements[i]);
    EXPECT_EQ(mask.GetType(), same.GetType());
    EXPECT_EQ(StackMask("x", nullptr).GetType(), nullptr);
    EXPECT_EQ(mask.HasAStar(1), 4);
    EXPECT_EQ(mask.HasADoubleStar(0), 2);
    EXPECT_EQ(mask.HasADoubleStar(3), -1);
    EXPECT_EQ(StackMask(std::string(20, '!').c_str(), nullptr).Size(), 0);

    const auto calls = callsOf("a_a_a");
    NUBRawCollint found(0);
    found.Append(7);
    const StackMask pair("a!", nullptr);
    ASSERT_EQ(pair.FindListOfEqual(0, 2, calls.data(), 1, found, 5), 1);
    EXPECT_EQ(found[1], 2);
    EXPECT_EQ(pair.FindListOfEqual(0, 1, calls.data(), 0, found, 5), 3);
    EXPECT_EQ(pair.AreEqual(0, 2, calls.data(), 3, 5), -1);
    EXPECT_EQ(pair.AreEqual(0, 2, calls.data(), 4, 5), -1);
}

} // namespace
