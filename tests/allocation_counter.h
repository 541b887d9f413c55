#pragma once

#include <cstddef>

namespace corvane::test {

/// How often the program has allocated so far. A program that links allocation_counter.cpp counts.
std::size_t allocationCount() noexcept;

}  // namespace corvane::test
