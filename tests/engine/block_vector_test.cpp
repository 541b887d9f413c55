#include "engine/block_vector.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace corvane {
namespace {

TEST(BlockVector, StartsEmpty) {
    SlabMemory memory;
    const BlockVector<int> sequence(memory);
    EXPECT_TRUE(sequence.empty());
    EXPECT_EQ(sequence.size(), 0U);
}

TEST(BlockVector, KeepsElementsInTheOrderOfAppendingAcrossBlocks) {
    SlabMemory memory;
    BlockVector<int, 4> sequence(memory);
    for (int i = 0; i < 103; ++i) {
        EXPECT_EQ(sequence.emplaceBack(i), i);
        EXPECT_EQ(sequence.size(), static_cast<std::size_t>(i + 1));
    }
    EXPECT_FALSE(sequence.empty());
    const BlockVector<int, 4>& same = sequence;
    for (std::size_t i = 0; i < same.size(); ++i) EXPECT_EQ(same[i], static_cast<int>(i));
}

TEST(BlockVector, ElementsNeverMove) {
    SlabMemory memory;
    BlockVector<std::string, 2> sequence(memory);
    std::vector<std::string*> places;
    for (int i = 0; i < 50; ++i) places.push_back(&sequence.emplaceBack(std::to_string(i)));
    for (std::size_t i = 0; i < places.size(); ++i) {
        EXPECT_EQ(&sequence[i], places[i]);
        EXPECT_EQ(*places[i], std::to_string(i));
    }
}

TEST(BlockVector, TakesElementsThatCanNeitherBeCopiedNorMoved) {
    struct Fixed {
        explicit Fixed(int value) : number(value) {}
        Fixed(const Fixed&) = delete;
        Fixed& operator=(const Fixed&) = delete;
        int number;
    };
    SlabMemory memory;
    BlockVector<Fixed, 2> sequence(memory);
    for (int i = 0; i < 5; ++i) sequence.emplaceBack(i);
    EXPECT_EQ(sequence[4].number, 4);
}

TEST(BlockVector, ForwardsItsArguments) {
    SlabMemory memory;
    BlockVector<std::unique_ptr<int>, 2> sequence(memory);
    sequence.emplaceBack(std::make_unique<int>(7));
    EXPECT_EQ(*sequence[0], 7);
}

TEST(BlockVector, AlignsItsElements) {
    struct alignas(8) Wide {
        char letter = 'a';
    };
    SlabMemory memory;
    BlockVector<Wide, 4> sequence(memory);
    for (int i = 0; i < 9; ++i)
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(&sequence.emplaceBack()) % alignof(Wide), 0U);
}

struct Counted {
    int& alive;
    explicit Counted(int& count, bool fails = false) : alive(count) {
        if (fails) throw std::runtime_error("refused");
        ++alive;
    }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
    ~Counted() { --alive; }
};

TEST(BlockVector, DestroysEveryElementOnce) {
    int alive = 0;
    {
        SlabMemory memory;
        BlockVector<Counted, 4> sequence(memory);
        for (int i = 0; i < 10; ++i) sequence.emplaceBack(alive);
        EXPECT_EQ(alive, 10);
    }
    EXPECT_EQ(alive, 0);
}

TEST(BlockVector, StaysAsItWasWhenAnElementCannotBeMade) {
    int alive = 0;
    {
        SlabMemory memory;
        BlockVector<Counted, 2> sequence(memory);
        EXPECT_THROW(sequence.emplaceBack(alive, true), std::runtime_error);
        EXPECT_TRUE(sequence.empty());
        sequence.emplaceBack(alive);
        sequence.emplaceBack(alive);
        EXPECT_THROW(sequence.emplaceBack(alive, true), std::runtime_error);
        EXPECT_EQ(sequence.size(), 2U);
        sequence.emplaceBack(alive);
        EXPECT_EQ(sequence.size(), 3U);
        EXPECT_EQ(alive, 3);
    }
    EXPECT_EQ(alive, 0);
}

}  // namespace
}  // namespace corvane
