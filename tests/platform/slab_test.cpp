#include "platform/slab.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <new>

#include "tests/allocation_counter.h"
#include "tests/memory/memory_fault.h"

namespace corvane {
namespace {

TEST(Slab, IsMemoryOfTheSizeAskedFor) {
    for (const std::size_t size : {std::size_t{1}, std::size_t{1} << 15, largestSlab - 1, largestSlab}) {
        const Slab slab = allocateSlab(size);
        std::fill_n(slab.get(), size, std::byte{7});
        EXPECT_EQ(slab.get()[size - 1], std::byte{7});
    }
}

TEST(Slab, IsAskedForLikeAllOtherMemoryAndGivenBack) {
    for (const std::size_t size : {std::size_t{1} << 15, largestSlab}) {
        const std::size_t before = test::livingAllocations();
        Slab slab = allocateSlab(size);
        EXPECT_EQ(test::livingAllocations(), before + 1);
        slab.reset();
        EXPECT_EQ(test::livingAllocations(), before);
        const test::MemoryFault fault(1);
        EXPECT_THROW(allocateSlab(size), std::bad_alloc);
    }
}

}  // namespace
}  // namespace corvane
