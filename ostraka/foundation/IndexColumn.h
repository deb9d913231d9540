#pragma once

#include <concepts>

#include <ostraka/Export.h>

// One array of a sorted index (its keys, its values, ...), read from outside. A column can be indexed from 0
// or converted to the plain pointer of its first element; what it shows is always sorted and complete. The
// array belongs to the index. A pointer to it is for reading, and good until the index next changes.
//
// An index of more than a hundred entries keeps them in pieces, so that an entry added in the middle
// moves little. A single element of such an index is fetched from its piece; the plain pointer, or many
// elements read between two changes, lay the column out as one array first. That is one pass over what lies
// behind the first change, for all columns together that have been read so before.
namespace ostraka::detail {

class SortedStore;

enum class Column { Keys, Values, ValueCopies };
inline constexpr int columnCount = 3;

class OSTRAKA_EXPORT ColumnBase {
public:
    ColumnBase(const ColumnBase&) = delete;
    ColumnBase& operator=(const ColumnBase&) = delete;

protected:
    ColumnBase() = default;
    ~ColumnBase() = default;

    // Lets the column show what the store of its index holds.
    void Show(SortedStore& shown, Column column);
    void* Read(Column column, int position) const;
    void** LayOut(Column column) const;

    SortedStore* store = nullptr; // null until the index has an entry
    void** array = nullptr;       // set by the store while the column is laid out
};

// `Element` is a pointer type, `Index` the class that the column is a member of.
template <class Element, Column column, class Index>
class IndexColumn : private ColumnBase {
public:
    // The element at `position`, which lies in 0 .. size - 1.
    template <std::integral Position>
    Element operator[](Position position) const {
        return static_cast<Element>(array != nullptr ? array[position]
                                                     : Read(column, static_cast<int>(position)));
    }

    // The first of `size` elements; may be null when there is none.
    operator Element*() const {
        return reinterpret_cast<Element*>(array != nullptr ? array : LayOut(column));
    }

private:
    friend Index;
    IndexColumn() = default;
};

} // namespace ostraka::detail
