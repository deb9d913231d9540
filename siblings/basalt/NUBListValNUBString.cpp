#include <basalt/NUBListValNUBString.h>

#include <algorithm>
#include <utility>

namespace {

using Texts = std::vector<NUBString>;

Texts::const_iterator At(const Texts& texts, std::size_t index) {
    return texts.begin() + static_cast<Texts::difference_type>(index);
}

} // namespace

NUBListValNUBString::NUBListValNUBString(int room) {
    elements.reserve(static_cast<std::size_t>(std::max(room, 0)));
}

NUBListValNUBString::~NUBListValNUBString() = default;

// By index up to the old size, so that a list can be added to itself.
void NUBListValNUBString::Append(const NUBListValNUBString& list) {
    const std::size_t count = list.elements.size();
    for (std::size_t i = 0; i < count; ++i) elements.push_back(list.elements[i]);
}

void NUBListValNUBString::InsertBefore(int i, const NUBString& text) {
    elements.insert(At(elements, IndexOf(i)), text);
}

void NUBListValNUBString::InsertAfter(int i, const NUBString& text) {
    elements.insert(At(elements, IndexOf(i) + 1), text);
}

void NUBListValNUBString::RemovePosition(int i) {
    if (i >= 1 && i <= Size()) elements.erase(At(elements, IndexOf(i)));
}

void NUBListValNUBString::RemoveAll(NUBCollec::MemoryHandling mode) {
    elements.clear();
    if (mode != 0) elements.shrink_to_fit();
}

// Sorts the addresses first: the comparator takes pointers to texts that it could change, and each text then
// moves once.
void NUBListValNUBString::QuickSort(int (*order)(NUBString*, NUBString*)) {
    std::vector<NUBString*> places;
    places.reserve(elements.size());
    for (NUBString& text : elements) places.push_back(&text);
    std::stable_sort(places.begin(), places.end(),
                     [order](NUBString* a, NUBString* b) { return order(b, a) > 0; });
    Texts sorted;
    sorted.reserve(elements.size());
    for (NUBString* place : places) sorted.push_back(std::move(*place));
    elements = std::move(sorted);
}
