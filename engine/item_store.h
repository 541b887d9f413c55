#pragma once

#include <cstddef>
#include <cstdint>
#include <new>
#include <utility>
#include <vector>

#include "engine/slab_memory.h"
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

    /// Takes the value over, in place of none.
    void begin(Value value) noexcept {
        initialType = value.type();
        initial = std::move(value).detach();
    }
};

/// The records of a list, in blocks that never move. Statements refer to an item by its address alone, which is the
/// shortest way to its value; a record knows its place in its block and the block the position of its first item, so
/// that the way back to the position is open too.
class ItemStore {
public:
    /// `memory` outlives the store.
    explicit ItemStore(SlabMemory& memory) : memory_(memory) {}

    std::size_t size() const noexcept { return size_; }
    ItemRecord& operator[](std::size_t position) const noexcept {
        return blocks_[position / blockSize]->records[position % blockSize];
    }

    /// Appends a nameless item whose current value is the 16-bit integer 0; its initial value is the caller's to write.
    /// Throws std::bad_alloc, also beyond 2^31 items, and leaves the store as it was.
    ItemRecord& append(std::uint8_t typeCode) {
        const std::size_t place = size_ % blockSize;
        if (place == 0) [[unlikely]]
            addBlock();
        ItemRecord& record = last_->records[place];
        record.typeCode = typeCode;
        record.place = static_cast<std::uint8_t>(place);
        record.identifier = 0;
        record.currentType = ValueType::Integer;
        record.current = {};
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

    [[gnu::noinline]] void addBlock() {
        if (size_ >= mostItems) throw std::bad_alloc();  // GCOVR_EXCL_BR_LINE: sixty gigabytes of items
        blocks_.push_back(memory_.allocate<Block>(1));
        last_ = blocks_.back();
        last_->firstPosition = static_cast<std::uint32_t>(size_);
    }

    SlabMemory& memory_;
    std::vector<Block*> blocks_;
    Block* last_ = nullptr;
    std::size_t size_ = 0;
};

}  // namespace corvane
