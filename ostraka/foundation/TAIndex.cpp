#include <ostraka/foundation/SortedTable.h>
#include <ostraka/foundation/TAIndex.h>

using namespace ostraka::detail;

namespace {

// Texts in the order of `strcmp`. A unit is a byte; a prefix is eight of them, the first one highest, with
// zeros behind the end of the text.
struct TextOrder {
    // Holds no NUL, and needn't end in one.
    struct Sought {
        const char* text;
        std::size_t length;
    };

    static constexpr std::size_t prefixUnits = 8;
    static constexpr std::size_t worthSkipping = 4;

    static std::uint64_t prefix(const Sought& sought, std::size_t skip) {
        return pack(sought.text + skip, std::min(sought.length - skip, prefixUnits));
    }

    static std::uint64_t heldPrefix(const void* key, std::size_t skip) {
        const char* text = static_cast<const char*>(key) + skip;
        return pack(text, strnlen(text, prefixUnits));
    }

    static int compare(const Sought& sought, const void* key, std::size_t from, std::size_t past) {
        const char* held = static_cast<const char*>(key);
        // The prefix has shown the end of both.
        if (from > sought.length) return 0;
        const std::size_t end = std::min(past, sought.length);
        const int side = std::strncmp(sought.text + from, held + from, end - from);
        if (side != 0 || past <= sought.length) return side;
        return held[sought.length] == '\0' ? 0 : -1;
    }

    static std::size_t common(const void* a, const void* b, std::size_t from, std::size_t limit) {
        const char* left = static_cast<const char*>(a);
        const char* right = static_cast<const char*>(b);
        while (from < limit && left[from] == right[from] && left[from] != '\0') ++from;
        return from;
    }

    static std::size_t sharedUnits(std::uint64_t a, std::uint64_t b) {
        return static_cast<std::size_t>(std::countl_zero(a ^ b)) / CHAR_BIT;
    }

private:
    static std::uint64_t pack(const char* bytes, std::size_t count) {
        std::uint64_t word = 0;
        if (count == prefixUnits)
            std::memcpy(&word, bytes, prefixUnits);
        else
            std::memcpy(&word, bytes, count);
        return std::endian::native == std::endian::big ? word : __builtin_bswap64(word);
    }
};

using TextTable = SortedTable<TextOrder>;

TextTable& tableOf(SortedStore* store) {
    return *static_cast<TextTable*>(store);
}

int positionIn(SortedStore* store, const TextOrder::Sought& sought) {
    const Place place = tableOf(store).find(sought);
    return place.found ? store->positionOf(place) : -1;
}

} // namespace

TAIndex::~TAIndex() {
    if (store != nullptr) delete &tableOf(store);
}

void TAIndex::noteChange() {
    keys.settled = values.settled = nullptr;
    valueCopies.settled = nullptr;
}

const char* TAIndex::Append(const char* key, const void* value, int copy) {
    const TextOrder::Sought sought{key, std::strlen(key)};
    if (store == nullptr) store = keys.store = values.store = valueCopies.store = new TextTable;
    const Place place = tableOf(store).find(sought);
    if (place.found) return static_cast<const char*>(store->keyAt(place));

    increaseAllocSize();
    char* held = holdText(key, sought.length, copy != 0 ? static_cast<const char*>(value) : nullptr);
    void* kept = copy != 0 && value != nullptr ? held + sought.length + 2 : const_cast<void*>(value);
    tableOf(store).insert(place, held, kept);
    ++size;
    noteChange();
    return held;
}

int TAIndex::IsIn(const char* key) const {
    return size == 0 ? -1 : positionIn(store, {key, std::strlen(key)});
}

int TAIndex::IsIn(const char* key, int length) const {
    const auto wanted = static_cast<std::size_t>(length);
    if (size == 0 || length < 0 || strnlen(key, wanted) != wanted) return -1;
    return positionIn(store, {key, wanted});
}

void* TAIndex::operator[](const char* key) const {
    if (size == 0) return nullptr;
    const Place place = tableOf(store).find({key, std::strlen(key)});
    return place.found ? store->valueAt(place) : nullptr;
}

int TAIndex::RemovePosition(int position) {
    if (position < 0 || position >= size) return 1;
    tableOf(store).remove(position);
    --size;
    noteChange();
    return 0;
}

int TAIndex::Reset() {
    if (store != nullptr) store->clear();
    size = 0;
    noteChange();
    return 0;
}

int TAIndex::increaseAllocSize() {
    growSlots(size, allocSize, incSize);
    return 0;
}
