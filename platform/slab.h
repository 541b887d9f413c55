#pragma once

#include <cstddef>
#include <memory>

namespace corvane {

/// The size from which on larger slabs bring no more.
extern const std::size_t largestSlab;

struct SlabRelease {
    std::size_t size;
    void operator()(std::byte* slab) const noexcept;
};
/// Uninitialised memory in one piece, aligned for every fundamental type.
using Slab = std::unique_ptr<std::byte, SlabRelease>;

/// A slab of `size` bytes. Throws std::bad_alloc.
Slab allocateSlab(std::size_t size);

}  // namespace corvane
