#include <string>

#include <gtest/gtest.h>

#include "support/LoadedText.h"

namespace {

TEST(TypeQueries, TypeOfAnExpression) {
    struct Row {
        const char* expression;
        const char* type; // null where it can't be told
    };
    const Row rows[] = {
        {"pp", "char*"},
        {"pp[1]", "char"},
        {"nn[1]", nullptr},
        {"int a[3]", "int*"},
        {"*pp", "char"},
        {"*(*qq)", "Foo"},
        {"*nn", nullptr},
        {"&nn", "int*"},
        {"Foo* (*rr)", "Foo**"},
        {"Foo*& rr", "Foo*&"},
        {"Foo& (*rr)", "Foo&*"},
        {"(Foo*)pp", "Foo*"},
        {"const Foo rr", "const Foo"},
        {"unsigned int rr", "unsigned"},
        {"nn = 3", "int"},
        {"\"text\"", "const char *"},
        {"this", "Foo"},
        {"arg1", "Foo_var"},
        {"zz", nullptr},
        {"call(nn)", nullptr},
        {"nn+nn", nullptr},
    };
    for (const Row& row : rows) {
        const LoadedText loaded("class Foo{};void Foo::go(Foo_var arg1){int nn;char* pp;Foo** qq;{" +
                                std::string(row.expression) + ";}int later;}");
        TAPSyntaxe* body = loaded.root->Child(loaded.root->ChildCount());
        NUBString type("left over");
        const int result = loaded.table->GetType(body->Child(4)->Child(1)->Child(1), type);
        EXPECT_EQ(result, row.type != nullptr ? 0 : 1) << row.expression;
        EXPECT_EQ(result == 0 ? type : NUBString(), NUBString(row.type)) << row.expression;
        EXPECT_EQ(loaded.table->GetType(nullptr, type), 1);
    }
}

TEST(TypeQueries, TypesFitByNameAndByBase) {
    struct Row {
        const char* first;
        const char* second;
        int inherits;
        int matches;
    };
    const Row rows[] = {{"const Foo&", "Foo*", 0, 1},
                        {"Leaf*", "Base*", 1, 1},
                        {"Base*", "Leaf*", 0, 0},
                        {"Leaf_var", "Base_var&", 1, 1},
                        {"Leaf_var*&", "Leaf", 1, 1},
                        {"Leaf", "Outside", 1, 1},
                        {"Stray", "Other", 0, 0},
                        {"Stray", "Stray", 1, 1},
                        {"Round1", "Round2", 1, 1},
                        {"Round1", "Base", 0, 0},
                        {"", "", 0, 1},
                        {"const", "Base", 0, 0},
                        {"", "Base", 0, 0},
                        {"_var", "_var_var", 1, 1},
                        {"*", "**", 1, 1}};
    const LoadedText loaded("class Base:public Outside{int i1;};class Middle : public Base {int i1;};"
                            "class Leaf : public Other, public Middle {int i1;};"
                            "class Round1 : public Round2{int i1;};class Round2 : public Round1{int i1;};");
    for (const Row& row : rows) {
        EXPECT_EQ(loaded.table->InheritFrom(row.first, row.second), row.inherits)
            << row.first << " " << row.second;
        EXPECT_EQ(loaded.table->MatchType(row.first, row.second), row.matches)
            << row.first << " " << row.second;
    }
}

// A long line is walked once, and yet goes on, or ends sooner, when classes come and go.
TEST(TypeQueries, LongLinesOfBasesFollowTheClasses) {
    std::string line = "class C0 : public Bridge {};";
    for (int i = 1; i < 50; ++i)
        line += "class C" + std::to_string(i) + " : public C" + std::to_string(i - 1) + " {};";
    const Workspace files{{"m/line.cpp", line},
                          {"m/bridge.cpp", "class Bridge : public Base {};"},
                          {"m/round.cpp", "class Base : public C49 {};"}};
    TAPSymbolTable table;
    const auto answers = [&] {
        std::string all;
        for (const char* base : {"Base", "C7", "C49", "Bridge", "None"})
            for (const char* derived : {"C49", "C30"})
                all += table.InheritFrom(derived, base) != 0 ? '1' : '0';
        return all;
    };
    struct Row {
        const char* file;
        bool comes;
        const char* answers; // for each base those of both classes
    };
    const Row rows[] = {{"m/line.cpp", true, "0011101100"},   {"m/bridge.cpp", true, "1111101100"},
                        {"m/round.cpp", true, "1111111100"},  {"m/bridge.cpp", false, "0011101100"},
                        {"m/bridge.cpp", true, "1111111100"}, {"m/line.cpp", false, "0000100000"}};
    for (const Row& row : rows) {
        const std::string path = files(row.file);
        EXPECT_EQ(row.comes ? table.LoadFile(path.c_str(), 1) : table.UnLoadFile(path.c_str()), 0);
        for (int time = 0; time < 2; ++time) EXPECT_EQ(answers(), row.answers) << row.file;
    }
}

TEST(TypeQueries, BasicTypes) {
    struct Row {
        const char* type;
        int asText;
        int asDeclared; // of a variable with this type
    };
    const Row rows[] = {
        {"int", 1, 1},       {"char*", 1, 1},   {"char**", 1, 0},  {"unsigned long*", 1, 0},
        {"const int", 0, 0}, {"Foo", 0, 0},     {"long  &", 1, 0}, {"signed unsigned int", 1, 0},
        {"unsigned", 1, 1},  {"Foo_var*", 0, 0}};
    for (const Row& row : rows) {
        const LoadedText loaded("class Foo{};int ff(){" + std::string(row.type) + " vv1;other1(vv1);}");
        EXPECT_EQ(loaded.table->IsBasicType(row.type), row.asText) << row.type;
        EXPECT_EQ(loaded.table->IsBasicType(loaded.Leaf("vv1", 2)), row.asDeclared) << row.type;
        EXPECT_EQ(loaded.table->IsBasicType(loaded.Leaf("other1")), -1);
        for (const char* none : {"", "*", "signed *", " int"})
            EXPECT_EQ(loaded.table->IsBasicType(none), 0) << none;
    }
}

} // namespace
