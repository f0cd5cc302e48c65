#include <base/large_memory.h>

#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

TEST(LargeMemory, EveryByteCanBeWrittenWhateverTheSize)
{
    for (const std::size_t size : {1u, 4096u, (4u << 20) - 1, 4u << 20, (6u << 20) + 1}) {
        const base::LargeMemory bytes = base::makeLargeMemory(size, false);
        ASSERT_TRUE(bytes) << size;
        std::fill_n(bytes.get(), size, std::uint8_t(7));
        EXPECT_EQ(bytes.get()[size - 1], 7);
    }
}

TEST(LargeMemory, IsZeroWhereThatIsAskedFor)
{
    constexpr std::size_t kSize = 5u << 20;
    for (int i = 0; i < 2; ++i) { // the second time it may be memory that was used before
        const base::LargeMemory bytes = base::makeLargeMemory(kSize, true);
        ASSERT_TRUE(bytes);
        EXPECT_TRUE(std::all_of(bytes.get(), bytes.get() + kSize, [](auto b) { return b == 0; }));
        std::fill_n(bytes.get(), kSize, std::uint8_t(7));
    }
}

TEST(LargeMemory, WhatNoMachineHasIsNull)
{
    EXPECT_FALSE(base::makeLargeMemory(~std::size_t(0), false));
    EXPECT_FALSE(base::makeLargeMemory(~std::size_t(0) / 2, true));
}

TEST(LargeMemory, VectorsKeepWhatTheyAreGivenInIt)
{
    using Numbers = std::vector<std::uint32_t, base::LargeAllocator<std::uint32_t>>;
    for (const std::size_t count : {3u, 1u << 20, (3u << 20) + 1}) {
        Numbers numbers(count, 7);
        numbers.push_back(8);
        const Numbers copy = numbers;
        numbers.assign(count, 0);
        ASSERT_EQ(copy.size(), count + 1);
        EXPECT_EQ(std::count(copy.begin(), copy.end(), 7u), static_cast<std::ptrdiff_t>(count));
        EXPECT_EQ(copy.back(), 8u);
    }
}
