#include "engine/slab_memory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace corvane {
namespace {

TEST(SlabMemory, PiecesStayInPlaceAndDoNotOverlap) {
    SlabMemory memory;
    std::vector<std::pair<int*, std::size_t>> pieces;
    for (std::size_t length = 1; length <= 600; ++length) {
        int* const piece = memory.allocate<int>(length);
        std::fill_n(piece, length, static_cast<int>(length));
        pieces.emplace_back(piece, length);
    }
    for (const auto& [piece, length] : pieces)
        EXPECT_TRUE(std::all_of(piece, piece + length, [wanted = static_cast<int>(length)](int element) {
            return element == wanted;
        })) << length;
}

TEST(SlabMemory, EveryPieceIsAligned) {
    SlabMemory memory;
    for (std::size_t length = 1; length < 20; ++length)
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(memory.allocate<char>(length)) % SlabMemory::alignment, 0U);
}

TEST(SlabMemory, FillsASlabBeforeItTakesAnother) {
    SlabMemory memory;
    char* const first = memory.allocate<char>(SlabMemory::firstSlab - SlabMemory::alignment);
    EXPECT_EQ(memory.allocate<char>(SlabMemory::alignment), first + SlabMemory::firstSlab - SlabMemory::alignment);
    char* const next = memory.allocate<char>(1);
    EXPECT_TRUE(next < first || next >= first + SlabMemory::firstSlab);
}

TEST(SlabMemory, TakesASecondSlabFourTimesAsLargeWhereThatIsNotTooLarge) {
    SlabMemory memory;
    memory.allocate<char>(SlabMemory::firstSlab);
    char* const second = memory.allocate<char>(SlabMemory::firstSlab);
    const std::size_t pieces = std::min(4 * SlabMemory::firstSlab, largestSlab) / SlabMemory::firstSlab;
    for (std::size_t i = 1; i < pieces; ++i)
        EXPECT_EQ(memory.allocate<char>(SlabMemory::firstSlab), second + i * SlabMemory::firstSlab) << i;
}

TEST(SlabMemory, GivesTheLargestPieceAtAnyTime) {
    SlabMemory memory;
    std::vector<char*> pieces;
    for (char mark = 0; mark < 100; ++mark) {
        *memory.allocate<char>(1) = 'x';
        pieces.push_back(memory.allocate<char>(SlabMemory::firstSlab));
        std::fill_n(pieces.back(), SlabMemory::firstSlab, mark);
    }
    for (std::size_t i = 0; i < pieces.size(); ++i)
        EXPECT_EQ(std::count(pieces[i], pieces[i] + SlabMemory::firstSlab, static_cast<char>(i)),
                  static_cast<std::ptrdiff_t>(SlabMemory::firstSlab))
            << i;
}

}  // namespace
}  // namespace corvane
