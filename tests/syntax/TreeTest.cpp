#include <string>

#include <gtest/gtest.h>

#include <ostraka/syntax/TAPListOfArgs.h>

#include "support/Source.h"

namespace {

struct TreeRow {
    const char* source;
    const char* tree; // children of the root
};

std::string TreeOf(Source& source) {
    const std::string line = OneLine(source.Build());
    return line == "file" ? "" : line.substr(5, line.size() - 6);
}

// A head keeps the rows' texts away from position 0, where nothing can be found.
void Expect(std::initializer_list<TreeRow> rows, const std::string& head = "",
            const std::string& headTree = "") {
    for (const TreeRow& row : rows) {
        Source source(head + row.source);
        EXPECT_EQ(TreeOf(source), headTree + row.tree) << row.source;
        EXPECT_EQ(source.buildResult, 0) << row.source << ": " << TAPSyntaxe::ErrMsg.CastToCharPtr();
    }
}

TEST(Tree, CutsBlocksAndInstructions) {
    Expect({
        {"", ""},
        {"  \n ", ""},
        {"xy;x;;", "inst(id(xy))"},
        {"ab", ""},
        {"abc", "inst(id(abc))"},
        {"foo(a, b);", "inst(mt(id(foo) args(id(a) id(b))))"},
        {"int a[] = {1, 2};", "decl(=(in(dc(id(int) id(a))) ?)) bloc(inst(,(id(1) id(2))))"},
        {"class A {public:int x;};", "decl(A) bloc(inst(:(id(public) ?)) inst(dc(id(int) id(x))))"},
        {"void f() { NUBTry g(); NUBEndTry }",
         "decl(mt(dc(id(void) id(f)))) bloc(inst(id(NUBTry)) inst(mt(id(g))) inst(id(NUBEndTry)))"},
        {"a } b;", "inst(dc(dc(id(a) id(})) id(b)))"},
    });
}

TEST(Tree, ClassifiesInstructions) {
    Expect({
        {"return;", "inst(id(return))"},
        {"return x;", "inst(id(x))"},
        {"return(x);", "inst(id(x))"},
        {"deleted = 1;", "inst21(=(id(d) id(1)))"},
        {"delete p;", "inst21(id(p))"},
        {"delete [ ] p;", "inst22(id(p))"},
        {"delete a,b;", "inst21(args(id(a) id(b)))"},
        {"delete f(a,b);", "inst21(args(mt(id(f) args(id(a) id(b)))))"},
        {"if() x1;", "inst(bloc) inst(id(x1))"},
        {"if(x) { y1; } else if(z) w1w;",
         "decl(id(x) bloc) bloc(inst(id(y1))) inst(inst(id(z) bloc(inst(id(w1w)))))"},
        {"for(i=0;i<n;i++) x1;",
         "inst(bloc(inst(=(id(i) id(0))) inst(<(id(i) id(n))) inst(++(id(i) ?))) bloc) inst(id(x1))"},
        {"class Foo;", "decl(Foo)"},
        {"class ExportedByX Foo: public Bar, private Baz;", "decl(Foo ,(id(Bar) dc(id(private) id(Baz))))"},
        {"class {}", "decl({) bloc"},
        {"interface IFoo : IBar;", "decl(IFoo IBar)"},
        {"interface IFoo :;", "decl(IFoo ;)"},
        {"enum E {a1a}", "decl(?E ) bloc(inst(id(a1a)))"},
        {"ExportedByX enum E;", "decl(?E)"},
        {"ExportedByX int f;", "inst(dc(dc(id(ExportedByX) id(int)) id(f)))"},
        {"struct S;", "decl(?S)"},
        {"typedef unsigned int UINT;", "decl(dc(id(unsigned) id(int)) id(UINT))"},
        {"typedef int (*f)(int);", "decl(mt(id(int) args(*(null id(f)))) ?)"},
        {"static inline int f;", "inst24(dc(dc(id(inline) id(int)) id(f)))"},
        {"inline static int f;", "inst25(inst24(dc(id(int) id(f))))"},
        {"virtual void f() {}", "inst23(mt(dc(id(void) id(f)))) bloc"},
    });
}

TEST(Tree, GivesExpressionsTheirKind) {
    Expect(
        {
            {"x+=-x;", "inst(+=(id(x) -(id(x))))"},
            {"zz*p;", "inst(*(id(zz) id(p)))"},
            {"*pp;", "inst(*(null id(pp)))"},
            {"x++;", "inst(++(id(x) ?))"},
            {"((a));", "inst(ct(a ?))"},
            {"(a)+(b);", "inst(+(id(a) id(b)))"},
            {"(int)x;", "inst(ct(int id(x)))"},
            {"(*f)(a);", "inst(ct(*f id(a)))"},
            {"y=\"ab\" \"cd\";", "inst(=(id(y) st))"},
            {"y='a';", "inst(=(id(y) id('a')))"},
            {"x=foo(a).b[1];", "inst(=(id(x) .(mt(id(foo) args(id(a))) in(id(b) id(1)))))"},
            {"x=foo(a)[1];", "inst(=(id(x) mt(id(foo) args(id(a)))))"},
            {"x=a[i][j];", "inst(=(id(x) in(id(a) id(i))))"},
            {"new Foo(x);", "inst(nw(mt(id(Foo) args(id(x)))))"},
            {"(new Foo);", "inst(dc(id(new) id(Foo)))"},
            {"!ab;", "inst(!(id(ab)))"},
            {"!a==b;", "inst(==(!(id(a)) id(b)))"},
            {"unsigned int x;", "inst(dc(dc(id(unsigned) id(int)) id(x)))"},
            {"int a,b;", "inst(,(dc(id(int) id(a)) id(b)))"},
            {"a,;", "inst(,(id(a) ?))"},
            {"SEQUENCE()", "inst(dc(id(SEQUENCE()) ?()))"},
            {"f(a,,b,);", "inst(mt(id(f) args(id(a) id(b))))"},
            {"f(\";\");", "inst(mt(id(f) args))"},
            {"f(Map<K,V>());", "inst(mt(id(f) args(<(id(Map) id(K)) >(id(V) id()))))"},
            {"f([this]{ a->b(c);},d);", "inst(mt(id(f) args))"},
            {"x=[&]{ a.b(c)};", "decl(=(id(x) in(id(&)))) bloc(inst(.(id(a) mt(id(b) args(id(c))))))"},
        },
        "zz;", "inst(id(zz)) ");
}

struct FailureRow {
    std::string source;
    std::string message;
    TAPFailureCode code;
    int line, col;
};

TEST(Tree, FailuresTellTheirPlace) {
    const std::string noBlock = "Missing TAPBloc end at line ";
    const std::string noEnd = "Missing Instruction end for Instruction starting line ";
    const std::string deep = "Depth too high when building a ";
    const std::string farLine(70000, '\n');
    const std::string farColumn(200000, ' ');
    const FailureRow rows[] = {
        {";", noEnd + "1 col 2", SFAIL_Instruction, 1, 2},
        {"\n x{", noBlock + "2 col 4 length=1", SFAIL_Block, 2, 4},
        {"ab;\n { c", noBlock + "2 col 3 length=3", SFAIL_Block, 2, 3},
        {"ab; f((a);", noEnd + "1 col 6", SFAIL_Instruction, 1, 6},
        {"ab; c = \"open", noEnd + "1 col 6", SFAIL_Instruction, 1, 6},
        {"aa=(b;", noEnd + "1 col 2", SFAIL_Instruction, 1, 2},
        {farLine + farColumn + "ab { c", noBlock + "70001 col 200005 length=3", SFAIL_Block, 70001, 200005},
        {"ab;" + farColumn + "c = (d;", noEnd + "1 col 200005", SFAIL_Instruction, 1, 200005},
        // The others stand where the last node begins that was made.
        {"x; ff(a[1,2]);", "Missing ]", SFAIL_Bracket, 1, 8},
        {"a;' (';", "Missing )", SFAIL_Parenthesis, 1, 6},
        {"a;'*[';", "Missing ]", SFAIL_Bracket, 1, 6},
        {"delete[3] p;", "", SFAIL_DeleteBracket, 1, 2},
        {farLine + "delete[3] p;", "", SFAIL_DeleteBracket, 70001, 2},
        {" " + std::string(901, '{') + std::string(901, '}'), deep + "TAPSyntaxe : 901", SFAIL_Depth, 1, 904},
        {"xx=" + std::string(1000, '!') + "a;", deep + "TAPExpression : 901", SFAIL_Depth, 1, 903},
        // What a typedef or a class fails of is passed over.
        {"typedef x ff(a[1,2]) T;class C: ff(a[1,2]);c{", noBlock + "1 col 46 length=1", SFAIL_Block, 1, 46},
    };
    for (const FailureRow& row : rows) {
        testing::internal::CaptureStderr();
        Source source(row.source);
        source.Build();
        testing::internal::GetCapturedStderr();
        EXPECT_EQ(source.buildResult, 1) << row.source;
        EXPECT_EQ(TAPSyntaxe::ErrMsg.View(), row.message) << row.source;
        const TAPFailure failure = source.root->GetFailure();
        EXPECT_EQ(failure.code, row.code) << row.source;
        EXPECT_EQ(std::pair(failure.point.line, failure.point.col), std::pair(row.line, row.col))
            << row.source;
        EXPECT_EQ(source.file->GetPoint(failure.position).col, row.col) << row.source;
        EXPECT_EQ(source.file->GetFailure().code, SFAIL_None) << row.source;
    }
}

// Ranges and nodes that only a tool can make.
TEST(Tree, BuildsNodesMadeByHand) {
    Source source("if(a+b) {c1;d1;}");
    auto* shallow = new TAPSyntaxe(STYPE_Shallow, source.file, 0, source.file->GetSize(), -1);
    EXPECT_EQ(shallow->Build(), 0);
    EXPECT_EQ(OneLine(shallow), "shallow(inst bloc)");
    shallow->Release();
    auto* top = new TAPSyntaxe(STYPE_File, source.file, 0, source.file->GetSize(), -1);
    struct Row {
        int begin, size;
        const char* tree; // of an expression over the range
        int result;
    };
    const Row rows[] = {{3, 3, "+(id(a) id(b))", 0}, {2, 5, "+(id(a) id(b))", 0}, {2, 3, "+(ct)", 1},
                        {4, 2, "+(id(b))", 0},       {3, 4, "id(a+b))", 0},       {5, 0, "?", 0}};
    for (const Row& row : rows) {
        auto* node = new TAPExpression(top, row.begin, row.size, 1);
        EXPECT_EQ(node->Build(), row.result) << row.tree;
        EXPECT_EQ(OneLine(node), row.tree);
        node->Release();
    }
    top->Release();
}

// A failure is that of the last build over the file. One that its position leads behind the stream stands at
// the end.
TEST(Tree, NodesMadeByHandFail) {
    Source source("if(a+b) f(a,(b),\"c\",'d')");
    auto* top = new TAPSyntaxe(STYPE_File, source.file, 0, source.file->GetSize(), -1);
    struct Row {
        TAPSyntaxe* node;
        const char* message;
        TAPFailureCode code;
        int position;
    };
    TAPSyntaxe deep(STYPE_File, source.file, 0, 0, -1);
    deep.depth = 900;
    const Row rows[] = {
        {new TAPInstruction(top, 0, 4, 1), "Missing )", SFAIL_Parenthesis, 0},
        {new TAPListOfArgs(top, 9, 4, 1), "Missing )", SFAIL_Parenthesis, 9},
        {new TAPListOfArgs(top, 15, 2, 1), "Missing \"", SFAIL_String, 15},
        {new TAPListOfArgs(top, 9, 12, 1), "Missing '", SFAIL_Character, 15},
        {new TAPListOfArgs(&deep, 100, 1, 1), "Depth too high when building a TAPListOfArgs : 901",
         SFAIL_Depth, source.file->GetSize() - 1},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.node->Build(), 1) << row.message;
        EXPECT_EQ(TAPSyntaxe::ErrMsg, row.message);
        EXPECT_EQ(top->GetFailure().code, row.code) << row.message;
        EXPECT_EQ(top->GetFailure().position, row.position) << row.message;
        row.node->Release();
    }
    EXPECT_EQ(top->Build(), 0);
    EXPECT_EQ(top->GetFailure().code, SFAIL_None);
    top->Release();
}

} // namespace
