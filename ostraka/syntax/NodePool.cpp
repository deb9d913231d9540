// Slabs are aligned to their own size, so that masking the address of a block leads to its slab.

#include <ostraka/syntax/NodePool.h>

#include <cstdint>
#include <new>
#include <sys/mman.h>

namespace ostraka::detail {

namespace {

// `size` bytes at an address that is a multiple of `size`, taken from a mapping of twice that.
void* MapAligned(std::size_t size) {
    void* mapping = mmap(nullptr, 2 * size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapping == MAP_FAILED) throw std::bad_alloc();
    char* first = static_cast<char*>(mapping);
    const std::size_t head = (size - reinterpret_cast<std::uintptr_t>(first) % size) % size;
    if (head > 0) munmap(first, head);
    munmap(first + head + size, size - head);
    madvise(first + head, size, MADV_HUGEPAGE);
    return first + head;
}

} // namespace

void NodePool::Link(Slab* slab) {
    slab->previous = nullptr;
    slab->next = open;
    if (open != nullptr) open->previous = slab;
    open = slab;
}

void NodePool::CloseSlab(Slab* slab) {
    (slab->previous != nullptr ? slab->previous->next : open) = slab->next;
    if (slab->next != nullptr) slab->next->previous = slab->previous;
}

void NodePool::OpenSlab() {
    Slab* slab = spare;
    spare = nullptr;
    if (slab == nullptr) {
        slab = new (MapAligned(slabSize)) Slab{};
        ++slabCount;
    }
    constexpr std::size_t first = (sizeof(Slab) + 63) / 64 * 64;
    constexpr std::size_t count = (slabSize - first) / blockSize;
    char* start = reinterpret_cast<char*>(slab) + first;
    slab->free = nullptr;
    slab->untouched = start;
    slab->past = start + count * blockSize;
    slab->live = 0;
    Link(slab);
}

void NodePool::RetireSlab(Slab* slab) {
    CloseSlab(slab);
    if (spare == nullptr) {
        spare = slab;
        return;
    }
    --slabCount;
    munmap(slab, slabSize);
}

constinit NodePool nodePool;

} // namespace ostraka::detail
