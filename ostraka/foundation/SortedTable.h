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
// follow a key's address. With the keys /usr/include/a.h to /usr/include/z.h, `skip` is 13 and the prefixes
// are "a.h" to "z.h".
//
// A search goes down in two steps of the same kind, through the top run and through one leaf:
//   1. The sought key is held against any key of the run in the first `skip` units. If it differs there, it
//      stands before or behind all of them, and the prefixes say nothing about it.
//   2. Halving the prefixes gives the entries whose prefix is that of the sought key: mostly none or one.
//   3. Only these are compared by their keys, behind what `skip` and the prefix have shown to be equal.
// What keeps this right while a run changes:
//   - A key that enters and shares less than `skip` with the others lowers it, and all prefixes of the run
//     are made anew (Admit). It is raised again when a run is cut in two and when its count reaches a power
//     of two (Sharpen), so that the work is paid for by the entries that came in between.
//   - A leaf's name in the top run is a held key, that of its first entry; it changes whenever that entry
//     does, before the key is freed (NameLeaf). A key before the first name belongs to the first leaf.
//   - A run without entries has no key that `skip` could be about: then it is 0.
//
// The store owns its runs and the blocks of its keys, which come from `malloc`, and nothing that values point
// to.
namespace ostraka::detail {

// A doubling of the smallest run, so that a table's first leaf can become as large as any.
inline constexpr int smallestRoom = 4;
inline constexpr int leafRoom = smallestRoom << 5;

// `malloc` and `realloc` that end in `FATAL` when there is no memory.
void* Allocate(std::size_t bytes);
void* Reallocate(void* block, std::size_t bytes);

// The growth rule of an index about to take one more entry.
void GrowSlots(int size, int& allocSize, int& incSize);

// The text copy of a value lies in the block of its key: key, NUL, a byte that tells whether there is a copy,
// copy.
char* HoldText(const char* key, std::size_t length, const char* copy);
char* ValueCopyOf(void* heldKey, void* value);

// Header of one block of memory; the arrays of prefixes, keys and values follow it, each of `capacity` slots.
struct Run {
    int count;
    int capacity;
    std::size_t skip; // units of the keys that all of them share and the prefixes leave out
    Run* next;        // of the spare leaves

    std::uint64_t* Prefixes() { return reinterpret_cast<std::uint64_t*>(this + 1); }
    void** Keys() { return reinterpret_cast<void**>(Prefixes() + capacity); }
    void** Values() { return Keys() + capacity; }
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
    SortedStore() : root(MakeRun(smallestRoom)) {}
    ~SortedStore();
    SortedStore(const SortedStore&) = delete;
    SortedStore& operator=(const SortedStore&) = delete;

    void* ValueAt(Place place) const { return LeafOf(place.leaf)->Values()[place.position]; }
    void* KeyAt(Place place) const { return LeafOf(place.leaf)->Keys()[place.position]; }
    int PositionOf(Place place) { return StartOf(place.leaf) + place.position; }
    Place PlaceOf(int position);

    void* Read(Column column, int position);
    // From now on sets `array` when the column is laid out, and to null at the next change.
    void ShowIn(void**& array, Column column) { shown[static_cast<int>(column)] = &array; }
    // Lays out a column that isn't, and with it all others that have been laid out before.
    void** LayOut(Column column);
    // Whether so much has been read since the last change that laying out the column pays off.
    bool IsMuchRead() { return ++reads > total / 8 + 8; }

    void Clear();

protected:
    // The columns as arrays, as they were when they were last laid out. A column takes part from the first
    // time on that somebody asks for it.
    struct Layout {
        void** columns[columnCount] = {};
        int capacity = 0; // of each
        // Where each leaf lies in them, -1 if the leaf has changed; null while there is one leaf.
        int* places = nullptr;
        bool shrunk = false; // whether an entry has been removed since
    };

    // Header of a block that leaves are cut from. They return as spare leaves, the block at the table's end.
    struct Slab {
        Slab* next;
        std::size_t size;
        std::size_t used;
    };

    static Run* MakeRun(int capacity);
    static void OpenGap(Run* run, int at);
    static void CloseGap(Run* run, int at);
    static void MoveTail(Run* from, int at, Run* to);

    int LeafCount() const { return tall ? root->count : 1; }
    Run* LeafOf(int leaf) const { return tall ? static_cast<Run*>(root->Values()[leaf]) : root; }
    int StartOf(int leaf);
    int LeafAt(int position);
    void GrowRoot();
    void ResizeSlots();
    void MakeTall();
    Run* TakeLeaf();
    void AddSlab();
    void OpenSlot(int leaf);
    void DropLeaf(int leaf);
    void ForgetShared();
    void FreeKeys();
    void NoteChange(int leaf);
    void NoteRemoval();
    void MakeRoomFor(Column column);
    void ForgetPlaces();
    void UpdateLayout();
    int FirstOfPiece(int leaf) const;
    void WritePiece(int first, int last);

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
    Layout layout;
    void*** shown[columnCount] = {}; // where each column is shown; null for one that the index hasn't got
};

// A store in the order that `Order` gives. `Order` says what a sought key is and knows, for keys of one kind:
//   prefixUnits, worthSkipping      units in a prefix; how many shared ones make a new prefix worth while
//   Prefix(sought, skip)            the prefix of a sought key behind its first `skip` units
//   HeldPrefix(key, skip)           the same of a held key
//   Compare(sought, key, from, past)  how they compare in the units from .. past - 1: <0, 0 or >0
//   Common(key, key, from, limit)   the first unit from `from` at which two held keys differ, at most `limit`
//   SharedUnits(prefix, prefix)     how many units two prefixes share
template <class Order>
class SortedTable : public SortedStore {
public:
    using Sought = typename Order::Sought;

    Place Find(const Sought& sought) const;
    void Insert(Place place, void* key, void* value);
    void Remove(int position);

private:
    struct Spot {
        int position;
        bool found;
    };

    static constexpr std::size_t noLimit = SIZE_MAX;

    static Spot Search(Run* run, const Sought& sought);
    static void Add(Run* run, int at, void* key, void* value);
    static void Admit(Run* run, void* key, void* member);
    static void Rebase(Run* run, std::size_t skip);
    static void Sharpen(Run* run);
    void Split(Place& place, void* key);
    void NameLeaf(int leaf, void* firstKey);
};

// The first of `count` ascending words that isn't below `word`. Without branches, which random keys would
// mispredict.
inline int FirstNotBelow(const std::uint64_t* words, int count, std::uint64_t word) {
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
inline void FetchAhead(Run* leaf, int count) {
    __builtin_prefetch(leaf);
    for (int i = 4; i < count; i += 8) __builtin_prefetch(leaf->Prefixes() + i);
}

template <class Order>
auto SortedTable<Order>::Search(Run* run, const Sought& sought) -> Spot {
    if (run->skip != 0) {
        const int side = Order::Compare(sought, run->Keys()[0], 0, run->skip);
        if (side != 0) return {side < 0 ? 0 : run->count, false};
    }
    const std::uint64_t prefix = Order::Prefix(sought, run->skip);
    const std::uint64_t* prefixes = run->Prefixes();
    int low = FirstNotBelow(prefixes, run->count, prefix);
    if (low == run->count || prefixes[low] != prefix) return {low, false};
    __builtin_prefetch(run->Values() + low); // likely to be read when the key has been compared

    int high = static_cast<int>(std::upper_bound(prefixes + low, prefixes + run->count, prefix) - prefixes);
    while (low < high) {
        const int middle = low + (high - low) / 2;
        const int side = Order::Compare(sought, run->Keys()[middle], run->skip + Order::prefixUnits, noLimit);
        if (side == 0) return {middle, true};
        (side > 0 ? low : high) = side > 0 ? middle + 1 : middle;
    }
    return {low, false};
}

template <class Order>
Place SortedTable<Order>::Find(const Sought& sought) const {
    int leaf = 0;
    if (LeafCount() > 1) {
        const Spot spot = Search(root, sought);
        leaf = spot.found ? spot.position : std::max(spot.position - 1, 0);
        FetchAhead(LeafOf(leaf), counts[leaf]);
    }
    const Spot spot = Search(LeafOf(leaf), sought);
    return {leaf, spot.position, spot.found};
}

template <class Order>
void SortedTable<Order>::Rebase(Run* run, std::size_t skip) {
    run->skip = skip;
    for (int i = 0; i < run->count; ++i) run->Prefixes()[i] = Order::HeldPrefix(run->Keys()[i], skip);
}

// Makes `key` fit to enter a run that shares `skip` units with its present `member`.
template <class Order>
void SortedTable<Order>::Admit(Run* run, void* key, void* member) {
    if (run->skip == 0) return;
    const std::size_t shared = Order::Common(key, member, 0, run->skip);
    if (shared < run->skip) Rebase(run, shared);
}

// Leaves out of the prefixes what all keys of the run share, if that is much.
template <class Order>
void SortedTable<Order>::Sharpen(Run* run) {
    if (run->count < 2) return;
    const int last = run->count - 1;
    const std::size_t shared = Order::SharedUnits(run->Prefixes()[0], run->Prefixes()[last]);
    if (shared < Order::worthSkipping) return;
    Rebase(run, Order::Common(run->Keys()[0], run->Keys()[last], run->skip + shared, noLimit));
}

template <class Order>
void SortedTable<Order>::Add(Run* run, int at, void* key, void* value) {
    if (run->count == 0)
        run->skip = 0;
    else
        Admit(run, key, run->Keys()[0]);
    OpenGap(run, at);
    run->Prefixes()[at] = Order::HeldPrefix(key, run->skip);
    run->Keys()[at] = key;
    run->Values()[at] = value;
    if (std::has_single_bit(static_cast<unsigned>(run->count))) Sharpen(run);
}

// Enters a new first key of a leaf in the top run. The former one is still held, unless the table was empty.
template <class Order>
void SortedTable<Order>::NameLeaf(int leaf, void* firstKey) {
    Admit(root, firstKey, root->Keys()[leaf]);
    root->Keys()[leaf] = firstKey;
    root->Prefixes()[leaf] = Order::HeldPrefix(firstKey, root->skip);
}

// Cuts a full leaf in two and corrects the place for `key`. At the table's end the new leaf starts empty, so
// that leaves filled in ascending order stay full.
template <class Order>
void SortedTable<Order>::Split(Place& place, void* key) {
    if (!tall) MakeTall();
    Run* left = LeafOf(place.leaf);
    const bool atEnd = place.leaf == LeafCount() - 1 && place.position == left->count;
    const int middle = atEnd ? left->count : left->count / 2;
    Run* right = TakeLeaf();
    MoveTail(left, middle, right);
    Sharpen(left);
    Sharpen(right);

    if (root->count == root->capacity) GrowRoot();
    OpenSlot(place.leaf + 1);
    counts[place.leaf] = left->count;
    counts[place.leaf + 1] = right->count;
    Add(root, place.leaf + 1, atEnd ? key : right->Keys()[0], right);
    NoteChange(place.leaf);
    if (atEnd || place.position > middle) place = {place.leaf + 1, place.position - middle, false};
}

template <class Order>
void SortedTable<Order>::Insert(Place place, void* key, void* value) {
    const Run* run = LeafOf(place.leaf);
    if (run->count == run->capacity) {
        if (run->capacity < leafRoom)
            GrowRoot();
        else
            Split(place, key);
    }
    if (tall) {
        if (place.position == 0) NameLeaf(place.leaf, key);
        ++counts[place.leaf];
    }
    Add(LeafOf(place.leaf), place.position, key, value);
    ++total;
    NoteChange(place.leaf);
}

template <class Order>
void SortedTable<Order>::Remove(int position) {
    const Place place = PlaceOf(position);
    Run* run = LeafOf(place.leaf);
    void* key = run->Keys()[place.position];
    if (tall) {
        if (place.position == 0 && run->count > 1) NameLeaf(place.leaf, run->Keys()[1]);
        --counts[place.leaf];
    }
    CloseGap(run, place.position);
    --total;
    NoteChange(place.leaf);
    NoteRemoval();
    if (run->count == 0 && LeafCount() > 1)
        DropLeaf(place.leaf);
    else if (run->count == 0)
        ForgetShared();
    std::free(key);
}

} // namespace ostraka::detail
