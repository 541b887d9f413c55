#include "tests/allocation_counter.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <new>

#include "tests/memory/memory_fault.h"

namespace corvane::test {
namespace {

struct alignas(256) Wide {
    char bytes[256];
};

TEST(AllocationCounter, TakesPartInAlignedRequestsToo) {
    const std::size_t count = allocationCount();
    const std::size_t before = livingAllocations();
    {
        const auto one = std::make_unique<Wide>();
        const auto several = std::make_unique<Wide[]>(3);
        EXPECT_EQ(livingAllocations(), before + 2);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(one.get()) % alignof(Wide), 0U);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(several.get()) % alignof(Wide), 0U);
    }
    EXPECT_EQ(livingAllocations(), before);
    EXPECT_EQ(allocationCount(), count + 2);
    const MemoryFault fault(1, Refused::ThatAndAllLater);
    const std::unique_ptr<Wide> refused(new (std::nothrow) Wide);
    const bool isRefused = refused == nullptr;
    const HostsOwnMemory own;
    EXPECT_TRUE(isRefused);
}

}  // namespace
}  // namespace corvane::test
