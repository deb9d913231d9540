#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "support/Source.h"

namespace {

struct OperatorRow {
    const char* text;
    int pos; // in `text`; -1 for no operator
    const char* found;
};

TEST(OperatorSearch, TakesTheHighestLevelFromTheRight) {
    const OperatorRow rows[] = {
        {"x", -1, ""},
        {"ab", -1, ""},
        // assignments and comparisons are of one level
        {"a=b=c", 3, "="},
        {"a<b=c", 3, "="},
        {"a=b<c", 3, "<"},
        {"a==b", 1, "=="},
        {"a<=b", 1, "<="},
        {"a<<=b", 1, "<<="},
        {"a>>=b", 1, ">>="},
        {"a!=b", 1, "!="},
        {"a<b>c", 3, ">"},
        {"a^=b", 1, "^="},
        // levels against each other
        {"a<<b", 1, "<<"},
        {"a>>b", 1, ">>"},
        {"Map<K,V>x", 5, ","},
        {"a=b,c=d", 3, ","},
        {"a+b*c", 1, "+"},
        {"a*b+c", 3, "+"},
        {"a%b*c", 1, "%"},
        {"a*b%c", 3, "%"},
        {"a|b*c", 3, "*"},
        {"a^b|c", 3, "|"},
        {"a->b+c", 4, "+"},
        {"a<<b+c", 4, "+"},
        {"a-b-c", 3, "-"},
        // what ends the search at once
        {"a,b&&c,d", 3, "&&"},
        {"a&&b||c", 4, "||"},
        {"x?a: b", 3, ":"},
        {"public:", 6, ":"},
        {"a:b,c", 1, ":"},
        // members and scopes
        {"A::b", 1, "::"},
        {"::b", 0, "::"},
        {"a->b", 1, "->"},
        {"a.b", 1, "."},
        {"a.*b", 1, ".*"},
        {"a->*b", 1, "->*"},
        {"1.5", 1, "."},
        {"a::b.c", 4, "."},
        // runs of signs are read in pairs from the left
        {"a-->b", 1, "--"},
        {"a---b", 3, "-"},
        {"a--", 1, "--"},
        {"--a", 0, "--"},
        {"++a", 0, "++"},
        {"a+++b", 3, "+"},
        {"a----b", 4, "-"},
        {"-a", 0, "-"},
        {"a- -b", 3, "-"},
        // nesting
        {"f(a+b)", -1, ""},
        {"a[i+1]", -1, ""},
        {"\"a+b\"", -1, ""},
        {"'+'", -1, ""},
        {"(a+b)*c", 5, "*"},
        {"a)", -1, ""},
        {"a+b)", -1, ""},
        {"a+(b", 1, "+"},
        {"a{b+c}", 3, "+"},
        {"a+b]+c", -1, ""},
    };
    for (const OperatorRow& row : rows) {
        const std::string text = std::string(" ") + row.text;
        int length = -1;
        const int pos =
            TAPExpression::SearchOperator(text.c_str(), 1, static_cast<int>(text.size()) - 1, length);
        EXPECT_EQ(pos, row.pos + 1) << row.text;
        EXPECT_EQ(length, row.pos < 0 ? -1 : static_cast<int>(std::strlen(row.found))) << row.text;
        if (row.pos >= 0) {
            EXPECT_EQ(text.substr(static_cast<std::size_t>(pos), std::strlen(row.found)), row.found)
                << row.text;
        }
    }
}

TEST(OperatorSearch, BoundsDecideAboutLongerOperators) {
    int length = 0;
    EXPECT_EQ(TAPExpression::SearchOperator(" a<<=b", 1, 3, length), 2); // only `a<<` is seen
    EXPECT_EQ(length, 2);
    EXPECT_EQ(TAPExpression::SearchOperator(" a->b", 3, 4, length), 3); // the `>` stands alone
    EXPECT_EQ(length, 1);
}

TEST(OperatorSearch, TellsLongerOperators) {
    struct Row {
        const char* text;
        int pos, n, expected;
    };
    const Row rows[] = {
        {"a>>=b", 3, 2, 3}, {"a<<=b", 3, 2, 0}, {"a->*b", 2, 2, 3}, {"a->*b", 1, 1, 3}, {"a==b", 1, 1, 2},
        {"a&&b", 1, 1, 0},  {"a<<b", 1, 1, 0},  {"a---b", 3, 1, 0}, {"a---b", 2, 1, 3}, {"--a", 1, 1, 2},
        {"a+-b", 1, 1, 0},  {"a-=b", 1, 1, 2},  {"a--=b", 3, 2, 3}, {"--=b", 2, 2, 2},  {"a<<=b", 1, 3, 0},
    };
    for (const Row& row : rows) {
        const int end = static_cast<int>(std::strlen(row.text)) - 1;
        EXPECT_EQ(TAPSyntaxe::ExistLongerOp(row.text, 0, end, row.pos, row.n), row.expected)
            << row.text << " at " << row.pos << " of " << row.n;
    }
}

TEST(OperatorSearch, EarlierFormTakesTheLeftmost) {
    const OperatorRow rows[] = {
        {"a+=b", 1, "+"},  {"a->b+c", 1, "->"},    {"a*b+c", 3, "+"},
        {"a*b*c", 1, "*"}, {"f(a+b)::c", 6, "::"}, {"a[i*j]", -1, ""},
        {"ab", -1, ""},    {"a=", 1, "="},         {"\"a+b\"*c", 5, "*"},
    };
    for (const OperatorRow& row : rows) {
        const std::string text = std::string(" ") + row.text;
        int length = -1;
        const int pos =
            TAPExpression::SearchOperator_old(text.c_str(), 1, static_cast<int>(text.size()) - 1, length);
        EXPECT_EQ(std::pair(pos, length), std::pair(row.pos + 1, static_cast<int>(std::strlen(row.found))))
            << row.text;
    }
    int length = 9;
    EXPECT_EQ(TAPExpression::SearchOperator_old(" (a+b", 1, 5, length), 0);
    EXPECT_EQ(TAPExpression::SearchOperator_old(" +", 1, 1, length), 0);
    EXPECT_EQ(length, 9); // a delimiter without partner leaves it alone
}

} // namespace
