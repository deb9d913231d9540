#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "support/LoadedText.h"

namespace {

TEST(TAPDefSource, ClassifiesItsPath) {
    struct Row {
        const char* path;
        int fileKind, interfaceKind;
    };
    const Row rows[] = {
        {"/w/Fw/PublicInterfaces/a.h", 1, 11},
        {"/w/Fw/ProtectedInterfaces/a.idl", 4, 12},
        {"/w/Fw/PrivateInterfaces/a.c", 3, 13},
        {"/w/Fw/LocalInterfaces/a.cpp", 2, 14},
        {"/w/Fw/PublicGenerated/os/a.h", 1, 11},
        {"/w/Fw/ProtectedGenerated/os/a.h", 1, 12},
        {"/w/Fw/PrivateGenerated/os/a.h", 1, 13},
        {"/w/Fw/LocalGenerated/os/a.h", 1, 15},
        {"/w/PublicInterfaces/LocalInterfaces/a.H", 0, 11},
        {"/w/PrivateGenerated/PublicInterfaces/a.tar.h", 1, 13},
        {"PublicInterfaces/a.hpp", 0, 15},
        {"/w/Mod.m/src/makefile", 0, 15},
        {"", 0, 15},
    };
    for (const Row& row : rows) {
        const TAPDefSource source(row.path, nullptr, nullptr);
        EXPECT_EQ(source.fileKind, row.fileKind) << row.path;
        EXPECT_EQ(source.interfaceKind, row.interfaceKind) << row.path;
        EXPECT_STREQ(source.framework, "NotInAframework") << row.path;
        EXPECT_EQ(source.GetNbLine(), -1) << row.path;
        EXPECT_EQ(source.GetNbCodeLine(), -1) << row.path;
    }
}

TEST(TAPDefSource, BelongsToTheNearestFramework) {
    const Workspace files{{"FwA/IdentityCard/card.txt", ""},
                          {"FwA/Mod.m/src/a.cpp", ""},
                          {"FwA/Inner/IdentityCard/card.txt", ""},
                          {"FwB/IdentityCard", "a file is no card"}};
    const auto frameworkOf = [&files](const char* path) {
        return TAPDefSource(files(path).c_str(), nullptr, nullptr).framework;
    };
    EXPECT_STREQ(frameworkOf("FwA/Mod.m/src/a.cpp"), "FwA");
    EXPECT_EQ(frameworkOf("FwA/Mod.m/src/a.cpp"), frameworkOf("FwA/gone.h"));
    EXPECT_STREQ(frameworkOf("FwA/Inner/a.h"), "Inner");
    EXPECT_STREQ(frameworkOf("FwB/a.h"), "NotInAframework");
}

TEST(TAPDefEntity, SharesAndReplacesItsPath) {
    const LoadedText loaded("int first; int second;");
    TAPSymbolTable* table = loaded.table;
    TAPSyntaxe *root = loaded.root, *first = root->Child(1), *second = root->Child(2);
    TAPDefSource* source = table->GetSource(loaded.Path().c_str());

    TAPDefVar var(second, nullptr, "int", table);
    EXPECT_EQ(var.GetDefinition(), second);
    EXPECT_EQ(var.name, nullptr);
    var.SetSyntaxePath(var.GetSyntaxePath());
    EXPECT_EQ(var.path->count, 1);
    var.SetSyntaxePath(source->path);
    EXPECT_EQ(var.GetSyntaxe(), root);
    EXPECT_EQ(source->path->count, 2);
    var.SetSyntaxe(nullptr);
    EXPECT_EQ(var.GetSyntaxe(), nullptr);
    EXPECT_EQ(source->path->count, 1);

    TAPDefMethod method(nullptr, first, "m", nullptr, table);
    EXPECT_EQ(method.GetSyntaxe(), nullptr);
    EXPECT_EQ(table->GetSyntaxe(method.GetImplementationPath()), first);
    method.SetImplementation(second);
    EXPECT_EQ(table->GetSyntaxe(method.GetImplementationPath()), second);
    method.SetImplementationPath(nullptr);
    EXPECT_EQ(method.GetImplementationPath(), nullptr);

    TAPDefEntity bare;
    TAPDefClass cls(nullptr, nullptr, nullptr, table);
    EXPECT_EQ(bare.GetSyntaxe(), nullptr);
    EXPECT_STREQ(cls.name, "");
    TAPDefEntity* const kinds[] = {&bare, &cls, &method, source, &var};
    for (int i = 0; i < 5; ++i) EXPECT_EQ(kinds[i]->GetDefKind(), i);
}

TEST(TAPDefClass, FindsMethodsInTheLineOfBases) {
    const LoadedText loaded("class Base: public Loop {void f(); void g();};"
                            "class Derived: public First, public Base {void f(); void f(int a, Odd b);};"
                            "class Loop: public Base {};");
    const TAPDefClass* derived = loaded.table->GetClass("Derived");
    EXPECT_STREQ(derived->GetParent(), "Base");
    TAPDefMethod* last = derived->GetMethod("f");
    const std::unique_ptr<NUBListValNUBString> types(last->GetArgTypes());
    ASSERT_EQ(types->Size(), 2);
    EXPECT_EQ((*types)[1], "int");
    EXPECT_EQ((*types)[2], "?");
    EXPECT_EQ(derived->GetMethod("g"), nullptr);
    EXPECT_EQ(derived->GetMethodAll("f"), last);
    EXPECT_EQ(derived->GetMethodAll("g"), loaded.table->GetClass("Base")->GetMethod("g"));
    EXPECT_EQ(derived->GetMethodAll("h"), nullptr);
}

// Whoever keeps a record still finds its names and nodes when its file has been unloaded, and nothing that
// has gone.
TEST(Records, OutliveTheirFile) {
    const Workspace files{{"w/Fw/PublicInterfaces/a.h", "class Foo: public Bar {void f();};"},
                          {"w/Fw/Mod.m/src/a.cpp", "#include \"a.h\"\nvoid Foo::f() {}"}};
    const std::string header = files("w/Fw/PublicInterfaces/a.h"), code = files("w/Fw/Mod.m/src/a.cpp");
    TAPSymbolTable table;
    table.SetConcatenation(files("w").c_str());
    table.LoadFile(code.c_str(), 1);
    TAPDefClass* cls = table.GetClass("Foo");
    TAPDefMethod* method = cls->methods[1];
    EXPECT_EQ(cls->count, 2);
    EXPECT_EQ(method->count, 2);
    auto* other = new TAPDefSource("other.h", nullptr, &table);
    other->AddDefClass(nullptr);
    other->AddDefClass(cls);
    other->Release();
    EXPECT_NE(cls->source, nullptr) << "it belongs to who declares it";
    cls->AddRef();
    EXPECT_EQ(table.UnLoadFile(header.c_str()), 0);
    EXPECT_EQ(cls->source, nullptr);
    EXPECT_STREQ(cls->name, "Foo");
    EXPECT_STREQ(cls->parent, "Bar");
    EXPECT_EQ(cls->GetDeclarationLocation()->StartWith("class Foo"), 1);
    cls->Release();
    EXPECT_EQ(method->count, 1);
    EXPECT_EQ(method->defClass, nullptr);
    EXPECT_EQ(table.GetSource(code.c_str())->implMethods[1], method);
    EXPECT_EQ(table.GetSource(code.c_str())->includes.Size(), 0);
}

} // namespace
