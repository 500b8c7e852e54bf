// Operators new and delete of a static quorlan.
//
// A run is over in a millisecond and allocates some two thousand small blocks, most of them for the
// reply. New blocks are taken from one array in order. A small block that is freed is kept for the
// next one of its size: each page of memory that a run touches costs about as much as a hundred
// allocations. The array is zero-initialized, so memory that is never used is never touched. When
// it is full, malloc takes over.
//
// Not thread-safe: the tool has one thread.

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

constexpr std::size_t arenaSize = 262144;
constexpr std::size_t alignment = alignof(std::max_align_t);
constexpr std::size_t keptSizes = 16; // multiples of the alignment

struct FreedBlock
{
    FreedBlock* next;
};

alignas(alignment) char arena[arenaSize];
std::size_t used = 0;
FreedBlock* freed[keptSizes];

// How much of the arena a block takes, in multiples of the alignment, less one. A block of no bytes
// needs an address of its own, too.
std::size_t SizeClass(std::size_t size)
{
    return size == 0 ? 0 : (size - 1) / alignment;
}

// A block's offset in the arena; at least arenaSize for any other pointer, also for a null pointer.
std::size_t Offset(const void* block)
{
    return reinterpret_cast<std::size_t>(block) - reinterpret_cast<std::size_t>(arena);
}

} // namespace

void* operator new(std::size_t size)
{
    const std::size_t sizeClass = SizeClass(size);
    if (sizeClass < keptSizes && freed[sizeClass] != nullptr) {
        FreedBlock* const block = freed[sizeClass];
        freed[sizeClass] = block->next;
        return block;
    }
    if (sizeClass < (arenaSize - used) / alignment) {
        void* const block = arena + used;
        used += (sizeClass + 1) * alignment;
        return block;
    }
    void* const block = std::malloc(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

void operator delete(void* block) noexcept
{
    if (Offset(block) >= arenaSize) {
        std::free(block);
    }
}

void operator delete(void* block, std::size_t size) noexcept
{
    const std::size_t offset = Offset(block);
    const std::size_t sizeClass = SizeClass(size);
    if (offset >= arenaSize) {
        std::free(block);
    } else if (sizeClass < keptSizes) {
        freed[sizeClass] = new (block) FreedBlock{freed[sizeClass]};
    } else if (offset + (sizeClass + 1) * alignment == used) {
        used = offset;
    }
}

void* operator new[](std::size_t size)
{
    return operator new(size);
}

void operator delete[](void* block) noexcept
{
    operator delete(block);
}

void operator delete[](void* block, std::size_t size) noexcept
{
    operator delete(block, size);
}
