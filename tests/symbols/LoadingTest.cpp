#include <algorithm>
#include <cerrno>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <ostraka/symbols/TAPSymbolTable.h>

#include "support/SmallStack.h"
#include "support/Workspace.h"

namespace {

std::string Header(const std::string& name) {
    return "w/Fw/PublicInterfaces/" + name;
}

std::string BaseName(std::string_view path) {
    return std::string(path.substr(path.rfind('/') + 1));
}

std::string Keys(const TAIndex& index) {
    std::string line;
    for (int i = 0; i < index.size; ++i) line += (i == 0 ? "" : " ") + BaseName(index.keys[i]);
    return line;
}

// The names of the files of which the table tells, each with what it tells of it.
class Watcher final : public TACallbackSubscriber {
public:
    int ReceiveCallback(TACallbackPublisher*, int code, void* data1, void* data2) override {
        seen += BaseName(static_cast<TAPSourceFile*>(data1)->name.View());
        seen += code == 1 && data2 != nullptr ? " " : "? ";
        return 0;
    }
    std::string seen;
};

class Loading : public testing::Test {
protected:
    int Load(const std::string& path, int full = 1) { return table.LoadFile(files(path).c_str(), full); }
    int UnLoad(const std::string& path) { return table.UnLoadFile(files(path).c_str()); }
    TAPDefSource* Source(const std::string& path) const { return table.GetSource(files(path).c_str()); }
    std::string Includes(const std::string& path) const {
        const NUBListPtrTAPDefSource& list = Source(path)->includes;
        std::string line;
        for (int i = 1; i <= list.Size(); ++i) line += BaseName(list[i]->name.View()) + " ";
        return line;
    }

    Workspace files;
    TAPSymbolTable table;
};

TEST_F(Loading, HeadersComeFirstAndFromTheLastName) {
    files.Write(Header("a.h"), "#include \"b.h\"\nclass A : public B {B* b1;};");
    files.Write(Header("b.h"), "#include \"a.h\"\n#include \"c.h\"\n#include \"b.h\"\nclass B {};");
    files.Write(Header("c.h"), "class C {};");
    files.Write("x.cpp", "#include \"a.h\"\n#include \"c.h\"\n#include \"none.h\"\n\nA* a1;\n");
    table.SetConcatenation(files("w").c_str());
    Watcher watcher;
    table.AddSubscriber(&watcher);
    EXPECT_EQ(Load("x.cpp"), 0);
    EXPECT_EQ(watcher.seen, "x.cpp c.h a.h b.h ");
    EXPECT_EQ(Load("x.cpp"), 0);
    EXPECT_EQ(table.LoadFile(new TAFileBuffer(files("x.cpp").c_str(), 0), 1), 0);
    EXPECT_EQ(watcher.seen, "x.cpp c.h a.h b.h ");
    EXPECT_EQ(Includes("x.cpp"), "c.h a.h ");
    EXPECT_EQ(Includes(Header("b.h")), "c.h b.h a.h ");
    EXPECT_EQ(Source("x.cpp")->GetNbLine(), 5);
    EXPECT_EQ(Source("x.cpp")->GetNbCodeLine(), 2);
    EXPECT_EQ(table.GetClass("A")->vars.Size(), 1);

    // What is unloaded is nowhere listed, and the rest stays.
    EXPECT_EQ(UnLoad(Header("b.h")), 0);
    EXPECT_EQ(UnLoad(Header("b.h")), 1);
    EXPECT_EQ(Includes(Header("a.h")), "");
    EXPECT_EQ(Keys(table.classIndex), "A C");
    EXPECT_EQ(table.types.IsIn("B") >= 0, true);
    table.RemoveSubscriber(&watcher);
}

TEST_F(Loading, ScanOnlyLeavesTypesAndALightTree) {
    files.Write("a.cpp", "class A {};enum E {e1};int f();");
    EXPECT_EQ(Load("a.cpp", 0), 0);
    EXPECT_EQ(Keys(table.types), "A E");
    EXPECT_EQ(Keys(table.sources) + Keys(table.classIndex) + Keys(table.functions), "");
    EXPECT_EQ(Keys(table.scannedFiles) + " " + Keys(table.trees), "a.cpp a.cpp");
    table.types.Reset();
    EXPECT_EQ(Load("a.cpp", 0), 0);
    EXPECT_EQ(table.types.size, 0);

    // A full load takes the tree that is there.
    void* const light = table.trees[files("a.cpp").c_str()];
    EXPECT_EQ(UnLoad("a.cpp"), 1);
    EXPECT_EQ(Load("a.cpp"), 0);
    EXPECT_EQ(Source("a.cpp")->GetSyntaxe(), light);
    EXPECT_EQ(Keys(table.classIndex) + " " + Keys(table.functions), "A f");
    EXPECT_EQ(UnLoad("a.cpp"), 0);
    EXPECT_EQ(Keys(table.trees) + Keys(table.functions) + Keys(table.sources), "");
}

TEST_F(Loading, FailuresAreToldAndLeaveTheRest) {
    struct Row {
        const char* text;
        int result;
        std::string error;
        TAPFailureCode code;
        int col;
    };
    // The first is told on standard error.
    const Row rows[] = {{"x = NUBLISTV(Foo; int a;", 2, "", SFAIL_Word, 6},
                        {"int a; f(;", 3, "Missing Instruction end for Instruction starting line 1 col 9",
                         SFAIL_Instruction, 9}};
    EXPECT_EQ(table.GetErrMsg(), "SymboleTable: ");
    EXPECT_EQ(table.LoadFile(static_cast<TAFileBuffer*>(nullptr), 1), 1);
    for (const Row& row : rows) {
        files.Write(Header("bad.h"), row.text);
        files.Write("x.cpp", "#include \"bad.h\"\nclass X {};");
        table.SetConcatenation(files("w").c_str());
        EXPECT_EQ(Load(Header("bad.h"), 0), row.result) << row.text;
        EXPECT_EQ(table.sources.size, 0);
        EXPECT_EQ(Load("x.cpp"), 0) << row.text;
        EXPECT_EQ(table.GetErrMsg().View(), "SymboleTable: " + row.error);
        EXPECT_EQ(Includes("x.cpp"), "bad.h ");
        EXPECT_EQ(Source(Header("bad.h"))->failure.code, row.code) << row.text;
        EXPECT_EQ(Source(Header("bad.h"))->failure.point.col, row.col) << row.text;
        EXPECT_EQ(Source("x.cpp")->failure.code, SFAIL_None);
        EXPECT_EQ(Load(Header("bad.h")), 0) << "a failed file counts as loaded";
        EXPECT_EQ(table.LightLoadFile(files(Header("bad.h")).c_str()), row.result) << row.text;
        EXPECT_EQ(Keys(table.classIndex) + " " + Keys(table.trees), "X x.cpp") << row.text;
        EXPECT_EQ(UnLoad(Header("bad.h")), 0);
        EXPECT_EQ(Load(Header("bad.h")), row.result) << row.text;
        table.UnLoadAllFiles();
    }
    for (const char* unreadable : {"gone.cpp", "w"}) {
        EXPECT_EQ(Load(unreadable), 0) << "an unreadable file is an empty one";
        EXPECT_EQ(Source(unreadable)->GetNbLine(), 0);
        EXPECT_EQ(Source(unreadable)->failure.code, SFAIL_Unreadable);
        EXPECT_EQ(Source(unreadable)->failure.systemError, unreadable[0] == 'w' ? EISDIR : ENOENT);
    }
}

// What stands in a header is found in whatever order files are loaded, once endings decide what they are.
TEST_F(Loading, EndingsMakeTheOrderOfFilesEqual) {
    std::vector<std::string> paths = {Header("a.idl"),
                                      Header("t.h"),
                                      Header("u.h"),
                                      "w/Fw/PrivateInterfaces/p.hpp",
                                      "w/Fw/PrivateInterfaces/s.IDL",
                                      "w/Fw/Mod.m/src/x.cpp"};
    files.Write(paths[0], "#include \"t.h\"\ninterface IA {}; class NoIdl {};");
    files.Write(paths[1], "#include \"u.h\"\nclass T {}; interface IT {};");
    files.Write(paths[2], "#include \"t.h\"\nclass U {}; interface IU {};");
    files.Write(paths[3], "#include \"q.hxx\"\nclass P {}; interface INotAsked {};");
    files.Write("w/Fw/PrivateInterfaces/q.hxx", "#include \"r\"\nclass Q {};");
    files.Write("w/Fw/PrivateInterfaces/r", "class R {};");
    files.Write(paths[4], "#include \"q.hxx\"\ninterface IS {};");
    files.Write(paths[5], "#include \"p.hpp\"\n#include \"s.IDL\"\n#include \"a.idl\"\nclass X {};");
    table.SetConcatenation(files("w").c_str());
    const auto loadAll = [&] {
        for (const std::string& path : paths)
            TAPSymbolTable::EndsAsIdl(path.c_str()) ? table.LoadIdlFile(files(path).c_str(), 1) : Load(path);
        const std::string classes = Keys(table.classIndex);
        table.UnLoadAllFiles();
        return classes;
    };
    EXPECT_EQ(loadAll(), "IA IS IT IU P X") << "who includes a header first decides";
    std::swap(paths[0], paths[2]);
    EXPECT_EQ(loadAll(), "IA IS P T U X");
    std::swap(paths[0], paths[5]);
    EXPECT_EQ(loadAll(), "IA INotAsked IS IT IU X");
    table.headersByEnding = true;
    std::sort(paths.begin(), paths.end());
    do {
        ASSERT_EQ(loadAll(), "IA IS IT IU P Q R T U X") << testing::PrintToString(paths);
    } while (std::next_permutation(paths.begin(), paths.end()));
}

TEST_F(Loading, PathsBringTheirTreeBack) {
    files.Write("a.cpp", "int a; void f() { int inner; }");
    Load("a.cpp");
    auto* root = static_cast<TAPSyntaxe*>(table.trees[files("a.cpp").c_str()]);
    auto* path = new TAPSyntaxePath(root->Child(3)->Child(1));
    UnLoad("a.cpp");
    TAPSyntaxe* inner = table.GetSyntaxe(path);
    ASSERT_NE(inner, nullptr);
    EXPECT_STREQ(inner->GetContent(), "int inner");
    files.Remove("a.cpp");
    EXPECT_EQ(table.GetSyntaxe(path), inner);
    EXPECT_EQ(table.GetSyntaxe(nullptr), nullptr);

    table.UnLoadAllFiles();
    EXPECT_EQ(table.GetSyntaxe(path), nullptr);
    EXPECT_EQ(table.GetErrMsg(), "SymboleTable: Problem while loading a file in light mode");
    files.Write("a.cpp", "");
    EXPECT_EQ(table.GetSyntaxe(path), nullptr);
    EXPECT_EQ(table.trees.size, 1) << "an empty file has a tree";
    EXPECT_DEATH(table.LightLoadFile(files("a.cpp").c_str()), "LightLoadFile, file already loaded");
    path->Release();
}

// Searches find what the system has at that moment, though folders are remembered.
TEST_F(Loading, FindsHeadersThatAreMadeMeanwhile) {
    class Maker final : public TACallbackSubscriber {
    public:
        explicit Maker(const Workspace& workspace) : files(workspace) {}
        int ReceiveCallback(TACallbackPublisher*, int, void* data1, void*) override {
            if (BaseName(static_cast<TAPSourceFile*>(data1)->name.View()) == cue) files.Write(made, "");
            return 0;
        }
        const Workspace& files;
        const std::string made = "w/Fw/Mod.m/LocalGenerated/unix_a/made.h";
        std::string cue;
    } maker(files);
    const std::string source = "w/Fw/Mod.m/src/x.cpp";
    files.Write(source, "#include \"b.h\"\n#include \"made.h\"\n#include <none.h>");
    files.Write("w/Fw/Mod.m/LocalInterfaces/b.h", "#include \"c.h\"\n#include \"made.h\"");
    files.Write("w/Fw/Mod.m/LocalInterfaces/c.h", "");
    const auto includes = [&] {
        files.Remove("w/Fw/Mod.m/LocalGenerated");
        EXPECT_EQ(Load(source), 0);
        const std::string found = Includes(source) + "| " + Includes("w/Fw/Mod.m/LocalInterfaces/b.h");
        table.UnLoadAllFiles();
        return found;
    };
    EXPECT_EQ(includes(), "b.h | c.h ");
    table.AddSubscriber(&maker);
    struct Row {
        const char *cue, *includes;
    };
    for (const Row& row : {Row{"x.cpp", "made.h b.h | made.h c.h "}, Row{"b.h", "made.h b.h | made.h c.h "},
                           Row{"c.h", "b.h | c.h "}, Row{"", "b.h | c.h "}}) {
        maker.cue = row.cue;
        EXPECT_EQ(includes(), row.includes) << row.cue;
    }
    maker.cue = "b.h";
    table.RememberFolders(true);
    EXPECT_EQ(Load(source), 0);
    EXPECT_EQ(Includes(source), "b.h ") << "until it is told to forget";
    EXPECT_EQ(table.SearchHeaderFile(files(source).c_str(), "made.h").IsNull(), 1);
    table.RememberFolders(false);
    EXPECT_EQ(table.SearchHeaderFile(files(source).c_str(), "made.h").IsNull(), 0);
}

TEST_F(Loading, UnLoadAllFilesAndLoadAgainGiveTheSame) {
    files.Write(Header("a.h"), "#define KEY 1\nclass A {};typedef int T;");
    files.Write("x.cpp", "#include \"a.h\"\nint f();enum E {e1};");
    table.SetConcatenation(files("w").c_str());
    const auto everything = [this] {
        std::string line;
        for (const TAIndex* index :
             {&table.headers, &table.functions, &table.types, &table.macros, &table.classNames,
              &table.enumNames, &table.typedefNames, &table.trees, &table.sources, &table.classIndex})
            line += Keys(*index) + "|";
        return line;
    };
    Load("x.cpp");
    EXPECT_EQ(everything(), "a.h|f|A E T|KEY|A|E|T|a.h x.cpp|a.h x.cpp|A|");
    TAPDefSource* kept = Source("x.cpp");
    kept->AddRef();
    table.UnLoadAllFiles();
    EXPECT_EQ(kept->includes.Size(), 0);
    kept->Release();
    EXPECT_EQ(everything(), "a.h||||||||||");
    Load("x.cpp");
    EXPECT_EQ(everything(), "a.h|f|A E T|KEY|A|E|T|a.h x.cpp|a.h x.cpp|A|");
    EXPECT_EQ(table.keywords.size, 18);
    EXPECT_EQ(table.basicTypes.size, 19);
}

TEST_F(Loading, DroppedTreesLeaveTheRecords) {
    files.Write(Header("a.h"), "class A {int m; void f(int p);};interface I {};int free();");
    files.Write("x.cpp", "#include \"a.h\"\nvoid A::f(int p) {int v;}int other();int free();");
    files.Write("i.idl", "#include \"a.h\"");
    table.SetConcatenation(files("w").c_str());
    const auto records = [this] {
        std::string line = Keys(table.functions) + "|" + Keys(table.types) + "|" + Keys(table.sources) + "|" +
                           Keys(table.classIndex) + "|" + Includes("x.cpp");
        if (const TAPDefClass* cls = table.GetClass("A"))
            line += std::string(cls->methods[1]->name) + cls->methods[1]->args[1]->type + cls->vars[1]->name;
        return line;
    };
    const auto content = [](TAPSyntaxe* node) {
        return std::string(node != nullptr ? node->GetContent() : "");
    };
    Load("x.cpp");
    const std::string before = records();
    EXPECT_EQ(before, "free other|A|a.h x.cpp|A|a.h fintm");
    for (const std::string& file : {Header("a.h"), std::string("x.cpp"), Header("a.h")}) {
        EXPECT_EQ(table.DropTree(files(file).c_str()), 0);
        EXPECT_EQ(table.DropTree(files(file).c_str()), 1) << file;
        EXPECT_EQ(Load(file), 0);
        EXPECT_EQ(records(), before) << file;
        EXPECT_FALSE(table.trees.Holds(files(file).c_str())) << "it counts as loaded";
        EXPECT_EQ(content(table.GetClass("A")->vars[1]->GetDefinition()), "int m");
        EXPECT_EQ(content(table.GetClass("A")->GetMethod("f")->GetSyntaxe()), "void f(int p)");
        EXPECT_EQ(content(table.GetFunctionDeclarationLocation("free")), "int free()");
        EXPECT_EQ(content(table.GetFunctionDeclarationLocation("other")), "int other()");
        EXPECT_EQ(Keys(table.trees), "a.h x.cpp");
    }
    table.DropTrees();
    EXPECT_EQ(records() + Keys(table.trees), before);

    table.headersByEnding = true;
    table.LoadIdlFile(files("i.idl").c_str(), 1);
    EXPECT_EQ(Keys(table.classIndex), "A I") << "a dropped header is read for its interfaces";
    table.DropTrees();
    files.Remove("x.cpp");
    EXPECT_EQ(content(table.GetFunctionDeclarationLocation("other")), "");
    EXPECT_EQ(UnLoad("x.cpp"), 0);
    EXPECT_EQ(Keys(table.functions) + "|" + Keys(table.trees), "free|") << "nothing is read to be unloaded";
    EXPECT_EQ(UnLoad(Header("a.h")), 0);
    EXPECT_EQ(Keys(table.functions) + Keys(table.trees) + Keys(table.classIndex), "");
    EXPECT_EQ(table.GetFunctionDeclarationLocation("free"), nullptr);
}

TEST_F(Loading, ClassNamesByKind) {
    files.Write("a.cpp", "class C {};class B {NUBDeclareInterface;};class A {NUBDeclareClass;};");
    Load("a.cpp");
    NUBListValNUBString names;
    table.GetClassNames(names, 1);
    ASSERT_EQ(names.Size(), 1);
    EXPECT_EQ(names[1], "C");
    table.GetClassNames(names, 6);
    ASSERT_EQ(names.Size(), 2);
    EXPECT_EQ(names[1], "A");
    EXPECT_EQ(names[2], "B");
}

// A subscriber that takes away what is being loaded leaves nothing behind, and nothing dangles.
TEST_F(Loading, SubscribersMayUnload) {
    class Unloader final : public TACallbackSubscriber {
    public:
        explicit Unloader(TAPSymbolTable& ofTable) : table(ofTable) {}
        int ReceiveCallback(TACallbackPublisher*, int, void*, void*) override {
            table.UnLoadAllFiles();
            return 0;
        }
        TAPSymbolTable& table;
    } unloader(table);
    files.Write(Header("a.h"), "class A {};");
    files.Write("x.cpp", "#include \"a.h\"\nclass X {void f();}; void X::f() {}");
    table.SetConcatenation(files("w").c_str());
    table.AddSubscriber(&unloader);
    EXPECT_EQ(Load("x.cpp"), 0);
    EXPECT_EQ(Source("x.cpp"), nullptr);
    EXPECT_EQ(table.GetClass("X")->source, nullptr);
}

TEST(LoadingChain, NeedsNoMachineStack) {
    const Workspace files;
    for (int i = 0; i < 10000; ++i)
        files.Write(Header("h" + std::to_string(i) + ".h"),
                    "#include \"h" + std::to_string(i + 1) + ".h\"\nclass C" + std::to_string(i) + " {};");
    RunOnSmallStack(
        [&] {
            TAPSymbolTable table;
            table.SetConcatenation(files("w").c_str());
            EXPECT_EQ(table.LoadFile(files(Header("h0.h")).c_str(), 1), 0);
            EXPECT_EQ(table.classIndex.size, 10000);
        },
        256 << 10);
}

TEST(TAPSymbolTableDeathTest, NeedsItsVariable) {
    EXPECT_EXIT((unsetenv("QxqxOS_VAR"), TAPSymbolTable()), testing::ExitedWithCode(1), "^$");
}

} // namespace
