#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include <answers/resolve/Finding.h>
#include <answers/resolve/Resolver.h>
#include <answers/resolve/Uses.h>

#include "support/TemporaryFolder.h"

namespace {

using namespace ostraka::answers;

struct Mark {
    std::string file;
    std::uint32_t at = 0;
    std::string label;
};

// Several files in one text, each behind a line `== path`; `<< path` includes one. `@1@` in front of a name
// calls its place 1, and
// `^1^` asks what stands there, which is 1; `^1?^` where it is only possible, `^1 2^` for two, `^^` for
// nothing. Further marks are the test's.
class MarkedFiles {
public:
    explicit MarkedFiles(std::string_view text) {
        std::string path = "main.cpp";
        while (!text.empty()) {
            const std::string_view line = text.substr(0, text.find('\n'));
            text.remove_prefix(std::min(line.size() + 1, text.size()));
            if (line.starts_with("== ")) {
                path = line.substr(3);
                files[path];
            } else if (line.starts_with("<< ")) {
                AddLine(path, "#include \"" + std::string(line.substr(3)) + "\"");
            } else {
                AddLine(path, line);
            }
        }
        for (const auto& [name, content] : files) {
            folder.Add(name);
            std::ofstream(name, std::ios::binary) << content;
        }
    }

    std::string PathOf(const std::string& file) const { return folder.path + "/" + file; }

    // The labels at a place, or the place itself.
    std::string NameOf(const std::string& path, std::uint32_t at) const {
        const std::string file = path.substr(std::min(folder.path.size() + 1, path.size()));
        for (const Mark& each : targets)
            if (each.file == file && each.at == at) return each.label;
        const std::string before = files.contains(file) ? files.at(file).substr(0, at) : "";
        return file + ":" + std::to_string(std::count(before.begin(), before.end(), '\n') + 1) + ":" +
               std::to_string(before.size() - (before.rfind('\n') + 1) + 1);
    }

    std::vector<Mark> targets;
    std::vector<Mark> questions;

private:
    void AddLine(const std::string& path, std::string_view line) {
        std::string& content = files[path];
        for (std::size_t i = 0; i < line.size(); ++i) {
            if (line[i] != '@' && line[i] != '^') {
                content += line[i];
                continue;
            }
            const std::size_t end = line.find(line[i], i + 1);
            Mark mark{path, static_cast<std::uint32_t>(content.size()),
                      std::string(line.substr(i + 1, end - i - 1))};
            (line[i] == '@' ? targets : questions).push_back(std::move(mark));
            i = end;
        }
        content += '\n';
    }

    TemporaryFolder folder;
    std::map<std::string, std::string> files;
};

struct Row {
    const char* about;
    std::string_view text;
};

class Asked {
public:
    explicit Asked(std::string_view text, const std::vector<std::string>& headerFolders = {}) : files(text) {
        CodeBaseSettings settings;
        settings.roots = {files.PathOf("")};
        settings.roots[0].pop_back();
        for (const std::string& each : headerFolders) settings.folders.push_back(files.PathOf(each));
        base = std::make_unique<CodeBase>(settings);
        names = std::make_unique<Names>(*base);
        resolver = std::make_unique<Resolver>(*base, *names);
    }

    std::string AnswersAt(const Mark& question) {
        if (!resolver->Open(base->FileAt(files.PathOf(question.file)))) return "not read";
        std::string text;
        for (const PlaceAnswer& answer : resolver->Ask(question.at)) {
            if (!text.empty()) text += ' ';
            text += files.NameOf(base->PathOf(answer.file), answer.at) + (answer.isCertain ? "" : "?");
        }
        return text;
    }

    MarkedFiles files;
    std::unique_ptr<CodeBase> base;
    std::unique_ptr<Names> names;
    std::unique_ptr<Resolver> resolver;
};

const Row places[] = {
    {"locals shadow each other, members and what the file declares", R"(int @1@depth; void Use(int);
struct Ship { int @2@depth; int @3@draft; void Moor(int @4@depth); void Cast(); };
void Ship::Moor(int @5@depth) {
  Use(^5^depth);
  if (int @6@depth = ^3^draft) { Use(^6^depth); int @7@depth = 2; Use(^7^depth); } else Use(^6^depth);
  for (int @8@depth = 0; ^8^depth < 3; ++^8^depth) Use(^8^depth);
  for (int @9@each : all) Use(^9^each);
  Use(^5^depth); Use(this->^2^depth); Use(::^1^depth);
  switch (int @a@kind = 2) { case 1: Use(^a^kind); }
  while (int @b@next = 1) Use(^b^next);
  try { int @c@depth = 1; Use(^c^depth); } catch (const Fault& @d@fault) { Use(^d^fault); } Use(^^fault);
  auto [@e@first, @f@second] = pair; Use(^f^second, ^e^first);
late:
  Use(^^late);
}
void Ship::Cast() { Use(^2^depth); { int @g@x = 1; } int x2 = ^^x; }
)"},
    {"lambdas", R"(struct Ship { int @1@length; Ship* @2@next; };
void f(Ship* @3@ship) {
  auto @4@go = [@5@copy = ^3^ship->^2^next, ^3^ship](Ship& @6@other) { int @7@inner = ^5^copy->^1^length + ^6^other.^1^length; return ^7^inner; };
  ^4^go(*^3^ship); ^^inner;
  all.Each([](const Ship& @8@each) { return ^8^each.^1^length; });
}
)"},
    {"members of bases, through templates, typedefs, aliases and using-declarations",
     R"(namespace sea { namespace deep {
  struct Hull { int @1@depth; void @2@Sink(); struct @3@Door { int @4@width; }; typedef Hull @5@Self; };
  template <class T> struct @a@Holder { T* @6@Get(); T @7@item; };
} using deep::Hull; using Other = deep::Hull; }
typedef sea::Other @8@Named;
struct Ship : public ^8^Named { void @9@Go(); };
struct Tug : sea::deep::^a^Holder<Ship>, private virtual Ship { using Ship::^9^Go; ^3^Door @b@door; };
template <class T> struct Deck : sea::deep::Holder<T> { void Use() { this->^6^Get(); this->^7^item; } };
void f(Tug* tug, Deck<Ship>& deck, sea::Hull::Self self) {
  tug->^1^depth; tug->^6^Get()->^1^depth; tug->^2^Sink(); tug->^9^Go(); tug->^b^door.^4^width;
  deck.^7^item.^9^Go(); deck.^6^Get()->^2^Sink(); self.^1^depth;
  tug->sea::deep::Hull::^2^Sink(); Ship::^3^Door d; sea::^^nothing;
}
)"},
    {"chains, indices, casts and auto",
     R"(struct Ship { int @1@length; int @2@Cast(int) const; }; struct Quay { Ship* @3@ships[4]; Ship& @4@At(int i); Quay* @5@Next(); Quay& self() { return *this; } };
struct Order { Ship* operator->(); Ship& operator[](int i); Ship* operator()(int); };
Quay* Make();
void f(Quay& quay, Order order, void* raw) {
  quay.^5^Next()->^4^At(1).^1^length; quay.^3^ships[2]->^2^Cast(3); Make()->^5^Next()->^5^Next()->^3^ships[0]->^1^length;
  order->^1^length; order[1].^1^length; order(2)->^1^length; (&quay)->self().^3^ships[1][0].^1^length; (*quay.^5^Next()).^4^At(0);
  static_cast<Ship*>(raw)->^1^length; ((Ship*)raw)->^1^length; reinterpret_cast<const Ship&>(raw).^1^length; Ship().^1^length;
  auto @6@ship = quay.^3^ships[0]; ^6^ship->^1^length; auto& other = quay.At(2); other.^1^length; auto made = new Quay; made->^5^Next();
  const auto* cast = dynamic_cast<Quay*>(raw); cast->^5^Next(); (raw ? quay : quay).^5^Next(); for (auto* each : quay.ships) each->^1^length;
}
)"},
    {"a handle of an interface is made by a generator, perhaps with its name declared", R"(<< ship.idl
class IShip_var; class Tug { void Sink(); };
void f(const IShip_var& ship, ITug_var tug) { ship->^1^Sink(); tug->^2^Pull(); }
== ship.idl
interface IShip { HRESULT @1@Sink(in long iHow); }; interface ITug : IShip { HRESULT @2@Pull(); };
)"},
    {"elements of containers and what handles of unknown headers point to", R"(struct Ship { int @1@length; };
struct Fleet { std::vector<Ship*> @2@ships; std::map<std::string, Ship> byName; QList<Ship> list; };
void f(Fleet& fleet, std::unique_ptr<Ship> owned, const Ptr<Fleet>& handle, std::vector<std::shared_ptr<Ship>> many) {
  for (auto* each : fleet.^2^ships) each->^1^length; for (const auto& each : fleet.list) each.^1^length;
  for (auto& [name, ship] : fleet.byName) ship.^1^length; fleet.ships[1]->^1^length; fleet.ships.at(2)->^1^length; fleet.ships.back()->^1^length;
  fleet.byName["x"].^1^length; fleet.byName.find("x")->second.^1^length; owned->^1^length; owned.get()->^1^length; (*owned).^1^length;
  handle->^2^ships.front()->^1^length; for (const auto& each : many) each->^1^length; many[0]->^1^length;
  for (auto it = fleet.ships.begin(); it != fleet.ships.end(); ++it) (*it)->^1^length; std::make_unique<Ship>()->^1^length;
}
)"},
    {"overloads by how many arguments and of what types",
     R"(struct Ship { void @1@Go(); void @2@Go(int); void @3@Go(Ship*); void @4@Go(const char* name, int much = 2); void @c@Go(Ship&, Ship&, ...); int @d@At() const; int @e@At(); };
struct Tug : Ship { };
int @5@Free(double); int @6@Free(double, double); int @7@Free(Ship);
void f(Ship& ship, Tug* tug, const Ship& fixed, Unknown what) {
  ship.^1^Go(); ship.^2^Go(3); ship.^3^Go(&ship); ship.^3^Go(tug); ship.^4^Go("x"); ship.^4^Go("x", 3); ship.^c^Go(ship, ship, 1, 2);
  ^5^Free(1.5); ^6^Free(1, 2); ^7^Free(ship); fixed.^d^At(); ship.^e^At();
}
)"},
    {"a macro of several branches is each of its definitions", R"(#if defined(ONE)
#define @1@CALL one
#elif defined(TWO)
#define @2@CALL two
#endif
int f() { return ^1 2^CALL; }
)"},
    {"static members, enumerators, nested names, macros", R"(#define @m@LIMIT 3
#define @n@TWICE(x) ((x) * 2)
enum Tide { @1@Low, High }; enum class @s@Side { @2@Port, Starboard };
struct Ship { static int @3@count; enum Kind { @4@Big, Small }; enum { @5@Unnamed = 3 }; enum class Mood { @6@Calm }; struct Mast { int @7@height; static Mast* @8@Make(); }; union { int @9@raw; char bytes; }; struct { int @a@deep; } @b@inner; };
int f(Ship s) {
  Ship::^3^count; Ship::^4^Big; Ship::Kind::^4^Big; Ship::^5^Unnamed; Ship::Mood::^6^Calm; ^1^Low; Tide::^1^Low; ^s^Side::^2^Port; ^^Port;
  Ship::Mast::^8^Make()->^7^height; s.^9^raw; s.^b^inner.^a^deep; ^n^TWICE(^m^LIMIT); switch (1) { case Ship::^4^Big: break; }
}
)"},
    {"classes in bodies", R"(struct Hull { int @1@depth; }; struct Far { int width; int length; };
void f() {
  struct @2@Row : Hull { int @3@width; Row* @4@next; int @5@Sum(int @6@n) { return ^3^width + ^6^n; } } @7@one;
  ^7^one.^3^width; ^7^one.^4^next->^5^Sum(1); ^2^Row two; two.^1^depth; std::vector<Row> rows; for (auto& row : rows) row.^3^width;
  typedef struct { int @8@length; } Short; Short three; three.^8^length; auto @9@l = [] { struct In { int @a@width; } in; return in.^a^width; };
}
)"},
    {"constructors",
     R"(struct @1@Hull { Hull(int); }; struct Ship : Hull { @2@Ship(); @3@Ship(int d); int @4@depth; Hull @5@hull{1}; ~@6@Ship(); };
Ship::@7@Ship(int @8@d) : ^1^Hull(^8^d), ^4^depth(^8^d), ^5^hull{^8^d} { }
)"},
    {"namespaces: nested, unnamed, aliases, using in files and bodies",
     R"(namespace a::b { struct @1@Ship { int @2@x; }; int @3@Free(); namespace { int @4@hidden; } inline namespace v1 { int @5@versioned; } }
namespace c { int @6@Only; } namespace short_name = a::b;
void g() { a::b::^1^Ship s; short_name::^1^Ship t; s.^2^x; t.^2^x; a::b::^5^versioned; ^6?^Only; using namespace c; ^6^Only; using a::b::Free; ^3^Free(); }
namespace a { void h() { b::^1^Ship s; b::^4^hidden; } namespace b { void i() { ^1^Ship s; ^3^Free(); ^4^hidden; c::^6^Only; } } }
using namespace a; void j() { b::^1^Ship s; }
)"},
    {"an array that is named behind its class is one pointer",
     R"(struct Berth { } row[12]; void @1@Take(Berth**); void @2@Take(Berth*); void f() { ^2^Take(row); }
)"},
    {"namespaces that let in each other are left again", R"(
namespace last { int @1@Found; } namespace a { } namespace b { } namespace c { }
namespace a { using namespace b; using namespace c; } namespace a { using namespace b; using namespace c; }
namespace a { using namespace b; using namespace c; } namespace a { using namespace b; using namespace c; }
namespace b { using namespace a; using namespace c; } namespace b { using namespace a; using namespace c; }
namespace b { using namespace a; using namespace c; } namespace b { using namespace a; using namespace c; }
namespace c { using namespace a; using namespace b; } namespace c { using namespace a; using namespace b; }
using namespace a; using namespace last; void f() { ^1^Found; }
)"},
    {"of a declaration and its definition", R"(== ship.h
class Ship; void @1@Moor(int); class @2@Tug; struct @3@Full; struct @4@Full { int @5@x; }; extern int @6@depth;
class Quay { void @7@Open(); void @8@Close(int); };
== main.cpp
<< ship.h
void f(^2^Tug* t, ^4^Full* full) { ^1^Moor(1); full->^5^x; ^6^depth; }
void Quay::@9@Open() { ^8^Close(2); ^9^Open(); }
void @a@Moor(int d) { ^a^Moor(d); }
int @b@depth = 3;
void g(Quay& q) { ^a^Moor(2); ^b^depth; q.^9^Open(); }
)"},
    {"what isn't included is possible, and only where one thing is called so", R"(== other.h
struct @1@Lone { int @2@only; int @3@Call(); }; struct A { int both; }; struct B { int both; }; int @4@Global(int);
== source.cpp
static int Own(); static int hidden;
== main.cpp
void f(Unknown u) { ^1?^Lone x; x.^2?^only; u.^2?^only; u.^3?^Call(); u.^^both; ^4?^Global(1); ^^hidden; ^^Nowhere; u.^^nowhere; }
)"},
    {"whatever a template or a macro may mean",
     R"(template <class @1@T, int @2@N> struct Box { ^1^T @3@items[^2^N]; template <class @4@U> ^4^U @5@Convert(^1^T* @6@from) { return ^4^U(^6^from); } };
template <class @7@T> void Fill(Box<^7^T, 3>& box) { box.^3^items[0]; box.template ^5^Convert<int>(nullptr); }
template <class Q> void Box<Q, 2>::Other() { ^3^items; }
)"},
    {"C", R"(typedef struct node { struct node* @1@next; int @2@value; } Node, *NodeP;
struct @3@list { struct node @4@head; NodeP @5@tail; enum Color { @6@Red } color; };
int f(struct ^3^list* l) { l->^4^head.^1^next->^1^next->^2^value; l->^5^tail->^2^value; return ^6?^Red; }
int g(n) Node* n; { return n->^2^value; }
)"},
    {"several meanings are told as possible or together",
     R"(struct Ship { void @1@Go(Unknown a); void @2@Go(Stranger b); }; void f(Ship s, Third t) { s.^1 2^Go(t); }
)"},
};

TEST(Resolver, AnswersAtPlaces) {
    for (const Row& row : places) {
        Asked asked(row.text);
        for (const Mark& question : asked.files.questions)
            EXPECT_EQ(asked.AnswersAt(question), question.label)
                << row.about << ", at " << asked.files.NameOf(asked.files.PathOf(question.file), question.at);
    }
}

// What an include means: beside the file, in the folders that were named, then the nearest path that ends so.
TEST(CodeBase, FindsHeaders) {
    const Asked asked(
        "== a/main.cpp\n== a/near.h\n== a/gui/frame.h\n== b/gui/frame.h\n== b/deep/gui/frame.h\n== b/only.h\n"
        "== inc/named.h\n== b/named.h\n== b/string\n== b/vector.h\n== b/xonly.h\n== b/keys.def\n"
        "== libc/stdio.h\n== libc/stdlib.h\n== libc/sys/types.h\n== b/string.h\n== a/deep/xonly.h\n",
        {"inc"});
    struct Header {
        const char* from;
        const char* name;
        char delimiter;
        const char* found;
        IncludeRule rule;
    };
    const Header headers[] = {
        {"a/main.cpp", "near.h", '"', "a/near.h", IncludeRule::Beside},
        {"a/main.cpp", "near.h", '<', "a/near.h", IncludeRule::Ending},
        {"a/gui/frame.h", "../near.h", '"', "a/near.h", IncludeRule::Beside},
        {"a/main.cpp", "named.h", '<', "inc/named.h", IncludeRule::Folder},
        {"b/only.h", "named.h", '"', "b/named.h", IncludeRule::Beside},
        {"b/only.h", "gui/frame.h", '<', "b/gui/frame.h", IncludeRule::Ending},
        {"a/near.h", "gui/frame.h", '<', "a/gui/frame.h", IncludeRule::Ending},
        {"inc/named.h", "deep/gui/frame.h", '"', "b/deep/gui/frame.h", IncludeRule::Ending},
        {"a/main.cpp", "string", '<', "", IncludeRule::None},
        {"a/main.cpp", "only.h", '"', "b/only.h", IncludeRule::Ending},
        {"a/main.cpp", "nly.h", '"', "", IncludeRule::None},
        {"a/main.cpp", "gui\\frame.h", '"', "a/gui/frame.h", IncludeRule::Beside},
        {"b/only.h", "x/../deep/../gui//frame.h", '<', "b/gui/frame.h", IncludeRule::Ending},
        {"a/main.cpp", "keys.def", '"', "b/keys.def", IncludeRule::Ending},
        {"a/main.cpp", "..", '"', "", IncludeRule::None},
        {"a/main.cpp", "", '"', "", IncludeRule::None},
        // A header that includes its own name stands before another one.
        {"b/xonly.h", "xonly.h", '<', "a/deep/xonly.h", IncludeRule::Ending},
        {"inc/named.h", "named.h", '<', "b/named.h", IncludeRule::Ending},
        // Of a code base's own library of the language, never a file of that name alone.
        {"a/main.cpp", "stdio.h", '<', "libc/stdio.h", IncludeRule::Ending},
        {"a/main.cpp", "sys/types.h", '<', "libc/sys/types.h", IncludeRule::Ending},
        {"a/main.cpp", "string.h", '<', "", IncludeRule::None},
        {"a/main.cpp", "string.h", '"', "b/string.h", IncludeRule::Ending},
    };
    for (const Header& each : headers) {
        IncludeRule rule = IncludeRule::None;
        const int from = asked.base->FileAt(asked.files.PathOf(each.from));
        const int found = asked.base->FindInclude(from, each.name, each.delimiter, &rule);
        const std::string path =
            found < 0 ? "" : asked.base->PathOf(found).substr(asked.files.PathOf("").size());
        EXPECT_EQ(path, each.found) << each.name << " in " << each.from;
        EXPECT_EQ(rule, each.rule) << each.name << " in " << each.from;
    }
}

struct UsesRow {
    const char* about;
    const char* name;
    std::string_view text; // each use behind its part: `@call@`, `@call?@` where it is only possible
};

const UsesRow usesRows[] = {
    {"a class, its parts, and another of its name", "a::Ship", R"(== main.cpp
<< ship.h
a::@type@Ship* Make(const a::@type@Ship& s) { a::Tug tug; b::Ship other; auto x = static_cast<a::@type@Ship*>(0); return new a::@type@Ship; }
using namespace a; std::vector<@type@Ship> all; int @type@Ship::* Ship2; // Ship
== ship.h
namespace a { class @declaration@Ship; class @declaration@Ship { Ship(); @type@Ship* next; }; class Tug : public @base@Ship { }; }
namespace b { class Ship { }; }
)"},
    {"a method with its declaration, its body, its calls, and those of others", "Ship::Go", R"(== main.cpp
<< ship.h
void Ship::@declaration@Go(int d) { @call@Go(1); this->@call@Go(2); Tug t; t.Go(); Deck deck; deck.@call@Go(3); auto p = &Ship::@read@Go; }
void f(Unknown* u, Ship& s) { u->@call?@Go(1); s.@call@Go(2); @call?@Go(3); int Go = 2; Go++; }
== ship.h
struct Ship { void @declaration@Go(int); }; struct Tug { void Go(); }; struct Deck : Ship { };
)"},
    {"a local hides the variable of the file", "depth", R"(== main.cpp
int @declaration@depth = 1; int f() { int x = @read@depth; { int depth = 2; x += depth; } struct S { int depth; } s; s.depth = @read@depth; return ::@read@depth; }
)"},
    {"programs side by side have each their own", "", R"(== one/main.cpp
struct StrX { char* @declaration@form; char* Text(); }; char* StrX::Text() { return @read@form; } char First(StrX& s) { return s.@read@form[0]; }
== two/main.cpp
<< strx.h
char* StrX::Text() { return form; } char Last(StrX& s) { return s.form[1]; }
== two/strx.h
struct StrX { char* form; char* Text(); };
)"},
    {"what a file keeps for itself", "", R"(== one.cpp
typedef List<int> @declaration@Clean; @type@Clean all;
== two.cpp
typedef List<char> Clean; Clean all; struct Tug { Clean all; };
)"},
    {"a body elsewhere belongs to the class that it sees", "", R"(== one/strx.cpp
<< strx.h
void StrX::@declaration@Go() { } void f(StrX& s) { s.@call@Go(); }
== one/strx.h
struct StrX { void @declaration@Go(); };
== two/strx.cpp
<< strx.h
void StrX::Go() { } void g(StrX& s) { s.Go(); }
== two/strx.h
struct StrX { void Go(); };
)"},
    {"enumerators and macros are told apart by their scope", "Side::Port", R"(== main.cpp
enum class Side { @declaration@Port }; enum Other { Port }; int a = Port; Side s = Side::@read@Port;
)"},
};

TEST(Uses, OfWhatANameDeclares) {
    for (const UsesRow& row : usesRows) {
        Asked asked(row.text);
        UseSearch search(*asked.base, *asked.names, *asked.resolver);
        std::string found;
        // Without a name what the first mark declares is meant.
        const Mark& first = asked.files.targets.front();
        const auto meant = *row.name == 0
                               ? search.MeantAt(asked.base->FileAt(asked.files.PathOf(first.file)), first.at)
                               : search.DeclarationsOf(row.name);
        for (const Use& use : search.Find(meant))
            found += asked.base->PathOf(use.file).substr(asked.files.PathOf("").size()) + " " +
                     std::to_string(use.at) + " " + std::string(NameOf(use.part)) +
                     (use.isCertain ? "" : "?") + "\n";
        std::string wanted;
        for (const Mark& each : asked.files.targets)
            wanted += each.file + " " + std::to_string(each.at) + " " + each.label + "\n";
        EXPECT_EQ(found, wanted) << row.about;
    }
}

TEST(Finding, ByNameAndScope) {
    Asked asked(R"(== main.cpp
#define @7@LIMIT 3
namespace a { class @1@Ship; struct @2@Ship { void @3@Go(int d); int @4@Go() const; }; }
void a::Ship::@5@Go(int d) { int local; }
struct Tug { void @6@Go(...); }; void @8@Moor(Ship s, const char* text); enum { @9@Moving };
)");
    const std::pair<const char*, const char*> rows[] = {
        {"Ship", "1 2"},
        {"a::Ship", "1 2"},
        {"Ship::Go", "3(int d) 4() const 5(int d)"},
        {"a::Ship::Go", "3(int d) 4() const 5(int d)"},
        {"Tug::Go", "6(...)"},
        {"ip::Go", ""},
        {"LIMIT", "7"},
        {"local", ""},
        {"Mo*", "8(Ship s, const char* text) 9"},
        {"::Go", "3(int d) 4() const 5(int d) 6(...)"},
    };
    for (const auto& [name, wanted] : rows) {
        const bool byPrefix = std::string_view(name).ends_with('*');
        std::string found;
        const std::string_view asking =
            std::string_view(name).substr(0, std::string_view(name).size() - (byPrefix ? 1 : 0));
        for (const FoundDeclaration& each : FindDeclarations(*asked.base, *asked.names, asking, byPrefix)) {
            if (!found.empty()) found += ' ';
            found +=
                asked.files.NameOf(asked.base->PathOf(each.answer.file), each.answer.at) + each.signature;
        }
        EXPECT_EQ(found, wanted) << name;
    }
}

} // namespace
