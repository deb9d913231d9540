#include <string>

#include <gtest/gtest.h>

#include "support/LoadedText.h"

namespace {

std::string OneLine(const TAPDefVar& var) {
    return std::string(var.type) + (var.name != nullptr ? std::string(" ") + var.name : "");
}

// Returned type, name, arguments, and visibility, binding and inlining where they aren't 0, 10 and 0.
std::string OneLine(TAPDefMethod& method) {
    std::string line = std::string(method.returnedType) + " " + method.name + "(";
    for (int i = 1; i <= method.args.Size(); ++i) line += (i > 1 ? "," : "") + OneLine(*method.args[i]);
    line += ")";
    if (method.visibility != 0) line += " v" + std::to_string(method.visibility);
    if (method.binding != 10) line += " b" + std::to_string(method.binding);
    if (method.inlined != 0) line += " i" + std::to_string(method.inlined);
    return line;
}

std::string OneLine(TAPDefClass& record) {
    std::string line;
    if (record.kind != 1) line += "kind " + std::to_string(record.kind) + ";";
    if (record.dispatch != 0) line += "dispatch " + std::to_string(record.dispatch) + ";";
    for (int i = 1; i <= record.methods.Size(); ++i) line += OneLine(*record.methods[i]) + ";";
    for (int i = 1; i <= record.vars.Size(); ++i)
        line += "." + OneLine(*record.vars[i]) + " v" + std::to_string(record.vars[i]->visibility) + ";";
    return line;
}

TEST(ClassMembers, AreReadFromTheBody) {
    struct Row {
        const char* body;
        const char* members;
    };
    const Row rows[] = {
        {"void f1();protected:int g1();private: char* h1();public: Foo* k1();",
         "void f1();int g1() v1;char* h1() v2;Foo* k1();"},
        {"NUBDeclareKindOf;NUBDeclareInterface;", "kind 2;"},
        {"NUBDeclareInterface;NUBDeclareClass;", "kind 4;"},
        {"NUBDeclareClassX;friend void ff();friend int i1;\"text\";", ""},
        {"virtual void f1()=0;virtual void g1();static void h1();inline void k1();",
         "void f1() b13;void g1() b12;void h1() b11;void k1() i14;"},
        {"int f1(void);int g1(void*);int h1(int a = 3);int k1(unsigned int, Unknown u,char c[]);",
         "int f1();int g1(void* );int h1(int a);int k1(unsigned int ,?,?);"},
        {"int f1(){return 1;}int g1();", "int f1() i14;int g1();"},
        {"Foo();Foo(int);~Foo();", " Foo(); Foo(int ); ~Foo();"},
        {"int operator+(int);void deal(int n){}enum E1{a1,b1};class Inner{int i1;};int j1;",
         "void deal(int n) i14;.int j1 v0;"},
        {"int i1;private:Foo* p1;const Foo c1;int a1,b1;int k1 = 3;Unknown u1;Unknown2 i1;",
         ".int i1 v0;.Foo* p1 v2;.const Foo c1 v2;.int 3 v2;"},
        {"int size1;{char deep1;}size1 copy1;deep1 copy2;later1 copy3;int later1;this copy4;",
         ".int size1 v0;.int copy1 v0;.char copy2 v0;.int copy3 v0;.int later1 v0;"}};
    for (const Row& row : rows) {
        const LoadedText loaded("class Foo {" + std::string(row.body) + "};");
        TAPDefClass* record = loaded.table->GetClass("Foo");
        ASSERT_NE(record, nullptr) << row.body;
        EXPECT_EQ(OneLine(*record), row.members) << row.body;
    }
}

TEST(ClassMembers, BaseDispatchComesFromTheLineOfBases) {
    const LoadedText loaded("class A1 : public NUBBaseDispatch {int i1;};class B1 : public A1 {int i1;};"
                            "class C1 : public D1 {int i1;};");
    EXPECT_EQ(OneLine(*loaded.table->GetClass("B1")), "dispatch 20;.int i1 v0;");
    EXPECT_EQ(OneLine(*loaded.table->GetClass("C1")), ".int i1 v0;");
}

TEST(ClassMembers, LinesOfAnImplementation) {
    struct Row {
        const char* text;
        int lines;
    };
    const Row rows[] = {
        {"class Foo {int f1();};", 0},
        {"class Foo {int f1();};int Foo::f1(){aa1();bb1();cc1();}", 1},
        {"class Foo {int f1();};int Foo::f1()\n{\n  aa1();\n\n  // nothing\n  if(x1)\n  { bb1(1,\n2); }\n}\n"
         "int yy;\n",
         4},
        {"class Foo {int f1() {\naa1();\nbb1();}\nint g1;\nint h1;\n};", 2},
        {"class Foo {int f1();};int Foo::f1(){}", 1}};
    for (const Row& row : rows) {
        const LoadedText loaded(row.text);
        TAPDefMethod* method = loaded.table->GetClass("Foo")->GetMethod("f1");
        EXPECT_EQ(method->GetImpLine(), row.lines) << row.text;
        EXPECT_EQ(method->impLine, method->implPath != nullptr ? row.lines : -1) << row.text;
        EXPECT_EQ(loaded.table->GetSource(loaded.Path().c_str())->implMethods.Size(),
                  method->implPath != nullptr ? 1 : 0);
    }
}

} // namespace
