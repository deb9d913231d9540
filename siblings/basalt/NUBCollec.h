#pragma once

// What all collections share: the word for what becomes of the memory of an emptied collection, and the root
// of the lists that own their elements.

#include <basalt/Export.h>

class NUBCollec {
public:
    // Argument of `RemoveAll`: 0 keeps the room for the next filling, any other value gives it back.
    using MemoryHandling = int;
};

class BASALT_EXPORT NUBCollecRoot {
public:
    NUBCollecRoot() = default;
    NUBCollecRoot(const NUBCollecRoot&) = default;
    NUBCollecRoot& operator=(const NUBCollecRoot&) = default;
    virtual ~NUBCollecRoot();
};
