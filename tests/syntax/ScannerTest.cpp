#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "support/Source.h"

namespace {

using Scanner = int (*)(const char*, int, int);

struct ScannerRow {
    Scanner scan;
    const char* text; // starts at position 1, since 0 is "not found"
    int from;
    int expected;
    int bound; // 0: the end of the text, respectively its begin
};

TEST(Scanners, FindTheOtherEnd) {
    const auto block = TAPSyntaxe::SearchEndOfTAPBloc;
    const auto par = TAPSyntaxe::SearchEndOfPar;
    const auto index = TAPSyntaxe::SearchEndOfIndex;
    const auto string = TAPSyntaxe::SearchEndOfString;
    const auto character = TAPSyntaxe::SearchEndOfString2;
    const auto instruction = TAPSyntaxe::SearchEndOfTAPInstruction;
    const ScannerRow rows[] = {
        {block, "{a{b}(}){[}]}\"}\"}", 1, 17, 0},
        {block, "{ }", 1, 3, 0},
        {block, "{ }", 1, 0, 2},
        {block, "{(}", 1, 0, 0},
        {par, "(a(b)[)]{)", 1, 10, 0},
        {par, "([)", 1, 0, 0},
        {par, "x(a)", 1, 1, 0},
        {par, "[a]b", 1, 3, 0},
        {par, "\"a\"b", 1, 3, 0},
        {par, "(", 1, 0, 0},
        {par, ")(a", 1, 2, 0}, // counts down first
        {index, "[a(])[b]']']", 1, 12, 0},
        {string, "\"a\\\"b\"c", 1, 6, 0},
        {string, "\"ab\"\"cd\"", 1, 8, 0},
        {string, "\"ab\"\"cd\"", 1, 4, 4},
        {string, "\"ab\"\"cd\"", 1, 0, 5},
        {string, "\"ab\\", 1, 0, 0},
        {character, "'\\''", 1, 4, 0},
        {character, "''", 1, 2, 0},
        {character, "'a", 1, 0, 0},
        {instruction, "foo(a);", 1, 6, 0},
        {instruction, "azAZ_(a);", 1, 8, 0},
        {instruction, "foo2(a);", 1, 8, 0},
        {instruction, "`(a)@(a);", 1, 9, 0},
        {instruction, "return(a)+1;", 1, 12, 0},
        {instruction, "(a)(b);", 1, 7, 0},
        {instruction, "foo(a;", 1, 0, 0},
        {instruction, "public:x", 1, 7, 0},
        {instruction, "public:", 1, 7, 0},
        {instruction, "NUBTry x;", 1, 6, 0},
        {instruction, "NUBEndTryx", 1, 9, 0},
        {instruction, "NUBTry", 1, 6, 0},
        {instruction, "int a[;] {", 1, 9, 0},
        {instruction, "a } b", 1, 5, 0},
        {instruction, "a';", 1, 0, 0},
        {instruction, "a", 2, 0, 0},
    };
    for (const ScannerRow& row : rows) {
        const std::string text = std::string(" ") + row.text;
        const int end = row.bound != 0 ? row.bound : static_cast<int>(std::strlen(row.text));
        EXPECT_EQ(row.scan(text.c_str(), row.from, end), row.expected) << row.text << " to " << end;
    }
}

TEST(Scanners, FindTheOtherEndBackwards) {
    const auto par = TAPSyntaxe::SearchBeginOfPar;
    const auto index = TAPSyntaxe::SearchBeginOfIndex;
    const auto string = TAPSyntaxe::SearchBeginOfString;
    const auto character = TAPSyntaxe::SearchBeginOfString2;
    const ScannerRow rows[] = {
        {par, "(a(b)[(])", 9, 1, 0},
        {par, "(])", 3, 0, 0},
        {par, "(a)", 3, 0, 2},
        {par, "a)", 1, 1, 0},
        {index, "[a(])]", 6, 0, 0},
        {index, "[a(')')]", 8, 1, 0},
        {index, "x[a]", 1, 1, 0},
        {string, "\"a\\\"b\"", 6, 1, 0},
        {string, "\"ab\"\"cd\"", 8, 1, 0},
        {string, "\"ab\"\"cd\"", 8, 5, 5},
        {string, "\"\\\\\"\"b\"", 7, 1, 0},
        {string, "a\"", 2, 0, 0},
        {string, "\"\"", 2, 1, 0},
        {character, "'\\''", 4, 1, 0},
        {character, "'\\\\'", 4, 1, 0},
        {character, "a'", 2, 0, 0},
    };
    for (const ScannerRow& row : rows) {
        const std::string text = std::string(" ") + row.text;
        EXPECT_EQ(row.scan(text.c_str(), row.from, row.bound), row.expected)
            << row.text << " down to " << row.bound;
    }
}

TEST(Scanners, NestAsDeepAsTheTextGoes) {
    std::string text = " ";
    for (int i = 0; i < 300000; ++i) text += "([";
    for (int i = 0; i < 300000; ++i) text += "])";
    const int last = static_cast<int>(text.size()) - 1;
    EXPECT_EQ(TAPSyntaxe::SearchEndOfPar(text.c_str(), 1, last), last);
    EXPECT_EQ(TAPSyntaxe::SearchBeginOfPar(text.c_str(), last, 1), 1);
    EXPECT_EQ(TAPSyntaxe::SearchEndOfPar(text.c_str(), 1, last - 1), 0);
}

} // namespace
