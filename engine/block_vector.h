#pragma once

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

namespace corvane {

/// A growing sequence whose elements never move: appending neither copies what is there nor needs room for a second
/// copy, so a script of any length is loaded without a peak above what it keeps.
template <typename Element, std::size_t BlockSize = 1024>
class BlockVector {
    static_assert((BlockSize & (BlockSize - 1)) == 0, "a power of two, so that a position splits without a division");

public:
    BlockVector() = default;
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
        if (size_ == blocks_.size() * BlockSize) blocks_.push_back(std::make_unique_for_overwrite<Block>());
        std::construct_at(slot(size_), std::forward<Arguments>(arguments)...);
        return *slot(size_++);
    }

private:
    struct Block {
        Block() {}  // NOLINT(modernize-use-equals-default): leaves the storage untouched
        alignas(Element) std::byte storage[BlockSize * sizeof(Element)];
    };

    Element* slot(std::size_t position) const noexcept {
        return reinterpret_cast<Element*>(blocks_[position / BlockSize]->storage) + position % BlockSize;
    }

    std::vector<std::unique_ptr<Block>> blocks_;
    std::size_t size_ = 0;
};

/// Hands out short runs of elements that stay where they are until the arena goes.
template <typename Element, std::size_t BlockSize = 4096>
class RunArena {
public:
    /// A run of `count` uninitialised elements, at most `BlockSize`; null for an empty run. Throws std::bad_alloc.
    Element* allocate(std::size_t count) {
        if (count == 0) return nullptr;
        if (blocks_.empty() || BlockSize - used_ < count) {
            blocks_.push_back(std::make_unique_for_overwrite<Element[]>(BlockSize));
            used_ = 0;
        }
        Element* run = blocks_.back().get() + used_;
        used_ += count;
        return run;
    }

private:
    std::vector<std::unique_ptr<Element[]>> blocks_;
    std::size_t used_ = 0;
};

}  // namespace corvane
