#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/LoadedText.h"
#include "support/SmallStack.h"

namespace {

std::string Keys(const TAIndex& index) {
    std::string line;
    for (int i = 0; i < index.size; ++i) line += (i == 0 ? "" : " ") + std::string(index.keys[i]);
    return line;
}

// What the scan has entered, without empty indexes.
std::string Entered(const TAPSymbolTable& table) {
    const std::pair<const char*, const TAIndex*> indexes[] = {
        {"types", &table.types},
        {"classNames", &table.classNames},
        {"interfaceNames", &table.interfaceNames},
        {"enumNames", &table.enumNames},
        {"typedefNames", &table.typedefNames},
        {"functions", &table.functions},
        {"classIndex", &table.classIndex},
    };
    std::string all;
    for (const auto& [name, index] : indexes)
        if (index->size > 0) all += (all.empty() ? "" : "; ") + std::string(name) + ": " + Keys(*index);
    return all;
}

struct Scan {
    const char* text;
    const char* entered;
};

TEST(DeclarationScan, EntersNames) {
    const Scan rows[] = {
        {"typedef unsigned int UINT;", "types: UINT; typedefNames: UINT"},
        {"enum Color {red, green};", "types: Color; enumNames: Color"},
        {"enum {red};", ""},
        {"class A {};", "types: A; classNames: A; classIndex: A"},
        {"class A {NUBDeclareInterface;};", "types: A; interfaceNames: A; classIndex: A"},
        {"class A; class A : public B {};", "types: A; classNames: A; classIndex: A"},
        {"class A_var {};", "types: A; classNames: A"},
        {"class _var {}; class _var;", ""},
        {"class A_var;", "types: A"},
        {"struct S {int a;}; union U {int a;}; int x;", ""},
        {"int f(); int g(int a, char b); void Class::h(); int k() {}", "functions: f g"},
        {"int *f(); x = f();", ""},
    };
    for (const Scan& row : rows) {
        SCOPED_TRACE(row.text);
        const LoadedText text(row.text);
        EXPECT_EQ(Entered(*text.table), row.entered);
    }
}

TEST(DeclarationScan, KeepsTheFirstClassAndTheLastFunction) {
    const LoadedText text("class A {int first();}; class A {int second();}; int f(int a); int f();");
    TAPDefClass* found = text.table->GetClass("A");
    ASSERT_EQ(found->methods.Size(), 1);
    EXPECT_STREQ(found->methods[1]->name, "first");
    EXPECT_EQ(text.table->GetSource(text.Path().c_str())->classes.Size(), 1);
    EXPECT_EQ(text.table->functions["f"], text.root->Child(text.root->ChildCount()));
}

// Each method as "name(types)", with the text of its implementation's head and " inline" where it is.
std::string Methods(TAPDefClass& found) {
    std::string all;
    for (int i = 1; i <= found.methods.Size(); ++i) {
        TAPDefMethod& method = *found.methods[i];
        all += (all.empty() ? "" : "; ") + std::string(method.name) + "(";
        for (int j = 1; j <= method.args.Size(); ++j)
            all += (j == 1 ? "" : ",") + std::string(method.args[j]->type);
        all += ")";
        if (method.implPath != nullptr)
            all += std::string(" = ") + method.symTab->GetSyntaxe(method.implPath)->GetContent();
        if (method.path == nullptr) all += " undeclared";
        if (method.inlined == 14) all += " inlined";
    }
    return all;
}

TEST(DeclarationScan, FindsTheDeclarationOfAnImplementation) {
    const Scan rows[] = {
        {"int f(char* b); int f(int a);}; int A::f(int c) {} class B {",
         "f(char*); f(int) = int A::f(int c)"},
        {"A(); int b;}; A::A() : b(1) {} class B {", "A() = A::A(): b(1)"},
        {"int* f();}; int* A::f() {} class B {", "f() = int* A::f()"},
        {"int f();}; int A::f(void) {} class B {", "f() = int A::f(void)"},
        {"int f();}; inline int A::f() {} class B {", "f() = inline int A::f() inlined"},
        {"int f(); int f(Odd o); int f(int a);}; int A::f(int a) {} class B {",
         "f(); f(?) = int A::f(int a); f(int)"}, // what can't be read agrees with anything
        {"int f(int a, int b); int f(int a, char b);}; int A::f(Odd o, char b) {} class B {",
         "f(int,int); f(int,char) = int A::f(Odd o,char b)"},
        {"int f(int a);}; int A::f() {} int A::f(int* a) {} class B {",
         "f(int); f() = int A::f() undeclared; f() = int A::f(int* a) undeclared"},
        {"int f();}; int f() {} int Other::f() {} class B {", "f()"},
    };
    for (const Scan& row : rows) {
        SCOPED_TRACE(row.text);
        const LoadedText text("class A {" + std::string(row.text) + "};");
        ASSERT_NE(text.table->GetClass("A"), nullptr);
        EXPECT_EQ(Methods(*text.table->GetClass("A")), row.entered);
    }
}

// Many overloads, each implementation judged by a walk over them from the first to the last.
TEST(DeclarationScan, FindsTheFirstOverloadThatAgrees) {
    const char* const types[] = {"int", "char", "long", "Odd"}; // the last one isn't known
    std::minstd_rand random(1);
    for (int round = 0; round < 20; ++round) {
        const auto list = [&](std::vector<std::string>& chosen) {
            for (std::string& type : chosen) type = types[random() % std::size(types)];
            return "(" + chosen[0] + " a," + chosen[1] + " b," + chosen[2] + " c)";
        };
        std::vector<std::vector<std::string>> declared(random() % 40 + 1, std::vector<std::string>(3));
        std::vector<std::string> heads(declared.size()); // of the last implementation of each
        std::string text = "class A {";
        for (auto& each : declared) text += "int f" + list(each) + ";";
        text += "};";
        for (int i = 0; i < 60; ++i) {
            std::vector<std::string> sought(3);
            const std::string head = "int A::f" + list(sought);
            text += head + "{}\n";
            const auto agrees = [&](const std::vector<std::string>& each) {
                for (std::size_t k = 0; k < 3; ++k)
                    if (each[k] != sought[k] && each[k] != "Odd" && sought[k] != "Odd") return false;
                return true;
            };
            const auto first = std::find_if(declared.begin(), declared.end(), agrees);
            if (first != declared.end()) heads[static_cast<std::size_t>(first - declared.begin())] = head;
        }
        const LoadedText loaded(text);
        const TAPDefClass& record = *loaded.table->GetClass("A");
        for (std::size_t i = 0; i < heads.size(); ++i) {
            TAPSyntaxePath* path = record.methods[static_cast<int>(i) + 1]->implPath;
            EXPECT_EQ(path != nullptr ? loaded.table->GetSyntaxe(path)->GetContent() : "", heads[i]) << text;
        }
    }
}

TEST(DeclarationScan, TiesInterfaces) {
    const LoadedText text("TIE_IA(C); TIE_IA(None); TIE_None(C); TIE_(C); TIE_IB(C); x = TIE_IA(C);"
                          "class C {}; class IA {NUBDeclareInterface;}; class IB {};");
    const NUBListPtrTAPDefClass& tied = text.table->GetClass("C")->tied;
    ASSERT_EQ(tied.Size(), 2);
    EXPECT_STREQ(tied[1]->name, "IB");
    EXPECT_STREQ(tied[2]->name, "IA");
    EXPECT_EQ(tied[2]->count, 3);
}

TEST(DeclarationScan, TiesInCirclesAndLinesEnd) {
    const Workspace files{{"m/s/a.cpp", "class A {}; class B {}; class C {}; class D {};"
                                        "TIE_B(A); TIE_D(A); TIE_A(A); TIE_D(C);"},
                          {"m/s/b.cpp", "TIE_A(B); TIE_C(B); TIE_B(C);"}};
    TAPSymbolTable table;
    table.LoadFile(files("m/s/a.cpp").c_str(), 1);
    table.LoadFile(files("m/s/b.cpp").c_str(), 1);
    TAPDefClass* kept = table.GetClass("A");
    kept->AddRef();
    table.UnLoadFile(files("m/s/a.cpp").c_str());
    ASSERT_EQ(kept->tied.Size(), 1);
    EXPECT_STREQ(kept->tied[1]->name, "D");
    EXPECT_EQ(kept->count, 1);
    kept->Release();

    constexpr int length = 20000; // from the first key to the last, as the classes go
    std::string line;
    for (int i = 0; i < length; ++i) line += "class K" + std::to_string(i + length) + " {};";
    for (int i = 1; i < length; ++i)
        line += "TIE_K" + std::to_string(i + length) + "(K" + std::to_string(i + length - 1) + ");";
    RunOnSmallStack([&line] { const LoadedText text(line); });
}

TEST(DeclarationScan, OfTypesAloneKeepsNoClass) {
    const Workspace files{
        {"fw/m/a.h", "class A {int f();}; enum E {e}; typedef int T; int A::f() {} int g();"}};
    auto* table = new TAPSymbolTable;
    EXPECT_EQ(table->LoadFile(files("fw/m/a.h").c_str(), 0), 0);
    EXPECT_EQ(Entered(*table), "types: A E T; classNames: A; enumNames: E; typedefNames: T");
    table->Release();
}

TEST(DeclarationScan, LoadsHeadersOfForwardClassesWhenTold) {
    const Workspace files{{"fw/PrivateInterfaces/A.h", "class A {}; enum FromA {a};"},
                          {"fw/PrivateInterfaces/B.h", "class B {}; enum FromB {b};"},
                          {"fw/m/src/c.cpp", "class A; class B_var; class C;"}};
    for (int lazy : {0, 1}) {
        auto* table = new TAPSymbolTable;
        table->lazyHeaders = lazy;
        EXPECT_EQ(table->LoadFile(files("fw/m/src/c.cpp").c_str(), 1), 0);
        EXPECT_EQ(Keys(table->types), lazy != 0 ? "A B C" : "A B C FromA FromB");
        EXPECT_EQ(Keys(table->GetSource(files("fw/m/src/c.cpp").c_str())->forwardClasses), "A B_var C");
        EXPECT_EQ(table->classIndex.size, 0);
        table->Release();
    }
}

enum Asked { Function, MethodBody, FunctionBody };

// "type or class|name|arguments", or nothing.
std::string Recognise(TAPSymbolTable& table, Asked asked, TAPSyntaxe* node) {
    NUBString first, name;
    TAPSyntaxe* args = nullptr;
    const int result = asked == Function     ? table.IsFunctionDeclaration(node, first, name, args)
                       : asked == MethodBody ? table.IsMethodImplementation(node, first, name, args)
                                             : table.IsFunctionImplementation(node, name, args);
    if (result == 0) return "";
    return std::string(first.View()) + "|" + name.CastToCharPtr() + "|" + (args ? args->GetContent() : "");
}

struct Recognised {
    Asked asked;
    const char* text;
    const char* signature;
};

const Recognised recognised[] = {
    {Function, "int f(int a, char b);", "int|f|int a,char b"},
    {Function, "Foo(int a);", "|Foo|int a"},
    {Function, "virtual Foo* f() = 0;", "Foo*|f|"},
    {Function, "inline const Foo& f(int a);", "const Foo&|f|int a"},
    {Function, "const Foo ExportedByX f();", "const Foo |f|"},
    {Function, "unsigned ExportedByX int f();", "unsigned int|f|"},
    {Function, "Bar f();", ""},
    {Function, "int a;", ""},
    {Function, "int my_operator(int a);", ""},
    {Function, "int operators(int a);", "int|operators|int a"},
    {MethodBody, "int A::f(int a) {}", "A|f|int a"},
    {MethodBody, "A::A() : b(1) {}", "A|A|"},
    {MethodBody, "const Foo& A::f() {}", "A|f|"},
    {MethodBody, "inline Foo* A::f(int a);", "A|f|int a"},
    {MethodBody, "int A::f();", ""},
    {FunctionBody, "int f(int a) {}", "|f|int a"},
    {FunctionBody, "Foo* f(Foo* p, int a) {}", "|f|Foo* p,int a"},
    {FunctionBody, "main() {}", "|main|"},
    {FunctionBody, "int f(a) {}", ""},
    {FunctionBody, "int A::f() {}", ""},
    {FunctionBody, "inline int f();", "|f|"},
    {FunctionBody, "int f(int a);", ""},
};

TEST(DeclarationScan, RecognisesByShape) {
    for (const Recognised& row : recognised) {
        SCOPED_TRACE(row.text);
        const LoadedText text("class Foo; " + std::string(row.text));
        EXPECT_EQ(Recognise(*text.table, row.asked, text.root->Child(2)), row.signature);
        EXPECT_EQ(Recognise(*text.table, row.asked, nullptr), "");
    }
}

} // namespace
