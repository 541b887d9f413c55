#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

#include "engine/block_vector.h"
#include "platform/text.h"

namespace corvane {

/// Finds, for a name in any case and a type filter, the first item that bears it, without a walk over the items.
///
/// For each name it keeps the position of the first item of each of the type codes that items have. That is all a
/// filtered lookup needs; where a later change of name or type would need the second such item, the index says so and
/// its owner builds it again.
class NameIndex {
public:
    /// FNV-1a of the units in lower case, its high bits folded into the low ones, which choose the place.
    static std::uint32_t hashIgnoringCase(std::u16string_view name) noexcept;

    static constexpr std::uint32_t none = 0xFFFFFFFF;

    /// Whether `typeCode` is one of the codes that the index knows: 1, 2, 4, 8, 16, 130, 132.
    static bool knows(std::int32_t typeCode) noexcept { return rank(typeCode) < rankCount; }

    /// Enters the item that stands last, of a known type, without a name.
    void appendNameless(std::int32_t typeCode, std::uint32_t position) noexcept {
        const std::size_t code = rank(typeCode);
        if (unnamed_.first[code] == none)
            unnamed_.first[code] = position;
        else
            unnamed_.several |= static_cast<std::uint8_t>(1U << code);
    }

    /// Enters an item. `name` must stay alive and in place; `typeCode` is a known one. Throws std::bad_alloc.
    void insert(std::u16string_view name, std::int32_t typeCode, std::uint32_t position);

    /// Takes an item out that `insert` entered. False, and nothing is to be relied on any more, when another item could
    /// become the first in its place.
    bool remove(std::u16string_view name, std::int32_t typeCode, std::uint32_t position);

    /// The lowest position of an item with that name whose code has a bit of `filter`, or `none`.
    std::uint32_t find(std::u16string_view name, std::int32_t filter) const noexcept;

private:
    static constexpr std::size_t rankCount = 7;
    static constexpr std::array<std::int32_t, rankCount> codes = {1, 2, 4, 8, 16, 130, 132};
    static constexpr std::uint32_t highestCode = codes[rankCount - 1];
    static constexpr std::array<std::uint8_t, highestCode + 1> ranks = [] {
        std::array<std::uint8_t, highestCode + 1> table{};
        table.fill(rankCount);
        for (std::size_t i = 0; i < rankCount; ++i)
            table[static_cast<std::size_t>(codes[i])] = static_cast<std::uint8_t>(i);
        return table;
    }();
    static std::size_t rank(std::int32_t typeCode) noexcept {
        const auto code = static_cast<std::uint32_t>(typeCode);
        return code <= highestCode ? ranks[code] : rankCount;
    }

    struct Entry {
        std::u16string_view name;
        std::uint32_t hash;
        std::uint8_t several = 0;  ///< a bit for each rank that more than one item has
        std::array<std::uint32_t, rankCount> first;
        Entry(std::u16string_view text, std::uint32_t textHash) : name(text), hash(textHash) { first.fill(none); }
    };

    Entry* lookUp(std::u16string_view name) const noexcept;
    Entry& entryFor(std::u16string_view name);
    void grow();

    std::vector<Entry*> table_;  // open addressing; a power of two, at most half full
    SlabMemory memory_;
    BlockVector<Entry, 64> entries_{memory_};
    Entry unnamed_{{}, 0};  // literals, by far the most frequent
};

}  // namespace corvane
