#include "platform/text_case.h"

#include <gtest/gtest.h>

namespace corvane {
namespace {

TEST(TextCase, LowersAsciiLettersOnly) {
    for (char16_t unit = 0; unit < 0x80; ++unit) {
        const bool isCapital = unit >= u'A' && unit <= u'Z';
        EXPECT_EQ(toLower(unit), isCapital ? unit + 32 : unit);
    }
}

TEST(TextCase, LowersLettersBeyondAscii) {
    struct Row {
        char16_t given;
        char16_t expected;
    };
    const Row rows[] = {
        {u'\xC4', u'\xE4'},      // A with diaeresis
        {u'\xDF', u'\xDF'},      // sharp s, already small
        {u'\xD7', u'\xD7'},      // the multiplication sign stands among capitals
        {u'\x178', u'\xFF'},     // Y with diaeresis
        {u'\x160', u'\x161'},    // S with caron
        {u'\x391', u'\x3B1'},    // Greek alpha
        {u'\x42F', u'\x44F'},    // Cyrillic ya
        {u'\x20AC', u'\x20AC'},  // the euro has no case
        {u'\xFF21', u'\xFF41'},  // full-width A
    };
    for (const Row& row : rows) EXPECT_EQ(toLower(row.given), row.expected) << std::hex << +row.given;
}

TEST(TextCase, LeavesSurrogatesAsTheyAre) {
    for (unsigned unit = 0xD800; unit < 0xE000; ++unit)
        ASSERT_EQ(toLower(static_cast<char16_t>(unit)), static_cast<char16_t>(unit));
    const std::u16string deseretCapital = u"\U00010400";
    EXPECT_EQ(toLower(deseretCapital), deseretCapital);
}

TEST(TextCase, KeepsTheLengthOfEveryText) {
    std::u16string all(0x10000, u'\0');
    for (std::size_t unit = 0; unit < all.size(); ++unit) all[unit] = static_cast<char16_t>(unit);
    const std::u16string lower = toLower(all);
    ASSERT_EQ(lower.size(), all.size());
    EXPECT_EQ(lower[0], u'\0');
    EXPECT_EQ(toLower(lower), lower) << "what is lower case must not change again";
}

TEST(TextCase, ComparesIgnoringCase) {
    EXPECT_TRUE(equalIgnoringCase(u"", u""));
    EXPECT_TRUE(equalIgnoringCase(u"GoTo", u"gOtO"));
    EXPECT_TRUE(equalIgnoringCase(u"\xC4rger", u"\xE4RGER"));
    EXPECT_FALSE(equalIgnoringCase(u"Goto", u" Goto"));
    EXPECT_FALSE(equalIgnoringCase(u"Goto", u"Got"));
    EXPECT_FALSE(equalIgnoringCase(u"Got", u"Goto"));
    EXPECT_FALSE(
        equalIgnoringCase(u"stra\xDF"
                          u"e",
                          u"strasse"));
    EXPECT_FALSE(equalIgnoringCase(u"[", u"{")) << "the neighbours of the letters are no letters";
    EXPECT_FALSE(equalIgnoringCase(u"@", u"`"));
}

}  // namespace
}  // namespace corvane
