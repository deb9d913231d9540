#include <algorithm>
#include <array>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <ostraka/foundation/TAIndex.h>
#include <ostraka/foundation/TAIndexB.h>

namespace {

// A random change or question; the shares of the kinds shift, so that tables fill and run empty again.
enum class Step { Append, Remove, Find, ReadOne, ReadAll, Reset };

class Steps {
public:
    explicit Steps(unsigned seed) : random(seed) {}

    int UpTo(int past) { return static_cast<int>(random() % static_cast<unsigned>(past)); }

    Step Next(int round) {
        if (UpTo(4000) == 0) return Step::Reset;
        if (UpTo(150) == 0) return Step::ReadAll;
        // Fill without removals, mixed, drain.
        constexpr Step phases[][6] = {
            {Step::Append, Step::Append, Step::Append, Step::Append, Step::Find, Step::ReadOne},
            {Step::Append, Step::Append, Step::Append, Step::Remove, Step::Find, Step::ReadOne},
            {Step::Append, Step::Remove, Step::Remove, Step::Remove, Step::Find, Step::ReadOne}};
        return phases[round / 2000 % 3][UpTo(6)];
    }

private:
    std::minstd_rand random;
};

// The tables under test and the plain sorted vectors they must equal, each entry with the address of its held
// key.
struct TextTable {
    struct Entry {
        std::string key;
        const void* held;
        void* value;
        std::string copy;
        bool copied;
    };

    // `head` is what the keys share; the alphabet has a byte that is negative as a char.
    static std::string MakeKey(Steps& steps, const std::string& head) {
        std::string key = head.substr(0, steps.UpTo(40) == 0 ? head.size() / 2 : head.size());
        for (int left = steps.UpTo(12); left > 0; --left) key += "abcx/\xe9"[steps.UpTo(6)];
        return key;
    }

    const void* Append(const std::string& key, Steps& steps) {
        const std::string value = "v" + key;
        const bool copied = steps.UpTo(3) == 0;
        void* const plain = steps.UpTo(5) == 0 ? nullptr : this;
        const auto at = Find(key);
        const char* held = index.Append(key.c_str(), copied ? value.c_str() : plain, copied ? 7 : 0);
        if (at != entries.end() && at->key == key) return held == at->held ? held : nullptr;
        entries.insert(at, {key, held, plain, value, copied});
        return held;
    }

    std::vector<Entry>::iterator Find(const std::string& key) {
        return std::lower_bound(
            entries.begin(), entries.end(), key,
            [](const Entry& entry, const std::string& wanted) { return entry.key < wanted; });
    }

    int PositionOf(const std::string& key) {
        const bool held = index.Holds(key.c_str());
        const int position = index.IsIn(key.c_str());
        const std::string longer = key + "a";
        const int length = static_cast<int>(key.size());
        EXPECT_EQ(index.IsIn(longer.data(), length), position);
        EXPECT_TRUE(held == (position >= 0) && index.Holds(longer.data(), length) == held);
        return position;
    }

    void* ValueOf(const std::string& key) const { return index[key.c_str()]; }

    bool HoldsAt(int position, const char* key, void* value, const char* valueCopy) const {
        const Entry& entry = entries[static_cast<std::size_t>(position)];
        if (key != entry.held || entry.key != key) return false;
        if (!entry.copied) return value == entry.value && valueCopy == nullptr;
        return value == valueCopy && entry.copy == valueCopy;
    }

    bool ShowsAt(int i) const { return HoldsAt(i, index.keys[i], index.values[i], index.valueCopies[i]); }

    // Some columns as arrays, and what has to be the same as they are.
    bool ShowsAll(unsigned columns) const {
        char** const keys = columns & 1 ? static_cast<char**>(index.keys) : nullptr;
        void** const values = columns & 2 ? static_cast<void**>(index.values) : nullptr;
        char** const copies = columns & 4 ? static_cast<char**>(index.valueCopies) : nullptr;
        for (int i = 0; i < index.size; ++i)
            if (!HoldsAt(i, keys ? keys[i] : index.keys[i], values ? values[i] : index.values[i],
                         copies ? copies[i] : index.valueCopies[i]))
                return false;
        return true;
    }

    TAIndex index;
    std::vector<Entry> entries;
};

struct WordTable {
    static constexpr int words = 3;
    using Key = std::array<std::intptr_t, words>;
    struct Entry {
        Key key;
        const void* held;
    };

    static Key MakeKey(Steps& steps, const std::string& head) {
        const std::intptr_t first = head.empty() ? steps.UpTo(3) - 1 : -7;
        return {first, head.size() > 9 ? INTPTR_MIN : steps.UpTo(100) - 50, steps.UpTo(1000) - 500};
    }

    const void* Append(const Key& key, Steps&) {
        const auto at = Find(key);
        const void* held = index.Append(key.data(), this);
        if (at != entries.end() && at->key == key) return held == at->held ? held : nullptr;
        entries.insert(at, {key, held});
        return held;
    }

    std::vector<Entry>::iterator Find(const Key& key) {
        return std::lower_bound(entries.begin(), entries.end(), key,
                                [](const Entry& entry, const Key& wanted) { return entry.key > wanted; });
    }

    int PositionOf(const Key& key) {
        const bool held = index.Holds(key.data());
        EXPECT_EQ(held, index.IsIn(key.data()) >= 0);
        return index.IsIn(key.data(), 1);
    }
    void* ValueOf(const Key& key) const { return index[key.data()]; }

    bool HoldsAt(int position, const std::intptr_t* key, void* value) const {
        const Entry& entry = entries[static_cast<std::size_t>(position)];
        return key == entry.held && std::equal(entry.key.begin(), entry.key.end(), key) && value == this;
    }

    bool ShowsAt(int i) const { return HoldsAt(i, index.keys[i], index.values[i]); }

    bool ShowsAll(unsigned columns) const {
        auto* const keys = columns & 1 ? static_cast<std::intptr_t**>(index.keys) : nullptr;
        void** const values = columns & 2 ? static_cast<void**>(index.values) : nullptr;
        for (int i = 0; i < index.size; ++i)
            if (!HoldsAt(i, keys ? keys[i] : index.keys[i], values ? values[i] : index.values[i]))
                return false;
        return true;
    }

    TAIndexB index{words};
    std::vector<Entry> entries;
};

template <class Table>
void CompareWithModel(const std::string& head) {
    SCOPED_TRACE(head);
    Table table;
    Steps steps(static_cast<unsigned>(head.size()) + 1);
    for (int round = 0; round < 18000; ++round) {
        const auto key = Table::MakeKey(steps, head);
        const auto at = table.Find(key);
        const int size = static_cast<int>(table.entries.size());
        const int place = steps.UpTo(size + 1);
        const int position =
            at != table.entries.end() && at->key == key ? static_cast<int>(at - table.entries.begin()) : -1;
        switch (steps.Next(round)) {
        case Step::Append: ASSERT_NE(table.Append(key, steps), nullptr); break;
        case Step::Find:
            ASSERT_EQ(table.PositionOf(key), position);
            ASSERT_EQ(table.ValueOf(key), position < 0 ? nullptr : table.index.values[position]);
            break;
        case Step::ReadOne: ASSERT_TRUE(place == size || table.ShowsAt(place)); break;
        case Step::ReadAll: ASSERT_TRUE(table.ShowsAll(static_cast<unsigned>(steps.UpTo(8)))) << round; break;
        case Step::Remove:
            ASSERT_EQ(table.index.RemovePosition(place), place == size ? 1 : 0);
            if (place < size) table.entries.erase(table.entries.begin() + place);
            break;
        case Step::Reset:
            ASSERT_EQ(table.index.Reset(), 0);
            table.entries.clear();
            break;
        }
        ASSERT_EQ(table.index.size, static_cast<int>(table.entries.size()));
    }
    ASSERT_TRUE(table.ShowsAll(7));
}

TEST(Index, EqualsASortedVector) {
    for (const char* head : {"", "/usr/", "/usr/include/c++/12/bits/"}) {
        CompareWithModel<TextTable>(head);
        CompareWithModel<WordTable>(head);
    }
}

TEST(Index, KeepsAscendingAndDescendingKeys) {
    for (const bool ascending : {true, false}) {
        TextTable table;
        Steps steps(1);
        for (int i = 1000; i < 4000; ++i) table.Append(std::to_string(ascending ? i : 5000 - i), steps);
        EXPECT_TRUE(table.ShowsAll(7));
    }
}

TEST(Index, GrowsItsSlotsByTheRule) {
    struct Row {
        int size, allocSize, incSize;
    };
    TAIndex index;
    for (const Row& row : {Row{0, 10, 10}, Row{9, 10, 10}, Row{10, 20, 10}, Row{99, 100, 10},
                           Row{100, 110, 55}, Row{109, 110, 55}, Row{110, 165, 55}, Row{165, 220, 55}}) {
        while (index.size < row.size) index.Append(std::to_string(index.size).c_str(), nullptr, 0);
        EXPECT_EQ(index.allocSize, row.allocSize) << row.size;
        EXPECT_EQ(index.incSize, row.incSize) << row.size;
    }
    index.Reset();
    EXPECT_EQ(index.allocSize, 220);
    EXPECT_EQ(TAIndexB(1).allocSize, 1000);
}

TEST(Index, TellsAbsentFromNullAndPartFromWhole) {
    TAIndex index;
    EXPECT_EQ(index.IsIn("abc", 2), -1);
    EXPECT_EQ(index["ab"], nullptr);
    index.Append("ab", nullptr, 0);
    index.Append("", nullptr, 0);
    struct Row {
        const char* key;
        int length, position;
    };
    for (const Row& row : {Row{"abc", 2, 1}, Row{"abc", 3, -1}, Row{"abc", 1, -1}, Row{"abc", 0, 0},
                           Row{"abc", -1, -1}, Row{"ab\0c", 4, -1}})
        EXPECT_EQ(index.IsIn(row.key, row.length), row.position) << row.key << row.length;
    EXPECT_EQ(index["ab"], nullptr);
}

TEST(Index, OrdersSignedWordsFromTheGreatest) {
    TAIndexB index(1);
    for (const std::intptr_t word : {std::intptr_t{5}, std::intptr_t{-3}, std::intptr_t{7}})
        index.Append(&word, nullptr);
    EXPECT_EQ(*index.keys[0], 7);
    EXPECT_EQ(*index.keys[2], -3);
    const std::intptr_t six = 6;
    EXPECT_EQ(index.compare(&six, index.keys[0]), 1);
    EXPECT_EQ(index.compare(&six, index.keys[1]), -1);
}

TEST(IndexDeathTest, WordKeysHaveAWord) {
    EXPECT_DEATH(TAIndexB(0), "Unable to create TAIndexB with sizeofkey < 0 \n");
}

} // namespace
