#include "tests/allocation_counter.h"

#include <atomic>
#include <cstdlib>
#include <new>

#include "tests/memory/memory_fault.h"

namespace {

std::atomic<std::size_t> allocations = 0;
std::atomic<std::size_t> living = 0;

void* allocate(std::size_t size) noexcept {
    if (!corvane::test::MemoryFault::grants()) return nullptr;
    void* const memory = std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr) return nullptr;
    ++allocations;
    ++living;
    return memory;
}

void* allocateOrThrow(std::size_t size) {
    if (void* const memory = allocate(size)) return memory;
    throw std::bad_alloc();
}

void release(void* memory) noexcept {
    if (memory != nullptr) --living;
    std::free(memory);
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
void operator delete(void* memory) noexcept { release(memory); }
void operator delete[](void* memory) noexcept { release(memory); }
void operator delete(void* memory, std::size_t) noexcept { release(memory); }
void operator delete[](void* memory, std::size_t) noexcept { release(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { release(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { release(memory); }
