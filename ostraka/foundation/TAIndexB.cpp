#include <ostraka/foundation/Fatal.h>
#include <ostraka/foundation/SortedTable.h>
#include <ostraka/foundation/TAIndexB.h>

using namespace ostraka::detail;

namespace {

// Keys of signed words, the greater before the smaller. A unit is a word, and so is a prefix.
struct WordOrder {
    struct Sought {
        const std::intptr_t* words;
        std::size_t count;
    };

    static constexpr std::size_t prefixUnits = 1;
    static constexpr std::size_t worthSkipping = 1;

    // Ascending and unsigned where the words are descending and signed. Behind the end of a key all are
    // alike.
    static std::uint64_t prefix(const Sought& sought, std::size_t skip) {
        return heldPrefix(sought.words, skip);
    }

    static std::uint64_t heldPrefix(const void* key, std::size_t skip) {
        const auto word = static_cast<std::int64_t>(static_cast<const std::intptr_t*>(key)[skip]);
        return static_cast<std::uint64_t>(word) ^ static_cast<std::uint64_t>(INT64_MAX);
    }

    static int compare(const Sought& sought, const void* key, std::size_t from, std::size_t past) {
        const std::intptr_t* held = static_cast<const std::intptr_t*>(key);
        for (std::size_t i = from; i < std::min(past, sought.count); ++i)
            if (sought.words[i] != held[i]) return sought.words[i] < held[i] ? 1 : -1;
        return 0;
    }

    // Held keys differ, so that this ends before they do.
    static std::size_t common(const void* a, const void* b, std::size_t from, std::size_t limit) {
        const std::intptr_t* left = static_cast<const std::intptr_t*>(a);
        const std::intptr_t* right = static_cast<const std::intptr_t*>(b);
        while (from < limit && left[from] == right[from]) ++from;
        return from;
    }

    static std::size_t sharedUnits(std::uint64_t a, std::uint64_t b) { return a == b ? 1 : 0; }
};

using WordTable = SortedTable<WordOrder>;

WordTable& tableOf(SortedStore* store) {
    return *static_cast<WordTable*>(store);
}

WordOrder::Sought soughtOf(const void* key, int count) {
    return {static_cast<const std::intptr_t*>(key), static_cast<std::size_t>(count)};
}

} // namespace

TAIndexB::TAIndexB(int words) : sizeofkey(words) {
    FATAL(words < 1, "Unable to create TAIndexB with sizeofkey < 0 ");
}

TAIndexB::~TAIndexB() {
    if (store != nullptr) delete &tableOf(store);
}

void TAIndexB::noteChange() {
    keys.settled = nullptr;
    values.settled = nullptr;
}

const void* TAIndexB::Append(const void* key, void* value) {
    return AppendOrGet(key, value);
}

const void* TAIndexB::AppendOrGet(const void* key, void*& value) {
    if (store == nullptr) store = keys.store = values.store = new WordTable;
    const Place place = tableOf(store).find(soughtOf(key, sizeofkey));
    if (place.found) {
        value = store->valueAt(place);
        return store->keyAt(place);
    }

    increaseAllocSize();
    const std::size_t bytes = static_cast<std::size_t>(sizeofkey) * sizeof(std::intptr_t);
    void* held = std::memcpy(allocate(bytes), key, bytes);
    tableOf(store).insert(place, held, value);
    ++size;
    noteChange();
    return held;
}

int TAIndexB::IsIn(const void* key) const {
    if (size == 0) return -1;
    const Place place = tableOf(store).find(soughtOf(key, sizeofkey));
    return place.found ? store->positionOf(place) : -1;
}

int TAIndexB::IsIn(const void* key, int) const {
    return IsIn(key);
}

void* TAIndexB::operator[](const void* key) const {
    if (size == 0) return nullptr;
    const Place place = tableOf(store).find(soughtOf(key, sizeofkey));
    return place.found ? store->valueAt(place) : nullptr;
}

int TAIndexB::RemovePosition(int position) {
    if (position < 0 || position >= size) return 1;
    tableOf(store).remove(position);
    --size;
    noteChange();
    return 0;
}

int TAIndexB::Reset() {
    if (store != nullptr) store->clear();
    size = 0;
    noteChange();
    return 0;
}

int TAIndexB::compare(const void* key, const void* heldKey) const {
    return WordOrder::compare(soughtOf(key, sizeofkey), heldKey, 0, static_cast<std::size_t>(sizeofkey));
}

int TAIndexB::increaseAllocSize() {
    growSlots(size, allocSize, incSize);
    return 0;
}
