#pragma once

#include <cstdint>

#include <ostraka/Export.h>
#include <ostraka/foundation/IndexColumn.h>
#include <ostraka/foundation/SortedIndex.h>

class TAIndexB;

namespace ostraka::detail {
const void* AppendOrGet(TAIndexB& index, const void* key, void*& value);
} // namespace ostraka::detail

// A sorted table from keys of `sizeofkey` machine words to pointers, which also interns its keys: equal keys
// have one held copy, whose address stays the same for as long as its entry lives.
//
// Words are signed (`std::intptr_t`) and compared from the first. The order is descending: of two keys, the
// one with the greater word at the first difference stands first. A key that is passed in is the address of
// `sizeofkey` such words. Ownership, validity and costs are those of `TAIndex`; what the values point to is
// never owned.
class OSTRAKA_EXPORT TAIndexB : public ostraka::detail::SortedIndex<TAIndexB, void> {
public:
    // The parallel arrays, in descending order of the keys.
    ostraka::detail::IndexColumn<std::intptr_t*, ostraka::detail::Column::Keys, TAIndexB> keys;
    ostraka::detail::IndexColumn<void*, ostraka::detail::Column::Values, TAIndexB> values;

    // Words in a key; number of entries, of slots in each array, and of slots that the next growth adds. For
    // reading only.
    int sizeofkey;
    int size = 0;
    int allocSize = 1000;
    int incSize = 1000;

    // Keys of so many words; fewer than 1 end in `FATAL`.
    explicit TAIndexB(int words);
    ~TAIndexB();
    TAIndexB(const TAIndexB&) = delete;
    TAIndexB& operator=(const TAIndexB&) = delete;

    // Enters `key` and returns the held copy. The value of a key that is there already stays.
    const void* Append(const void* key, void* value);

    // The integer has no effect.
    int IsIn(const void* key, int ignored) const;
    using SortedIndex::IsIn;

    // Orders `key` against a held key: +1 when it stands behind (its word is the smaller at the first
    // difference), -1 when it stands before, 0 when all words are equal.
    int compare(const void* key, const void* heldKey) const;

private:
    friend SortedIndex;
    static void NoteGone() {}
    friend const void* ostraka::detail::AppendOrGet(TAIndexB& index, const void* key, void*& value);

    const void* AppendOrGet(const void* key, void*& value);

    ostraka::detail::SortedStore* store = nullptr; // null until the first entry
};
