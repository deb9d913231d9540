// A leaf's entries have the positions from its start on. The starts are sums of the counts of the leaves
// before; a change in a leaf spoils the starts behind it, and whoever next asks for one of those adds up as
// far as it takes.

#include <ostraka/foundation/SortedTable.h>

#include <iterator>
#include <new>
#include <sys/mman.h>
#include <utility>

#include <ostraka/foundation/Fatal.h>

namespace ostraka::detail {

namespace {

void CheckMemory(bool granted) {
    FATAL(!granted, "TAIndex::increaseAllocSize failed, memory allocation failed");
}

// Moves `count` elements to a place that may overlap theirs.
template <class Element>
void Shift(const Element* from, int count, Element* to) {
    std::memmove(to, from, static_cast<std::size_t>(count) * sizeof(Element));
}

void CopyRun(Run* from, int first, int count, Run* to) {
    Shift(from->Prefixes() + first, count, to->Prefixes());
    Shift(from->Keys() + first, count, to->Keys());
    Shift(from->Values() + first, count, to->Values());
    to->count = count;
    to->skip = from->skip;
}

template <class Element>
void Resize(Element*& elements, int capacity) {
    elements =
        static_cast<Element*>(Reallocate(elements, static_cast<std::size_t>(capacity) * sizeof(Element)));
}

std::size_t RunSize(int capacity) {
    constexpr std::size_t slot = sizeof(std::uint64_t) + 2 * sizeof(void*);
    return sizeof(Run) + static_cast<std::size_t>(capacity) * slot;
}

void WriteColumn(Run* run, Column column, void** out) {
    if (column == Column::ValueCopies)
        std::transform(run->Keys(), run->Keys() + run->count, run->Values(), out, ValueCopyOf);
    else
        Shift(column == Column::Keys ? run->Keys() : run->Values(), run->count, out);
}

} // namespace

void* Allocate(std::size_t bytes) {
    void* block = std::malloc(bytes);
    CheckMemory(block != nullptr);
    return block;
}

void* Reallocate(void* block, std::size_t bytes) {
    block = std::realloc(block, bytes);
    CheckMemory(block != nullptr);
    return block;
}

void GrowSlots(int size, int& allocSize, int& incSize) {
    if (size + 1 < allocSize) return;
    allocSize += incSize;
    if (static_cast<long long>(incSize) * 10 < allocSize) incSize = allocSize / 2;
}

char* HoldText(const char* key, std::size_t length, const char* copy) {
    const std::size_t copySize = copy != nullptr ? std::strlen(copy) + 1 : 0;
    char* held = static_cast<char*>(Allocate(length + 2 + copySize));
    std::memcpy(held, key, length);
    held[length] = '\0';
    held[length + 1] = copy != nullptr ? 1 : 0;
    if (copy != nullptr) std::memcpy(held + length + 2, copy, copySize);
    return held;
}

char* ValueCopyOf(void* heldKey, void* value) {
    const char* key = static_cast<const char*>(heldKey);
    return key[std::strlen(key) + 1] != 0 ? static_cast<char*>(value) : nullptr;
}

Run* SortedStore::MakeRun(int capacity) {
    return new (Allocate(RunSize(capacity))) Run{0, capacity, 0, nullptr};
}

void SortedStore::OpenGap(Run* run, int at) {
    const int behind = run->count++ - at;
    Shift(run->Prefixes() + at, behind, run->Prefixes() + at + 1);
    Shift(run->Keys() + at, behind, run->Keys() + at + 1);
    Shift(run->Values() + at, behind, run->Values() + at + 1);
}

void SortedStore::CloseGap(Run* run, int at) {
    const int behind = --run->count - at;
    Shift(run->Prefixes() + at + 1, behind, run->Prefixes() + at);
    Shift(run->Keys() + at + 1, behind, run->Keys() + at);
    Shift(run->Values() + at + 1, behind, run->Values() + at);
}

void SortedStore::MoveTail(Run* from, int at, Run* to) {
    CopyRun(from, at, from->count - at, to);
    from->count = at;
}

SortedStore::~SortedStore() {
    FreeKeys();
    while (slab != nullptr) std::free(std::exchange(slab, slab->next));
    std::free(root);
    std::free(counts);
    std::free(starts);
    for (void** column : layout.columns) std::free(column);
    std::free(layout.places);
}

void SortedStore::FreeKeys() {
    for (int leaf = 0; leaf < LeafCount(); ++leaf) {
        Run* run = LeafOf(leaf);
        for (int i = 0; i < run->count; ++i) std::free(run->Keys()[i]);
    }
}

// Keeps every run: one leaf in place and the others as spare ones.
void SortedStore::Clear() {
    FreeKeys();
    while (LeafCount() > 1) DropLeaf(LeafCount() - 1);
    LeafOf(0)->count = 0;
    ForgetShared();
    if (tall) counts[0] = 0;
    total = 0;
    NoteChange(0);
    NoteRemoval();
}

void SortedStore::GrowRoot() {
    Run* larger = MakeRun(root->capacity * 2);
    CopyRun(root, 0, root->count, larger);
    std::free(std::exchange(root, larger));
    if (tall) ResizeSlots();
}

// Gives what is kept for each leaf as many slots as the top run has.
void SortedStore::ResizeSlots() {
    Resize(counts, root->capacity);
    Resize(starts, root->capacity);
    if (layout.places != nullptr) Resize(layout.places, root->capacity);
}

// Puts a top run over the only leaf, which moves to a slab.
void SortedStore::MakeTall() {
    Run* leaf = TakeLeaf();
    CopyRun(root, 0, root->count, leaf);
    std::free(std::exchange(root, MakeRun(16)));
    tall = true;
    ResizeSlots();
    CopyRun(leaf, 0, 1, root);
    root->Values()[0] = leaf;
    counts[0] = leaf->count;
    starts[0] = 0;
}

Run* SortedStore::TakeLeaf() {
    if (spare != nullptr) return std::exchange(spare, spare->next);
    if (slab == nullptr || slab->used + RunSize(leafRoom) > slab->size) AddSlab();
    void* room = reinterpret_cast<char*>(slab) + slab->used;
    slab->used += RunSize(leafRoom);
    return new (room) Run{0, leafRoom, 0, nullptr};
}

// Each slab is twice as large as the one before, up to the size of a large page.
void SortedStore::AddSlab() {
    constexpr std::size_t smallest = std::size_t{1} << 14;
    constexpr std::size_t largest = std::size_t{1} << 21;
    const std::size_t size = slab == nullptr ? smallest : std::min(slab->size * 2, largest);
    void* room = size < largest ? Allocate(size) : std::aligned_alloc(largest, largest);
    CheckMemory(room != nullptr);
#ifdef MADV_HUGEPAGE
    // Leaves are visited at random, so that with small pages most visits would have to look up their page.
    if (size == largest) madvise(room, largest, MADV_HUGEPAGE);
#endif
    slab = new (room) Slab{slab, size, sizeof(Slab)};
}

// Room for what is kept of a leaf that is about to enter the top run.
void SortedStore::OpenSlot(int leaf) {
    const int behind = root->count - leaf;
    Shift(counts + leaf, behind, counts + leaf + 1);
    if (layout.places == nullptr) return;
    Shift(layout.places + leaf, behind, layout.places + leaf + 1);
    layout.places[leaf] = -1;
}

void SortedStore::DropLeaf(int leaf) {
    Run* run = LeafOf(leaf);
    run->next = std::exchange(spare, run);
    CloseGap(root, leaf);
    const int behind = root->count - leaf;
    Shift(counts + leaf + 1, behind, counts + leaf);
    if (layout.places != nullptr) Shift(layout.places + leaf + 1, behind, layout.places + leaf);
    NoteChange(leaf);
}

// For an only leaf without entries: nothing may look at the keys that it had, nor at its name.
void SortedStore::ForgetShared() {
    root->skip = LeafOf(0)->skip = 0;
}

void SortedStore::NoteChange(int leaf) {
    known = std::min(known, leaf + 1);
    if (layout.places != nullptr) layout.places[leaf] = -1;
    for (void*** array : shown)
        if (array != nullptr) *array = nullptr;
    reads = 0;
}

void SortedStore::NoteRemoval() {
    layout.shrunk = true;
}

int SortedStore::StartOf(int leaf) {
    if (!tall) return 0;
    for (; known <= leaf; ++known) starts[known] = starts[known - 1] + counts[known - 1];
    return starts[leaf];
}

int SortedStore::LeafAt(int position) {
    if (!tall) return 0;
    if (cursor < known && starts[cursor] <= position && position < starts[cursor] + counts[cursor])
        return cursor;
    while (known < LeafCount() && starts[known - 1] + counts[known - 1] <= position) StartOf(known);
    cursor = static_cast<int>(std::upper_bound(starts, starts + known, position) - starts) - 1;
    return cursor;
}

Place SortedStore::PlaceOf(int position) {
    const int leaf = LeafAt(position);
    return {leaf, position - StartOf(leaf), true};
}

void* SortedStore::Read(Column column, int position) {
    if (position < 0 || position >= total) return nullptr;
    const Place place = PlaceOf(position);
    switch (column) {
    case Column::Keys: return KeyAt(place);
    case Column::Values: return ValueAt(place);
    case Column::ValueCopies: break;
    }
    return ValueCopyOf(KeyAt(place), ValueAt(place));
}

// The only leaf of a small table is laid out as it stands, but for the value copies, which no array holds.
void** SortedStore::LayOut(Column column) {
    const int wanted = static_cast<int>(column);
    if (!tall && column != Column::ValueCopies)
        return *shown[wanted] = column == Column::Keys ? root->Keys() : root->Values();
    MakeRoomFor(column);
    if (!tall) {
        WriteColumn(root, column, layout.columns[wanted]);
        return *shown[wanted] = layout.columns[wanted];
    }
    UpdateLayout();
    for (int i = 0; i < columnCount; ++i)
        if (layout.columns[i] != nullptr) *shown[i] = layout.columns[i];
    return layout.columns[wanted];
}

void SortedStore::MakeRoomFor(Column column) {
    void**& joining = layout.columns[static_cast<int>(column)];
    const bool joins = joining == nullptr;
    if (layout.capacity < total) {
        layout.capacity = total + total / 2;
        for (void**& present : layout.columns)
            if (present != nullptr) Resize(present, layout.capacity);
    }
    if (joins) Resize(joining, layout.capacity);
    if (tall && (joins || layout.shrunk || layout.places == nullptr)) ForgetPlaces();
}

void SortedStore::ForgetPlaces() {
    if (layout.places == nullptr) Resize(layout.places, root->capacity);
    std::fill_n(layout.places, LeafCount(), -1);
    layout.shrunk = false;
}

// Nothing has left the leaves that are laid out, so each only moves up: from the last one down, the changed
// leaves are written anew, and what lies unchanged between two of them moves in one piece. Below the first
// change all is in place.
void SortedStore::UpdateLayout() {
    int last = LeafCount() - 1;
    StartOf(last);
    while (last >= 0 && layout.places[last] != starts[last]) {
        const int first = FirstOfPiece(last);
        WritePiece(first, last);
        std::copy(starts + first, starts + last + 1, layout.places + first);
        last = first - 1;
    }
}

// The first of the leaves down from this one that lie where they can move together with it; a changed leaf is
// a piece of its own.
int SortedStore::FirstOfPiece(int leaf) const {
    if (layout.places[leaf] < 0) return leaf;
    const int distance = starts[leaf] - layout.places[leaf];
    int first = leaf;
    while (first > 0 && layout.places[first - 1] >= 0 &&
           layout.places[first - 1] == starts[first - 1] - distance)
        --first;
    return first;
}

void SortedStore::WritePiece(int first, int last) {
    const int place = layout.places[first];
    const int count = starts[last] + counts[last] - starts[first];
    for (int i = 0; i < columnCount; ++i) {
        void** column = layout.columns[i];
        if (column == nullptr) continue;
        if (place < 0)
            WriteColumn(LeafOf(first), static_cast<Column>(i), column + starts[first]);
        else
            Shift(column + place, count, column + starts[first]);
    }
}

void ColumnBase::Show(SortedStore& shown, Column column) {
    store = &shown;
    store->ShowIn(array, column);
}

void* ColumnBase::Read(Column column, int position) const {
    if (store == nullptr) return nullptr;
    return store->IsMuchRead() ? store->LayOut(column)[position] : store->Read(column, position);
}

void** ColumnBase::LayOut(Column column) const {
    return store != nullptr ? store->LayOut(column) : nullptr;
}

} // namespace ostraka::detail
