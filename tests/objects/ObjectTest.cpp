#include <cstdlib>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <ostraka/objects/TAPObject.h>

#include "support/SmallStack.h"

namespace {
int blocks = 0; // of memory in use
} // namespace

[[gnu::noinline]] void* operator new(std::size_t size) {
    ++blocks;
    return std::malloc(size);
}
[[gnu::noinline]] void operator delete(void* block) noexcept {
    blocks -= block != nullptr ? 1 : 0;
    std::free(block);
}
void operator delete(void* block, std::size_t) noexcept {
    operator delete(block);
}

namespace {

// Tells how many there are.
class Counted : public TAPObject {
public:
    Counted() { ++alive; }
    ~Counted() override { --alive; }
    static inline int alive = 0;
};

// The new object stays with its parent.
TAPObject* Add(TAPObject* parent, const char* name) {
    auto* child = new Counted;
    parent->SetAttribute(name, child);
    child->Release();
    return child;
}

std::string Text(const TAPPath* path) {
    std::string text;
    for (int i = 1; path != nullptr && i <= path->Size(); ++i) {
        TAPName* name = (*path)[i];
        text += std::string("/") + name->GetName();
        name->Release();
    }
    return text;
}

TAPPath* PathOf(const std::vector<const char*>& names) {
    TAPPath* path = nullptr;
    for (const char* text : names) {
        auto* name = new TAPName(text);
        TAPPath* shorter = std::exchange(path, new TAPPath(path, name));
        if (shorter != nullptr) shorter->Release();
        name->Release();
    }
    return path;
}

// Visits all attributes by name, and sets each to a number on the way.
std::string Walk(TAPObject& object) {
    std::string text;
    const char* name = nullptr;
    for (int position = object.GetFirstAttributePosition(); position != 0;) {
        text += object.GetNextAttribute(position, name).GetString("-").CastToCharPtr();
        object.SetAttribute(name, 1);
    }
    return text;
}

TEST(TAPObject, HoldsAttributesByName) {
    TAPObject object;
    EXPECT_EQ(Walk(object), "");
    for (const char* name : {"c", "a", "b", "a"}) object.SetAttribute(name, name);
    EXPECT_TRUE(Walk(object) == "abc" && Walk(object) == "---");
    EXPECT_TRUE(object.RemoveAttribute("a") == 0 && object.RemoveAttribute("a") == 1);
    EXPECT_TRUE(object.HasAttribute("b") == 1 && object.HasAttribute("a") == 0);
    EXPECT_EQ(object.GetAttribute("a"), TAPAttr::Null);
    int behind = 3;
    EXPECT_EQ(object.GetNextAttribute(behind), TAPAttr::Null);
    EXPECT_EQ(behind, 0);
}

TEST(TAPObject, AppendsByKind) {
    TAPObject object;
    NUBListValTAPAttr two;
    two.Append("x");
    two.Append(1);
    const std::tuple<TAPAttr, TAPAttr, int, TAPAttr> rows[] = {
        {"a", "b", 0, "ab"},
        {40, 2, 0, 42},
        {2147483647, 1, 0, -2147483647 - 1},
        {TAFileName("a"), "b", 1, TAFileName("a")},
        {&object, "b", 1, &object},
        {TAPAttr::Null, 1, 1, TAPAttr::Null},
    };
    for (const auto& [first, more, result, expected] : rows) {
        object.SetAttribute("n", first);
        EXPECT_EQ(object.AppendToAttribute("n", more), result);
        EXPECT_EQ(object.GetAttribute("n"), expected);
        object.RemoveAttribute("n");
        EXPECT_TRUE(object.AppendToAttribute("n", "x") == 0 && object.AppendToAttribute("n", 1) == 0);
        EXPECT_EQ(object.GetAttribute("n"), two) << "a missing one is a list";
    }
}

TEST(TAPObject, KnowsItsPlace) {
    auto* root = new Counted;
    TAPObject* child = Add(root, "a");
    TAPObject* grandchild = Add(child, "b");
    EXPECT_EQ(root->GetPath(), nullptr);
    EXPECT_EQ(Text(grandchild->path), "/a/b");
    EXPECT_TRUE(grandchild->path->count == 1 && grandchild->path->names[1]->count == 1);
    Add(root, "c")->SetAttribute("again", grandchild);
    EXPECT_EQ(Text(grandchild->path), "/c/again");
    root->SetAttribute("moved", child);
    EXPECT_EQ(Text(grandchild->path), "/c/again") << "paths below stay";

    child->SetAttribute("text", "b");
    child->SetAttribute("nothing", static_cast<TAPObject*>(nullptr));
    const std::pair<std::vector<const char*>, TAPObject*> rows[] = {
        {{"a"}, child},
        {{"a", "b"}, grandchild},
        {{"c", "again"}, grandchild},
        {{"b", "a"}, nullptr},
        {{"a", "x"}, nullptr},
        {{"a", "text", "b"}, nullptr},
        {{"a", "nothing"}, nullptr},
        {{"a", "nothing", "b"}, nullptr},
    };
    for (const auto& [names, expected] : rows) {
        TAPPath* way = PathOf(names);
        TAPObject* found = root->GetObject(way);
        EXPECT_EQ(found, expected) << Text(way);
        EXPECT_TRUE(found == nullptr || found->count == 3);
        if (found != nullptr) found->Release();
        EXPECT_TRUE(root->count == 1 && child->count == 2 && grandchild->count == 2) << Text(way);
        way->Release();
    }
    EXPECT_EQ(root->GetObject(nullptr), nullptr);
    grandchild->AddRef();
    root->Release();
    EXPECT_EQ(Counted::alive, 1);
    EXPECT_EQ(Text(grandchild->path), "/c/again");
    grandchild->Release();
    EXPECT_EQ(Counted::alive, 0);
}

TEST(TAPPath, SharesItsNames) {
    auto* name = new TAPName("a");
    auto* path = new TAPPath(name);
    auto* copy = new TAPPath(*path);
    auto* longer = new TAPPath(path, name);
    EXPECT_EQ(name->count, 5);
    path->Release();
    EXPECT_EQ(Text(copy) + " " + Text(longer), "/a /a/a");
    for (const int position : {0, 2}) EXPECT_DEATH((*copy)[position], "TAPPath::\\[\\] : bad index\n");
    copy->Release();
    longer->Release();
    EXPECT_EQ(name->count, 1);
    name->Release();
}

TEST(TAPObject, DeepTreesNeedNoStack) {
    RunOnSmallStack([] {
        TAPObject* bottom = new Counted;
        TAPObject* root = new Counted;
        TAPObject* down = root;
        for (int i = 1; i < 100000; ++i) {
            down = Add(down, "n");
            TAPObject* up = new Counted;
            up->SetAttribute("n", bottom);
            bottom->Release();
            bottom = up;
        }
        EXPECT_EQ(down->path->Size(), 99999);
        for (TAPObject* top : {root, bottom}) top->Release();
        EXPECT_EQ(Counted::alive, 0);
    });
}

// Writes its letter when it dies, and lets go of its first attribute before.
class Leaving : public TAPObject {
public:
    Leaving(char c, std::string& text) : letter(c), told(text) {}
    ~Leaving() override {
        RemoveAttribute("first");
        told += letter;
    }

private:
    char letter;
    std::string& told;
};

// What dies tells it in the order that destructors would give that end one thing after the other, and what a
// destructor lets go of itself is gone when it goes on.
TEST(TAPObject, DiesInOrder) {
    std::string told;
    const auto make = [&told](char letter,
                              std::initializer_list<std::pair<const char*, TAPAttr>> attributes) {
        auto* object = new Leaving(letter, told);
        for (const auto& [name, value] : attributes) object->SetAttribute(name, value);
        TAPAttr holder(object);
        object->Release();
        return holder;
    };
    const auto list = [](const std::vector<TAPAttr>& elements) {
        NUBListValTAPAttr made;
        for (const TAPAttr& element : elements) made.Append(element);
        return TAPAttr(made);
    };
    std::tuple<TAPAttr, std::string, const char*> rows[] = {
        {make('a', {{"first", make('b', {})}, {"next", make('c', {})}}), "bac",
         "let go by hand, then the rest"},
        {make('a', {{"m", make('b', {{"x", make('c', {})}})}, {"n", make('d', {})}}), "abcd",
         "by name, each with its own"},
        {make('a', {{"first", make('b', {{"first", make('c', {{"first", make('d', {})}})}})}}), "dcba",
         "by hand in a row"},
        {list({make('a', {{"x", make('b', {})}}), make('c', {}), list({make('d', {}), make('e', {})})}),
         "edcab", "a list from its end, one inside it too"},
        {make('a', {{"first", list({make('b', {}), make('c', {})})}}), "cba", "a list let go by hand"},
    };
    for (auto& [value, expected, what] : rows) {
        told.clear();
        value = TAPAttr();
        EXPECT_EQ(told, expected) << what;
    }
}

// Destructors that let go of the next object themselves stand above each other, but not without end.
TEST(TAPObject, DestructorsThatLetGoNeedLittleStack) {
    RunOnSmallStack([] {
        std::string told;
        TAPAttr chain;
        for (int i = 0; i < 100000; ++i) {
            auto* object = new Leaving(i < 50 ? 'x' : '.', told);
            object->SetAttribute("first", std::exchange(chain, TAPAttr()));
            chain = TAPAttr(object);
            object->Release();
        }
        chain = TAPAttr();
        EXPECT_EQ(told.size(), 100000u);
    });
}

// A name goes with the last path that has it, also where longer and shorter paths share a row of names.
TEST(TAPPath, NameGoesWithItsLastPath) {
    TAPPath* path = nullptr;
    for (int i = 0; i < 300; ++i) {
        auto* name = new TAPName("n");
        TAPPath* shorter = std::exchange(path, new TAPPath(path, name));
        if (shorter != nullptr) shorter->Release();
        name->Release();
    }
    auto* middle = new TAPName("m");
    auto* end = new TAPName("e");
    auto* second = new TAPPath(path, middle);
    auto* third = new TAPPath(second, end);
    auto* copy = new TAPPath(*third);
    EXPECT_TRUE(middle->count == 3 && end->count == 3);
    second->Release();
    EXPECT_EQ(middle->count, 3) << "the third has it";
    third->Release();
    EXPECT_TRUE(middle->count == 2 && end->count == 2) << "only the copy has them";
    copy->Release();
    EXPECT_TRUE(middle->count == 1 && end->count == 1);
    EXPECT_EQ(Text(path).size(), 600u);
    path->Release();
    middle->Release();
    end->Release();
}

// Long paths share their rows; what branches off or comes back to a shorter one doesn't see the others.
TEST(TAPPath, BranchesOfLongPathsAreApart) {
    auto* root = new Counted;
    TAPObject* parent = root;
    for (int i = 0; i < 300; ++i) parent = Add(parent, "n");
    Add(Add(parent, "a"), "b");
    TAPObject* kept = Add(Add(parent, "c"), "d");
    kept->AddRef();
    parent->RemoveAttribute("c");
    TAPObject* later = Add(Add(parent, "e"), "f");
    const auto tail = [](const TAPObject* object) { return Text(object->path).substr(2 * 299); };
    EXPECT_EQ(tail(kept) + " " + tail(later), "/n/c/d /n/e/f");
    root->Release();
    EXPECT_EQ(tail(kept), "/n/c/d");
    kept->Release();
    EXPECT_EQ(Counted::alive, 0);
}

// Values of every kind, in each other.
void UseEveryKind() {
    auto* root = new Counted;
    TAPObject* child = Add(root, "child");
    for (int i = 0; i < 300; ++i) {
        const std::string name = "name" + std::to_string(i);
        child->SetAttribute(name.c_str(), TAFileName(name.c_str()));
        root->SetAttribute(name.c_str(), root->GetAttribute("list"));
        root->AppendToAttribute("list", Add(child, "shared"));
        root->AppendToAttribute("list", child->path);
    }
    root->Release();
}

TEST(TAPObject, NothingIsLeft) {
    UseEveryKind(); // what is made once and stays
    const int before = blocks;
    UseEveryKind();
    EXPECT_EQ(blocks, before);
    EXPECT_EQ(Counted::alive, 0);
}

} // namespace
