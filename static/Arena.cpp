// Operators new and delete of a static quorlan.
//
// A run is over in a millisecond and allocates some two thousand small blocks, most of them for the
// reply. On a 32-bit Arm kernel the arena takes 11 % off the time of a whole run. Blocks are taken
// from one array in order, and only the last one can be reused. The array is zero-initialized, so
// memory that is never used is never touched. When it is full, malloc takes over.
//
// Not thread-safe: the tool has one thread.

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

constexpr std::size_t arenaSize = 262144;
constexpr std::size_t alignment = alignof(std::max_align_t);

alignas(alignment) char arena[arenaSize];
std::size_t used = 0;

// How much of the arena a block takes. A block of no bytes needs an address of its own, too.
std::size_t Rounded(std::size_t size)
{
    return size == 0 ? alignment : (size + alignment - 1) / alignment * alignment;
}

// A block's offset in the arena; at least arenaSize for any other pointer, also for a null pointer.
std::size_t Offset(const void* block)
{
    return reinterpret_cast<std::size_t>(block) - reinterpret_cast<std::size_t>(arena);
}

} // namespace

void* operator new(std::size_t size)
{
    if (size <= arenaSize && Rounded(size) <= arenaSize - used) {
        void* const block = arena + used;
        used += Rounded(size);
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
    if (offset >= arenaSize) {
        std::free(block);
    } else if (offset + Rounded(size) == used) {
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
