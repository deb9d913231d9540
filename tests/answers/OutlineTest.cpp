#include <string>

#include <gtest/gtest.h>

#include <answers/facts/Outline.h>

namespace {

using namespace ostraka::answers;

const char* WordOf(Access access) {
    constexpr const char* words[] = {"", " public", " protected", " private"};
    return words[static_cast<int>(access)];
}

// What an outline says of a text, an entry a line: place of the name, kind, scope and name, type or
// arguments, access, and the text where it isn't shown already.
std::string OutlineText(std::string_view text) {
    const TokenList tokens(text);
    const FileFacts facts = ReadFacts(tokens, Depth::Declarations);
    std::string outline;
    const OutlineEntry* last = nullptr;
    const std::vector<OutlineEntry> entries = OutlineOf(tokens, facts);
    for (const OutlineEntry& entry : entries) {
        outline += std::string(2 * static_cast<std::size_t>(entry.depth), ' ');
        outline += std::to_string(entry.namePlace.line) + ":" + std::to_string(entry.namePlace.column) + " ";
        outline += NameOf(entry.kind);
        if (entry.declared >= 0) {
            const Declared& declared = facts.declared[static_cast<std::size_t>(entry.declared)];
            const std::string sort = SortOf(facts, declared);
            if (sort != "plain") outline += " [" + sort + "]";
        }
        outline += " " + (entry.scope.empty() ? entry.name : entry.scope + "::" + entry.name);
        if (!entry.scope.empty() && entry.scopeKind != DeclarationKind::Class)
            outline += std::string(" in ") + NameOf(entry.scopeKind);
        if (!entry.type.empty()) outline += ": " + entry.type;
        outline += entry.arguments;
        if (entry.hasBody) outline += " {}";
        outline += WordOf(entry.access);
        if (last == nullptr || !SharesStatement(*last, entry)) outline += " | " + entry.text;
        outline += "\n";
        last = &entry;
    }
    return outline;
}

struct Row {
    const char* about;
    const char* text;
    const char* outline;
};

TEST(Outline, Rows) {
    const Row rows[] = {
        {"names, types and places in a file", R"(int depth,*high;
const char* const name = "x";
static int fathoms[3] = {1,2,3};
int Moor(int ship,char side = 'x');
int Cast()
{
}
)",
         R"(1:5 variable depth: int | int depth, *high
1:12 variable high: int*
2:19 variable name: const char* const | const char* const name = "x"
3:12 variable fathoms: int* | static int fathoms[3]
4:5 function Moor(int ship, char side = 'x') | int Moor(int ship, char side = 'x')
5:5 function body Cast() {} | int Cast()
)"},
        {"before a label members are private in a class and public elsewhere", R"(class Ship {
  int depth;
  class Hold { int size; };
public:
  void Go();
protected: int draft;
private:
  struct Side { int angle; };
public slots: void Hail();
  int after;
};
struct Tug { int power; private: int hidden; };
union Value { int whole; };
)",
         R"(1:7 class Ship | class Ship
  2:7 member Ship::depth: int private | int depth
  3:9 class Ship::Hold private | class Hold
    3:20 member Ship::Hold::size: int private | int size
  5:8 method Ship::Go() public | void Go()
  6:16 member Ship::draft: int protected | int draft
  8:10 struct Ship::Side private | struct Side
    8:21 member Ship::Side::angle in struct: int public | int angle
  9:20 method Ship::Hail() public | void Hail()
  10:7 member Ship::after: int public | int after
12:8 struct Tug | struct Tug
  12:18 member Tug::power in struct: int public | int power
  12:38 member Tug::hidden in struct: int private | int hidden
13:7 union Value | union Value
  13:19 member Value::whole in union: int public | int whole
)"},
        {"every class, its record and its methods, and where they are implemented",
         R"(class Ship { int a1(); public: int b1(); };
class Tug { int c1(); protected: int d1(); };
class Buoy: public Ship { int e1(); };
int Ship::a1() { }
int Ship::b1() { }
int Tug::c1() { }
int Tug::d1() { }
int Buoy::e1() { }
void Buoy::none() { }
)",
         R"(1:7 class Ship | class Ship
  1:18 method Ship::a1() private | int a1()
  1:36 method Ship::b1() public | int b1()
2:7 class Tug | class Tug
  2:17 method Tug::c1() private | int c1()
  2:38 method Tug::d1() protected | int d1()
3:7 class Buoy | class Buoy: public Ship
  3:31 method Buoy::e1() private | int e1()
4:11 implementation Ship::a1() {} | int Ship::a1()
5:11 implementation Ship::b1() {} | int Ship::b1()
6:10 implementation Tug::c1() {} | int Tug::c1()
7:10 implementation Tug::d1() {} | int Tug::d1()
8:11 implementation Buoy::e1() {} | int Buoy::e1()
9:12 implementation Buoy::none() {} | void Buoy::none()
)"},
        {"what stands behind the arguments", R"(class Ship final: public Base {
public:
  Ship() = default;
  explicit Ship(int depth) noexcept : depth(depth), side{3} {}
  Ship(char c) try : depth(1) { } catch (...) { }
  Ship(const Ship&) = delete;
  virtual ~Ship() override = default;
  virtual void Go() const noexcept override final;
  virtual int Pure() = 0;
  Ship(long l) noexcept(true) : side{1}, next(0) {}
  MACRO(x)
  const int depth;
};
)",
         R"(1:7 class Ship | class Ship final: public Base
  3:3 method Ship::Ship() public | Ship() = default
  4:12 method Ship::Ship(int depth) {} public | explicit Ship(int depth) noexcept
  5:3 method Ship::Ship(char c) {} public | Ship(char c)
  6:3 method Ship::Ship(const Ship&) public | Ship(const Ship&) = delete
  7:11 method Ship::~Ship() public | virtual ~Ship() override = default
  8:16 method Ship::Go() public | virtual void Go() const noexcept override final
  9:15 method Ship::Pure() public | virtual int Pure() = 0
  10:3 method Ship::Ship(long l) {} public | Ship(long l) noexcept(true)
  12:13 member Ship::depth: const int public | const int depth
)"},
        {"several names, with initialisers in braces", R"(int one{1}, *two = {2}, three{3}, four;
class Ship { int five{5}, six; };
int seven = {7}; int eight;
)",
         R"(1:5 variable one: int | int one, *two, three, four
1:14 variable two: int*
1:25 variable three: int
1:35 variable four: int
2:7 class Ship | class Ship
  2:18 member Ship::five: int private | int five, six
  2:27 member Ship::six: int private
3:5 variable seven: int | int seven
3:22 variable eight: int | int eight
)"},
        {"names behind a body", R"(struct Mark { int x; } here, *there;
typedef struct { int y; } Place, *Places;
enum Side { Port, Starboard = 2 } side;
typedef enum { Red } Color;
class Ship { enum { Lit } state; union { int a; char b; } value; };
struct Packed { int z; } __attribute__((packed));
struct Last { int w; }
)",
         R"(1:8 struct Mark | struct Mark
  1:19 member Mark::x in struct: int public | int x
1:24 variable here: Mark | here, *there
1:31 variable there: Mark*
2:9 struct  | typedef struct
  2:22 member y: int public | int y
2:27 typedef Place | Place, *Places
2:35 typedef Places
3:6 enum Side | enum Side
  3:13 enumerator Side::Port in enum | Port
  3:19 enumerator Side::Starboard in enum | Starboard = 2
3:35 variable side: Side | side
  4:16 enumerator Red | Red
4:22 typedef Color | Color
5:7 class Ship | class Ship
  5:14 enum Ship:: private | enum
    5:21 enumerator Ship::Lit private | Lit
  5:27 member Ship::state private | state
  5:34 union Ship:: private | union
    5:46 member Ship::a in union: int public | int a
    5:54 member Ship::b in union: char public | char b
  5:59 member Ship::value private | value
6:8 struct Packed | struct Packed
  6:21 member Packed::z in struct: int public | int z
7:8 struct Last | struct Last
  7:19 member Last::w in struct: int public | int w
)"},
        {"namespaces and languages",
         R"(namespace sea { class Ship { int depth; }; int Cast(); namespace deep { int bottom; } }
namespace sea::coast { enum class Tide: int { Low, High }; }
extern "C" { int cold(int); }
namespace { int hidden; }
void sea::Dive() { }
int after;
)",
         R"(1:11 namespace sea | namespace sea
  1:23 class sea::Ship in namespace | class Ship
    1:34 member sea::Ship::depth: int private | int depth
  1:48 function sea::Cast in namespace() | int Cast()
  1:66 namespace sea::deep in namespace | namespace deep
    1:77 variable sea::deep::bottom in namespace: int | int bottom
2:16 namespace sea::coast in namespace | namespace sea::coast
  2:35 enum sea::coast::Tide in namespace | enum class Tide: int
    2:47 enumerator sea::coast::Tide::Low in enum | Low
    2:52 enumerator sea::coast::Tide::High in enum | High
3:18 function cold(int) | int cold(int)
4:17 variable hidden: int | int hidden
5:11 implementation sea::Dive() {} | void sea::Dive()
6:5 variable after: int | int after
)"},
        {"types by other names", R"(typedef int Depth;
using Fathoms = int;
template <class T> using List = std::vector<T>;
typedef void Call(int);
typedef int (*Other)(int), Number;
)",
         R"(1:13 typedef Depth | typedef int Depth
2:7 typedef Fathoms | using Fathoms = int
3:26 typedef List | template <class T> using List = std::vector<T>
4:14 typedef Call | typedef void Call(int)
5:15 typedef Other | typedef int(*Other)(int), Number
5:28 typedef Number
)"},
        {"types in advance", R"(class Ship; class API Tug; struct Mark;
class sea::Buoy { int a; };
struct Box<int>::Lid { Lid(); int b; };
)",
         R"(1:7 forward Ship | class Ship
1:23 forward Tug | class API Tug
1:35 forward Mark | struct Mark
2:12 class sea::Buoy | class sea::Buoy
  2:23 member sea::Buoy::a: int private | int a
3:18 struct Box<int>::Lid | struct Box<int>::Lid
  3:24 method Box<int>::Lid::Lid in struct() public | Lid()
  3:35 member Box<int>::Lid::b in struct: int public | int b
)"},
        {"calls are no declarations", R"(NUBImplement(Ship, 3)
class Ship {
  NUBDeclare(Ship, 3);
  Tug(int);
  Ship(int);
  ~Ship();
};
Hail(x);
int Moor(int);
main() { }
)",
         R"(2:7 class Ship | class Ship
  5:3 method Ship::Ship(int) private | Ship(int)
  6:3 method Ship::~Ship() private | ~Ship()
9:5 function Moor(int) | int Moor(int)
10:1 function body main() {} | main()
)"},
        {"pointers to functions and operators", R"(void (*call)(int); int (Ship::*depth)() = 0;
void (*handler(int number))(int);
class Ship { bool operator!=(const Ship& o) const; operator bool() const; void (*ring)(int); };
)",
         R"(1:8 variable call: void(*)(int) | void(*call)(int)
1:32 variable depth: int(*)() | int(Ship::*depth)() = 0
2:8 function handler(int number) | void(*handler(int number))(int)
3:7 class Ship | class Ship
  3:19 method Ship::operator!=(const Ship& o) private | bool operator!=(const Ship& o) const
  3:52 method Ship::operator bool() private | operator bool() const
  3:82 member Ship::ring: void(*)(int) private | void(*ring)(int)
)"},
        {"several names of one statement are told once", R"(class Ship { int x, *y; static int z; };
int Ship::z = 0;
)",
         R"(1:7 class Ship | class Ship
  1:18 member Ship::x: int private | int x, *y
  1:22 member Ship::y: int* private
  1:36 member Ship::z: int private | static int z
2:11 variable Ship::z: int | int Ship::z = 0
)"},
        {"types that the table keeps",
         R"(class Ship { public: Ship* next; char* const name; Ship* const* all; };
)",
         R"(1:7 class Ship | class Ship
  1:28 member Ship::next: Ship* public | Ship* next
  1:46 member Ship::name: char* const public | char* const name
  1:65 member Ship::all: Ship* const* public | Ship* const* all
)"},
        {"ties", R"(class Ship { };
TIE_IShip(Ship);
TIE_(Ship);
TIE_IShip(Ship,3);
TIE_ IShip(Ship);
)",
         R"(1:7 class Ship | class Ship
2:5 tie Ship::IShip in namespace | TIE_IShip(Ship)
5:6 function IShip(Ship) | TIE_ IShip(Ship)
)"},
        {"a loop and a call in a body tell nothing",
         R"(void Go() { int a; class B { int c; }; if (a) { int d; } }
int after;
)",
         R"(1:6 function body Go() {} | void Go()
2:5 variable after: int | int after
)"},
        {"words of the language are no names", R"(unsigned int;
long int;
unsigned char; unsigned BYTE; const auto; unsigned DWORD;
)",
         R"(3:25 variable BYTE: unsigned | unsigned BYTE
3:52 variable DWORD: unsigned | unsigned DWORD
)"},
        {"positions behind a body that breaks off", R"(enum Side { Port })",
         R"(1:6 enum Side | enum Side
  1:13 enumerator Side::Port in enum | Port
)"},
    };
    for (const Row& row : rows) EXPECT_EQ(OutlineText(row.text), row.outline) << row.about;
}

} // namespace
