#include <functional>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <ostraka/objects/TAPObject.h>

#include "support/SmallStack.h"

namespace {

// Lives until its one reference goes; ready for two values each.
struct Shared {
    ~Shared() {
        for (int i = 0; i < 2; ++i) objects[i]->Release();
        for (int i = 0; i < 2; ++i) paths[i]->Release();
        name->Release();
    }
    TAPName* name = new TAPName("n");
    TAPObject* objects[2] = {new TAPObject, new TAPObject};
    TAPPath* paths[2] = {new TAPPath(name), new TAPPath(name)};
};

NUBListValTAPAttr ListOf(std::initializer_list<TAPAttr> elements) {
    NUBListValTAPAttr list;
    for (const TAPAttr& element : elements) list.Append(element);
    return list;
}

// Values in groups: those of a later group are greater, those of one group differ and are not ordered.
std::vector<std::vector<TAPAttr>> Ascending(Shared& shared) {
    if (std::less<>()(shared.objects[1], shared.objects[0])) std::swap(shared.objects[0], shared.objects[1]);
    if (std::less<>()(shared.paths[1], shared.paths[0])) std::swap(shared.paths[0], shared.paths[1]);
    return {{TAPAttr()},
            {""},
            {"a"},
            {"b"},
            {"b\xff"},
            {TAFileName()},
            {TAFileName("a")},
            {static_cast<TAPObject*>(nullptr)},
            {shared.objects[0]},
            {shared.objects[1]},
            {ListOf({}), ListOf({1}), ListOf({"1"}), ListOf({2, 1}), ListOf({2, ListOf({})}),
             ListOf({2, ListOf({TAPAttr(), TAFileName("x")})}),
             ListOf({2, ListOf({TAPAttr(), TAFileName("y")})})},
            {-2147483647 - 1},
            {-1},
            {2147483647},
            {shared.paths[0]},
            {shared.paths[1]}};
}

TEST(TAPAttr, IsOrderedByKindAndContent) {
    Shared shared;
    std::vector<std::tuple<std::size_t, std::size_t, TAPAttr>> values;
    const auto groups = Ascending(shared);
    for (std::size_t i = 0; i < groups.size(); ++i)
        for (std::size_t j = 0; j < groups[i].size(); ++j) values.emplace_back(i, j, groups[i][j]);
    for (const auto& [i, m, a] : values)
        for (const auto& [j, n, b] : values) {
            const bool same = i == j && m == n;
            EXPECT_TRUE((a < b) == (i < j) && (a > b) == (i > j) && (a == b) == same && (a != b) == !same)
                << i << "." << m << " and " << j << "." << n;
        }
}

TEST(TAPAttr, GettersAnswerTheirKindOnly) {
    Shared shared;
    NUBListValTAPAttr none;
    TAPAttr values[] = {TAPAttr(),     "text", TAFileName("a\\b"), shared.objects[0],
                        ListOf({"x"}), 5,      shared.paths[0]};
    for (int kind = TAPATTR_Null; kind <= TAPATTR_Path; ++kind) {
        TAPAttr& value = values[kind];
        for (int code = TAPATTR_Null; code <= TAPATTR_Path; ++code)
            EXPECT_EQ(value.IsType(code), kind == code);
        EXPECT_EQ(value.GetString("x"), kind == TAPATTR_String ? "text" : "x");
        EXPECT_STREQ(value.GetFileName("x"), kind == TAPATTR_FileName ? "a/b" : "x");
        EXPECT_EQ(value.GetInteger(7), kind == TAPATTR_Integer ? 5 : 7);
        EXPECT_EQ(&value.GetList(none) == &none, kind != TAPATTR_List);
        TAPObject* object = value.GetObject(shared.objects[1]);
        TAPPath* path = value.GetPath(shared.paths[1]);
        EXPECT_EQ(object, shared.objects[kind == TAPATTR_Object ? 0 : 1]);
        EXPECT_EQ(path, shared.paths[kind == TAPATTR_Path ? 0 : 1]);
        object->Release();
        path->Release();
    }
}

TEST(TAPAttrDeathTest, GettersWithoutFallbackWantTheirKind) {
    static TAPAttr wrong;
    const std::pair<void (*)(), const char*> rows[] = {
        {[] { wrong.GetInteger(); }, "TAPAttr::GetInteger : bad type for get\n"},
        {[] { wrong.GetString(); }, "TAPAttr::GetString : bad type for get\n"},
        {[] { wrong.GetFileName(); }, "TAPAttr::GetFileName : bad type for get\n"},
        {[] { wrong.GetObject(); }, "TAPAttr::GetObject : bad type for get\n"},
        {[] { wrong.GetPath(); }, "TAPAttr::GetPath : bad type for get\n"},
        {[] { wrong.GetList(); }, "TAPAttr::GetList : bad type for get\n"},
    };
    for (const auto& [get, message] : rows) EXPECT_DEATH(get(), message);
}

TEST(TAPAttr, CopiesOwnOrShare) {
    Shared shared;
    {
        TAPAttr copy;
        {
            const TAPAttr list(ListOf({shared.objects[0], shared.paths[0], "text"}));
            copy = list;
            EXPECT_TRUE(shared.objects[0]->count == 3 && shared.paths[0]->count == 3);
        }
        const TAPAttr moved = std::move(copy);
        EXPECT_TRUE(shared.objects[0]->count == 2 && shared.paths[0]->count == 2);
        EXPECT_EQ(moved.GetList()[3].GetString(), "text");
        moved.GetList()[1].GetObject()->Release();
    }
    EXPECT_TRUE(shared.objects[0]->count == 1 && shared.paths[0]->count == 1);
}

TEST(TAPAttr, MayBeAssignedToItselfAndToItsHolder) {
    Shared shared;
    for (const auto& group : Ascending(shared)) {
        for (const TAPAttr& value : group) {
            TAPAttr holder = ListOf({value, ListOf({value})});
            TAPAttr& element = holder.GetList()[1];
            const TAPAttr& same = element;
            element = same;
            EXPECT_EQ(element, value);
            holder.GetList().Append(holder);
            EXPECT_EQ(holder.GetList()[3], ListOf({value, ListOf({value})}));
            element = holder;
            EXPECT_EQ(element.GetList()[1], value);
            holder.GetList() = holder.GetList()[2].GetList();
            EXPECT_EQ(holder, ListOf({value}));
            holder = holder.GetList()[1];
            EXPECT_EQ(holder, value);
        }
    }
    EXPECT_TRUE(shared.objects[0]->count == 1 && shared.paths[0]->count == 1);
}

TEST(TAPAttr, ListsNestWithoutStack) {
    RunOnSmallStack([] {
        TAPAttr outer = ListOf({});
        TAPAttr* inner = &outer;
        for (int i = 0; i < 100000; ++i) {
            inner->GetList().Append(ListOf({}));
            inner = &inner->GetList()[1];
        }
        TAPAttr copy = outer;
        EXPECT_EQ(copy, outer);
        inner->GetList().Append(1);
        EXPECT_NE(copy, outer);
    });
}

// Before and after what the test program has of its own.
struct AsksForNull {
    AsksForNull() { Ask(); }
    ~AsksForNull() { Ask(); }
    static void Ask() {
        if (TAPAttr copy = TAPAttr::Null; copy != TAPAttr()) std::abort();
    }
} asksForNull;

} // namespace
