#include <basalt/NUBRawColl.h>

#include <unordered_set>

NUBRawCollPV::~NUBRawCollPV() = default;

void NUBRawCollPV::RemoveDuplicates(NUBRawCollPV* removed) {
    std::unordered_set<void*> seen;
    void** kept = first();
    for (void** entry = first(); entry != past(); ++entry) {
        if (seen.insert(*entry).second)
            *kept++ = *entry;
        else if (removed)
            removed->Append(*entry);
    }
    size = static_cast<int>(kept - first());
}
