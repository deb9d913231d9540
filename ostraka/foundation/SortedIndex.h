#pragma once

#include <ostraka/Export.h>

namespace ostraka::detail {

// What the two sorted indexes have in common. `Index` derives from this and has the fields; a key that is
// passed in is a `Key*`.
template <class Index, class Key>
class OSTRAKA_EXPORT SortedIndex {
public:
    // The position of `key` from 0, or -1.
    int IsIn(const Key* key) const;
    // Whether `key` is there. Doesn't ask for its position, which has to be counted after each change.
    bool Holds(const Key* key) const;
    // The value of `key`; null when it is absent or its value is null.
    void* operator[](const Key* key) const;

    // Removes the entry at `position` with its key and value copy: 0, or 1 when there is no such position.
    int RemovePosition(int position);

    // Empties the table and keeps its room; returns 0.
    int Reset();

    // Makes room for one more entry: the slots grow when it would fill the last one. Returns 0; ends in
    // `FATAL` when there is no memory. `Append` calls it.
    int increaseAllocSize();

protected:
    SortedIndex() = default;
    ~SortedIndex() = default;

private:
    Index& Self() { return static_cast<Index&>(*this); }
    const Index& Self() const { return static_cast<const Index&>(*this); }
};

} // namespace ostraka::detail
