#pragma once

#include <algorithm>
#include <bit>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ostraka/foundation/IndexColumn.h>

// The engine of the sorted indexes. The entries lie in leaves: sorted runs of up to `leafRoom` entries, so
// that a new entry moves a bounded number of others. A table of one leaf is that leaf, which starts small and
// doubles; a larger one has a top run, whose entries name the leaves by their first keys.
//
// Beside each entry a run keeps a prefix of its key, one word that compares as the key's next few bytes do.
// What all keys of a run have in common is left out of its prefixes (`skip`), so a search seldom has to
// follow a key's address.
//
// The store owns its runs and the blocks of its keys, which come from `malloc`, and nothing that values point
// to.
namespace ostraka::detail {

// A doubling of the smallest run, so that a table's first leaf can become as large as any.
inline constexpr int smallestRoom = 4;
inline constexpr int leafRoom = smallestRoom << 5;

// `malloc` and `realloc` that end in `FATAL` when there is no memory.
void* allocate(std::size_t bytes);
void* reallocate(void* block, std::size_t bytes);

// The growth rule of an index about to take one more entry.
void growSlots(int size, int& allocSize, int& incSize);

// The text copy of a value lies in the block of its key: key, NUL, a byte that tells whether there is a copy,
// copy.
char* holdText(const char* key, std::size_t length, const char* copy);
char* valueCopyOf(void* heldKey, void* value);

// Header of one block of memory; the arrays of prefixes, keys and values follow it, each of `capacity` slots.
struct Run {
    int count;
    int capacity;
    std::size_t skip; // units of the keys that all of them share and the prefixes leave out
    Run* next;        // of the spare leaves

    std::uint64_t* prefixes() { return reinterpret_cast<std::uint64_t*>(this + 1); }
    void** keys() { return reinterpret_cast<void**>(prefixes() + capacity); }
    void** values() { return keys() + capacity; }
};

// Where a key is, or where it would go.
struct Place {
    int leaf;
    int position; // in the leaf
    bool found;
};

// The part of a table that needs no order: its runs, and the way from a position to its entry and back.
class SortedStore {
public:
    SortedStore() : root(makeRun(smallestRoom)) {}
    ~SortedStore();
    SortedStore(const SortedStore&) = delete;
    SortedStore& operator=(const SortedStore&) = delete;

    void* valueAt(Place place) const { return leafOf(place.leaf)->values()[place.position]; }
    void* keyAt(Place place) const { return leafOf(place.leaf)->keys()[place.position]; }
    int positionOf(Place place) { return startOf(place.leaf) + place.position; }
    Place placeOf(int position);

    void* read(Column column, int position);
    void** settle(Column column);
    // Whether so much has been read since the last change that laying out the column pays off.
    bool isMuchRead() { return ++reads > total / 8 + 8; }

    void clear();

protected:
    // A column as one array, as it was when it was last laid out.
    struct Layout {
        void** elements = nullptr;
        int capacity = 0;
        // Where each leaf lies in it, -1 if the leaf has changed; null while there is one leaf.
        int* places = nullptr;
        bool shrunk = false; // whether an entry has been removed since
    };

    // Header of a block that leaves are cut from. They return as spare leaves, the block at the table's end.
    struct Slab {
        Slab* next;
        std::size_t size;
        std::size_t used;
    };

    static Run* makeRun(int capacity);
    static void openGap(Run* run, int at);
    static void closeGap(Run* run, int at);
    static void moveTail(Run* from, int at, Run* to);

    int leafCount() const { return tall ? root->count : 1; }
    Run* leafOf(int leaf) const { return tall ? static_cast<Run*>(root->values()[leaf]) : root; }
    int startOf(int leaf);
    int leafAt(int position);
    void growRoot();
    void resizeSlots();
    void makeTall();
    Run* takeLeaf();
    void addSlab();
    void openSlot(int leaf);
    void dropLeaf(int leaf);
    void forgetShared();
    void freeKeys();
    void noteChange(int leaf);
    void noteRemoval();
    void fitLayout(Layout& layout);
    void updateLayout(Layout& layout, Column column);

    Run* root;
    Slab* slab = nullptr;  // the slab in use, linked to the full ones
    Run* spare = nullptr;  // emptied leaves, linked by `next`
    int* counts = nullptr; // entries of each leaf, with as many slots as the top run
    int* starts = nullptr; // position of the first entry of each leaf, right for the first `known` of them
    int known = 1;
    int cursor = 0; // the leaf that was read last
    int total = 0;
    int reads = 0;
    bool tall = false; // whether the root is a top run
    Layout layouts[3];
};

// A store in the order that `Order` gives. `Order` says what a sought key is and knows, for keys of one kind:
//   prefixUnits, worthSkipping      units in a prefix; how many shared ones make a new prefix worth while
//   prefix(sought, skip)            the prefix of a sought key behind its first `skip` units
//   heldPrefix(key, skip)           the same of a held key
//   compare(sought, key, from, past)  how they compare in the units from .. past - 1: <0, 0 or >0
//   common(key, key, from, limit)   the first unit from `from` at which two held keys differ, at most `limit`
//   sharedUnits(prefix, prefix)     how many units two prefixes share
template <class Order>
class SortedTable : public SortedStore {
public:
    using Sought = typename Order::Sought;

    Place find(const Sought& sought) const;
    void insert(Place place, void* key, void* value);
    void remove(int position);

private:
    struct Spot {
        int position;
        bool found;
    };

    static constexpr std::size_t noLimit = SIZE_MAX;

    static Spot search(Run* run, const Sought& sought);
    static void add(Run* run, int at, void* key, void* value);
    static void admit(Run* run, void* key, void* member);
    static void rebase(Run* run, std::size_t skip);
    static void sharpen(Run* run);
    void split(Place& place, void* key);
    void nameLeaf(int leaf, void* firstKey);
};

// The first of `count` ascending words that isn't below `word`. Without branches, which random keys would
// mispredict.
inline int firstNotBelow(const std::uint64_t* words, int count, std::uint64_t word) {
    if (count == 0) return 0;
    const std::uint64_t* base = words;
    while (count > 1) {
        const int half = count / 2;
        base += base[half - 1] < word ? half : 0;
        count -= half;
    }
    return static_cast<int>(base - words) + (*base < word ? 1 : 0);
}

// Asks for the cache lines of a leaf that a search is about to touch, instead of one after the other.
inline void fetchAhead(Run* leaf, int count) {
    __builtin_prefetch(leaf);
    for (int i = 4; i < count; i += 8) __builtin_prefetch(leaf->prefixes() + i);
}

template <class Order>
auto SortedTable<Order>::search(Run* run, const Sought& sought) -> Spot {
    if (run->skip != 0) {
        const int side = Order::compare(sought, run->keys()[0], 0, run->skip);
        if (side != 0) return {side < 0 ? 0 : run->count, false};
    }
    const std::uint64_t prefix = Order::prefix(sought, run->skip);
    const std::uint64_t* prefixes = run->prefixes();
    int low = firstNotBelow(prefixes, run->count, prefix);
    if (low == run->count || prefixes[low] != prefix) return {low, false};
    __builtin_prefetch(run->values() + low); // likely to be read when the key has been compared

    int high = static_cast<int>(std::upper_bound(prefixes + low, prefixes + run->count, prefix) - prefixes);
    while (low < high) {
        const int middle = low + (high - low) / 2;
        const int side = Order::compare(sought, run->keys()[middle], run->skip + Order::prefixUnits, noLimit);
        if (side == 0) return {middle, true};
        (side > 0 ? low : high) = side > 0 ? middle + 1 : middle;
    }
    return {low, false};
}

template <class Order>
Place SortedTable<Order>::find(const Sought& sought) const {
    int leaf = 0;
    if (leafCount() > 1) {
        const Spot spot = search(root, sought);
        leaf = spot.found ? spot.position : std::max(spot.position - 1, 0);
        fetchAhead(leafOf(leaf), counts[leaf]);
    }
    const Spot spot = search(leafOf(leaf), sought);
    return {leaf, spot.position, spot.found};
}

template <class Order>
void SortedTable<Order>::rebase(Run* run, std::size_t skip) {
    run->skip = skip;
    for (int i = 0; i < run->count; ++i) run->prefixes()[i] = Order::heldPrefix(run->keys()[i], skip);
}

// Makes `key` fit to enter a run that shares `skip` units with its present `member`.
template <class Order>
void SortedTable<Order>::admit(Run* run, void* key, void* member) {
    if (run->skip == 0) return;
    const std::size_t shared = Order::common(key, member, 0, run->skip);
    if (shared < run->skip) rebase(run, shared);
}

// Leaves out of the prefixes what all keys of the run share, if that is much.
template <class Order>
void SortedTable<Order>::sharpen(Run* run) {
    if (run->count < 2) return;
    const int last = run->count - 1;
    const std::size_t shared = Order::sharedUnits(run->prefixes()[0], run->prefixes()[last]);
    if (shared < Order::worthSkipping) return;
    rebase(run, Order::common(run->keys()[0], run->keys()[last], run->skip + shared, noLimit));
}

template <class Order>
void SortedTable<Order>::add(Run* run, int at, void* key, void* value) {
    if (run->count == 0)
        run->skip = 0;
    else
        admit(run, key, run->keys()[0]);
    openGap(run, at);
    run->prefixes()[at] = Order::heldPrefix(key, run->skip);
    run->keys()[at] = key;
    run->values()[at] = value;
    if (std::has_single_bit(static_cast<unsigned>(run->count))) sharpen(run);
}

// Enters a new first key of a leaf in the top run. The former one is still held, unless the table was empty.
template <class Order>
void SortedTable<Order>::nameLeaf(int leaf, void* firstKey) {
    admit(root, firstKey, root->keys()[leaf]);
    root->keys()[leaf] = firstKey;
    root->prefixes()[leaf] = Order::heldPrefix(firstKey, root->skip);
}

// Cuts a full leaf in two and corrects the place for `key`. At the table's end the new leaf starts empty, so
// that leaves filled in ascending order stay full.
template <class Order>
void SortedTable<Order>::split(Place& place, void* key) {
    if (!tall) makeTall();
    Run* left = leafOf(place.leaf);
    const bool atEnd = place.leaf == leafCount() - 1 && place.position == left->count;
    const int middle = atEnd ? left->count : left->count / 2;
    Run* right = takeLeaf();
    moveTail(left, middle, right);
    sharpen(left);
    sharpen(right);

    if (root->count == root->capacity) growRoot();
    openSlot(place.leaf + 1);
    counts[place.leaf] = left->count;
    counts[place.leaf + 1] = right->count;
    add(root, place.leaf + 1, atEnd ? key : right->keys()[0], right);
    noteChange(place.leaf);
    if (atEnd || place.position > middle) place = {place.leaf + 1, place.position - middle, false};
}

template <class Order>
void SortedTable<Order>::insert(Place place, void* key, void* value) {
    const Run* run = leafOf(place.leaf);
    if (run->count == run->capacity) {
        if (run->capacity < leafRoom)
            growRoot();
        else
            split(place, key);
    }
    if (tall) {
        if (place.position == 0) nameLeaf(place.leaf, key);
        ++counts[place.leaf];
    }
    add(leafOf(place.leaf), place.position, key, value);
    ++total;
    noteChange(place.leaf);
}

template <class Order>
void SortedTable<Order>::remove(int position) {
    const Place place = placeOf(position);
    Run* run = leafOf(place.leaf);
    void* key = run->keys()[place.position];
    if (tall) {
        if (place.position == 0 && run->count > 1) nameLeaf(place.leaf, run->keys()[1]);
        --counts[place.leaf];
    }
    closeGap(run, place.position);
    --total;
    noteChange(place.leaf);
    noteRemoval();
    if (run->count == 0 && leafCount() > 1)
        dropLeaf(place.leaf);
    else if (run->count == 0)
        forgetShared();
    std::free(key);
}

} // namespace ostraka::detail
