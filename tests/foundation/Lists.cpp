#include <string>
#include <type_traits>

#include <gtest/gtest.h>

#include <ostraka/foundation/TypedLists.h>

namespace {

using ostraka::detail::ListKind;
using ostraka::detail::PointerList;
using ostraka::detail::ValueList;

int ByNumber(int* a, int* b) {
    return *a - *b;
}

std::string TextOf(const PointerList<int>& list) {
    std::string text;
    for (int i = 1; i <= list.size; ++i) text += std::to_string(*list[i]);
    return text;
}

std::string TextOf(const ValueList<int>& list) {
    std::string text;
    for (int i = 1; i <= list.Size(); ++i) text += std::to_string(list[i]);
    return text;
}

// The optional members of a list: a 1 for RemoveDuplicates, a 2 for Compare, a 4 for the array.
template <class List>
constexpr int offers = requires(List list) {
    list.RemoveDuplicates(nullptr);
}
+ 2 * requires(List list) {
    List::Compare(list, list, ByNumber);
}
+ 4 * std::is_constructible_v<List, int**, int>;

static_assert(offers<PointerList<int, ListKind::Plain>> == 0);
static_assert(offers<PointerList<int, ListKind::WithoutDuplicates>> == 1);
static_assert(offers<PointerList<int>> == 7);

TEST(PointerLists, HoldWhatTheyDoNotOwn) {
    int one = 1, two = 2, three = 3;
    int* array[] = {&three, &one, &two, &one, &three};
    PointerList<int> list(array, 5), removed;
    list.RemoveDuplicates(&removed);
    EXPECT_EQ(TextOf(list) + " " + TextOf(removed), "312 13");
    PointerList<int> copy(list);
    copy.QuickSort(ByNumber);
    EXPECT_EQ(TextOf(copy), "123");
    EXPECT_EQ(PointerList<int>::Compare(list, copy, ByNumber), 2);
    copy[1] = &two;
    copy = *&copy;
    for (int position : {3, 0, 3}) copy.RemovePosition(position);
    list.RemoveAll(0);
    list = copy;
    EXPECT_EQ(TextOf(list), "22");
}

TEST(ValueLists, OwnTheirCopies) {
    int value = 5;
    ValueList<int> list(0, 9);
    for (int* element : {&value, &value, &value}) list.Append(*element);
    int& first = list[1];
    for (int i = 0; i < 99; ++i) list.Append(first);
    first = 6;
    EXPECT_EQ(value, 5);
    list.QuickSort(ByNumber);
    EXPECT_EQ(list[102], 6);
    while (list.Size() > 3) list.RemovePosition(1);
    list.RemovePosition(4);
    ValueList<int> copy(list), other;
    EXPECT_TRUE(copy == list && list == list && copy != other);
    copy[3] = 7;
    EXPECT_TRUE(copy != list);
    other = copy;
    other = *&other;
    copy.RemoveAll(1);
    EXPECT_EQ(TextOf(list) + TextOf(other) + TextOf(copy), "556557");
}

} // namespace
