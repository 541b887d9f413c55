#include "tests/allocation_counter.h"

#include <atomic>
#include <cstdlib>
#include <new>

#include "tests/aligned_memory.h"
#include "tests/memory/memory_fault.h"

namespace {

using corvane::test::giveBackAligned;
using corvane::test::MemoryFault;
using corvane::test::takeAligned;

std::atomic<std::size_t> allocations = 0;
std::atomic<std::size_t> living = 0;

std::size_t atLeastOne(std::size_t size) noexcept { return size == 0 ? 1 : size; }

void* counted(void* memory) noexcept {
    if (memory == nullptr) return nullptr;
    ++allocations;
    ++living;
    return memory;
}

void* allocate(std::size_t size) noexcept {
    return MemoryFault::grants() ? counted(std::malloc(atLeastOne(size))) : nullptr;
}
void* allocate(std::size_t size, std::align_val_t alignment) noexcept {
    return MemoryFault::grants() ? counted(takeAligned(atLeastOne(size), static_cast<std::size_t>(alignment)))
                                 : nullptr;
}

template <typename... Request>
void* allocateOrThrow(Request... request) {
    if (void* const memory = allocate(request...)) return memory;
    throw std::bad_alloc();
}

void release(void* memory) noexcept {
    if (memory != nullptr) --living;
    std::free(memory);
}
void releaseAligned(void* memory) noexcept {
    if (memory != nullptr) --living;
    giveBackAligned(memory);
}

}  // namespace

namespace corvane::test {

std::size_t allocationCount() noexcept { return allocations; }
std::size_t livingAllocations() noexcept { return living; }

}  // namespace corvane::test

// Each form is replaced: the sanitizer's own ones do not go by way of the plain one.
void* operator new(std::size_t size) { return allocateOrThrow(size); }
void* operator new[](std::size_t size) { return allocateOrThrow(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void* operator new(std::size_t size, std::align_val_t alignment) { return allocateOrThrow(size, alignment); }
void* operator new[](std::size_t size, std::align_val_t alignment) { return allocateOrThrow(size, alignment); }
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return allocate(size, alignment);
}
void* operator new[](std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return allocate(size, alignment);
}
void operator delete(void* memory) noexcept { release(memory); }
void operator delete[](void* memory) noexcept { release(memory); }
void operator delete(void* memory, std::size_t) noexcept { release(memory); }
void operator delete[](void* memory, std::size_t) noexcept { release(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { release(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { release(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { releaseAligned(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { releaseAligned(memory); }
void operator delete(void* memory, std::align_val_t, const std::nothrow_t&) noexcept { releaseAligned(memory); }
void operator delete[](void* memory, std::align_val_t) noexcept { releaseAligned(memory); }
void operator delete[](void* memory, std::size_t, std::align_val_t) noexcept { releaseAligned(memory); }
void operator delete[](void* memory, std::align_val_t, const std::nothrow_t&) noexcept { releaseAligned(memory); }
