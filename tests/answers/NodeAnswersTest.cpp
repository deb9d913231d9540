#include <chrono>
#include <string>

#include <gtest/gtest.h>

#include <answers/resolve/NodeAnswers.h>
#include <answers/resolve/NodeSearch.h>
#include <answers/resolve/NodeText.h>

#include "support/HostileTexts.h"
#include "support/LoadedText.h"
#include "support/MarkedText.h"

namespace {

using namespace ostraka::answers;

std::string Shown(const Place& place) {
    return std::to_string(place.line) + ":" + std::to_string(place.column);
}

// `name: type; what it is declared as, its type where it is another, and place; where the node stands; on
// what it is called; whether it goes back`, each where it is known.
std::string LineOf(TAPSymbolTable& table, TAPSyntaxe& node) {
    const NodeAnswers answers = AskAbout(table, node);
    std::string line(TrimmedTextOf(node));
    if (answers.type) line += ": " + *answers.type;
    for (const Declaration& declared : answers.declared) {
        line += "; " + declared.as;
        if (declared.type != answers.type.value_or("")) line += " " + declared.type;
        if (declared.node != nullptr) line += " " + Shown(PlaceOf(*declared.node));
    }
    if (answers.method) line += "; in " + *answers.method;
    if (answers.className && (!answers.method || !answers.method->starts_with(*answers.className + "::")))
        line += "; in class " + *answers.className;
    if (answers.object)
        line += "; on " + std::string(TrimmedTextOf(*answers.object->node)) + ": " +
                answers.object->type.value_or("?");
    if (answers.isAccess && !answers.object) line += "; on ?";
    if (answers.goesBack && answers.goesBack->isReturned) line += "; returned";
    if (answers.goesBack && answers.goesBack->arguments > 0)
        line += "; argument " + std::to_string(answers.goesBack->argument) + " of " +
                std::to_string(answers.goesBack->arguments);
    return line;
}

struct Row {
    const char* text;
    const char* lines; // an answer for each mark
};

std::string LinesOf(const char* text) {
    const MarkedText marked(text);
    const LoadedText loaded(marked.text);
    std::string lines;
    for (const Place& place : marked.places) {
        const auto at = loaded.root != nullptr ? FindNodeAt(*loaded.root, place) : std::nullopt;
        if (!lines.empty()) lines += "\n";
        lines += at ? LineOf(*loaded.table, *at->node) : "nothing";
    }
    return lines;
}

template <std::size_t count>
void ExpectLines(const Row (&rows)[count]) {
    for (const Row& row : rows) EXPECT_EQ(LinesOf(row.text), row.lines) << row.text;
}

TEST(NodeAnswers, VariablesOfBlocks) {
    const Row rows[] = {
        {"int Moor(){int depth;^depth;return depth;}", "depth: int; variable 1:12; in Moor; returned"},
        {"int Moor(){int depth;{char depth;use(^depth);}}", "depth: char; variable 1:23; in Moor"},
        {"int Moor(){{char depth;}use(^depth);}", "depth: char; variable 1:13; in Moor"},
        {"void Moor(){const char* const name=0;use(^name,^other);}",
         "name: const char* const; variable 1:13; in Moor\n"
         "other; in Moor"},
        {"void Moor(){int first,*last;use(^first,^last);}", "first: int; variable 1:13; in Moor\n"
                                                            "last: int*; variable 1:13; in Moor"},
        {"class Ship{};void Moor(){Ship_var ship;Ship* tug;use(^ship,^tug);}",
         "ship: Ship_var; variable 1:26; in Moor\n"
         "tug: Ship*; variable 1:40; in Moor"},
    };
    ExpectLines(rows);
}

TEST(NodeAnswers, Arguments) {
    const Row rows[] = {
        {"int Cast(int depth,char^ side){return depth;}", "char: char; basic type ; in Cast"},
        {"void Cast(const char* const ^name,int& ^out){use(name);^out=1;}",
         "name: const char* const; argument 1:11; in Cast; argument 1 of 2\n"
         "out: int&; argument 1:34; in Cast; argument 2 of 2\n"
         "out: int&; argument 1:34; in Cast; argument 2 of 2"},
        {"class Ship{};void Cast(const Ship& ship,Ship** ships,int list[3],Missing* "
         "miss){use(^ship,^ships,^list,^miss);}",
         "ship: const Ship&; argument 1:24; in Cast; argument 1 of 4\n"
         "ships: Ship**; argument 1:41; in Cast; argument 2 of 4\n"
         "list: int*; argument 1:54; in Cast; argument 3 of 4\n"
         "miss: Missing*; argument 1:66; in Cast; argument 4 of 4"},
        {"class Ship{int Cast(int d1);};int Ship::Cast(int ^d1){return ^d1;}",
         "d1: int; argument 1:46; in Ship::Cast; returned\n"
         "d1: int; argument 1:46; in Ship::Cast; returned"},
        {"class Ship{void Cast(int d1){use(^d1);}};",
         "d1: int; argument 1:22; in Ship::Cast; argument 1 of 1"},
        {"int Cast(int d1=f(1,2),int e1=3){use(^e1);}", "e1: int; argument 1:24; in Cast; argument 2 of 2"},
        {"int Cast(int d1);int e1(^d1);", "d1"},
        {"struct Tug{int Pull(Missing load)const noexcept{return ^load;}};",
         "load: Missing; argument 1:21; in Tug::Pull; returned"},
        {"void Cast(void){use(^x1);}", "x1; in Cast"},
        {"class Ship{int d1;void Cast(char d1){use(^d1);}};",
         "d1: char; argument 1:29; in Ship::Cast; argument 1 of 1"},
        {"int Cast(int d1){int d1;use(^d1);}", "d1: int; variable 1:18; in Cast; argument 1 of 1"},
    };
    ExpectLines(rows);
}

TEST(NodeAnswers, LoopsAndHandlers) {
    const Row rows[] = {
        {"void Go(){for(int i1=0;^i1<3;++i1)use(^i1);use(^i1);}", "i1: int; variable 1:15; in Go\n"
                                                                  "i1: int; variable 1:15; in Go\n"
                                                                  "i1; in Go"},
        {"void Go(){for(int i1=0;i1<3;++i1)for(int j1=0;j1<i1;++j1){use(^i1,^j1);}}",
         "i1: int; variable 1:15; in Go\n"
         "j1: int; variable 1:38; in Go"},
        {"void Go(){for(int i1=0;i1<3;++i1)if(^i1)while(^i1)use(^i1);else "
         "if(i1)use(^i1);else{use(^i1);}use(^i1);}",
         "i1: int; variable 1:15; in Go\n"
         "i1: int; variable 1:15; in Go\n"
         "i1: int; variable 1:15; in Go\n"
         "i1: int; variable 1:15; in Go\n"
         "i1: int; variable 1:15; in Go\n"
         "i1; in Go"},
        {"void Go(){for(int i1=0;i1<3;++i1)if(a1)for(int k1=0;k1<2;++k1)use(1);else use(^k1,^i1);}",
         "k1; in Go\n"
         "i1: int; variable 1:15; in Go"},
        {"void Go(){for(int i1=0;i1<3;++i1)if(a1)if(b1)use(1);else use(^i1);else use(^i1);}",
         "i1: int; variable 1:15; in Go\n"
         "i1: int; variable 1:15; in Go"},
        {"void Go(){for(int i1=0;i1<3;++i1);use(^i1);}", "i1; in Go"},
        {"void Go(){for(int i1=0;i1<3;++i1)use(1);use(^i1);}", "i1; in Go"},
        {"void Go(){int i1;for(char i1=0;;)use(^i1);}", "i1: char; variable 1:22; in Go"},
        {"void Go(){for(const Ship& ^ship:ships)use(^ship,^ships);for(auto* each:all){use(^each);}}",
         "ship: const Ship&; variable 1:15; in Go\n"
         "ship: const Ship&; variable 1:15; in Go\n"
         "ships; in Go\n"
         "each: auto*; variable 1:58; in Go"},
        {"void Go(){do use(^i1);while(b1);use(^b1);}", "i1; in Go\n"
                                                       "b1; in Go"},
        {"class Bad{int why;};int Go(){try{use(1);}catch(const Bad& ^bad){return "
         "bad.^why;}catch(...){use(^bad);}}",
         "bad; in Go\n"
         "why: int; member of Bad 1:11; in Go; on ?\n"
         "bad; in Go"},
        {"void Go(){if(a1){use(1);}else{use(^a1);}}", "a1; in Go"},
    };
    ExpectLines(rows);
}

TEST(NodeAnswers, MembersAndMethods) {
    const Row rows[] = {
        {"class Ship{int depth;int Go();};int Ship::Go(){return ^depth+this->^depth+^Go();}",
         "depth: int; member of Ship 1:12; in Ship::Go\n"
         "depth: int; member of Ship 1:12; in Ship::Go; on ?\n"
         "Go: int; method of Ship 1:22; in Ship::Go"},
        {"class Ship{int Go(){return ^depth;}int depth;};", "depth: int; member of Ship 1:35; in Ship::Go"},
        {"class Base{int base;void Dive();};class Ship:public Base{int Go();};int "
         "Ship::Go(){^Dive();use(^base);}",
         "Dive: void; method of Base 1:21; in Ship::Go\n"
         "base: int; member of Base 1:12; in Ship::Go"},
        {"class Ship{public:Ship* next;int Cast(int);char Cast(char);};void Go(Ship* s1,Ship& "
         "r1){s1->^Cast(1);r1.^next->^Cast(2);}",
         "Cast; method of Ship int 1:30; method of Ship char 1:44; in Go; on s1: Ship*\n"
         "next: Ship*; member of Ship 1:19; in Go; on ?\n"
         "Cast; in Go; on ?"},
        {"class Ship{public:int Cast(int);int Cast(char);};int Ship::^Cast(char c1){}int Ship::Cast(int "
         "i1){}",
         "Cast: int; method of Ship 1:33; in Ship::Cast"},
        {"class Ship{public:int depth;};Ship tug;Ship* const other=0;void "
         "Go(){use(tug.^depth,other->^depth,none->^depth);}",
         "depth: int; member of Ship 1:19; in Go; on ?\n"
         "depth: int; member of Ship 1:19; in Go; on ?\n"
         "depth; in Go; on ?"},
        {"class Ship{public:void Go();};void Cast(void* p1){((Ship*)p1)->^Go();(*p1).^Go();Find()->^Go();}",
         "Go: void; method of Ship 1:19; in Cast; on p1: Ship*\n"
         "Go; in Cast; on ?\n"
         "Go; in Cast; on ?"},
        {"class Ship{public:void Go();Ship* next;};void Ship::Go(){next->^Go();this->^Go();}",
         "Go: void; method of Ship 1:19; in Ship::Go; on next: Ship*\n"
         "Go: void; method of Ship 1:19; in Ship::Go; on this: Ship"},
        {"class Ship{public:static int all;};int Go(){return Ship::^all+^Ship::all;}",
         "all: int; member of Ship 1:19; in Go\n"
         "Ship: Ship; class Ship  1:1; in Go"},
        {"class Ship{public:int a1,*b1;};int Go(Ship* s1){return s1->^b1;}",
         "b1: int*; member of Ship 1:19; in Go; on ?"},
        {"struct Tug{int power;int Pull(){return ^power;}Missing* m1;Missing* Get(){return ^m1;}};",
         "power: int; member of Tug 1:12; in Tug::Pull\n"
         "m1: Missing*; member of Tug 1:47; in Tug::Get"},
        {"class Ship{public:Ship* next;};Ship* next;void Go(){Find()->^next;}", "next; in Go; on ?"},
        {"class A1:public B1{int Go();};class B1:public A1{};int A1::Go(){return ^none;}", "none; in A1::Go"},
        {"class Ship{int Go();};int Ship::Go(){}int Ship::^Cast(){}",
         "Cast; method of Ship 1:39; in Ship::Cast"},
        {"class Ship{public:const char* const name;};void Go(const Ship* const s1){use(s1->^name);}",
         "name: const char* const; member of Ship 1:19; in Go; on ?"},
        {"class Ship{int depth;};int Ship::Cast(){use(^depth,^Cast());}",
         "depth: int; member of Ship 1:12; in Ship::Cast\n"
         "Cast; method of Ship 1:24; in Ship::Cast"},
    };
    ExpectLines(rows);
}

TEST(NodeAnswers, TheFile) {
    const Row rows[] = {
        {"int depth;int Go(){return ^depth;}", "depth: int; variable of the file 1:1; in Go"},
        {"Missing* one;const Foo* const two=0,*const three=0;int Go(){use(^one,^two,^three);}",
         "one: Missing*; variable of the file 1:1; in Go\n"
         "two: const Foo* const; variable of the file 1:14; in Go\n"
         "three: const Foo* const; variable of the file 1:14; in Go"},
        {"int Cast(int);int Go(){return ^Cast(1);}", "Cast; function 1:1; in Go"},
        {"namespace sea{int depth;int Go(){return ^depth;}}int after;namespace sea{int Dive(){return "
         "^after;}}",
         "depth: int; variable of the file 1:15; in Go\n"
         "after: int; variable of the file 1:49; in Dive"},
        {"enum Side{Port};typedef int Depth;class Ship;Side Go(){^Side s1;^Depth d1;^Ship* p1;^int i1;}",
         "Side: Side; enum ; in Go\n"
         "Depth: Depth; typedef ; in Go\n"
         "Ship: Ship; type ; in Go\n"
         "int: int; basic type ; in Go"},
        {"class Ship{};void Go(){^Ship_var s1;^Ship s2;}", "Ship_var; class Ship 1:1; in Go\n"
                                                           "Ship: Ship; class Ship  1:1; in Go"},
        {"#define LIMIT 3\nint Go(){return ^LIMIT;}", "LIMIT; macro 3; in Go"},
        {"int Go(){return ^3+^unknown;}", "3; in Go\n"
                                          "unknown; in Go"},
        {"int depth{1};int Go(){return ^depth;}", "depth: int; variable of the file 1:1; in Go"},
    };
    ExpectLines(rows);
}

TEST(NodeAnswers, Around) {
    const Row rows[] = {
        {"int Ship::Go(){use(^1);}", "1; in Ship::Go"},
        {"int Ship::Go()const try{use(^1);}catch(...){use(^2);}", "1; in Ship::Go\n"
                                                                  "2; in Ship::Go"},
        {"Ship::Ship(int d1):depth{1},side(^d1){use(^d1);}",
         "d1: int; argument 1:12; in Ship::Ship; argument 1 of 1\n"
         "d1: int; argument 1:12; in Ship::Ship; argument 1 of 1"},
        {"class Ship{Ship(int d1)noexcept:depth{1},side(^d1){use(^d1);}Ship(char d1):deep(^d1){}};",
         "d1: int; argument 1:17; in class Ship\n"
         "d1: int; argument 1:17; in Ship::Ship; argument 1 of 1\n"
         "d1: char; argument 1:65; in class Ship"},
        {"namespace sea{namespace deep{void Dive(int d1){use(^d1);}}}",
         "d1: int; argument 1:40; in Dive; argument 1 of 1"},
        {"extern \"C\"{int cold(int c1){return ^c1;}}", "c1: int; argument 1:21; in cold; returned"},
        {"class SHIPS_API Ship{class Hold{void Load(){use(^1);}};};", "1; in Hold::Load"},
        {"template<class T>T Box<T>::Get(int d1){return ^d1;}",
         "d1: int; argument 1:32; in Box::Get; returned"},
        {"Missing Ship::Go(Other d1)noexcept{return ^d1;}",
         "d1: Other; argument 1:18; in Ship::Go; returned"},
        {"^int Ship::^Go(){}", "int: int; basic type ; in Ship::Go\n"
                               "Go; in Ship::Go"},
        {"int Go(^int d1);", "int: int; basic type "},
        {"class ^Ship{};", "Ship: Ship; class Ship  1:1"},
        {"void sea::Dive::Go(int d1){use(^d1);}", "d1: int; argument 1:20; in Dive::Go; argument 1 of 1"},
        {"int a1;{use(^a1);}", "a1: int; variable of the file 1:1"},
    };
    ExpectLines(rows);
}

TEST(NodeAnswers, Types) {
    const Row rows[] = {
        {"int Go(char* p1,int i1){return ^p1[0]+i1;}", "p1: char*; argument 1:8; in Go; argument 1 of 2"},
        {"const char* text=^\"salt\";", "\"salt\": const char *"},
        {"class Ship{};void Go(){Ship* s1=(^Ship*)p1;^s1;}", "Ship*: Ship*; class Ship  1:1; in Go\n"
                                                             "s1: Ship*; variable 1:24; in Go"},
        {"class Ship{Ship* next();};Ship* Ship::next(){return ^this;}", "this: Ship; in Ship::next"},
        {"void Go(){int ^*p1;}", "int*p1: int*; in Go"},
    };
    ExpectLines(rows);
}

// What is asked of the last of many is found in one walk, whatever there is many of.
TEST(NodeAnswers, CostOneWalk) {
#if defined(__SANITIZE_ADDRESS__)
    constexpr std::size_t count = 6'000;
#else
    constexpr std::size_t count = 60'000;
#endif
    struct {
        const char* first;
        const char* unit;
        const char* last;
        const char* line;
    } const rows[] = {
        {"void Go(){for(int a1=0;;)", "for(int i$=0;;)", "use(^a1);}", "a1: int; variable 1:15; in Go"},
        {"void Go(int a1){", "for(int i$=0;;)use(i$);", "use(^a1);}",
         "a1: int; argument 1:9; in Go; argument 1 of 1"},
        {"void Go(int a1){if(a1)use(1);", "else if(a1)use($);", "else use(^a1);}",
         "a1: int; argument 1:9; in Go; argument 1 of 1"},
        {"class Ship{int a1;", "int b$;", "void Go(){use(^a1);}};",
         "a1: int; member of Ship 1:12; in Ship::Go"},
        {"int a1;void Go()", "{use($);}", "{use(^a1);}", "a1: int; variable of the file 1:1; in Go"},
        {"int a1;void Go(){use(a2);", "{use($);}", "{use(^a1);}}",
         "a1: int; variable of the file 1:1; in Go"},
        {"class Ship{int a1;};Ship::Ship():b1{1}", ",c${1}", ",d1(^a1){}",
         "a1: int; member of Ship 1:12; in Ship::Ship"},
    };
    for (const auto& row : rows) {
        const MarkedText marked(row.first + texts::Repeat(row.unit, count) + row.last);
        const LoadedText loaded(marked.text);
        ASSERT_NE(loaded.root, nullptr) << row.unit;
        const auto start = std::chrono::steady_clock::now();
        const auto at = FindNodeAt(*loaded.root, marked.places.front());
        EXPECT_EQ(at ? LineOf(*loaded.table, *at->node) : "nothing", row.line) << row.unit;
        const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - start;
        EXPECT_LT(spent.count(), 2) << row.unit;
    }
}

} // namespace
