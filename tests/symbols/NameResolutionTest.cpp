#include <string>

#include <gtest/gtest.h>

#include "support/LoadedText.h"

namespace {

std::string TextOf(TAPSyntaxe* node) {
    return node != nullptr ? node->GetContent() : "";
}

TEST(NameResolution, FindsTheDeclarationOfAName) {
    struct Row {
        const char* body;
        const char* declaration; // of the last x1; empty for none
        const char* type;
    };
    const Row rows[] = {{"int x1;use1(x1);", "int x1", "int"},
                        {"use1(x1);", "char* x1", "char*"}, // the argument
                        {"use1(x1);long x1;use1(x1);", "long x1", "long"},
                        {"{long x1;}int x1;use1(x1);", "long x1", "long"}, // in the order of the text
                        {"int x1;{long x1;{use1(x1);}}", "long x1", "long"},
                        {"int x1;{use1(x1);long x12;}", "int x1", "int"},
                        {"int a1,x1,*b1;use1(x1);", "int a1,x1,*b1", "int"},
                        {"if(a1){use1(x1);}", "char* x1", "char*"},
                        {"Unknown x1;use1(x1);", "char* x1", "char*"}};
    for (const Row& row : rows) {
        const LoadedText loaded("class Foo{};int before(){double x1;}void Foo::go(int,char* x1){" +
                                std::string(row.body) + "}");
        NUBListPtrTAPSyntaxe uses;
        loaded.root->FindOccurrences("x1", uses);
        TAPSyntaxe* use = uses[uses.Size()];
        NUBString type;
        EXPECT_EQ(TextOf(loaded.table->FindDeclare(use, type, nullptr, 0)), row.declaration) << row.body;
        EXPECT_EQ(type, row.type) << row.body;
        EXPECT_EQ(loaded.table->FindClass(use), row.type) << row.body;
        EXPECT_EQ(TextOf(loaded.table->FindDeclare(use, type, loaded.root, 0)), "double x1") << row.body;
        EXPECT_EQ(loaded.table->FindDeclare(loaded.Leaf("go"), type, nullptr, 0), nullptr);
    }
}

// What was found out for one question doesn't outlive what it was found in.
TEST(NameResolution, AnswersKeepUpWithWhatIsKnown) {
    const LoadedText loaded("#define Late char\nvoid ff(){Late x1;Other x1;int x1;use1(x1);}");
    TAPSymbolTable& table = *loaded.table;
    const auto typeOfX = [&] { return std::string(table.FindClass(loaded.Leaf("x1", 4)).View()); };
    EXPECT_EQ(typeOfX(), "Late");
    table.macros.RemovePosition(table.macros.IsIn("Late"));
    EXPECT_EQ(typeOfX(), "int");
    table.types.Append("Other", nullptr, 0);
    EXPECT_EQ(typeOfX(), "Other");
    table.types.Append("Gone", nullptr, 0);
    table.types.RemovePosition(table.types.IsIn("Other")); // as many as before
    EXPECT_EQ(typeOfX(), "int");
    TAPSymbolTable other;
    EXPECT_EQ(other.FindClass(loaded.Leaf("x1", 4)), "int");
    other.basicTypes.RemovePosition(other.basicTypes.IsIn("int"));
    EXPECT_EQ(other.FindClass(loaded.Leaf("x1", 4)), "");
    EXPECT_EQ(typeOfX(), "int");
}

TEST(NameResolution, AnswersKeepUpWithTheTree) {
    const LoadedText loaded("void Foo::ff(char* x1){use1(x1);}int ff(int a1){long x1;return x1;}");
    TAPSymbolTable& table = *loaded.table;
    TAPSyntaxe* use = loaded.Leaf("x1", 2);
    TAPSyntaxe* body = loaded.root->Child(2);
    int arguments = 0;
    EXPECT_EQ(table.FindClass(use), "char*");
    EXPECT_EQ(table.IsReturned(use, "x1", arguments, 0), 1);
    for (TAPSyntaxe* statement : {loaded.root->Child(4)->Child(1), loaded.root->Child(4)->Child(2)})
        body->Append(statement);
    EXPECT_EQ(table.FindClass(use), "long");
    EXPECT_EQ(table.IsReturned(use, "x1", arguments, 0), -1);

    // A tree made by hand, of which a part is built behind a question.
    TAPSourceFile* file = loaded.root->GetTAPSourceFile();
    for (int i = 0; i < 2; ++i) { // the second one where the first was
        auto* block = new TAPSyntaxe(STYPE_Bloc, file, body->GetBegin(), body->GetSize(), -1);
        auto* word = new TAPIdentifiant(block, use->GetBegin(), use->GetSize(), 1);
        EXPECT_EQ(table.FindClass(word), "");
        auto* inner =
            new TAPBloc(block, loaded.root->Child(4)->GetBegin(), loaded.root->Child(4)->GetSize(), 2);
        block->Append(inner);
        EXPECT_EQ(table.FindClass(word), "");
        EXPECT_EQ(inner->Build(), 0);
        EXPECT_EQ(table.FindClass(word), "long");
        for (TAPSyntaxe* node : {static_cast<TAPSyntaxe*>(word), static_cast<TAPSyntaxe*>(inner), block})
            node->Release();
    }
}

TEST(NameResolution, TellsWhereANodeStands) {
    struct Row {
        const char* text;
        const char* className;
        int result;
        const char* methodName;
    };
    const Row rows[] = {{"int Foo::go(){if(a1){this;}}", "Foo", 0, "Foo::go"},
                        {"Bar* Foo::go(){this;}", "Foo", 1, ""},
                        {"Bar Foo::go(int a1){this;}", "Foo", 0, "Foo::go"},
                        {"int go(int a1){this;}", "", 0, "go"},
                        {"gone(int a1){this;}", "", 1, ""},
                        {"this;", "", 1, ""},
                        {"Foo::Foo(int a1):b1(a1){this;}", "Foo", 1, ""},
                        {"inline int Foo::go(){this;}", "Foo", 1, ""}};
    for (const Row& row : rows) {
        const LoadedText loaded(row.text);
        TAPSyntaxe* node = loaded.Leaf("this");
        NUBString name;
        EXPECT_EQ(loaded.table->GetClassName(node), row.className) << row.text;
        EXPECT_EQ(loaded.table->FindClass(node), row.className) << row.text;
        EXPECT_EQ(loaded.table->GetMethodName(node, name), row.result) << row.text;
        EXPECT_EQ(row.result == 0 ? name : NUBString(), row.methodName) << row.text;
        EXPECT_EQ(loaded.table->GetMethodName(loaded.root, name), 1);
    }
}

TEST(NameResolution, FindsTheObjectOfACall) {
    struct Row {
        const char* call; // of m1
        const char* object;
        const char* castType;
    };
    const Row rows[] = {{"a1->m1()", "a1", ""},
                        {"a1.m1(x1)", "a1", ""},
                        {"a1->m1()->c1()", "a1", ""},
                        {"a1->b1()->m1()", "", ""},
                        {"((Foo*)p1)->m1()", "p1", "Foo*"},
                        {"m1(x1)", "", ""},
                        {"m1()->c1()", "", ""},
                        {"a1+m1()", "", ""},
                        {"a1->m1", "", ""},
                        {"m1(x1).c1(y1)=a1", "", ""},
                        {"(a1)->m1()", "a1", ""}};
    for (const Row& row : rows) {
        const LoadedText loaded("int ff(){" + std::string(row.call) + ";}");
        TAPSyntaxe* cast = loaded.root;
        EXPECT_EQ(TextOf(loaded.table->FindObject(loaded.Leaf("m1"), &cast)), row.object) << row.call;
        EXPECT_EQ(TextOf(cast), row.castType) << row.call;
        EXPECT_EQ(loaded.table->FindObject(nullptr, &cast), nullptr);
    }
}

TEST(NameResolution, TellsWhatGoesBackToTheCaller) {
    struct Row {
        const char* text;
        int result;
        int nbArgs;
    };
    const Row rows[] = {
        {"int ff(){here1;return x1;}", -1, 9},
        {"int ff(){{here1;}if(a1){return((Foo*)x1);}}", -1, 9},
        {"int ff(){here1;return x1 + 1;}", 0, 0},
        {"int Foo::ff(int a1,char* x1,int b1){if(a1){here1;}}", 2, 3},
        {"int ff(int a1,char* x1){here1;}", 2, 2},
        {"int ff(int a1){here1;}", 0, 1},
        {"int Foo::ff(){here1;}", 0, 0},
        {"int Foo::ff(int x1,int g1(int,int,int)){here1;}", 1, 3}, // the list passed last counts
        {"int ff(x1){here1;}", 0, 0}};
    for (const Row& row : rows) {
        const LoadedText loaded(row.text);
        int nbArgs = 9;
        EXPECT_EQ(loaded.table->IsReturned(loaded.Leaf("here1"), "x1", nbArgs, 0), row.result) << row.text;
        EXPECT_EQ(nbArgs, row.nbArgs) << row.text;
        EXPECT_EQ(loaded.table->IsReturned(nullptr, "x1", nbArgs, 0), 0);
    }
}

TEST(NameResolution, VariablesAndTheirScopes) {
    const LoadedText loaded("int x1;int a1,b1;int ff(int x1,char* y1){at1;{long x1;{at2;}at3;}at4;}"
                            "void Foo::go(int z1){for(int i1=0;i1;i1++)at5;f1(x1);}");
    NUBListPtrTAPDefVar vars;
    loaded.table->GetVariableDefinitions(loaded.root, vars);
    loaded.table->GetVariableDefinitions(nullptr, vars);
    std::string all;
    for (int i = 1; i <= vars.Size(); ++i) all += std::string(vars[i]->type) + " " + vars[i]->name + ";";
    EXPECT_EQ(all, "int x1;int b1;int a1;int x1;char* y1;long x1;int z1;");
    struct Row {
        const char* name;
        const char* place;
        int var; // position in the list, 0 for none
    };
    const Row rows[] = {
        {"x1", "at1", 4}, {"x1", "at2", 6}, {"x1", "at3", 6}, {"x1", "at4", 6}, // the scope that holds both
        {"a1", "at1", 3}, {"y1", "at5", 5}, {"z1", "at1", 0}, {"nn", "at1", 0}};
    for (const Row& row : rows) {
        const TAPDefVar* found = loaded.table->GetVariable(row.name, loaded.Leaf(row.place), vars);
        EXPECT_EQ(found, row.var > 0 ? vars[row.var] : nullptr) << row.name << " " << row.place;
    }
    EXPECT_EQ(loaded.table->GetVariable("x1", nullptr, vars), nullptr);
    for (int i = 1; i <= vars.Size(); ++i) vars[i]->Release();
}

TEST(NameResolution, DeclarationsByName) {
    const LoadedText loaded("int ff(int a1);int ff();class Foo{int i1;};");
    EXPECT_EQ(TextOf(loaded.table->GetFunctionDeclarationLocation("ff")), "int ff()");
    EXPECT_EQ(loaded.table->GetFunctionDeclarationLocation("gg"), nullptr);
    EXPECT_EQ(TextOf(loaded.table->GetClassDeclarationLocation("Foo")), "class Foo");
    EXPECT_EQ(loaded.table->GetClassDeclarationLocation("Bar"), nullptr);
}

} // namespace
