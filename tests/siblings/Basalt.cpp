#include <algorithm>
#include <cctype>
#include <random>
#include <string>
#include <tuple>

#include <gtest/gtest.h>

#include <basalt/NUBListValNUBString.h>
#include <basalt/NUBRawColl.h>

namespace {

std::string Joined(const NUBListValNUBString& list) {
    std::string all;
    for (const NUBString& text : list) all.append(text.View()).append("|");
    return all;
}

// Pointers to the letters of the word in one array.
NUBRawCollPV CollOf(const std::string& word) {
    static char letters[26];
    NUBRawCollPV coll(0);
    for (char letter : word) coll.Append(letters + (letter - 'a'));
    return coll;
}

TEST(NUBString, OrderIsThatOfUnsignedBytes) {
    const std::tuple<const char*, const char*, int> rows[] = {
        {"", nullptr, 0}, {"ab", "a", 1}, {"a", "\xe9", -1}, {"same", "same", 0}, {"Z", "a", -1}};
    for (auto [left, right, order] : rows) {
        const NUBString a(left), b(right);
        EXPECT_TRUE(a.Compare(b) == order && a.Compare(right) == order && b.Compare(a) == -order) << left;
        EXPECT_TRUE((a < b) == (order < 0) && (left > b) == (order > 0) && (a != right) == (order != 0))
            << left;
    }
}

TEST(NUBString, PositionsAreClampedToTheText) {
    const NUBString text("banana");
    const std::tuple<const char*, int, int> finds[] = {{"ana", 0, 1},  {"ana", 2, 3},   {"ana", 4, -1},
                                                       {"ana", -9, 1}, {"ana", 99, -1}, {"", 6, 6},
                                                       {"", 7, -1},    {nullptr, 0, 0}};
    for (auto [what, from, found] : finds) EXPECT_EQ(text.FindPosition(what, from), found) << from;
    const std::tuple<int, int, const char*, const char*> cuts[] = {
        {0, 2, "ba", "nana"},    {4, 99, "na", "bana"}, {6, 1, "", "banana"},
        {-1, 2, "ba", "banana"}, {2, -1, "", "banana"}, {99, 1, "", "banana"}};
    for (auto [pos, count, sub, left] : cuts) {
        NUBString rest(text);
        rest.Remove(pos, count);
        EXPECT_EQ(rest, left) << pos;
        EXPECT_EQ(text.SubString(pos, count), sub) << pos;
    }
}

// Copies share their memory until one of them changes: each keeps the text that it should have.
TEST(NUBString, CopiesAreIndependent) {
    NUBString texts[4];
    std::string expected[4];
    std::mt19937 random(1);
    for (int step = 0; step < 20000; ++step) {
        const std::size_t i = random() % 4, j = random() % 4;
        const int pos = static_cast<int>(random() % 40), count = static_cast<int>(random() % 20);
        const std::size_t length = expected[i].size(), at = std::min<std::size_t>(pos, length);
        switch (random() % 6) {
        case 0: texts[i] = texts[j], expected[i] = expected[j]; break;
        case 1: texts[i] += "xyz", expected[i] += "xyz"; break;
        case 2:
            if (length < 200)
                texts[i].Insert(pos, texts[j]), expected[i].insert(at, std::string(expected[j]));
            break;
        case 3: texts[i].Remove(pos, count), expected[i].erase(at, count); break;
        case 4: texts[i].Resize(pos, 'r', 1), expected[i].resize(pos, 'r'); break;
        case 5:
            texts[i].ToUpper();
            for (char& c : expected[i]) c = static_cast<char>(std::toupper(c));
            break;
        }
        for (std::size_t k = 0; k < 4; ++k) ASSERT_EQ(texts[k], expected[k].c_str()) << step;
    }
}

TEST(NUBString, Editing) {
    NUBString text = "one " + NUBString("two");
    text.Insert(0, "<");
    text.Insert(99, ">");
    EXPECT_EQ(text.ReplaceSubString("o", text), 1);
    EXPECT_EQ(text, "<<one two>ne two>");
    EXPECT_EQ(text.ReplaceSubString("three", ""), -1);
    EXPECT_EQ(text.ReplaceSubString("", "x"), -1);
    text += text;
    EXPECT_EQ(text.Length(), 34);
    text.Resize(5, ' ', 1);
    text.Resize(7, NUBChar('.'), 1);
    text.Resize(9, '\0', 1);
    text.ToUpper();
    EXPECT_EQ(text, "<<ONE..");
    EXPECT_EQ(NUBString(std::string_view("cut\0off", 7)).Append(std::string_view("s\0x", 3)), "cuts");
}

TEST(NUBString, HostileSearchStaysLinear) {
    const std::string run(1'000'000, 'a');
    EXPECT_EQ(NUBString(run + run + run + run).FindPosition(NUBString(run + "b" + run)), -1);
}

TEST(NUBListValNUBString, TextsMayComeFromTheListItself) {
    NUBListValNUBString list;
    list.Append("b");
    list.Append("a");
    list.Append(list[1]);
    list.InsertBefore(1, list[2]);
    list.InsertAfter(4, list[3]);
    list.Append(list);
    EXPECT_EQ(Joined(list), "a|b|a|b|a|a|b|a|b|a|");
    for (int position : {1, 0, 99, 9}) list.RemovePosition(position);
    EXPECT_EQ(Joined(list), "b|a|b|a|a|b|a|b|");
}

TEST(Sorting, IsStableEvenWhenEqualAnswersMinusOne) {
    NUBListValNUBString list;
    for (const char* text : {"b1", "a1", "b2", "a2", "a3"}) list.Append(text);
    NUBListValNUBString same(list);
    list.QuickSort([](NUBString* a, NUBString* b) { return a->View()[0] - b->View()[0]; });
    EXPECT_EQ(Joined(list), "a1|a2|a3|b1|b2|");
    same.QuickSort([](NUBString* a, NUBString* b) { return a->View()[0] <= b->View()[0] ? -1 : 1; });
    EXPECT_EQ(Joined(same), Joined(list));
}

TEST(NUBRawColl, RemoveDuplicatesKeepsTheFirst) {
    NUBRawCollPV coll(0), removed(0);
    for (long i = 0; i < 1'000'000; ++i) coll.Append(reinterpret_cast<void*>(i % 500'000));
    coll.RemoveDuplicates(&removed);
    EXPECT_EQ(coll.size, 500'000);
    EXPECT_EQ(NUBRawCollPV::Compare(
                  coll, removed, +[](void* a, void* b) { return int{a != b}; }),
              0);
}

TEST(NUBRawColl, Compare) {
    const std::tuple<const char*, const char*, int> rows[] = {
        {"", "", 0}, {"", "a", -1}, {"ab", "a", 1}, {"b", "ac", 1}, {"abc", "abd", -1}, {"ab", "ab", 0}};
    int (*order)(void*, void*) = [](void* a, void* b) { return (a > b) - (a < b); };
    for (auto [a, b, result] : rows)
        EXPECT_EQ(NUBRawCollPV::Compare(CollOf(a), CollOf(b), order), result) << a << " " << b;
}

} // namespace
