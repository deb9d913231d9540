#include <string>

#include <gtest/gtest.h>

#include "support/LoadedText.h"

namespace {

std::string Keys(const TAIndex& index) {
    std::string line;
    for (int i = 0; i < index.size; ++i) line += (i == 0 ? "" : " ") + std::string(index.keys[i]);
    return line;
}

// Types, names of interfaces and classes; then each method with its arguments, which tell their direction.
std::string Summary(const TAPSymbolTable& table, const TAPDefSource& source) {
    std::string line = Keys(table.types) + "|" + Keys(table.interfaceNames) + "|" + Keys(table.classIndex) +
                       "|" + Keys(source.forwardClasses) + "|";
    for (int i = 1; i <= source.classes.Size(); ++i) {
        const TAPDefClass& cls = *source.classes[i];
        line += std::string(cls.name) + ":" + (cls.parent != nullptr ? cls.parent : "") + " " +
                std::to_string(cls.kind) + (cls.dispatch != 0 ? "+" + std::to_string(cls.dispatch) : "");
        for (int j = 1; j <= cls.methods.Size(); ++j) {
            const TAPDefMethod& method = *cls.methods[j];
            line += std::string(" ") + method.returnedType + " " + method.name + "(";
            for (int k = 1; k <= method.args.Size(); ++k)
                line += std::to_string(method.args[k]->direction) + " " + method.args[k]->type + " " +
                        method.args[k]->name + ";";
            line += ")";
            EXPECT_EQ(method.binding, TAPDefMethod::PureVirtual);
            EXPECT_EQ(method.visibility, TAPDefEntity::Public);
        }
        line += ";";
    }
    for (const RefusedArgument& refused : source.refusedArguments)
        line += " refused " + std::to_string(refused.point.line) + ":" + std::to_string(refused.point.col) +
                (refused.cause == RefusedArgument::Cause::NoDirection ? " begins " : " needs ") +
                std::string(refused.text.View()) + ";";
    return line;
}

TEST(Idl, InterfacesWithTheirMethods) {
    struct Row {
        const char* text;
        const char* expected;
        const char* refused;
    };
    const Row rows[] = {
        {"interface IFoo: IBar { HRESULT Get(in long iX, out long oY); };",
         "IFoo|IFoo|IFoo||IFoo:IBar 2 HRESULT Get(100 long& iX;101 long*& oY;);", ""},
        {"interface IFoo; typedef long Size; enum Color { red };", "Color IFoo Size|IFoo||IFoo|", ""},
        {"interface IFoo { void Put(inout unsigned long ioX); void Ask(out IFoo* oResult); void Go(); };",
         "IFoo|IFoo|IFoo||IFoo: 2 void Put(102 unsigned long& ioX;) void Ask(101 IFoo **& oResult;) void "
         "Go();",
         ""},
        {"interface IFoo_var; interface IBar_var {}; interface _var; interface _var {};",
         "IBar IFoo|IBar IFoo||IFoo_var _var|", ""},
        {"interface IFoo {}; interface IFoo { void f(); }; class Foo { void f(); }; int g();",
         "IFoo|IFoo|IFoo||IFoo: 2;", ""},
        {"interface IDispatch: NUBBaseDispatch {}; interface IDispatch {}; interface IA: IDispatch {};",
         "IA IDispatch|IA IDispatch|IA IDispatch||IDispatch:NUBBaseDispatch 2+20;IDispatch: 2;IA:IDispatch "
         "2;",
         ""},
        {"interface IBase: NUBBaseDispatch {}; interface IFoo: IBase { long value; };",
         "IBase IFoo|IBase IFoo|IBase IFoo||IBase:NUBBaseDispatch 2+20;IFoo:IBase 2+20;", ""},
        {"interface IFoo { void f(in long iA, long iX, in long iB);\n  void g(byval long iX); };",
         "IFoo|IFoo|IFoo||IFoo: 2 void f(100 long& iA;) void g(); refused 1:38 needs long iX; refused 2:11 "
         "begins "
         "byval long iX;",
         "error: an IDL argument needs a direction, a type and a name: long iX \n"
         "error: an IDL argument has to begin with in, out or inout: byval long iX \n"},
    };
    for (const Row& row : rows) {
        const Workspace files{{"a.idl", row.text}};
        TAPSymbolTable table;
        testing::internal::CaptureStderr();
        EXPECT_EQ(table.LoadIdlFile(files("a.idl").c_str(), 1), 0);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), row.refused) << row.text;
        EXPECT_EQ(Summary(table, *table.GetSource(files("a.idl").c_str())), row.expected) << row.text;
    }
}

TEST(Idl, ScanOnlyKeepsNames) {
    const Workspace files{{"a.idl", "interface IDispatch { void f(); };"},
                          {"b.idl", "interface IDispatch {}; interface IFoo {};"}};
    TAPSymbolTable table;
    EXPECT_EQ(table.LoadIdlFile(files("a.idl").c_str(), 1), 0);
    EXPECT_EQ(table.LoadIdlFile(files("b.idl").c_str(), 0), 0);
    EXPECT_EQ(table.LoadIdlFile(files("b.idl").c_str(), 0), 0);
    EXPECT_EQ(Keys(table.interfaceNames) + "|" + Keys(table.classIndex), "IDispatch IFoo|");
    EXPECT_EQ(table.LoadIdlFile(static_cast<TAFileBuffer*>(nullptr), 1), 1);
    EXPECT_EQ(table.SearchIdlDeclarations(nullptr, nullptr, 1), 0);
}

TEST(Idl, IncludesAreIdlAndStandTwiceOnceLoaded) {
    const Workspace files{{"w/Fw/PublicInterfaces/a.h", "interface IA {};class C {};"},
                          {"w/Fw/PublicInterfaces/b.idl", "interface IB {};"},
                          {"x.idl", "#include \"a.h\"\n#include \"b.h\"\ninterface IX: IA {};"}};
    TAPSymbolTable table;
    table.SetConcatenation(files("w").c_str());
    table.LoadIdlFile(files("w/Fw/PublicInterfaces/b.idl").c_str(), 1);
    EXPECT_EQ(table.LoadIdlFile(files("x.idl").c_str(), 1), 0);
    EXPECT_EQ(Keys(table.classIndex), "IA IB IX");
    const TAPDefSource* source = table.GetSource(files("x.idl").c_str());
    std::string kinds;
    for (int i = 1; i <= source->includes.Size(); ++i) kinds += std::to_string(source->includes[i]->fileKind);
    EXPECT_EQ(kinds, "441");
    table.UnLoadFile(files("w/Fw/PublicInterfaces/b.idl").c_str());
    EXPECT_EQ(source->includes.Size(), 1);
}

TEST(Idl, TypesOfArguments) {
    struct Row {
        const char* argument;
        int recognised;
        const char* type;
        const char* name;
    };
    const Row rows[] = {{"long* p = 0", 1, "long*", "p"},
                        {"long& r", 1, "long&", "r"},
                        {"long", 1, "long", "before"},
                        {"long n", 1, "long", "before"},
                        {"Foo n", 0, "Foo", "before"}};
    for (const Row& row : rows) {
        const LoadedText loaded("void f(" + std::string(row.argument) + ");");
        TAPSyntaxe* argument =
            loaded.root->Navigate(SNAV_Child, 1, SNAV_Child, 1, SNAV_Child, 2, SNAV_Child, 1, 0);
        NUBString type, name("before");
        int untouched = 7;
        EXPECT_EQ(loaded.table->GetIdlArgType(argument, type, name, untouched), row.recognised)
            << row.argument;
        EXPECT_EQ(type, row.type);
        EXPECT_EQ(name, row.name);
        EXPECT_EQ(untouched, 7);
    }
}

} // namespace
