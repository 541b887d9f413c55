#include "engine/name_index.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <deque>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "platform/text_case.h"
#include "platform/utf8.h"

namespace corvane {
namespace {

constexpr std::array<std::int32_t, 7> knownCodes = {1, 2, 4, 8, 16, 130, 132};

TEST(NameIndex, KnowsTheTypeCodesThatItemsHave) {
    for (const std::int32_t code : knownCodes) EXPECT_TRUE(NameIndex::knows(code)) << code;
    for (const std::int32_t code : {0, 3, 6, 9, 64, 128, 129, 131, 133, 134, 255, 256, 65535, -1, -126})
        EXPECT_FALSE(NameIndex::knows(code)) << code;
}

// What FNV-1a is published to give for these texts; a unit below 256 counts as the byte that it is.
TEST(NameIndex, SpreadsNamesByFnv1a) {
    const auto folded = [](std::uint32_t published) { return published ^ (published >> 15); };
    EXPECT_EQ(NameIndex::hashIgnoringCase(u""), folded(0x811C9DC5));
    EXPECT_EQ(NameIndex::hashIgnoringCase(u"a"), folded(0xE40C292C));
    EXPECT_EQ(NameIndex::hashIgnoringCase(u"foobar"), folded(0xBF9CF968));
    EXPECT_EQ(NameIndex::hashIgnoringCase(u"FooBar"), folded(0xBF9CF968));
}

TEST(NameIndex, FindsNothingWhenEmpty) {
    const NameIndex index;
    EXPECT_EQ(index.find(u"Count", 255), NameIndex::none);
    EXPECT_EQ(index.find(u"", 255), NameIndex::none);
}

TEST(NameIndex, FindsANameInAnyCase) {
    NameIndex index;
    index.insert(u"Loop", 8, 3);
    index.insert(u"\u00C4rger", 2, 4);
    for (const std::u16string_view name : {u"Loop", u"LOOP", u"loop"}) EXPECT_EQ(index.find(name, 255), 3U);
    EXPECT_EQ(index.find(u"\u00E4RGER", 255), 4U);
    EXPECT_EQ(index.find(u"Loop ", 255), NameIndex::none);
    EXPECT_EQ(index.find(u"Loo", 255), NameIndex::none);
}

TEST(NameIndex, FiltersByTheBitsOfTheTypeCode) {
    NameIndex index;
    index.insert(u"x", 2, 0);
    index.insert(u"x", 132, 1);
    index.insert(u"x", 8, 2);
    index.insert(u"x", 1, 3);
    const std::vector<std::pair<std::int32_t, std::uint32_t>> cases = {
        {255, 0}, {2, 0}, {4, 1}, {128, 1}, {9, 2}, {8, 2}, {1, 3}, {6, 0}, {16, NameIndex::none}, {0, NameIndex::none},
    };
    for (const auto& [filter, position] : cases) EXPECT_EQ(index.find(u"x", filter), position) << filter;
}

TEST(NameIndex, FindsTheLowestPositionWhateverTheOrderOfEntering) {
    NameIndex index;
    index.insert(u"x", 2, 7);
    index.insert(u"X", 2, 5);
    index.insert(u"x", 2, 9);
    EXPECT_EQ(index.find(u"x", 2), 5U);
}

TEST(NameIndex, ItemsWithoutANameAreFoundByTheEmptyName) {
    NameIndex index;
    index.insert(u"", 132, 8);
    index.insert(u"", 130, 6);
    EXPECT_EQ(index.find(u"", 255), 6U);
    EXPECT_EQ(index.find(u"", 4), 8U);
    EXPECT_EQ(index.find(u" ", 255), NameIndex::none);
}

TEST(NameIndex, TakesTheOnlyItemOfItsCodeOut) {
    NameIndex index;
    index.insert(u"x", 2, 0);
    index.insert(u"x", 4, 1);
    EXPECT_TRUE(index.remove(u"X", 2, 0));
    EXPECT_EQ(index.find(u"x", 255), 1U);
    EXPECT_EQ(index.find(u"x", 2), NameIndex::none);
    index.insert(u"x", 2, 6);
    EXPECT_EQ(index.find(u"x", 2), 6U);
}

TEST(NameIndex, TakesALaterItemOfACodeOut) {
    NameIndex index;
    index.insert(u"x", 2, 0);
    index.insert(u"x", 2, 1);
    EXPECT_TRUE(index.remove(u"x", 2, 1));
    EXPECT_EQ(index.find(u"x", 2), 0U);
}

TEST(NameIndex, SaysWhenAnotherItemCouldBecomeTheFirst) {
    NameIndex index;
    index.insert(u"x", 2, 0);
    index.insert(u"x", 2, 1);
    EXPECT_FALSE(index.remove(u"x", 2, 0));
}

TEST(NameIndex, HoldsManyNames) {
    constexpr std::uint32_t count = 20000;
    NameIndex index;
    std::deque<std::u16string> names;
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::string digits = std::to_string(i);
        names.push_back(u"Variable" + std::u16string(digits.begin(), digits.end()));
        index.insert(names.back(), knownCodes[i % knownCodes.size()], i);
    }
    for (std::uint32_t i = 0; i < count; ++i) ASSERT_EQ(index.find(names[i], 255), i);
    EXPECT_EQ(index.find(u"Variable20000", 255), NameIndex::none);
}

TEST(NameIndex, TellsNamesWithEqualHashesApart) {
    struct Pair {
        std::u16string_view first;
        std::u16string_view second;
    };
    for (const Pair& pair : {Pair{u"mpmbhjf", u"wiyrptm"}, Pair{u"lmoggrk", u"bwhqzkp"}}) {
        NameIndex index;
        index.insert(pair.first, 2, 0);
        EXPECT_EQ(index.find(pair.second, 255), NameIndex::none);
        index.insert(pair.second, 2, 1);
        EXPECT_EQ(index.find(pair.first, 255), 0U);
        EXPECT_EQ(index.find(pair.second, 255), 1U);
    }
}

/// What the index stands for: items in a row, walked from the first.
struct Item {
    std::u16string_view name;
    std::int32_t code;
    bool entered;
};

std::uint32_t walk(const std::vector<Item>& items, std::u16string_view name, std::int32_t filter) {
    for (std::uint32_t i = 0; i < items.size(); ++i)
        if (items[i].entered && (items[i].code & filter) != 0 && toLower(items[i].name) == toLower(name)) return i;
    return NameIndex::none;
}

TEST(NameIndex, AgreesWithAWalkOverTheItems) {
    const std::vector<std::u16string> names = {u"",       u"a",      u"A",      u"Count",  u"COUNT",      u"count ",
                                               u"\u00E9", u"\u00C9", u"\u03A9", u"\u03C9", u"\U0001F600", u"loop"};
    constexpr std::array<std::int32_t, 8> filters = {255, 9, 16, 8, 1, 128, 6, 0};
    std::mt19937 random(20250117);
    const auto below = [&](std::size_t limit) { return static_cast<std::size_t>(random() % limit); };
    for (int round = 0; round < 200; ++round) {
        auto index = std::make_unique<NameIndex>();
        std::vector<Item> items;
        int rebuilt = 0;
        for (int step = 0; step < 100; ++step) {
            if (items.empty() || below(3) == 0) {
                items.push_back({names[below(names.size())], knownCodes[below(knownCodes.size())], true});
                index->insert(items.back().name, items.back().code, static_cast<std::uint32_t>(items.size() - 1));
            } else {
                const std::size_t position = below(items.size());
                Item& item = items[position];
                const bool reliable =
                    !item.entered || index->remove(item.name, item.code, static_cast<std::uint32_t>(position));
                item.entered = false;
                if (!reliable) {
                    index = std::make_unique<NameIndex>();
                    for (std::uint32_t i = 0; i < items.size(); ++i)
                        if (items[i].entered) index->insert(items[i].name, items[i].code, i);
                    ++rebuilt;
                }
                if (below(2) == 0) {
                    item = {names[below(names.size())], knownCodes[below(knownCodes.size())], true};
                    index->insert(item.name, item.code, static_cast<std::uint32_t>(position));
                }
            }
            const std::u16string& name = names[below(names.size())];
            for (const std::int32_t filter : filters)
                ASSERT_EQ(index->find(name, filter), walk(items, name, filter))
                    << "round " << round << ", step " << step << ", name " << toUtf8(name) << ", filter " << filter
                    << ", rebuilt " << rebuilt;
        }
    }
}

}  // namespace
}  // namespace corvane
