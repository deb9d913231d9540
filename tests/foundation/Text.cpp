#include <algorithm>
#include <cstring>
#include <string>
#include <tuple>

#include <gtest/gtest.h>

#include <ostraka/foundation/TextHelpers.h>

namespace {

std::string Joined(const NUBListValNUBString& list) {
    std::string all;
    for (const NUBString& text : list) all.append(text.View()).append("|");
    return all;
}

TEST(Split, Fragments) {
    // A limit of 0 is the form without one.
    const std::tuple<const char*, const char*, int, const char*> rows[] = {
        {"", " ", 0, ""},           {" a  b ", " ", 0, "a|b|"},
        {"   ", " ", 0, ""},        {"a::b:c::", "::", 0, "a|b:c|"},
        {"a b", "", 0, "a b|"},     {"a b c", " ", 2, "a|b c|"},
        {"  a b", " ", 2, " a b|"}, {"a b", " ", 1, "a b|"},
        {"a b", " ", -3, "a b|"},   {"a b", "", 5, "a b|"},
        {"a b ", " ", 9, "a|b|"},   {"a::b", "::", 9, "a|:b|"},
    };
    for (auto [text, separator, limit, fragments] : rows) {
        NUBListValNUBString out;
        out.Append("old");
        EXPECT_EQ(limit ? Split(text, out, separator, limit) : Split(text, out, separator),
                  std::count(fragments, fragments + std::strlen(fragments), '|'));
        EXPECT_EQ(Joined(out), fragments) << text;
    }
}

TEST(Split, PadsToACount) {
    NUBListValNUBString out;
    EXPECT_EQ(Split("a b", out, 4), 4);
    EXPECT_EQ(Joined(out), "a|b|||");
    EXPECT_EQ(Split("a b", out, 0), 0);
    EXPECT_EQ(Joined(out), "a b|");
    EXPECT_EQ(Split(out[1], out), 2) << "the text lies in the list that is filled";
    EXPECT_EQ(Joined(out), "a|b|");
}

TEST(TestMatch, Patterns) {
    const std::tuple<const char*, const char*, int, int> rows[] = {
        {"", "*", 1, 1},          {"x", "**", 0, 0},       {"**", "**", 1, 1},      {"ab", "ab*b", 1, 1},
        {"abxab", "ab", 1, 1},    {"abx", "ab", 0, 0},     {"xab", "ab", 0, 0},     {"a.cpp", "*.cpp", 1, 1},
        {"A.CPP", "*.cpp", 0, 1}, {"cpp", "*x.cpp", 0, 0}, {"abc", "a*c*b*", 0, 0}, {"abcb", "a*c*b*", 1, 1},
        {"", "", 1, 1},           {"x", "", 0, 0},         {"b", "a*b", 0, 0},      {"FooBar", "f*BAR", 0, 1},
    };
    for (auto [text, pattern, match, noCase] : rows) {
        EXPECT_EQ(TestMatch(text, pattern), match) << text << " " << pattern;
        EXPECT_EQ(TestMatchNoCase(text, pattern), noCase) << text << " " << pattern;
    }
}

TEST(StringList, StaysSortedAndIsSearchedByHalving) {
    NUBListValNUBString list;
    EXPECT_EQ(SearchInStringList("a", list), 0);
    for (const char* text : {"m", "c", "x", "c", "a", "z", "m", "d", "b", "z", "y"}) InsertInList(text, list);
    EXPECT_EQ(Joined(list), "a|b|c|d|m|x|y|z|");
    for (int i = 1; i <= list.Size(); ++i) EXPECT_EQ(SearchInStringList(list[i] + "rest", list), i);
    EXPECT_EQ(SearchInStringList("nothing", list) + SearchInStringList("", list), 0);
    EXPECT_EQ(rSearchInStringList("d", list, 1, 3) + rSearchInStringList("d", list, 5, 4), 0);
    EXPECT_EQ(rSearchInStringList("d", list, 4, 4), 4);
}

TEST(QStrstr, NeverGoesBack) {
    const std::tuple<const char*, const char*, int, int> rows[] = {
        {"one two", "two", 7, 4}, {"one two", "two", 6, -1}, {"a\ntwo", "two", 99, -1}, {"\n", "\n", 9, -1},
        {"aaab", "aab", 99, -1},  {"aab", "aab", 99, 0},     {"xaxab", "ab", 99, 3},    {"", "", 0, 0},
        {"a", "", 9, -1},         {"", "a", 9, -1},          {"a", "a", 0, -1},         {nullptr, "a", 9, -1},
        {"a", nullptr, 9, -1},
    };
    for (auto [text, what, limit, position] : rows) {
        const char* found = Q_strstr(text, what, limit);
        EXPECT_EQ(found ? found - text : -1, position) << testing::PrintToString(text);
    }
}

TEST(Trace, LineBlockAndError) {
    testing::internal::CaptureStdout();
    Trace("line", 0);
    TraceErr("bad");
    Trace("block", 1);
    const std::string date = GetShortDate().CastToCharPtr();
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "   line\n   ERROR :bad\n\n\n## " + date + " - block\n\n");
}

} // namespace
