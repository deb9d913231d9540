#pragma once

// NUBRawCollPV and NUBRawCollint, growing arrays of pointers and of ints. They own their array and nothing
// that a pointer in it points to. Positions count from 1; a reference to an entry is good until the
// collection changes. `size` is the number of entries, to be read only.

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <type_traits>
#include <utility>

#include <basalt/Export.h>
#include <basalt/NUBCollec.h>

namespace basalt::detail {

template <class T>
class RawColl {
    static_assert(std::is_trivially_copyable_v<T>);

public:
    // Number of entries.
    int size = 0;

    explicit RawColl(int room = 0) { Reserve(room); }
    RawColl(const T* array, int n) { Assign(array, n); }
    RawColl(const RawColl& other) { Assign(other.entries, other.size); }
    RawColl(RawColl&& other) noexcept { Swap(other); }
    ~RawColl() { std::free(entries); }

    RawColl& operator=(const RawColl& other) {
        if (this != &other) Assign(other.entries, other.size);
        return *this;
    }
    RawColl& operator=(RawColl&& other) noexcept {
        Swap(other);
        return *this;
    }

    int Size() const { return size; }

    T& operator[](int i) {
        assert(i >= 1 && i <= size);
        return entries[i - 1];
    }
    const T& operator[](int i) const {
        assert(i >= 1 && i <= size);
        return entries[i - 1];
    }

    // Adds at the end.
    void Append(T entry) {
        if (size == capacity) Grow();
        entries[size++] = entry;
    }

    // Takes out entry `i`; later ones move down by one. Nothing for a position that holds no entry.
    void RemovePosition(int i) {
        if (i < 1 || i > size) return;
        std::copy(entries + i, entries + size, entries + i - 1);
        --size;
    }

    void RemoveAll(NUBCollec::MemoryHandling mode) {
        size = 0;
        if (mode == 0) return;
        std::free(entries);
        entries = nullptr;
        capacity = 0;
    }

protected:
    T* First() { return entries; }
    T* Past() { return entries + size; }

private:
    void Swap(RawColl& other) noexcept {
        std::swap(size, other.size);
        std::swap(capacity, other.capacity);
        std::swap(entries, other.entries);
    }

    void Assign(const T* array, int n) {
        Reserve(n);
        size = std::max(n, 0);
        std::copy_n(array, size, entries);
    }

    void Grow() {
        constexpr int most = std::numeric_limits<int>::max() / 2;
        if (capacity > most) throw std::bad_alloc();
        Reserve(capacity < 4 ? 4 : capacity * 2);
    }

    void Reserve(int room) {
        if (room <= capacity) return;
        void* block = std::realloc(entries, static_cast<std::size_t>(room) * sizeof(T));
        if (!block) throw std::bad_alloc();
        entries = static_cast<T*>(block);
        capacity = room;
    }

    int capacity = 0;
    T* entries = nullptr;
};

} // namespace basalt::detail

class BASALT_EXPORT NUBRawCollint : public basalt::detail::RawColl<int> {
public:
    // Empty, with room for so many.
    explicit NUBRawCollint(int room = 0) : RawColl(room) {}
};

class BASALT_EXPORT NUBRawCollPV : public basalt::detail::RawColl<void*> {
public:
    // Empty, with room for so many.
    explicit NUBRawCollPV(int room = 0) : RawColl(room) {}
    // The `n` pointers of an array.
    NUBRawCollPV(void* const* array, int n) : RawColl(array, n) {}
    NUBRawCollPV(const NUBRawCollPV&) = default;
    NUBRawCollPV(NUBRawCollPV&&) = default;
    NUBRawCollPV& operator=(const NUBRawCollPV&) = default;
    NUBRawCollPV& operator=(NUBRawCollPV&&) = default;
    virtual ~NUBRawCollPV();

    // Keeps the first of equal pointers, in their order. The ones taken out are added to `removed`, which may
    // be null, in their order too. Linear in the number of entries.
    void RemoveDuplicates(NUBRawCollPV* removed);

    // 0 when the sizes agree and `order` gives 0 for each pair of entries; else the first result of `order`
    // that isn't 0, and of two lists of which one begins the other the shorter comes first.
    template <class X>
    static int Compare(const NUBRawCollPV& a, const NUBRawCollPV& b, int (*order)(X*, X*)) {
        for (int i = 1; i <= std::min(a.size, b.size); ++i)
            if (int result = order(static_cast<X*>(a[i]), static_cast<X*>(b[i]))) return result;
        return (a.size > b.size) - (a.size < b.size);
    }

    // Sorts; entries that `order` holds for equal keep their order. An entry moves before another only where
    // `order` says "greater", so a comparator that answers -1 for equal entries sorts as well.
    template <class X>
    void QuickSort(int (*order)(X*, X*)) {
        std::stable_sort(First(), Past(), [order](void* a, void* b) {
            return order(static_cast<X*>(b), static_cast<X*>(a)) > 0;
        });
    }
    // The same with a comparator like those of `qsort`, which is given the addresses of two entries.
    void QuickSort(int (*order)(const void*, const void*)) {
        std::stable_sort(First(), Past(),
                         [order](void* const& a, void* const& b) { return order(&b, &a) > 0; });
    }
};
