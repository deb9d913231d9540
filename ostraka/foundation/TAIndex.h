#pragma once

#include <cstdint>

#include <ostraka/Export.h>
#include <ostraka/foundation/IndexColumn.h>
#include <ostraka/foundation/SortedIndex.h>

// A sorted table from text keys to pointers, which also interns its keys: equal keys have one held copy, and
// the address of that copy is the text's identity for as long as its entry lives, however the table grows.
//
// The table owns its keys and the value copies it was asked to make, and nothing else that its values point
// to. A held key is good until `RemovePosition` takes its entry, `Reset`, or the table's end. A position, and
// a plain pointer to a column, are good until the next change. An index can't be copied, and serves one
// thread at a time, readers included.
//
// With n entries, a search costs about log2(n) comparisons of machine words, and rarely one of texts;
// `Append` besides that moves a bounded number of entries. The place of an entry is found by its position, or
// a position by its key, at once if nothing has changed since the last such question, else after one sum over
// about n / 100 counts.
class OSTRAKA_EXPORT TAIndex : public ostraka::detail::SortedIndex<TAIndex, char> {
public:
    // The parallel arrays, by ascending `strcmp` of the keys.
    ostraka::detail::IndexColumn<char*, ostraka::detail::Column::Keys, TAIndex> keys;
    ostraka::detail::IndexColumn<void*, ostraka::detail::Column::Values, TAIndex> values;
    // Null where the value is the caller's own pointer, else equal to the value.
    ostraka::detail::IndexColumn<char*, ostraka::detail::Column::ValueCopies, TAIndex> valueCopies;

    // Number of entries, of slots in each array, and of slots that the next growth adds. For reading only.
    int size = 0;
    int allocSize = 10;
    int incSize = 10;

    TAIndex() = default;
    ~TAIndex();
    TAIndex(const TAIndex&) = delete;
    TAIndex& operator=(const TAIndex&) = delete;

    // Enters `key` and returns the held copy. The value of a key that is there already stays. With `copy` 0
    // the value is kept as it stands, null included; else it is a text, of which the table holds a copy of
    // its own.
    const char* Append(const char* key, const void* value, int copy);

    // The same as without `length`, but the key is the first `length` characters, which needn't end in NUL;
    // text that ends before that is no key.
    int IsIn(const char* key, int length) const;
    bool Holds(const char* key, int length) const;
    using SortedIndex::Holds;
    using SortedIndex::IsIn;

    // A number that no other index has, and a new one whenever an entry may have gone. While it stays,
    // entries have only been added, so that with `size` it tells whether an index holds what it held before.
    std::uint64_t Epoch() const { return epoch; }

private:
    friend SortedIndex;

    static std::uint64_t NextEpoch();
    // Entries have gone.
    void NoteGone() { epoch = NextEpoch(); }

    ostraka::detail::SortedStore* store = nullptr; // null until the first entry
    std::uint64_t epoch = NextEpoch();
};
