#include "platform/slab.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace corvane {
namespace {

TEST(Slab, IsMemoryOfTheSizeAskedFor) {
    for (const std::size_t size : {std::size_t{1}, std::size_t{1} << 15, largestSlab - 1, largestSlab}) {
        const Slab slab = allocateSlab(size);
        std::fill_n(slab.get(), size, std::byte{7});
        EXPECT_EQ(slab.get()[size - 1], std::byte{7});
    }
}

}  // namespace
}  // namespace corvane
