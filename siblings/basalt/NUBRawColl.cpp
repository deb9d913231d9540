#include <basalt/NUBRawColl.h>

#include <unordered_set>

NUBRawCollPV::~NUBRawCollPV() = default;

void NUBRawCollPV::RemoveDuplicates(NUBRawCollPV* removed) {
    std::unordered_set<void*> seen;
    void** kept = First();
    for (void** entry = First(); entry != Past(); ++entry) {
        if (seen.insert(*entry).second)
            *kept++ = *entry;
        else if (removed)
            removed->Append(*entry);
    }
    size = static_cast<int>(kept - First());
}
