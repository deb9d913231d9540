#pragma once

#include <ostraka/foundation/SortedIndex.h>
#include <ostraka/foundation/SortedTable.h>

// The operations of SortedIndex, over the table of each. Besides what a table asks of it, an `Order` gives
//
//     SoughtOf(index, key)   what is sought for a key of the interface
namespace ostraka::detail {

template <class Order>
SortedTable<Order>& TableOf(SortedStore* store) {
    return *static_cast<SortedTable<Order>*>(store);
}

template <class Order>
int PositionIn(SortedStore* store, const typename Order::Sought& sought) {
    const Place place = TableOf<Order>(store).Find(sought);
    return place.found ? store->PositionOf(place) : -1;
}

template <class Index, class Key, class Order>
int SortedIndex<Index, Key, Order>::IsIn(const Key* key) const {
    return Self().size == 0 ? -1 : PositionIn<Order>(Self().store, Order::SoughtOf(Self(), key));
}

template <class Index, class Key, class Order>
bool SortedIndex<Index, Key, Order>::Holds(const Key* key) const {
    return Self().size != 0 && TableOf<Order>(Self().store).Find(Order::SoughtOf(Self(), key)).found;
}

template <class Index, class Key, class Order>
void* SortedIndex<Index, Key, Order>::operator[](const Key* key) const {
    if (Self().size == 0) return nullptr;
    const Place place = TableOf<Order>(Self().store).Find(Order::SoughtOf(Self(), key));
    return place.found ? Self().store->ValueAt(place) : nullptr;
}

template <class Index, class Key, class Order>
int SortedIndex<Index, Key, Order>::RemovePosition(int position) {
    if (position < 0 || position >= Self().size) return 1;
    TableOf<Order>(Self().store).Remove(position);
    --Self().size;
    return 0;
}

template <class Index, class Key, class Order>
int SortedIndex<Index, Key, Order>::Reset() {
    if (Self().store != nullptr) Self().store->Clear();
    Self().size = 0;
    return 0;
}

template <class Index, class Key, class Order>
int SortedIndex<Index, Key, Order>::increaseAllocSize() {
    GrowSlots(Self().size, Self().allocSize, Self().incSize);
    return 0;
}

} // namespace ostraka::detail
