// static/Arena.cpp is linked in, so every operator new and delete here is the arena's.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <vector>

namespace {

struct Block
{
    std::size_t size;
    char* data;
    char mark;
};

Block MakeBlock(std::size_t size, std::size_t number)
{
    const auto mark = static_cast<char>('a' + number % 26);
    auto* const data = static_cast<char*>(operator new(size));
    std::memset(data, mark, size);
    return {size, data, mark};
}

bool IsUntouched(const Block& block)
{
    return std::all_of(block.data, block.data + block.size,
                       [&block](char c) { return c == block.mark; });
}

std::vector<Block> MakeBlocks(std::size_t count)
{
    std::vector<Block> blocks;
    for (std::size_t number = 0; number < count; ++number) {
        blocks.push_back(MakeBlock(number % 300, number));
    }
    return blocks;
}

void Release(const std::vector<Block>& blocks)
{
    for (const Block& block : blocks) {
        operator delete(block.data, block.size);
    }
}

} // namespace

TEST(Arena, GivesBlocksThatDoNotOverlapAlsoWhenItIsFull)
{
    constexpr std::size_t threeTimesTheArena = 5000;

    const std::vector<Block> blocks = MakeBlocks(threeTimesTheArena);

    EXPECT_TRUE(std::all_of(blocks.begin(), blocks.end(), IsUntouched));
    Release(blocks);
}

TEST(Arena, AlignsBlocksForEveryType)
{
    const std::vector<Block> blocks = MakeBlocks(300);

    for (const Block& block : blocks) {
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block.data) % alignof(std::max_align_t), 0U)
            << "a block of " << block.size << " bytes";
    }
    Release(blocks);
}

TEST(Arena, GivesASmallBlockToTheNextOfItsSize)
{
    void* const first = operator new(40);
    void* const last = operator new(40);
    operator delete(first, 40);
    void* const second = operator new(48);

    EXPECT_EQ(second, first);
    operator delete(second, 48);
    operator delete(last, 40);
}

TEST(Arena, TakesBackALargeBlockThatWasCutLast)
{
    void* const first = operator new(1000);
    operator delete(first, 1000);
    void* const second = operator new(2000);

    EXPECT_EQ(second, first);
    operator delete(second, 2000);
}

TEST(Arena, LeavesTheOthersAloneWhenAnEarlierBlockIsReleased)
{
    std::vector<Block> blocks = {MakeBlock(48, 0), MakeBlock(48, 1)};
    operator delete(blocks[0].data, blocks[0].size);
    blocks[0] = MakeBlock(96, 2);

    EXPECT_TRUE(std::all_of(blocks.begin(), blocks.end(), IsUntouched));
    Release(blocks);
}

TEST(Arena, GivesABlockForEachRequestOfNothingAndReleasesNullPointers)
{
    void* const one = operator new(0);
    void* const other = operator new(0);

    EXPECT_NE(one, other);
    for (void* const block : {one, other, static_cast<void*>(nullptr)}) {
        operator delete(block);
    }
    operator delete(nullptr, 8);
}

TEST(Arena, ThrowsForMoreThanThereIs)
{
    // Beyond what malloc takes, and small again if it were rounded up.
    volatile std::size_t size = std::numeric_limits<std::size_t>::max();

    EXPECT_THROW(operator delete(operator new(size)), std::bad_alloc);
}
