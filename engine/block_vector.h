#pragma once

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "engine/slab_memory.h"

namespace corvane {

/// A growing sequence whose elements never move: appending neither copies what is there nor needs room for a second
/// copy, so a script of any length is loaded without a peak above what it keeps.
template <typename Element, std::size_t BlockSize = 256>
class BlockVector {
    static_assert((BlockSize & (BlockSize - 1)) == 0, "a power of two, so that a position splits without a division");

public:
    /// `memory` outlives the sequence.
    explicit BlockVector(SlabMemory& memory) : memory_(memory) {}
    BlockVector(const BlockVector&) = delete;
    BlockVector& operator=(const BlockVector&) = delete;
    ~BlockVector() {
        for (std::size_t i = 0; i < size_; ++i) std::destroy_at(&(*this)[i]);
    }

    std::size_t size() const noexcept { return size_; }
    bool empty() const noexcept { return size_ == 0; }
    Element& operator[](std::size_t position) noexcept { return *slot(position); }
    const Element& operator[](std::size_t position) const noexcept { return *slot(position); }

    /// Throws std::bad_alloc and leaves the sequence as it was.
    template <typename... Arguments>
    Element& emplaceBack(Arguments&&... arguments) {
        if (size_ == blocks_.size() * BlockSize) blocks_.push_back(memory_.allocate<Element>(BlockSize));
        std::construct_at(slot(size_), std::forward<Arguments>(arguments)...);
        return *slot(size_++);
    }

private:
    Element* slot(std::size_t position) const noexcept { return blocks_[position / BlockSize] + position % BlockSize; }

    SlabMemory& memory_;
    std::vector<Element*> blocks_;
    std::size_t size_ = 0;
};

}  // namespace corvane
