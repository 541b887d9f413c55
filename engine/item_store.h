#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <vector>

#include "platform/value.h"

namespace corvane {

/// What is kept of each memory item. Small, since first touch of memory is a large part of a load: names and rarely
/// used members live apart.
struct ItemRecord {
    Value::Payload initial;
    Value::Payload current;
    std::uint32_t identifier;  ///< the number of its name, from 1; 0 is the empty name
    std::uint8_t typeCode;     ///< `otherTypeCode`: kept apart
    std::uint8_t place;        ///< in its block
    ValueType initialType;
    ValueType currentType;

    static constexpr std::uint8_t otherTypeCode = 0xFF;
};

/// The records of a list, in blocks that never move. Statements refer to an item by its address alone, which is the
/// shortest way to its value; a record knows its place in its block and the block the position of its first item, so
/// that the way back to the position is open too.
class ItemStore {
public:
    std::size_t size() const noexcept { return size_; }
    ItemRecord& operator[](std::size_t position) const noexcept {
        return blocks_[position / blockSize]->records[position % blockSize];
    }

    /// Appends a nameless item with both values the 16-bit integer 0. Throws std::bad_alloc, also beyond 2^31 items,
    /// and leaves the store as it was.
    ItemRecord& append(std::uint8_t typeCode) {
        const std::size_t place = size_ % blockSize;
        if (place == 0) addBlock();
        ItemRecord& record = blocks_.back()->records[place];
        record = {.initial = {},
                  .current = {},
                  .identifier = 0,
                  .typeCode = typeCode,
                  .place = static_cast<std::uint8_t>(place),
                  .initialType = ValueType::Integer,
                  .currentType = ValueType::Integer};
        ++size_;
        return record;
    }

    static std::uint32_t positionOf(const ItemRecord& record) noexcept {
        const ItemRecord* const first = &record - record.place;
        const auto* const block =
            reinterpret_cast<const Block*>(reinterpret_cast<const std::byte*>(first) - offsetof(Block, records));
        return block->firstPosition + record.place;
    }

private:
    static constexpr std::size_t blockSize = 256;         // as many as `place` can tell apart
    static constexpr std::size_t mostItems = 0x7FFFFF00;  // whole blocks below what a position can count
    struct Block {
        std::uint32_t firstPosition;
        ItemRecord records[blockSize];
    };

    void addBlock() {
        if (size_ >= mostItems) throw std::bad_alloc();
        blocks_.push_back(std::make_unique_for_overwrite<Block>());
        blocks_.back()->firstPosition = static_cast<std::uint32_t>(size_);
    }

    std::vector<std::unique_ptr<Block>> blocks_;
    std::size_t size_ = 0;
};

}  // namespace corvane
