// Operators new and delete of a static quorlan.
//
// A run lives for a millisecond and allocates some two thousand small blocks, the nodes of a reply
// most of all; managing them was a third of its instructions. They are cut off one piece of
// zero-initialised memory instead, which costs nothing until it is touched, and only the block cut
// last is ever taken back: memory that was freed holds no pointer of the allocator's and is seldom
// handed out again. A reply that needs more goes on with malloc.

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

constexpr std::size_t arenaSize = 262144;
constexpr std::size_t alignment = alignof(std::max_align_t);

alignas(alignment) char arena[arenaSize];
std::size_t used = 0;

// What a block takes of the arena; a block of no bytes has an address of its own, too.
std::size_t Rounded(std::size_t size)
{
    return size == 0 ? alignment : (size + alignment - 1) / alignment * alignment;
}

// Offset of a block of the arena; arenaSize or more for any other pointer, the null pointer too.
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
