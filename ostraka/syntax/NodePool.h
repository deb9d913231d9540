#pragma once

#include <cstddef>
#include <cstdint>
#include <new>

// Memory of tree nodes. Blocks of one size come from slabs of 2 MiB that the kernel may back with huge pages;
// a slab whose last block has been given back is returned to the system, but for one that is kept for the
// next tree. Like the trees themselves the pool belongs to one thread at a time. It is never destroyed, so
// that nodes in static objects of a client may outlive everything else.
namespace ostraka::detail {

class NodePool {
public:
    static constexpr std::size_t blockSize = 96;
    static constexpr std::size_t slabSize = std::size_t{2} << 20;

    // A block of `blockSize` bytes, aligned for any pointer; throws std::bad_alloc when memory runs out.
    void* Allocate() {
        if (open == nullptr) OpenSlab();
        Slab* slab = open;
        ++slab->live;
        if (FreeBlock* block = slab->free; block != nullptr) {
            slab->free = block->next;
            if (block->next == nullptr && slab->untouched == slab->past) CloseSlab(slab);
            return block;
        }
        char* block = slab->untouched;
        slab->untouched += blockSize;
        if (slab->untouched == slab->past) CloseSlab(slab);
        return block;
    }

    // Gives back a block that Allocate gave.
    void Free(void* block) {
        Slab* slab = SlabOf(block);
        const bool wasFull = slab->free == nullptr && slab->untouched == slab->past;
        slab->free = new (block) FreeBlock{slab->free};
        if (wasFull) Link(slab);
        if (--slab->live == 0) RetireSlab(slab);
    }

    // Slabs that are mapped now, the spare one included.
    std::size_t SlabCount() const { return slabCount; }

private:
    struct FreeBlock {
        FreeBlock* next;
    };

    // Stands at the start of each slab. Full slabs are in no list.
    struct Slab {
        Slab* previous;
        Slab* next;
        FreeBlock* free;
        char* untouched; // blocks from here to `past` were never handed out
        char* past;
        std::size_t live;
    };

    // Slabs are aligned to their own size.
    static Slab* SlabOf(void* block) {
        return reinterpret_cast<Slab*>(reinterpret_cast<std::uintptr_t>(block) & ~(slabSize - 1));
    }
    void OpenSlab();
    void CloseSlab(Slab* slab);
    void Link(Slab* slab);
    void RetireSlab(Slab* slab);

    Slab* open = nullptr;  // first of the slabs with room
    Slab* spare = nullptr; // an empty slab, in no list
    std::size_t slabCount = 0;
};

// The pool of all trees of the process.
extern constinit NodePool nodePool;

// Memory for a node of any class; those of a client may be larger than a block. Under the address sanitizer
// each node is a block of the system, so that one that is lost or used too late is found.
inline void* AllocateNode(std::size_t bytes) {
#if !defined(__SANITIZE_ADDRESS__)
    if (bytes <= NodePool::blockSize) return nodePool.Allocate();
#endif
    return ::operator new(bytes);
}

inline void FreeNode(void* block, [[maybe_unused]] std::size_t bytes) {
#if !defined(__SANITIZE_ADDRESS__)
    if (bytes <= NodePool::blockSize) return nodePool.Free(block);
#endif
    ::operator delete(block);
}

} // namespace ostraka::detail
