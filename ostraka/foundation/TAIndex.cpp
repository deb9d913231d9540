#include <ostraka/foundation/TAIndex.h>

#include <ostraka/foundation/IndexOperations.h>

namespace ostraka::detail {

// Texts in the order of `strcmp`. A unit is a byte; a prefix is eight of them, the first one highest, with
// zeros behind the end of the text.
template <>
struct OrderOf<TAIndex> {
    // Holds no NUL, and needn't end in one.
    struct Sought {
        const char* text;
        std::size_t length;
    };

    static constexpr std::size_t prefixUnits = 8;
    static constexpr std::size_t worthSkipping = 4;

    static std::uint64_t Prefix(const Sought& sought, std::size_t skip) {
        return Pack(sought.text + skip, std::min(sought.length - skip, prefixUnits));
    }

    static std::uint64_t HeldPrefix(const void* key, std::size_t skip) {
        const char* text = static_cast<const char*>(key) + skip;
        return Pack(text, strnlen(text, prefixUnits));
    }

    static int Compare(const Sought& sought, const void* key, std::size_t from, std::size_t past) {
        const char* held = static_cast<const char*>(key);
        // The prefix has shown the end of both.
        if (from > sought.length) return 0;
        const std::size_t end = std::min(past, sought.length);
        const int side = std::strncmp(sought.text + from, held + from, end - from);
        if (side != 0 || past <= sought.length) return side;
        return held[sought.length] == '\0' ? 0 : -1;
    }

    static std::size_t Common(const void* a, const void* b, std::size_t from, std::size_t limit) {
        const char* left = static_cast<const char*>(a);
        const char* right = static_cast<const char*>(b);
        while (from < limit && left[from] == right[from] && left[from] != '\0') ++from;
        return from;
    }

    static std::size_t SharedUnits(std::uint64_t a, std::uint64_t b) {
        return static_cast<std::size_t>(std::countl_zero(a ^ b)) / CHAR_BIT;
    }

    static Sought SoughtOf(const TAIndex&, const char* key) { return {key, std::strlen(key)}; }

private:
    static std::uint64_t Pack(const char* bytes, std::size_t count) {
        std::uint64_t word = 0;
        if (count == prefixUnits)
            std::memcpy(&word, bytes, prefixUnits);
        else
            std::memcpy(&word, bytes, count);
        return std::endian::native == std::endian::big ? word : __builtin_bswap64(word);
    }
};

template class SortedIndex<TAIndex, char>;

} // namespace ostraka::detail

using namespace ostraka::detail;

namespace {

using Order = OrderOf<TAIndex>;

// Whether the first `length` characters can be a key.
bool IsKey(const char* text, int length) {
    const auto wanted = static_cast<std::size_t>(length);
    return length >= 0 && strnlen(text, wanted) == wanted;
}

Order::Sought SoughtOf(const char* text, int length) {
    return {text, static_cast<std::size_t>(length)};
}

} // namespace

TAIndex::~TAIndex() {
    if (store != nullptr) delete &TableOf<Order>(store);
}

std::uint64_t TAIndex::NextEpoch() {
    static std::uint64_t last = 0;
    return ++last;
}

const char* TAIndex::Append(const char* key, const void* value, int copy) {
    const Order::Sought sought = Order::SoughtOf(*this, key);
    if (store == nullptr) {
        store = new SortedTable<Order>;
        keys.Show(*store, Column::Keys);
        values.Show(*store, Column::Values);
        valueCopies.Show(*store, Column::ValueCopies);
    }
    auto& table = TableOf<Order>(store);
    const Place place = table.Find(sought);
    if (place.found) return static_cast<const char*>(store->KeyAt(place));

    increaseAllocSize();
    char* held = HoldText(key, sought.length, copy != 0 ? static_cast<const char*>(value) : nullptr);
    void* kept = copy != 0 && value != nullptr ? held + sought.length + 2 : const_cast<void*>(value);
    table.Insert(place, held, kept);
    ++size;
    return held;
}

int TAIndex::IsIn(const char* key, int length) const {
    if (size == 0 || !IsKey(key, length)) return -1;
    return PositionIn<Order>(store, SoughtOf(key, length));
}

bool TAIndex::Holds(const char* key, int length) const {
    return size != 0 && IsKey(key, length) && TableOf<Order>(store).Find(SoughtOf(key, length)).found;
}
