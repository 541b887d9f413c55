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
    const BlockVector<int> sequence;
    EXPECT_TRUE(sequence.empty());
    EXPECT_EQ(sequence.size(), 0U);
}

TEST(BlockVector, KeepsElementsInTheOrderOfAppendingAcrossBlocks) {
    BlockVector<int, 4> sequence;
    for (int i = 0; i < 103; ++i) {
        EXPECT_EQ(sequence.emplaceBack(i), i);
        EXPECT_EQ(sequence.size(), static_cast<std::size_t>(i + 1));
    }
    EXPECT_FALSE(sequence.empty());
    const BlockVector<int, 4>& same = sequence;
    for (std::size_t i = 0; i < same.size(); ++i) EXPECT_EQ(same[i], static_cast<int>(i));
}

TEST(BlockVector, ElementsNeverMove) {
    BlockVector<std::string, 2> sequence;
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
    BlockVector<Fixed, 2> sequence;
    for (int i = 0; i < 5; ++i) sequence.emplaceBack(i);
    EXPECT_EQ(sequence[4].number, 4);
}

TEST(BlockVector, ForwardsItsArguments) {
    BlockVector<std::unique_ptr<int>, 2> sequence;
    sequence.emplaceBack(std::make_unique<int>(7));
    EXPECT_EQ(*sequence[0], 7);
}

TEST(BlockVector, AlignsItsElements) {
    struct alignas(32) Wide {
        char letter = 'a';
    };
    BlockVector<Wide, 4> sequence;
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
        BlockVector<Counted, 4> sequence;
        for (int i = 0; i < 10; ++i) sequence.emplaceBack(alive);
        EXPECT_EQ(alive, 10);
    }
    EXPECT_EQ(alive, 0);
}

TEST(BlockVector, StaysAsItWasWhenAnElementCannotBeMade) {
    int alive = 0;
    {
        BlockVector<Counted, 2> sequence;
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

TEST(RunArena, AnEmptyRunIsNull) {
    RunArena<int, 4> arena;
    EXPECT_EQ(arena.allocate(0), nullptr);
}

TEST(RunArena, RunsStayInPlaceAndDoNotOverlap) {
    RunArena<int, 8> arena;
    std::vector<std::pair<int*, std::size_t>> runs;
    for (std::size_t length = 0; length <= 8; ++length) {
        for (int repeat = 0; repeat < 3; ++repeat) {
            int* run = arena.allocate(length);
            std::fill_n(run, length, static_cast<int>(runs.size()));
            runs.emplace_back(run, length);
        }
    }
    for (std::size_t i = 0; i < runs.size(); ++i)
        EXPECT_TRUE(std::all_of(runs[i].first, runs[i].first + runs[i].second, [&](int element) {
            return element == static_cast<int>(i);
        })) << i;
}

TEST(RunArena, FillsABlockBeforeItTakesAnother) {
    RunArena<int, 4> arena;
    int* first = arena.allocate(3);
    EXPECT_EQ(arena.allocate(1), first + 3);
    int* next = arena.allocate(4);
    EXPECT_TRUE(next + 4 <= first || first + 4 <= next);
}

}  // namespace
}  // namespace corvane
