#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/FactProperties.h"
#include "support/FactText.h"

namespace {

using namespace ostraka::answers;

struct Row {
    const char* about;
    Dialect dialect;
    std::string_view text;
    std::string_view outline;
};

// Declarations one a line, deeper scopes further in; `+`, `#` and `-` are public, protected and private.
const Row rows[] = {
    {"words and macros before and behind the names of classes", Dialect::Cpp,
     R"(class API Name final : public A<int>, virtual public ns::B { int a; };
struct Ship FINAL : Hull, private Side { };
ALIGNED(class) Tug { int power; };
PACK(struct Mark { int depth; };)
class EXPORT_API Buoy; class Tide TRAIL { };
class __attribute__((visibility("default"))) [[nodiscard]] alignas(16) Lamp { };
struct DLL(x) Quay : Base<(1 > 2)>::Inner { };
class Dock::Gate : protected virtual Door { friend class Key; friend int Open(Gate&); };
struct { int length; } rope, *ropes; struct : Mast { } sail;
int after;
)",
     R"(class Name : public A<int>, virtual public ns::B {}
  -variable a: int
struct Ship : public Hull, private Side {}
class Tug {}
  -variable power: int
struct Mark {}
  +variable depth: int
class Buoy forward
class Tide {}
class Lamp {}
struct Quay : public Base<(1> 2)>::Inner {}
class Dock::Gate : virtual protected Door {}
  -function Open(Gate&): int friend
struct {}
  +variable length: int
variable rope
variable ropes: *
struct : public Mast {}
variable sail
variable after: int
)"},
    {"macros that stand for types", Dialect::Cpp,
     R"(class Fleet { LIST( Ship ) ships; static Tug* Strongest(LIST(Tug)& tugs, int least); NUBLISTV(X) All(); MARK; };
LIST(Tug) all, more; typedef SEQUENCE(octet) Signature;
typedef GLint (ENTRYP Call)(int); typedef HG (WINAPI * Other) (int); typedef float float4 __attribute__((vector_size(16)));
)",
     R"(class Fleet {}
  -variable ships: LIST(Ship)
  -function Strongest(LIST(Tug)& tugs, int least): Tug* static
  -function All(): NUBLISTV(X)
variable all: LIST(Tug)
variable more: LIST(Tug)
typedef Signature: SEQUENCE(octet)
typedef Call: GLint(*)(int)
typedef Other: HG(*)(int)
typedef float4: float
call MARK()
)"},
    {"a class that is only named is no class", Dialect::Cpp,
     R"(class Ship* flag; struct stat status = {0}, *others; struct Tug Tow(struct Tug tug);
class Hull { struct Later* later; enum Side side; class Inner; };
)",
     R"(variable flag: Ship*
variable status: stat
variable others: stat*
function Tow(struct Tug tug): Tug
class Hull {}
  -variable later: Later*
  -variable side: Side
  -class Inner forward
)"},
    {"a body of a macro that nothing closes holds the rest", Dialect::Cpp, "v(;){ Tug tug;\nint depth;",
     R"(  variable tug: Tug
  variable depth: int
call v(;)
fault bracket 1:5
)"},
    {"a body ends with the one around it, where one brace closes both", Dialect::Cpp, R"(){
 f()
{
 {
}
Tug after;)",
     R"(variable after: Tug
fault bracket 1:1
fault bracket 1:2
fault bracket 4:2
)"},
    {"a function whose statement ends behind what it stands in", Dialect::Cpp, R"(){
 f()
{
 d l(i x);
e f)",
     R"(      function l(i x): d
variable f: e
fault bracket 1:1
fault bracket 1:2
fault bracket 3:1
)"},
    {"what stands behind a macro of two words, as far in as it", Dialect::Cpp,
     "Flag Set(x)\nShip* Make();\nvoid After();\n", R"(function Make(): Ship*
function After(): void
)"},
    {"a template ends with what it stands in", Dialect::Cpp, "{{template<>class B<>{",
     R"(    class<> B special {}
fault bracket 1:1
fault bracket 1:2
fault bracket 1:22
)"},
    {"a class behind a line that ends in a stray parenthesis", Dialect::Cpp, R"(a)
class Tug { int power; };
b)
class)",
     R"(class Tug {}
  -variable power: int
fault bracket 1:2
fault bracket 3:2
fault head 1:1
fault head 3:1
fault head 4:1
)"},
    {"lines of macros without semicolons", Dialect::Cpp, R"(NS_BEGIN
FLAG OTHER_FLAG(x)
class Ship : public Hull {
  OBJECT
  PROPERTY(int x READ x)
public:
  WORD
  int a;
public slots:
  METHODS(1)
  void Move();
signals:
  void Moved();
};
TIE_Ship(Ship, 2)
WORD_BEGIN
typedef int Depth;
WORD_END
TEST(Suite, Name) { int local; }
LOG(x) OTHER(y)
Ship* Make();
)",
     R"(class Ship : public Hull {}
  +variable a: int
  +function Move(): void
  +function Moved(): void
typedef Depth: int
  variable local: int
function Make(): Ship*
call PROPERTY(int x READ x)
call METHODS(1)
call TIE_Ship(Ship, 2)
call TEST(Suite, Name)
call LOG(x)
call OTHER(y)
)"},
    {"macros in heads of functions", Dialect::Cpp, R"(API(int) Moor(Ship* ship);
API const char* Name(void) NOTHROW ATTR(1, 2);
static INLINE int CALL Ship::Cast(int) const NOEXCEPT_IF(x) { }
extern "C" API void Hail(int)
     NOTHROW;
METHOD(Sink)(int depth);
main() { }
)",
     R"(function Moor(Ship* ship): int
function Name(): const char*
function Ship::Cast(int): int static const {}
function Hail(int): void
function Sink(int depth)
function main() {}
)"},
    {"namespaces", Dialect::Cpp, R"(namespace std VISIBILITY(default) { int inside; }
namespace a::b::inline c { int x; }
namespace [[deprecated]] old { } namespace { int hidden; } inline namespace v1 { }
namespace fs = std::filesystem;
using namespace a::b; using a::x, fs::path; using Depth = unsigned long;
extern "C" { struct Mark { int d; }; namespace d { } void Call(int); } extern "C++" int single;
)",
     R"(namespace std {}
  variable inside: int
namespace a {}
  namespace b {}
    namespace c inline {}
      variable x: int
namespace old {}
namespace {}
  variable hidden: int
namespace v1 inline {}
alias fs: std::filesystem
typedef Depth: unsigned long
struct Mark {}
  +variable d: int
namespace d {}
function Call(int): void
variable single: int
using namespace a::b
using a::x
using fs::path
)"},
    {"templates", Dialect::Cpp,
     R"(template <class T, int N = 3> class Box : public Base<T>::Inner { T item; };
template <> class Box<int, 4> { }; template class Box<char, 1>;
template <class T> class Box<T*, 1> { template <class U = T> void Put(U item) { U local; } };
template <class T> template <class U> void Box<T>::Put(U item) { }
template <template <class> class C, typename... Ts> requires Small<C<int>> && (N > 2) struct Pack;
template <Small T> auto Biggest(const T& a, Ts&&... all) -> decltype(a + 1) requires (sizeof(T) > 1) { }
template <class T> constexpr T pi = T(3.14); template <class T> using List = std::vector<T>;
template <class T> concept Small = sizeof(T) < 4; void Take(Small auto x);
)",
     R"(class<class T, int N => Box : public Base<T>::Inner {}
  -variable item: T
class<> Box special {}
class<class T> Box special {}
  -function<class U => Put(U item): void {}
    variable local: U
function<class T, class U> Box<T>::Put(U item): void {}
struct<template<class> class C, typename... Ts> Pack forward
function<Small T> Biggest(const T& a, Ts&&... all): decltype(a+1)requires(sizeof(T)> 1) {}
variable<class T> pi: T constexpr
typedef<class T> List: std::vector<T>
concept<class T> Small
function Take(Small auto x): void
)"},
    {"constructors and what may follow arguments", Dialect::Cpp, R"(class Ship {
public:
  Ship() : Hull(1), depth{2}, names{"a", "b"} { int local; }
  Ship(const Ship&) = delete; explicit API Ship(int d) noexcept(true) : depth(d) {}
  virtual ~Ship() = default;
  virtual void Go(int, ...) = 0; void Stop() noexcept override final;
  static int Count(); auto Name() const& -> std::string;
};
Ship::Ship(int d) try : depth(d) { } catch (...) { int failed; }
Ship::~Ship() { }
int Ship::count = 0; const Ship& Other::Ref(); Ship* Ship::next;
Ship::Inner Ship::Get(int n = f(1, 2)) const { }
)",
     R"(class Ship {}
  +function Ship() ctor {}
    variable local: int
  +function Ship(const Ship&) ctor deleted
  +function Ship(int d) ctor {}
  +function ~Ship() virtual dtor defaulted
  +function Go(int, ...): void virtual pure
  +function Stop(): void override
  +function Count(): int static
  +function Name(): std::string const
function Ship::Ship(int d) ctor {}
function Ship::~Ship() dtor {}
variable Ship::count: int
function Other::Ref(): const Ship&
variable Ship::next: Ship*
function Ship::Get(int n =): Ship::Inner const {}
)"},
    {"operators in every spelling", Dialect::Cpp, R"(struct V {
  V& operator=(V&&); bool operator==(const V&) const = default; auto operator<=>(const V&) const;
  V operator()(int a); int& operator[](int i); V* operator->(); V operator++(int); V operator,(V);
  bool operator<(V); bool operator&&(V); V& operator<<=(int); V operator->*(int);
  void* operator new(std::size_t size); void operator delete[](void* p);
  operator bool() const; explicit operator const char*() const { return 0; } operator std::vector<int>&();
  template <class T> operator T*(); friend V operator+(V, V) { }
};
V::operator bool() const { } bool ns::V::operator==(const V&) const { }
std::ostream& operator<<(std::ostream& out, const V& v) { } long operator""_deg(long); V operator"" _rad(char); V operator~(V);
)",
     R"(struct V {}
  +function operator =(V&&): V&
  +function operator ==(const V&): bool const defaulted
  +function operator <=>(const V&): auto const
  +function operator ()(int a): V
  +function operator [](int i): int&
  +function operator ->(): V*
  +function operator ++(int): V
  +function operator ,(V): V
  +function operator <(V): bool
  +function operator &&(V): bool
  +function operator <<=(int): V&
  +function operator ->*(int): V
  +function operator new(std::size_t size): void*
  +function operator delete[](void* p): void
  +function operator bool(): bool const converts
  +function operator const char*(): const char* const converts {}
  +function operator std::vector<int>&(): std::vector<int>& converts
  +function<class T> operator T*(): T* converts
  +function operator +(V, V): V friend {}
function V::operator bool(): bool const converts {}
function ns::V::operator ==(const V&): bool const {}
function operator <<(std::ostream& out, const V& v): std::ostream& {}
function operator ""_deg(long): long
function operator ""_rad(char): V
function operator ~(V): V
)"},
    {"bit fields, arrays, pointers to functions and to members", Dialect::Cpp, R"(struct Odd {
  unsigned flag : 1, wide : 3 = 2; int : 4; int list[4][5], *p = nullptr, (*rows)[3];
  void (*call)(int, char), (*table[2])(); int (Odd::*method)(int) const; int Odd::*member;
  int (*pick(int which))(char); std::function<void(int, Odd&)> held = [](int, Odd&) {};
  Odd const* const last; long long unsigned big = sizeof(int) > 4 ? 1 : 2; std::map<int, std::vector<int>> all{};
};
typedef void (*Callback)(int); typedef int Numbers[3], Number; typedef int (Odd::*Method)(int); using Fn = void (*)(int);
void f(void (Odd::*go)(int), int (*make)(void), int list[], char** argv, std::map<int, Odd> m = {}, unsigned = 0, ...);
)",
     R"(struct Odd {}
  +variable flag: unsigned
  +variable wide: unsigned
  +variable list: int[][]
  +variable p: int*
  +variable rows: int(*)[3]
  +variable call: void(*)(int, char)
  +variable table: void(*)()
  +variable method: int(*)(int)const
  +variable member: int Odd::*
  +function pick(int which): int(*)(char)
  +variable held: std::function<void(int, Odd&)>
  +variable last: const Odd* const
  +variable big: long long unsigned
  +variable all: std::map<int, std::vector<int>>
typedef Callback: void(*)(int)
typedef Numbers: int[]
typedef Number: int
typedef Method: int(*)(int)
typedef Fn: void(*)(int)
function f(void(*)(int) go, int(*)(void) make, int* list, char** argv, std::map<int, Odd> m =, unsigned =, ...): void
)"},
    {"enums", Dialect::Cpp, R"(enum Color { Red, Green = 1 << 2, Blue = f(1, 2), }; enum { Unnamed } value;
enum class Side : unsigned char { Port [[deprecated]], Starboard = A<1, 2>::x }; enum struct Deep : int; enum API Words { W1 };
typedef enum _tag { T1 } Tag, *TagP; enum Color color = Red; enum Color Get(enum Color c);
)",
     R"(enum Color {}
  enumerator Red
  enumerator Green
  enumerator Blue
enum {}
  enumerator Unnamed
variable value
enum Side scoped {}
  enumerator Port
  enumerator Starboard
enum Deep scoped forward
enum Words {}
  enumerator W1
enum _tag {}
  enumerator T1
typedef Tag: _tag
typedef TagP: _tag*
variable color: Color
function Get(enum Color c): Color
)"},
    {"structs and unions of C", Dialect::Cpp,
     R"(typedef struct node { struct node* next; union { int i; char c; }; struct { int deep; } named; } Node, *NodeP;
typedef struct { int x; } Point; typedef const struct stat* Stat; union U { int a; } __attribute__((packed));
int main(argc, argv) int argc; char **argv; { }
static int Add(a, b)
  int a, *b;
{ int sum; }
)",
     R"(struct node {}
  +variable next: node*
  +union {}
    +variable i: int
    +variable c: char
  +struct {}
    +variable deep: int
  +variable named
typedef Node: node
typedef NodeP: node*
struct {}
  +variable x: int
typedef Point
typedef Stat: const stat*
union U {}
  +variable a: int
function main(int argc, char** argv): int {}
function Add(int a, int* b): int static {}
  variable sum: int
)"},
    {"what bodies declare", Dialect::Cpp, R"(void f() {
  auto [a, b] = pair; int x = 1, *y = &x, z[3] = {1, 2}; Ship quay("x"), other{1}, *third = new Ship(1);
  for (int i = 0, n = 3; i < n; ++i) { int inner; }
  for (const auto& [key, value] : table) use(key);
  if (auto* found = Find(x); found != nullptr) int deep; else { int e; }
  while (Ship* next = it.Next()) { }
  switch (int kind = Kind()) { case A::B: { int r; } default: int w; }
  try { int tried; } catch (const Error& error) { int handled; } catch (...) { }
  using Local = int; typedef int Other; struct Inside { int member; } side; enum { One };
  std::lock_guard<std::mutex> lock(m); unsigned long long big = 1'000; extern int outside; int fn(int a, char b);
  do { T&& forward = std::move(x); } while (x);
end:
  return;
}
)",
     R"(function f(): void {}
  variable a: auto binding
  variable b: auto binding
  variable x: int
  variable y: int*
  variable z: int[]
  variable quay: Ship
  variable other: Ship
  variable third: Ship*
    variable i: int
    variable n: int
      variable inner: int
    variable key: auto each binding
    variable value: auto each binding
    variable found: auto*
    variable deep: int
      variable e: int
    variable next: Ship*
    variable kind: int
        variable r: int
      variable w: int
    variable tried: int
    variable error: const Error&
      variable handled: int
  typedef Local: int
  typedef Other: int
  struct Inside {}
    +variable member: int
  variable side: Inside
  enum {}
    enumerator One
  variable lock: std::lock_guard<std::mutex>
  variable big: unsigned long long
  variable outside: int extern
  function fn(int a, char b): int
    variable forward: T&&
  label end
)"},
    {"what only looks like a declaration", Dialect::Cpp, R"(void f() {
  x = y; Call(x); a.b(c); p->q(r); std::cout << x << y; delete x; return x; goto end; throw Error("x"); Ship(x);
  Foo::Call(x); x * 2; i++; a[i] = b; if (x == y) z = 1; new Ship(1); co_await x; assert(x && y); !x; f<int>(x);
}
)",
     R"(function f(): void {}
)"},
    {"lambdas", Dialect::Cpp, R"(void f() {
  auto l = [x, &y, copy = x + 1, moved{std::move(y)}](int p, auto... rest) mutable -> int { int local; };
  Call([&](Ship* s) { int inner; }, [=] { int bare; }, a[i](x));
  std::sort(a, b, []<class T>(T m, T n) noexcept { return m < n; });
}
)",
     R"(function f(): void {}
  variable l: auto
    variable copy: auto
    variable moved: auto
    argument p: int
    argument rest: auto...
    variable local: int
    argument s: Ship*
    variable inner: int
    variable bare: int
    parameter T: class
    argument m: T
    argument n: T
)"},
    {"macros that stand for loops", Dialect::Cpp, R"(void f() {
  EACH(Ship* ship, ships) { int inside; }
  each (const std::pair<int, int>& p, map) { }
  LOOP(i, 10) { int x; }
  int after;
}
)",
     R"(function f(): void {}
    variable ship: Ship*
      variable inside: int
    variable p: const std::pair<int, int>&
      variable x: int
  variable after: int
)"},
    {"of branches that replace each other the first counts, others count beside it", Dialect::Cpp, R"(#if A
class Ship : public A {
#else
class Ship : public B {
#endif
  int m;
#if C
  int c;
#else
  int d;
#endif
};
#if 0
it's "hidden
#elif Y
int other;
#endif
#ifdef __cplusplus
extern "C" {
#endif
int inC(void);
#ifndef __cplusplus
int onlyC;
#else
}
#endif
void f(int a)
#ifdef D
{ int x; /* }
#endif */
#else
{ int y;
#endif
}
int after;
)",
     R"(class Ship : public A {}
  -variable m: int
  -variable c: int
  -variable d: int
variable other: int
function inC(): int
function f(int a): void {}
  variable x: int
variable after: int
)"},
    {"literals, numbers and comments", Dialect::Cpp,
     R"~(auto s = R"x(class No { )" )x"; int a = 0x1'000; char q = '"', r = '\''; const char* t = u8R"(
#define NO
)"; int b;
const wchar_t* w = L"x\"y"; int d = 1e-5, e = 0xe+1; /* class No { */ int f; // class No {\
int g;
int z = "\
x"[0]; int u = U'\x1';
)~",
     R"(variable s: auto
variable a: int
variable q: char
variable r: char
variable t: const char*
variable b: int
variable w: const wchar_t*
variable d: int
variable e: int
variable f: int
variable z: int
variable u: int
)"},
    {"a byte order mark", Dialect::Cpp,
     "\xef\xbb\xbf"
     R"(int first;
)",
     R"(variable first: int
)"},
    {"an open brace costs its own function", Dialect::Cpp, R"(void f() {
  if (x) {
    int a;
}
int g(int first,
      int second) {
  int b;
}
class C { int c; };
)",
     R"(function f(): void {}
      variable a: int
function g(int first, int second): int {}
  variable b: int
class C {}
  -variable c: int
fault bracket 2:10
)"},
    {"an open brace of a function", Dialect::Cpp, R"(void f()
{
  for (;;)
  {
    int a;

void g()
{
  int b;
}
int after;
)",
     R"(function f(): void {}
      variable a: int
function g(): void {}
  variable b: int
variable after: int
fault bracket 2:1
fault bracket 4:3
)"},
    {"a brace too many", Dialect::Cpp, R"(class A {
  void f() {
    }
  }
  int m;
};
int after;
)",
     R"(class A {}
  -function f(): void {}
  -variable m: int
variable after: int
fault bracket 3:5
)"},
    {"open parentheses and squares", Dialect::Cpp, R"(int before; int f( {
  int in;
};
class A { void g(int a; int b; int t[] = { 1, (2, 3 }; int c; };
int after; ) ]
)",
     R"(variable before: int
class A {}
  -variable b: int
  -variable t: int[]
  -variable c: int
variable after: int
fault bracket 4:17
fault bracket 4:47
fault bracket 5:14
fault head 1:13
fault head 4:11
)"},
    {"open literals and comments", Dialect::Cpp, R"(int before; const char* s = "open
int between; char c = 'x;
auto r = R"(open
int after; /* open
int never;
)",
     R"(variable before: int
variable s: const char*
variable between: int
variable c: char
variable r: auto
variable after: int
fault literal 1:29
fault literal 2:23
fault literal 3:11
fault comment 4:12
)"},
    {"modules, interfaces and values", Dialect::Idl, R"(module Sea {
  interface Hull; typedef sequence<long> Numbers; exception Sunk { string reason; };
  abstract interface Base { };
  interface Ship : Hull, Deep::Thing {
    readonly attribute string name; attribute long depth, width; const long limit = 3;
    void moor(in string quay, inout long n, out Ship other) raises (Sunk, Other);
    oneway void hail(in any x);
    enum Side { Port };
  };
  valuetype Cargo : truncatable Goods, More supports Ship { private string a; public long b; factory create(in long x); void f(); };
  valuetype Depths sequence<long>;
  union Value switch (long) { case 1: long number; case Ship::Port: case 3: string text; default: octet raw; };
  struct Row { sequence<string, 4> names; unsigned long long n[3]; };
};
)",
     R"(namespace Sea {}
  interface Hull forward
  typedef Numbers: sequence<long>
  exception Sunk {}
    +variable reason: string
  interface Base {}
  interface Ship : public Hull, public Deep::Thing {}
    +variable name: string
    +variable depth: long
    +variable width: long
    +variable limit: const long
    +function moor(string quay, long n, Ship other): void
    +function hail(any x): void
    +enum Side {}
      +enumerator Port
  class Cargo : public Goods, public More, public Ship {}
    -variable a: string
    +variable b: long
    +function create(long x): factory
    +function f(): void
  typedef Depths: sequence<long>
  union Value {}
    +variable number: long
    +variable text: string
    +variable raw: octet
  struct Row {}
    +variable names: sequence<string, 4>
    +variable n: unsigned long long[]
)"},
    {"interfaces of components, with attributes in brackets", Dialect::Idl, R"(import "unknown.idl";
[ object, uuid(1234-abcd), helpstring("x;y") ]
interface IShip : IUnknown {
  [propget, id(1)] HRESULT Name([out, retval] BSTR* name);
  HRESULT Moor([in] BSTR quay, [in, out] long* n, [in, size_is(n)] byte data[]);
  typedef enum Kind { K1 } Kind;
  cpp_quote("x")
};
[uuid(5678)] library Lib {
  importlib("stdole2.tlb");
  [uuid(9)] coclass Ship { [default] interface IShip; [source] dispinterface Events; };
  dispinterface Events { properties: methods: [id(1)] void Sunk(); };
};
interface Forward;
)",
     R"(interface IShip : public IUnknown {}
  +function Name(BSTR* name): HRESULT
  +function Moor(BSTR quay, long* n, byte* data): HRESULT
  +enum Kind {}
    +enumerator K1
  +typedef Kind: Kind
namespace Lib {}
  class Ship : public IShip, public Events {}
  interface Events {}
    +function Sunk(): void
interface Forward forward
call cpp_quote("x")
call importlib("stdole2.tlb")
)"},
};

FileFacts FactsOf(std::string_view text, Dialect dialect) {
    return ReadFacts(TokenList(text), Depth::Bodies, dialect);
}

TEST(Facts, Outlines) {
    for (const Row& row : rows) {
        EXPECT_EQ(FactText::Of(FactsOf(row.text, row.dialect)), row.outline) << row.about;
        EXPECT_EQ(FactProperties::FaultIn(row.text, row.dialect), "") << row.about;
    }
}

TEST(Facts, IncludesAndMacros) {
    const FileFacts facts = FactsOf("#include <a/b.h> // c\n # include \"d.h\"\n#include NAME\n"
                                    "#define DEPTH(a, b) a + \\\n  b /* x */\n#define EMPTY\n",
                                    Dialect::Cpp);
    std::string shown;
    for (const IncludeName& each : facts.includes) shown.append(1, each.delimiter).append(each.name) += '\n';
    for (const MacroDefined& each : facts.macros)
        shown.append(each.name).append(each.arguments).append(each.value) += '\n';
    EXPECT_EQ(shown, "<a/b.h\n\"d.h\nDEPTH(a, b)a + \\\n  b /* x */\nEMPTY\n");
}

// Files of other people, beside the rows.
std::vector<std::pair<std::string, Dialect>> Texts() {
    std::vector<std::pair<std::string, Dialect>> texts;
    for (const Row& row : rows) texts.emplace_back(row.text, row.dialect);
    for (const auto& entry : std::filesystem::recursive_directory_iterator(OSTRAKA_EXAMPLES)) {
        const std::string ending = entry.path().extension();
        if (ending != ".h" && ending != ".cpp" && ending != ".idl") continue;
        std::ifstream file(entry.path(), std::ios::binary);
        texts.emplace_back(std::string(std::istreambuf_iterator<char>(file), {}), DialectOf(ending));
    }
    return texts;
}

TEST(Facts, HoldWhateverElseIsRead) {
    const auto texts = Texts();
    std::vector<std::string> first;
    for (const auto& [text, dialect] : texts) {
        EXPECT_EQ(FactProperties::FaultIn(text, dialect), "") << text;
        first.push_back(FactText::Of(FactsOf(text, dialect)));
    }
    for (std::size_t i = texts.size(); i-- > 0;)
        EXPECT_EQ(FactText::Of(FactsOf(texts[i].first, texts[i].second)), first[i]) << texts[i].first;
}

// Where the statement begins in which the token stands: behind the last end of one that no parentheses hold.
std::uint32_t StatementAround(const TokenList& tokens, int cut) {
    std::uint32_t begin = 0;
    for (int i = 0; i < cut; ++i) {
        const Token& token = tokens[i];
        if (token.Is('(') || token.Is('[')) {
            if (token.partner < 0 || token.partner >= cut) break;
            i = token.partner;
        } else if (token.Is(';') || token.Is('{') || token.Is('}')) {
            begin = token.begin + token.size;
        }
    }
    return begin;
}

// What is there by itself, with its place; arguments and the like go with what they belong to.
std::set<std::string> WholeBefore(const FileFacts& facts, std::size_t past) {
    std::set<std::string> names;
    for (const Declared& each : facts.declared) {
        if (each.past > past || each.kind == FactKind::Argument || each.kind == FactKind::TemplateParameter)
            continue;
        if (each.kind == FactKind::Enumerator &&
            facts.declared[static_cast<std::size_t>(each.typeOf)].past > past)
            continue;
        std::string name(each.qualifier);
        names.insert(name.append("::").append(each.name).append(": ").append(each.type) + " at " +
                     std::to_string(each.at));
    }
    return names;
}

TEST(Facts, StandBeforeACut) {
    constexpr int cuts = 200; // of each text
    for (const auto& [text, dialect] : Texts()) {
        const TokenList tokens(text);
        if (!tokens.Faults().empty()) continue;
        const FileFacts whole = ReadFacts(tokens, Depth::Bodies, dialect);
        for (int i = 1; i <= cuts; ++i) {
            const int cut = static_cast<int>(static_cast<long>(tokens.Count()) * i / (cuts + 1));
            const std::string before = text.substr(0, tokens[cut].begin);
            const std::set<std::string> kept = WholeBefore(FactsOf(before, dialect), before.size());
            for (const std::string& name : WholeBefore(whole, StatementAround(tokens, cut)))
                EXPECT_TRUE(kept.contains(name)) << name << " in\n" << before;
        }
    }
}

} // namespace
