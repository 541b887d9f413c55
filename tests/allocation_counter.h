#pragma once

#include <cstddef>

/// A program that links allocation_counter.cpp counts its allocations, and has them refused by a
/// `test::MemoryFault`.
namespace corvane::test {

/// How often the program has allocated so far.
std::size_t allocationCount() noexcept;

/// How many of its allocations it has not given back.
std::size_t livingAllocations() noexcept;

}  // namespace corvane::test
