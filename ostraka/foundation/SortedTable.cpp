#include <ostraka/foundation/Fatal.h>
#include <ostraka/foundation/SortedTable.h>

#include <new>
#include <sys/mman.h>
#include <utility>

// A leaf's entries have the positions from its start on. The starts are sums of the counts of the leaves
// before; a change in a leaf spoils the starts behind it, and whoever next asks for one of those adds up as
// far as it takes.

namespace ostraka::detail {

namespace {

void checkMemory(const void* block) {
    FATAL(block == nullptr, "TAIndex::increaseAllocSize failed, memory allocation failed");
}

// Moves `count` elements to a place that may overlap theirs.
template <class Element>
void shift(const Element* from, int count, Element* to) {
    std::memmove(to, from, static_cast<std::size_t>(count) * sizeof(Element));
}

void copyRun(Run* from, int first, int count, Run* to) {
    shift(from->prefixes() + first, count, to->prefixes());
    shift(from->keys() + first, count, to->keys());
    shift(from->values() + first, count, to->values());
    to->count = count;
    to->skip = from->skip;
}

template <class Element>
void resize(Element*& elements, int capacity) {
    elements =
        static_cast<Element*>(reallocate(elements, static_cast<std::size_t>(capacity) * sizeof(Element)));
}

std::size_t runSize(int capacity) {
    constexpr std::size_t slot = sizeof(std::uint64_t) + 2 * sizeof(void*);
    return sizeof(Run) + static_cast<std::size_t>(capacity) * slot;
}

void writeColumn(Run* run, Column column, void** out) {
    if (column == Column::ValueCopies)
        std::transform(run->keys(), run->keys() + run->count, run->values(), out, valueCopyOf);
    else
        shift(column == Column::Keys ? run->keys() : run->values(), run->count, out);
}

} // namespace

void* allocate(std::size_t bytes) {
    void* block = std::malloc(bytes);
    checkMemory(block);
    return block;
}

void* reallocate(void* block, std::size_t bytes) {
    block = std::realloc(block, bytes);
    checkMemory(block);
    return block;
}

void growSlots(int size, int& allocSize, int& incSize) {
    if (size + 1 < allocSize) return;
    allocSize += incSize;
    if (static_cast<long long>(incSize) * 10 < allocSize) incSize = allocSize / 2;
}

char* holdText(const char* key, std::size_t length, const char* copy) {
    const std::size_t copySize = copy != nullptr ? std::strlen(copy) + 1 : 0;
    char* held = static_cast<char*>(allocate(length + 2 + copySize));
    std::memcpy(held, key, length);
    held[length] = '\0';
    held[length + 1] = copy != nullptr ? 1 : 0;
    if (copy != nullptr) std::memcpy(held + length + 2, copy, copySize);
    return held;
}

char* valueCopyOf(void* heldKey, void* value) {
    const char* key = static_cast<const char*>(heldKey);
    return key[std::strlen(key) + 1] != 0 ? static_cast<char*>(value) : nullptr;
}

Run* SortedStore::makeRun(int capacity) {
    return new (allocate(runSize(capacity))) Run{0, capacity, 0, nullptr};
}

void SortedStore::openGap(Run* run, int at) {
    const int behind = run->count++ - at;
    shift(run->prefixes() + at, behind, run->prefixes() + at + 1);
    shift(run->keys() + at, behind, run->keys() + at + 1);
    shift(run->values() + at, behind, run->values() + at + 1);
}

void SortedStore::closeGap(Run* run, int at) {
    const int behind = --run->count - at;
    shift(run->prefixes() + at + 1, behind, run->prefixes() + at);
    shift(run->keys() + at + 1, behind, run->keys() + at);
    shift(run->values() + at + 1, behind, run->values() + at);
}

void SortedStore::moveTail(Run* from, int at, Run* to) {
    copyRun(from, at, from->count - at, to);
    from->count = at;
}

SortedStore::~SortedStore() {
    freeKeys();
    while (slab != nullptr) std::free(std::exchange(slab, slab->next));
    std::free(root);
    std::free(counts);
    std::free(starts);
    for (const Layout& layout : layouts) {
        std::free(layout.elements);
        std::free(layout.places);
    }
}

void SortedStore::freeKeys() {
    for (int leaf = 0; leaf < leafCount(); ++leaf) {
        Run* run = leafOf(leaf);
        for (int i = 0; i < run->count; ++i) std::free(run->keys()[i]);
    }
}

// Keeps every run: one leaf in place and the others as spare ones.
void SortedStore::clear() {
    freeKeys();
    while (leafCount() > 1) dropLeaf(leafCount() - 1);
    leafOf(0)->count = 0;
    forgetShared();
    if (tall) counts[0] = 0;
    total = 0;
    noteChange(0);
    noteRemoval();
}

void SortedStore::growRoot() {
    Run* larger = makeRun(root->capacity * 2);
    copyRun(root, 0, root->count, larger);
    std::free(std::exchange(root, larger));
    if (tall) resizeSlots();
}

// Gives what is kept for each leaf as many slots as the top run has.
void SortedStore::resizeSlots() {
    resize(counts, root->capacity);
    resize(starts, root->capacity);
    for (Layout& layout : layouts)
        if (layout.places != nullptr) resize(layout.places, root->capacity);
}

// Puts a top run over the only leaf, which moves to a slab.
void SortedStore::makeTall() {
    Run* leaf = takeLeaf();
    copyRun(root, 0, root->count, leaf);
    std::free(std::exchange(root, makeRun(16)));
    tall = true;
    resizeSlots();
    copyRun(leaf, 0, 1, root);
    root->values()[0] = leaf;
    counts[0] = leaf->count;
    starts[0] = 0;
}

Run* SortedStore::takeLeaf() {
    if (spare != nullptr) return std::exchange(spare, spare->next);
    if (slab == nullptr || slab->used + runSize(leafRoom) > slab->size) addSlab();
    void* room = reinterpret_cast<char*>(slab) + slab->used;
    slab->used += runSize(leafRoom);
    return new (room) Run{0, leafRoom, 0, nullptr};
}

// Each slab is twice as large as the one before, up to the size of a large page.
void SortedStore::addSlab() {
    constexpr std::size_t smallest = std::size_t{1} << 14;
    constexpr std::size_t largest = std::size_t{1} << 21;
    const std::size_t size = slab == nullptr ? smallest : std::min(slab->size * 2, largest);
    void* room = size < largest ? allocate(size) : std::aligned_alloc(largest, largest);
    checkMemory(room);
#ifdef MADV_HUGEPAGE
    // Leaves are visited at random, so that with small pages most visits would have to look up their page.
    if (size == largest) madvise(room, largest, MADV_HUGEPAGE);
#endif
    slab = new (room) Slab{slab, size, sizeof(Slab)};
}

// Room for what is kept of a leaf that is about to enter the top run.
void SortedStore::openSlot(int leaf) {
    const int behind = root->count - leaf;
    shift(counts + leaf, behind, counts + leaf + 1);
    for (Layout& layout : layouts) {
        if (layout.places == nullptr) continue;
        shift(layout.places + leaf, behind, layout.places + leaf + 1);
        layout.places[leaf] = -1;
    }
}

void SortedStore::dropLeaf(int leaf) {
    Run* run = leafOf(leaf);
    run->next = std::exchange(spare, run);
    closeGap(root, leaf);
    const int behind = root->count - leaf;
    shift(counts + leaf + 1, behind, counts + leaf);
    for (Layout& layout : layouts)
        if (layout.places != nullptr) shift(layout.places + leaf + 1, behind, layout.places + leaf);
    noteChange(leaf);
}

// For an only leaf without entries: nothing may look at the keys that it had, nor at its name.
void SortedStore::forgetShared() {
    root->skip = leafOf(0)->skip = 0;
}

void SortedStore::noteChange(int leaf) {
    known = std::min(known, leaf + 1);
    for (Layout& layout : layouts)
        if (layout.places != nullptr) layout.places[leaf] = -1;
    reads = 0;
}

void SortedStore::noteRemoval() {
    for (Layout& layout : layouts) layout.shrunk = true;
}

int SortedStore::startOf(int leaf) {
    if (!tall) return 0;
    for (; known <= leaf; ++known) starts[known] = starts[known - 1] + counts[known - 1];
    return starts[leaf];
}

int SortedStore::leafAt(int position) {
    if (!tall) return 0;
    if (cursor < known && starts[cursor] <= position && position < starts[cursor] + counts[cursor])
        return cursor;
    while (known < leafCount() && starts[known - 1] + counts[known - 1] <= position) startOf(known);
    cursor = static_cast<int>(std::upper_bound(starts, starts + known, position) - starts) - 1;
    return cursor;
}

Place SortedStore::placeOf(int position) {
    const int leaf = leafAt(position);
    return {leaf, position - startOf(leaf), true};
}

void* SortedStore::read(Column column, int position) {
    if (position < 0 || position >= total) return nullptr;
    const Place place = placeOf(position);
    switch (column) {
    case Column::Keys: return keyAt(place);
    case Column::Values: return valueAt(place);
    case Column::ValueCopies: break;
    }
    return valueCopyOf(keyAt(place), valueAt(place));
}

// The only leaf of a small table is laid out as it stands, but for the value copies, which no array holds.
void** SortedStore::settle(Column column) {
    if (!tall && column == Column::Keys) return root->keys();
    if (!tall && column == Column::Values) return root->values();
    Layout& layout = layouts[static_cast<int>(column)];
    fitLayout(layout);
    if (tall)
        updateLayout(layout, column);
    else
        writeColumn(root, column, layout.elements);
    return layout.elements;
}

void SortedStore::fitLayout(Layout& layout) {
    if (layout.capacity < total) {
        layout.capacity = total + total / 2;
        resize(layout.elements, layout.capacity);
    }
    if (!tall || (layout.places != nullptr && !layout.shrunk)) return;
    if (layout.places == nullptr) resize(layout.places, root->capacity);
    std::fill_n(layout.places, leafCount(), -1);
    layout.shrunk = false;
}

// Nothing has left the leaves that are laid out, so each only moves up: from the last one down, the changed
// leaves are written anew, and what lies unchanged between two of them moves in one piece. Below the first
// change all is in place.
void SortedStore::updateLayout(Layout& layout, Column column) {
    int last = leafCount() - 1;
    startOf(last);
    while (last >= 0 && layout.places[last] != starts[last]) {
        int first = last;
        if (layout.places[last] < 0) {
            writeColumn(leafOf(last), column, layout.elements + starts[last]);
        } else {
            const int distance = starts[last] - layout.places[last];
            while (first > 0 && layout.places[first - 1] == starts[first - 1] - distance &&
                   layout.places[first - 1] >= 0)
                --first;
            shift(layout.elements + layout.places[first], starts[last] + counts[last] - starts[first],
                  layout.elements + starts[first]);
        }
        std::copy(starts + first, starts + last + 1, layout.places + first);
        last = first - 1;
    }
}

void* ColumnBase::read(Column column, int position) const {
    if (store == nullptr) return nullptr;
    if (!store->isMuchRead()) return store->read(column, position);
    return settle(column)[position];
}

void** ColumnBase::settle(Column column) const {
    if (store != nullptr && settled == nullptr) settled = store->settle(column);
    return settled;
}

} // namespace ostraka::detail
