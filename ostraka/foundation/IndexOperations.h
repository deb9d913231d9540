#pragma once

#include <ostraka/foundation/SortedIndex.h>
#include <ostraka/foundation/SortedTable.h>

// The operations of SortedIndex, over the table of each. Besides what a table asks of it, an `Order` gives
//
//     SoughtOf(index, key)   what is sought for a key of the interface
namespace ostraka::detail {

// The order of an index, given beside it.
template <class Index>
struct OrderOf;

template <class Order>
SortedTable<Order>& TableOf(SortedStore* store) {
    return *static_cast<SortedTable<Order>*>(store);
}

template <class Order>
int PositionIn(SortedStore* store, const typename Order::Sought& sought) {
    const Place place = TableOf<Order>(store).Find(sought);
    return place.found ? store->PositionOf(place) : -1;
}

template <class Index, class Key>
int SortedIndex<Index, Key>::IsIn(const Key* key) const {
    return Self().size == 0 ? -1
                            : PositionIn<OrderOf<Index>>(Self().store, OrderOf<Index>::SoughtOf(Self(), key));
}

template <class Index, class Key>
bool SortedIndex<Index, Key>::Holds(const Key* key) const {
    return Self().size != 0 &&
           TableOf<OrderOf<Index>>(Self().store).Find(OrderOf<Index>::SoughtOf(Self(), key)).found;
}

template <class Index, class Key>
void* SortedIndex<Index, Key>::operator[](const Key* key) const {
    if (Self().size == 0) return nullptr;
    const Place place = TableOf<OrderOf<Index>>(Self().store).Find(OrderOf<Index>::SoughtOf(Self(), key));
    return place.found ? Self().store->ValueAt(place) : nullptr;
}

template <class Index, class Key>
int SortedIndex<Index, Key>::RemovePosition(int position) {
    if (position < 0 || position >= Self().size) return 1;
    TableOf<OrderOf<Index>>(Self().store).Remove(position);
    --Self().size;
    Self().NoteGone();
    return 0;
}

template <class Index, class Key>
int SortedIndex<Index, Key>::Reset() {
    if (Self().store != nullptr) Self().store->Clear();
    Self().size = 0;
    Self().NoteGone();
    return 0;
}

template <class Index, class Key>
int SortedIndex<Index, Key>::increaseAllocSize() {
    GrowSlots(Self().size, Self().allocSize, Self().incSize);
    return 0;
}

} // namespace ostraka::detail
