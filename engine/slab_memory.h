#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "platform/slab.h"

namespace corvane {

/// Memory that is handed out piece by piece and goes as a whole. It is taken in slabs that grow: a short script takes
/// little, and a long one seldom asks.
class SlabMemory {
public:
    SlabMemory() = default;
    SlabMemory(const SlabMemory&) = delete;
    SlabMemory& operator=(const SlabMemory&) = delete;

    static constexpr std::size_t alignment = 8;
    static constexpr std::size_t firstSlab = std::size_t{1} << 15;

    /// Uninitialised room for `count` elements, at most `firstSlab` bytes. Throws std::bad_alloc.
    template <typename Element>
    Element* allocate(std::size_t count) {
        static_assert(alignof(Element) <= alignment);
        // NOLINTNEXTLINE(bugprone-sizeof-expression): pointers are elements too
        const std::size_t size = (count * sizeof(Element) + alignment - 1) / alignment * alignment;
        if (size > left_) [[unlikely]]
            addSlab();
        std::byte* const piece = next_;
        next_ += size;
        left_ -= size;
        return reinterpret_cast<Element*>(piece);
    }

private:
    static constexpr std::size_t growth = 4;

    void addSlab() {
        slabs_.push_back(allocateSlab(nextSize_));
        next_ = slabs_.back().get();
        left_ = nextSize_;
        nextSize_ = std::min(nextSize_ * growth, largestSlab);
    }

    std::vector<Slab> slabs_;
    std::byte* next_ = nullptr;
    std::size_t left_ = 0;
    std::size_t nextSize_ = firstSlab;
};

}  // namespace corvane
