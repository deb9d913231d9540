#pragma once

#include <concepts>
#include <ostraka/Export.h>

// One array of a sorted index (its keys, its values, ...), read from outside. A column can be indexed from 0
// or converted to the plain pointer of its first element; what it shows is always sorted and complete. The
// array belongs to the index. A pointer to it is for reading, and good until the index next changes.
//
// An index of more than a hundred entries keeps them in pieces, so that an entry added in the middle
// moves little. A single element of such an index is fetched from its piece; the plain pointer, or many
// elements read between two changes, lay the column out as one array first, which costs one pass over its
// entries.
namespace ostraka::detail {

class SortedStore;

enum class Column { Keys, Values, ValueCopies };

class OSTRAKA_EXPORT ColumnBase {
public:
    ColumnBase(const ColumnBase&) = delete;
    ColumnBase& operator=(const ColumnBase&) = delete;

protected:
    ColumnBase() = default;
    ~ColumnBase() = default;

    void* read(Column column, int position) const;
    void** settle(Column column) const;

    SortedStore* store = nullptr;     // owned by the index, null until it has an entry
    mutable void** settled = nullptr; // the column as one array, null while it isn't laid out
};

// `Element` is a pointer type, `Index` the class that the column is a member of.
template <class Element, Column column, class Index>
class IndexColumn : private ColumnBase {
public:
    // The element at `position`, which lies in 0 .. size - 1.
    template <std::integral Position>
    Element operator[](Position position) const {
        return static_cast<Element>(settled != nullptr ? settled[position]
                                                       : read(column, static_cast<int>(position)));
    }

    // The first of `size` elements; may be null when there is none.
    operator Element*() const {
        return reinterpret_cast<Element*>(settled != nullptr ? settled : settle(column));
    }

private:
    friend Index;
    IndexColumn() = default;
};

} // namespace ostraka::detail
