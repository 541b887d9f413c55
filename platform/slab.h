#pragma once

#include <cstddef>
#include <memory>

namespace corvane {

/// As much memory as usual processors can map as one page.
inline constexpr std::size_t largePageSize = std::size_t{1} << 21;

struct SlabRelease {
    std::size_t size;
    void operator()(std::byte* slab) const noexcept;
};
/// Uninitialised memory in one piece, aligned for every fundamental type.
using Slab = std::unique_ptr<std::byte, SlabRelease>;

/// A slab of `size` bytes. One of `largePageSize` is a single large page where the system lets programs have them, and
/// is then touched once instead of hundreds of times. Throws std::bad_alloc.
Slab allocateSlab(std::size_t size);

}  // namespace corvane
