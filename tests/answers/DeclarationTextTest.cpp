#include <string>

#include <gtest/gtest.h>

#include <answers/facts/DeclarationText.h>

namespace {

using namespace ostraka::answers;

// A reading in one line: `kind scope::name: type, ... | what is shown | arguments`, the last two where they
// aren't the whole text and nothing.
std::string LineOf(std::string_view text, const DeclarationReading& reading) {
    if (!reading.kind) return "none";
    std::string line = NameOf(*reading.kind);
    if (reading.isTypedef) line += " typedef";
    if (reading.hasType) line += " typed";
    if (reading.isPrivate) line += " private";
    for (const DeclaredName& name : reading.names) {
        EXPECT_EQ(text.substr(name.at, name.name.size()), name.name) << text;
        line += &name == &reading.names.front() ? " " : ", ";
        if (!name.scope.empty()) line += std::string(name.scope) + "::";
        line += name.name;
        if (const std::string type = TypeOf(name); !type.empty()) line += ": " + type;
    }
    const std::string_view shown = text.substr(reading.begin, reading.past - reading.begin);
    if (shown != text) line += " | " + std::string(shown);
    if (!reading.arguments.empty()) line += " | " + std::string(reading.arguments);
    return line;
}

struct Row {
    const char* text;
    const char* line;
};

template <std::size_t count>
void ExpectLines(const Row (&rows)[count], bool hasBody) {
    for (const Row& row : rows)
        EXPECT_EQ(LineOf(row.text, ReadDeclaration(row.text, hasBody)), row.line) << row.text;
}

TEST(ReadDeclaration, Variables) {
    const Row rows[] = {
        {"int depth", "variable depth: int"},
        {"static const double NotMeasured =-1.0", "variable NotMeasured: const double"},
        {"int a,*b,c[3],**d[2][2]", "variable a: int, b: int*, c: int*, d: int****"},
        {"const char* const names[2]", "variable names: const char* const*"},
        {"const Ship* const first = 0,* const last = 0",
         "variable first: const Ship* const, last: const Ship* const"},
        {"std::map<int,Ship*> ships,*others",
         "variable ships: std::map<int,Ship*>, others: std::map<int,Ship*>*"},
        {"unsigned long long int big = f(1,2),small",
         "variable big: unsigned long long int, small: unsigned long long int"},
        {"int Buoy::count = 0", "variable Buoy::count: int"},
        {"std::string sea::Buoy::name", "variable sea::Buoy::name: std::string"},
        {"struct tm* now,then", "variable now: struct tm*, then: struct tm"},
        {"Ship tug(\"Tug\",3),other(-1)", "variable tug: Ship, other: Ship"},
        {"Ship tug('x')", "variable tug: Ship"},
        {"Ship tug(&other)", "variable tug: Ship"},
        {"Ship tug(*other),next", "variable tug: Ship, next: Ship"},
        {"bool less = a < b,more = c > d", "variable less: bool, more: bool"},
        {"int bits:3,:2,more:4", "variable bits: int, more: int"},
        {"char buffer[sizeof(int)] __attribute__((aligned(8)))", "variable buffer: char*"},
        {"alignas(16)char buffer[4]", "variable buffer: char* | char buffer[4]"},
        {"constexpr int size = 3", "variable size: int"},
        {"decltype(one)two", "variable two: decltype(one)"},
        {"const decltype(one)& two = one", "variable two: const decltype(one)&"},
        {"void(*call)(int)", "variable call"},
        {"int(*table[3])(int),more", "variable table, more"},
        {"void(Ship::*call)(int)", "variable call"},
        {"int(&reference)[3]", "variable reference"},
        {"typedef int Depth,*DepthPointer", "variable typedef Depth: int, DepthPointer: int*"},
        {"typedef int(*Call)(int)", "variable typedef Call"},
        {"typedef void Call(int)", "variable typedef typed Call | (int)"},
        {"typedef struct tag Tag", "variable typedef Tag: struct tag"},
        {"using Depth = int", "typedef typedef Depth"},
        {"template <class T> using List = std::vector<T>", "typedef typedef List"},
        {"using Depth [[deprecated]] = int", "typedef typedef Depth"},
        {"enum Side side = Port", "variable side: enum Side"},
        {"3 depths", "none"},
        {"x = 3", "none"},
        {"x", "none"},
        {"", "none"},
        {"using std::string", "none"},
        {"using namespace std", "none"},
        {"friend class Ship", "none"},
        {"return depth", "none"},
        {"delete ship", "none"},
        {"public", "none"},
        {"template class Box<int>", "none"},
        {"DEFINE(a,b)int depth", "variable depth: int | int depth"},
        {"Moor(ship)", "function Moor | (ship)"},
        {"attribute string name", "variable name: string"},
    };
    ExpectLines(rows, false);
}

TEST(ReadDeclaration, Functions) {
    const Row rows[] = {
        {"int Moor(Ship* ship)", "function typed Moor | (Ship* ship)"},
        {"Ship()= default", "function Ship | ()"},
        {"Ship(const Ship&)= delete", "function Ship | (const Ship&)"},
        {"virtual ~Ship()override = default", "function ~Ship | ()"},
        {"~Ship()noexcept", "function ~Ship | ()"},
        {"virtual void Go()const noexcept override final", "function typed Go | ()"},
        {"explicit constexpr Ship(int depth)", "function Ship | (int depth)"},
        {"Ship(int depth) __attribute((cold))", "function Ship | (int depth)"},
        {"auto Depth()const->int", "function typed Depth | ()"},
        {"std::map<int,int> Buoy::Chart(struct tm* t,enum Side s)",
         "function typed Buoy::Chart | (struct tm* t,enum Side s)"},
        {"Buoy::Buoy()", "function Buoy::Buoy | ()"},
        {"bool operator()(int a)const", "function typed operator() | (int a)"},
        {"Ship& Ship::operator=(const Ship&)", "function typed Ship::operator= | (const Ship&)"},
        {"operator const char*()const", "function typed operator const char* | ()"},
        {"sea::Ship::operator bool()const", "function typed sea::Ship::operator bool | ()"},
        {"void* operator new[](std::size_t size)", "function typed operator new[] | (std::size_t size)"},
        {"int operator\"\"_fathoms(unsigned long long)",
         "function typed operator\"\"_fathoms | (unsigned long long)"},
        {"A& operator,(A&,A&)", "function typed operator, | (A&,A&)"},
        {"operator", "function typed operator"},
        {"[[nodiscard]]int Depth()", "function typed Depth | int Depth() | ()"},
        {"__attribute__((noreturn))void Die()", "function typed Die | void Die() | ()"},
        {"__declspec(dllexport)int Depth()", "function typed Depth | int Depth() | ()"},
        {"NODISCARD(x)int Depth()", "function typed Depth | int Depth() | ()"},
        {"void(*signal(int number,void(*handler)(int)))(int)",
         "function typed signal | (int number,void(*handler)(int))"},
        {"struct tm* now(long seconds)", "function typed now | (long seconds)"},
        {"class Ship* Find(int number)const", "function typed Find | (int number)"},
        {"enum Side Other(enum Side side)", "function typed Other | (enum Side side)"},
        {"int f(int a = g(1,2),const char* b = \"x,y)\")",
         "function typed f | (int a = g(1,2),const char* b = \"x,y)\")"},
        {"template <class T,int n = (1 > 2)> T Least(const T& a)", "function typed Least | (const T& a)"},
        {"\"C\" int cold(void)", "function typed cold | int cold(void) | (void)"},
        {"HRESULT Get(long x)raises(Bad)", "function typed Get | (long x)"},
    };
    ExpectLines(rows, false);
    const Row bodies[] = {
        {"Ship::Ship(int depth):_depth(depth),_name(\"x\")",
         "function Ship::Ship | Ship::Ship(int depth) | (int depth)"},
        {"Ship(int depth)noexcept:_depth(depth)", "function Ship | Ship(int depth)noexcept | (int depth)"},
        {"int Ship::Depth()const try", "function typed Ship::Depth | int Ship::Depth()const | ()"},
        {"Ship::Ship()try:_depth(1)", "function Ship::Ship | Ship::Ship() | ()"},
        {"Entry()", "function Entry | ()"},
        {"Country(int entry)", "function Country | (int entry)"},
        {"if(depth)", "none"},
        {"for(int i = 0;i < 3;++i)", "none"},
        {"catch(const Bad& bad)", "none"},
        {"else", "none"},
        {"auto less = [](int a,int b)", "variable less: auto"},
        {"int depths[]=", "variable depths: int*"},
        {"struct tm* now()const", "function typed now | ()"},
        {"API struct tm now()noexcept", "function typed now | ()"},
    };
    ExpectLines(bodies, true);
}

TEST(ReadDeclaration, HeadsOfClasses) {
    const Row rows[] = {
        {"class Ship", "class private Ship"},
        {"struct ExportedByShips Ship:public CoastObject", "struct Ship"},
        {"class SHIPS_API Ship final:Base", "class private Ship"},
        {"class [[deprecated(\"old\")]] Ship", "class private Ship"},
        {"class DLL(\"ships\")Ship:Base", "class private Ship"},
        {"class alignas(8)Ship", "class private Ship"},
        {"class sea::Ship", "class private sea::Ship"},
        {"template <class T> struct Box<T>::Lid", "struct Box<T>::Lid"},
        {"template <> struct std::hash<Ship>", "struct std::hash"},
        {"BEGIN struct Ship", "struct Ship"},
        {"struct", "struct"},
        {"typedef struct tag", "struct typedef tag"},
        {"typedef struct", "struct typedef"},
        {"union Value", "union Value"},
        {"enum Side:char", "enum Side"},
        {"enum class Side:unsigned", "enum Side"},
        {"enum", "enum"},
        {"namespace sea::deep", "namespace sea::deep"},
        {"inline namespace v1", "namespace v1"},
        {"namespace", "namespace"},
        {"\"C\"", "namespace | "},
        {"interface IBerth:IObject", "class IBerth"},
        {"module Harbour", "namespace Harbour"},
        {"exception Bad", "struct Bad"},
        {"struct Ship tugs[]=", "variable tugs: struct Ship*"},
        {"struct Ship make()", "function typed make | ()"},
    };
    ExpectLines(rows, true);
}

// Texts that break off, or were never declarations.
TEST(ReadDeclaration, OddTexts) {
    const Row rows[] = {
        {"int f(", "function typed f | ("},
        {"int f(\"", "variable f: int"},
        {"char c = '", "variable c: char"},
        {"template <class T", "none"},
        {"template", "none"},
        {"class Box<int", "forward Box"},
        {"int sea::", "variable sea: int"},
        {"::depth", "none"},
        {"int ::depth", "none"},
        {"operator()", "function typed operator()"},
        {"operator(", "function typed operator("},
        {"int operator", "function typed operator"},
        {"int a[", "variable a: int*"},
        {"using =", "none"},
        {"using", "none"},
        {"[[x", "none"},
        {"int(*", "none"},
        {"int(*)(int)", "none"},
        {"class", "none"},
        {"* ship", "none"},
        {"~", "none"},
        {"\"C\"", "none"},
        {"alignas", "none"},
        {"int \"a", "none"},
        {"\\", "none"},
    };
    ExpectLines(rows, false);
}

TEST(ReadDeclaration, Forward) {
    const Row rows[] = {
        {"class Ship", "forward Ship"},
        {"class ExportedByShips Ship", "forward Ship"},
        {"class SHIPS_API Ship", "forward Ship"},
        {"struct __attribute__((packed))Ship", "forward Ship"},
        {"template <class T,class U = int> struct API Box", "forward Box"},
        {"enum class Side:int", "forward Side"},
        {"enum struct Side", "forward Side"},
        {"union Value", "forward Value"},
        {"namespace other = sea", "none"},
        {"struct DIR folder", "variable folder: struct DIR"},
        {"struct Ship Tug", "variable Tug: struct Ship"},
        {"struct SEA::Ship Tug", "variable Tug: struct SEA::Ship"},
        {"struct Ship* tug", "variable tug: struct Ship*"},
        {"struct Ship make()", "function typed make | ()"},
        {"struct Ship make()const", "function typed make | ()"},
        {"typedef struct Ship", "none"},
        {"class A1 B", "forward B"},
    };
    ExpectLines(rows, false);
}

TEST(DeclarationText, WhatStandsBehindArguments) {
    for (const char* text : {"= delete", ":_depth(1)", "(int)", "noexcept", "override", "final", "try",
                             "throw(Bad)", "requires x"})
        EXPECT_TRUE(BelongsBehindArguments(text)) << text;
    for (const char* text :
         {"const int depth", "volatile int depth", "int depth", "finally", "", ";", "* depth"})
        EXPECT_FALSE(BelongsBehindArguments(text)) << text;
}

TEST(DeclarationText, TypesInTheOrderOfTheText) {
    struct {
        const char* text;
        const char* type; // as a table tells it
        const char* written;
    } const rows[] = {
        {"const char* const name", "const char const*", "const char* const"},
        {"char const* name", "char const*", "char const*"},
        {"const char* const names[2]", "const char const**", "const char* const*"},
        {"Ship name", "Boat", "Boat"},
        {"void(*name)(int)", "void", "void"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(AsWritten(row.type, ReadDeclaration(row.text, false).names.front()), row.written)
            << row.text;
}

} // namespace
