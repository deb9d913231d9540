#include <ostraka/foundation/TAIndexB.h>

#include <ostraka/foundation/AppendOrGet.h>
#include <ostraka/foundation/Fatal.h>
#include <ostraka/foundation/IndexOperations.h>

namespace ostraka::detail {

// Keys of signed words, the greater before the smaller. A unit is a word, and so is a prefix.
template <>
struct OrderOf<TAIndexB> {
    struct Sought {
        const std::intptr_t* words;
        std::size_t count;
    };

    static constexpr std::size_t prefixUnits = 1;
    static constexpr std::size_t worthSkipping = 1;

    // Ascending and unsigned where the words are descending and signed. Behind the end of a key all are
    // alike.
    static std::uint64_t Prefix(const Sought& sought, std::size_t skip) {
        return HeldPrefix(sought.words, skip);
    }

    static std::uint64_t HeldPrefix(const void* key, std::size_t skip) {
        const auto word = static_cast<std::int64_t>(static_cast<const std::intptr_t*>(key)[skip]);
        return static_cast<std::uint64_t>(word) ^ static_cast<std::uint64_t>(INT64_MAX);
    }

    static int Compare(const Sought& sought, const void* key, std::size_t from, std::size_t past) {
        const std::intptr_t* held = static_cast<const std::intptr_t*>(key);
        for (std::size_t i = from; i < std::min(past, sought.count); ++i)
            if (sought.words[i] != held[i]) return sought.words[i] < held[i] ? 1 : -1;
        return 0;
    }

    // Held keys differ, so that this ends before they do.
    static std::size_t Common(const void* a, const void* b, std::size_t from, std::size_t limit) {
        const std::intptr_t* left = static_cast<const std::intptr_t*>(a);
        const std::intptr_t* right = static_cast<const std::intptr_t*>(b);
        while (from < limit && left[from] == right[from]) ++from;
        return from;
    }

    static std::size_t SharedUnits(std::uint64_t a, std::uint64_t b) { return a == b ? 1 : 0; }

    static Sought SoughtOf(const TAIndexB& index, const void* key) {
        return {static_cast<const std::intptr_t*>(key), static_cast<std::size_t>(index.sizeofkey)};
    }
};

template class SortedIndex<TAIndexB, void>;

} // namespace ostraka::detail

using namespace ostraka::detail;

namespace {

using Order = OrderOf<TAIndexB>;

} // namespace

TAIndexB::TAIndexB(int words) : sizeofkey(words) {
    FATAL(words < 1, "Unable to create TAIndexB with sizeofkey < 0 ");
}

TAIndexB::~TAIndexB() {
    if (store != nullptr) delete &TableOf<Order>(store);
}

const void* TAIndexB::Append(const void* key, void* value) {
    return AppendOrGet(key, value);
}

const void* ostraka::detail::AppendOrGet(TAIndexB& index, const void* key, void*& value) {
    return index.AppendOrGet(key, value);
}

const void* TAIndexB::AppendOrGet(const void* key, void*& value) {
    if (store == nullptr) {
        store = new SortedTable<Order>;
        keys.Show(*store, Column::Keys);
        values.Show(*store, Column::Values);
    }
    auto& table = TableOf<Order>(store);
    const Order::Sought sought = Order::SoughtOf(*this, key);
    const Place place = table.Find(sought);
    if (place.found) {
        value = table.ValueAt(place);
        return table.KeyAt(place);
    }

    increaseAllocSize();
    const std::size_t bytes = sought.count * sizeof(std::intptr_t);
    void* held = std::memcpy(Allocate(bytes), key, bytes);
    table.Insert(place, held, value);
    ++size;
    return held;
}

int TAIndexB::IsIn(const void* key, int) const {
    return IsIn(key);
}

int TAIndexB::compare(const void* key, const void* heldKey) const {
    const Order::Sought sought = Order::SoughtOf(*this, key);
    return Order::Compare(sought, heldKey, 0, sought.count);
}
