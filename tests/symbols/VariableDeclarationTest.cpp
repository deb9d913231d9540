#include <string>

#include <gtest/gtest.h>

#include "support/LoadedText.h"

namespace {

// What the statements below may know: a class, a macro that stands for a type, and one that doesn't.
const std::string preamble = "#define INTEGER int\n#define LIMIT 10\nclass Foo;\n";

std::string Joined(const NUBListValNUBString& words) {
    std::string line;
    for (const NUBString& word : words) line += (line.empty() ? "" : " ") + std::string(word.View());
    return line;
}

// "type name; type name", and the records are released.
std::string Taken(NUBListPtrTAPDefVar& vars) {
    std::string line;
    for (int i = 1; i <= vars.Size(); ++i) {
        line += (line.empty() ? "" : "; ") + std::string(vars[i]->type) + " " + vars[i]->name;
        vars[i]->Release();
    }
    return line;
}

struct Statement {
    const char* text;
    int result;
    const char* words; // of the strict walk
    const char* records;
};

const Statement statements[] = {
    {"int a, *b, c[3];", 1, "int a , * b , c [ ]", "int a; int* b; int* c"},
    {"unsigned int x = f(y);", 1, "unsigned int x", "unsigned int x"},
    {"Foo_var p;", 1, "Foo_var p", "Foo_var p"},
    {"Bar_var p;", 0, "", ""},
    {"INTEGER i;", 1, "INTEGER i", "INTEGER i"},
    {"Foo& r = x, &s = y;", 1, "Foo & r , & s", "Foo& r; Foo& s"},
    {"char* const p;", 1, "char * const p", "char const* p"},
    {"Foo** p, q(1), r();", 1, "Foo * * p , q , r ( )", "Foo** p; Foo q; Foo r"},
    {"int a(b);", 1, "int a ( )", "int a"},
    {"int f();", 2, "int f", ""},
    {"int f(char c);", 2, "int f char c", ""},
    {"int* a(b);", 1, "int * a", "int* a"},
    {"Foo a b;", 0, "Foo a b", ""},
    {"Foo a, b c;", 1, "Foo a , b c", "Foo a"}, // stops at the second name
    {"const;", 0, "const", ""},
    {"inline int f();", 1, "int f", "int f"}, // the instruction behind the word hides the call form
    {"(Foo*)p;", 0, "", ""},
    {"*p = 3;", 0, "", ""},
    {"(*p).x = 3;", 0, "", ""},
    {"&x = y;", 0, "", ""},
};

TEST(VariableDeclarations, AreToldByTheirTypes) {
    for (const Statement& statement : statements) {
        SCOPED_TRACE(statement.text);
        const LoadedText text(preamble + statement.text);
        TAPSyntaxe* node = text.root->Child(text.root->ChildCount());
        NUBListValNUBString words;
        text.table->IsVariableDeclarationInternal(node, words, 1);
        EXPECT_EQ(Joined(words), statement.words);
        NUBListPtrTAPDefVar vars;
        EXPECT_EQ(text.table->IsVariableOrFunctionDeclaration(node, vars), statement.result);
        EXPECT_EQ(Taken(vars), statement.records);
    }
    const LoadedText text("int a;");
    NUBListPtrTAPDefVar vars;
    EXPECT_EQ(text.table->IsVariableOrFunctionDeclaration(nullptr, vars), -1);
}

TEST(VariableDeclarations, CollectWithoutProof) {
    const std::pair<const char*, const char*> rows[] = {
        {"x = f(y);", "1 x"}, {"a[3];", "1 a [ ]"},
        {"&a;", "1 & a"},     {"*a;", "1 * a"},
        {"f(int);", "2 f"},   {"f(x);", "1 f"},
        {"f();", "2 f ( )"},  {"a + b;", "1 a b"},
        {"(Foo)x;", "1 x"},   {"a & f();", "2 a & f ( )"},
        {"x++;", "1 x"},      {"\"text\";", "0"},
    };
    for (const auto& [statement, expected] : rows) {
        const LoadedText text(preamble + statement);
        NUBListValNUBString words;
        TAPSyntaxe* node = text.root->Child(text.root->ChildCount());
        const int result = text.table->IsVariableDeclarationInternal(node, words, 0);
        const std::string line = Joined(words);
        EXPECT_EQ(std::to_string(result) + (line.empty() ? "" : " ") + line, expected) << statement;
    }
}

TEST(VariableDeclarations, KnowTheTypesOfArguments) {
    const std::pair<const char*, const char*> rows[] = {
        {"int a = 3", "int|a"},
        {"unsigned int", "unsigned int|"},
        {"const Foo& r", "const Foo&|r"},
        {"void*", "void*|"},
        {"Foo_var p", "Foo_var|p"},
        {"Foo* f()", "Foo*|"},
        {"Bar b", ""},
        {"int a[3]", ""},
        {"*p", ""},
    };
    for (const auto& [argument, expected] : rows) {
        const LoadedText text(preamble + "f(" + argument + ");");
        TAPSyntaxe* node = text.root->Child(text.root->ChildCount());
        node = node->Navigate(SNAV_Child, 1, SNAV_Child, 2, SNAV_Child, 1, 0);
        NUBString type, name;
        const int result = text.table->GetArgType(node, type, name);
        EXPECT_EQ(result != 0 ? type + "|" + name : NUBString(), expected) << argument;
    }
}

TEST(VariableDeclarations, RecogniseTypesAsTexts) {
    const LoadedText text(preamble + "class Any_var;");
    const std::pair<const char*, int> rows[] = {
        {"int", 1},          {"const unsigned int*&", 1},
        {"Foo const", 0},    {"const", 1},
        {"Foo Foo", 0},      {"Foo_var", 1},
        {"_var", 0},         {"Any", 1},
        {"SEQUENCE_Bar", 1}, {"INTEGER_var", 1},
        {"LIMIT", 0},        {"", 0},
        {" *& ", 0},         {"constant Foo", 0},
        {"Bar", 0},          {"SEQUENCE_var", 0},
    };
    for (const auto& [type, expected] : rows) {
        EXPECT_EQ(text.table->IsARecognizedType(type), expected) << type;
    }
}

} // namespace
