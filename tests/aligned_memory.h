#pragma once

#include <cstddef>

/// What the platform gives where an address must be a multiple of more than usual.
namespace corvane::test {

/// `size` bytes at a multiple of `alignment`, a power of two; null where there are none.
void* takeAligned(std::size_t size, std::size_t alignment) noexcept;
void giveBackAligned(void* memory) noexcept;

}  // namespace corvane::test
