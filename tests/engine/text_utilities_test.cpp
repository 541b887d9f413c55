#include "engine/text_utilities.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "platform/utf8.h"
#include "platform/value_rules.h"

namespace corvane {
namespace {

struct Cut {
    std::u16string_view text;
    std::u16string_view token;
    std::u16string_view rest;
};

void expectCuts(char16_t separator, const std::vector<Cut>& cuts) {
    for (const Cut& cut : cuts) {
        std::u16string_view text = cut.text;
        EXPECT_EQ(SplitAtSeparator(text, separator), cut.token) << toUtf8(cut.text);
        EXPECT_EQ(text, cut.rest) << toUtf8(cut.text);
    }
}

TEST(SplitAtSeparator, TakesTheTokenBeforeTheFirstSeparatorAndLeavesWhatFollowsIt) {
    expectCuts(u',', {
                         {u"a,b", u"a", u"b"},
                         {u"a,b,c", u"a", u"b,c"},
                         {u"a, b ", u"a", u" b "},
                         {u",b", u"", u"b"},
                         {u",,", u"", u","},
                         {u"a,", u"a", u""},
                     });
}

TEST(SplitAtSeparator, WithoutASeparatorTheWholeTextIsTheToken) {
    expectCuts(u',', {{u"", u"", u""}, {u"a", u"a", u""}, {u"a.b;c", u"a.b;c", u""}, {u"  ", u"", u""}});
}

TEST(SplitAtSeparator, MindsNoQuoteBehindTheEndOfTheText) {
    const std::u16string_view whole = u"a\"b\",c";
    std::u16string_view text = whole.substr(0, 1);
    EXPECT_EQ(SplitAtSeparator(text, u','), u"a");
    EXPECT_TRUE(text.empty());
}

TEST(SplitAtSeparator, TrimsNoBlanksBehindTheEndOfTheText) {
    const std::u16string_view whole = u"     ";
    std::u16string_view text = whole.substr(1, 2);
    EXPECT_EQ(SplitAtSeparator(text, u',').size(), 0U);
    EXPECT_TRUE(text.empty());
}

TEST(SplitAtSeparator, TrimsBlanksOfTheTokenButNoTabs) {
    expectCuts(u',', {
                         {u"  a b  ,c", u"a b", u"c"},
                         {u"\ta\t,c", u"\ta\t", u"c"},
                         {u" \ta\t ,c", u"\ta\t", u"c"},
                         {u" \r\n,c", u"\r\n", u"c"},
                         {u"\u00A0a,c", u"\u00A0a", u"c"},
                     });
}

TEST(SplitAtSeparator, SeparatorsInsideQuotesAreText) {
    expectCuts(u',', {
                         {u"\"a,b\",c", u"\"a,b\"", u"c"},
                         {u"x\"a,b\"y,c", u"x\"a,b\"y", u"c"},
                         {u"\"a\"\"b,c\",d", u"\"a\"\"b,c\"", u"d"},
                         {u"\"a\",\"b\"", u"\"a\"", u"\"b\""},
                     });
}

TEST(SplitAtSeparator, AnUnclosedQuoteHidesEverySeparatorBehindIt) {
    expectCuts(u',', {{u"a\"b,c,d", u"a\"b,c,d", u""}, {u"\",", u"\",", u""}, {u"a,\"", u"a", u"\""}});
}

TEST(SplitAtSeparator, BlanksInsideQuotesStay) { expectCuts(u',', {{u" \" a \" ,b", u"\" a \"", u"b"}}); }

TEST(SplitAtSeparator, AQuoteIsNeverASeparator) { expectCuts(u'"', {{u"a\"b\"c", u"a\"b\"c", u""}}); }

TEST(SplitAtSeparator, GivesViewsOfTheTextItself) {
    const std::u16string line = u" one , two";
    std::u16string_view rest = line;
    EXPECT_EQ(SplitAtSeparator(rest, u',').data(), line.data() + 1);
    EXPECT_EQ(rest.data(), line.data() + 6);
}

TEST(SplitAtSeparator, EachCutHasItsOwnSeparator) {
    const std::u16string_view line = u"a=b(c,d)e";
    std::u16string_view rest = line;
    EXPECT_EQ(SplitAtEquals(rest), u"a");
    EXPECT_EQ(SplitAtOpenBracket(rest), u"b");
    EXPECT_EQ(NextParameter(rest), u"c");
    EXPECT_EQ(SplitAtCloseBracket(rest), u"d");
    EXPECT_EQ(rest, u"e");
}

struct NumberCut {
    std::u16string_view text;
    std::u16string_view token;
    float number;
    std::u16string_view rest;
};

TEST(FindEither, FindsTheFirstOfBothAtEveryPlaceOfTextsOfEveryLength) {
    for (std::size_t length = 0; length <= 27; ++length) {
        std::u16string text(length, u'a');
        const char16_t* const begin = text.data();
        const char16_t* const end = begin + length;
        EXPECT_EQ(FindEither(begin, end, u',', u'"'), end);
        for (std::size_t place = 0; place < length; ++place) {
            for (const char16_t found : {u',', u'"'}) {
                std::fill(text.begin(), text.end(), u'a');
                text[place] = found;
                for (std::size_t later = place; later < length; ++later) {
                    EXPECT_EQ(FindEither(begin, end, u',', u'"') - begin, static_cast<std::ptrdiff_t>(place))
                        << length << ' ' << later;
                    text[later] = u'"';
                }
            }
        }
    }
}

TEST(FindEither, LooksNoFurtherThanTheEnd) {
    const std::u16string_view text = u"aaaaaaaaaaaaaaaaaaaaaa,";
    for (std::size_t length = 0; length < text.size(); ++length)
        EXPECT_EQ(FindEither(text.data(), text.data() + length, u',', u'"') - text.data(),
                  static_cast<std::ptrdiff_t>(length));
}

TEST(NextPlainNumber, ReadsNothingBehindTheEndOfTheText) {
    for (const std::u16string_view whole : {u"5 6", u"5,6", u"56", u"5.6", u"5x"}) {
        std::u16string_view text = whole.substr(0, 1);
        std::u16string_view token;
        float number = -1;
        EXPECT_TRUE(NextPlainNumber(text, token, number)) << toUtf8(whole);
        EXPECT_EQ(token, u"5");
        EXPECT_EQ(number, 5);
        EXPECT_TRUE(text.empty()) << toUtf8(whole);
    }
}

TEST(NextPlainNumber, FindsNoNumberBehindTheEndOfTheText) {
    for (const std::u16string_view whole : {u"  5", u"  -5", u"  -5,", u"   5,", u"  ,"}) {
        std::u16string_view text = whole.substr(0, 2);
        std::u16string_view token;
        float number = -1;
        EXPECT_FALSE(NextPlainNumber(text, token, number)) << toUtf8(whole);
        EXPECT_EQ(text, u"  ");
    }
}

TEST(NextPlainNumber, TakesANumberWithItsBlanksAndItsSeparator) {
    const std::vector<NumberCut> cuts = {
        {u"5", u"5", 5, u""},
        {u"5,6", u"5", 5, u"6"},
        {u" 12.5 , 6", u"12.5", 12.5F, u" 6"},
        {u"-.25,", u"-.25", -.25F, u""},
        {u"  7.  ", u"7.", 7, u""},
        {u"9999999,x", u"9999999", 9999999, u"x"},
        {u"0,\"a", u"0", 0, u"\"a"},
        {u"-0,1", u"-0", -0.0F, u"1"},
    };
    for (const NumberCut& cut : cuts) {
        std::u16string_view text = cut.text;
        std::u16string_view token;
        float number = -1;
        EXPECT_TRUE(NextPlainNumber(text, token, number)) << toUtf8(cut.text);
        EXPECT_EQ(token, cut.token) << toUtf8(cut.text);
        EXPECT_EQ(number, cut.number) << toUtf8(cut.text);
        EXPECT_EQ(text, cut.rest) << toUtf8(cut.text);
    }
}

TEST(NextPlainNumber, LeavesAnythingElseAsItIs) {
    for (const std::u16string_view whole :
         {u"",     u"   ",   u"-",        u".",   u"-.,1",  u"- 5", u"+5",  u"5 6", u"5\t,6",    u"\t5",
          u"Name", u"\"5\"", u"12345678", u"1e5", u"1.2.3", u",5",  u"5;6", u"5)",  u"5\u00016", u"5\uFFFF6"}) {
        std::u16string_view text = whole;
        std::u16string_view token = u"before";
        float number = -1;
        EXPECT_FALSE(NextPlainNumber(text, token, number)) << toUtf8(whole);
        EXPECT_EQ(text.data(), whole.data());
        EXPECT_EQ(text, whole);
        EXPECT_EQ(token, u"before");
        EXPECT_EQ(number, -1);
    }
}

// Every short text of the characters that decide.
TEST(NextPlainNumber, AgreesWithTheCutAndTheReadingOneAfterTheOther) {
    constexpr std::u16string_view units = u"17.-, \"x";
    const NumberLocale locale = NumberLocale::pointDecimal();
    for (std::size_t code = 0; code < 8U * 8 * 8 * 8 * 8 * 8; ++code) {
        std::u16string whole;
        for (std::size_t rest = code, i = 0; i < 6; ++i, rest /= 8) whole += units[rest % 8];
        std::u16string_view expectedRest = whole;
        const std::u16string_view expectedToken = NextParameter(expectedRest);
        const std::optional<float> expected = plainNumber(expectedToken, locale);
        std::u16string_view text = whole;
        std::u16string_view token;
        float number = 0;
        ASSERT_EQ(NextPlainNumber(text, token, number), expected.has_value()) << toUtf8(whole);
        if (!expected) continue;
        ASSERT_EQ(number, *expected) << toUtf8(whole);
        ASSERT_EQ(token, expectedToken) << toUtf8(whole);
        ASSERT_EQ(text, expectedRest) << toUtf8(whole);
    }
}

TEST(IsQuotedString, AsksForAQuoteAtBothEnds) {
    const std::vector<std::pair<std::u16string_view, bool>> cases = {
        {u"\"a\"", true}, {u"\"\"", true}, {u"\"a\" \"b\"", true}, {u"\"a\"b\"", true}, {u"", false},    {u"a", false},
        {u"\"a", false},  {u"a\"", false}, {u" \"a\"", false},     {u"\"a\" ", false},  {u"'a'", false},
    };
    for (const auto& [token, expected] : cases) EXPECT_EQ(IsQuotedString(token), expected) << toUtf8(token);
}

TEST(IsQuotedString, ALoneDoubleQuoteIsBothEnds) { EXPECT_TRUE(IsQuotedString(u"\"")); }

TEST(StripQuotes, DropsTheOuterCharactersWhateverTheyAre) {
    const std::vector<std::pair<std::u16string_view, std::u16string_view>> cases = {
        {u"\"text\"", u"text"}, {u"\"\"", u""},       {u"abc", u"b"},
        {u"ab", u""},           {u"\" a \"", u" a "}, {u"\"a\"b\"", u"a\"b"},
    };
    for (const auto& [token, expected] : cases) EXPECT_EQ(StripQuotes(token).view(), expected) << toUtf8(token);
}

TEST(StripQuotes, OneCharacterOrNoneGivesTheEmptyText) {
    for (const std::u16string_view token : {u"", u"\"", u"x", u"|"})
        EXPECT_TRUE(StripQuotes(token).empty()) << toUtf8(token);
}

TEST(StripQuotes, TurnsEveryBarIntoALineBreak) {
    const std::vector<std::pair<std::u16string_view, std::u16string_view>> cases = {
        {u"\"Line1|Line2\"", u"Line1\r\nLine2"},
        {u"\"|\"", u"\r\n"},
        {u"\"||a|\"", u"\r\n\r\na\r\n"},
        {u"|a|b|", u"a\r\nb"},
    };
    for (const auto& [token, expected] : cases) EXPECT_EQ(StripQuotes(token).view(), expected) << toUtf8(token);
}

TEST(StripQuotes, KeepsAsManyLineBreaksAsThereAreBars) {
    std::u16string token = u"\"" + std::u16string(1000, u'|') + u"\"";
    EXPECT_EQ(StripQuotes(token).view().size(), 2000U);
}

TEST(TrimBlanksAndTabs, RemovesBlanksAndTabsAtBothEndsAndNothingElse) {
    const std::vector<std::pair<std::u16string_view, std::u16string_view>> cases = {
        {u"", u""},
        {u" ", u""},
        {u"\t \t", u""},
        {u" a", u"a"},
        {u"a\t", u"a"},
        {u" \t a \t b \t ", u"a \t b"},
        {u"\r\na\n", u"\r\na\n"},
        {u"\u00A0a\u00A0", u"\u00A0a\u00A0"},
        {u"\va\f", u"\va\f"},
    };
    for (const auto& [text, expected] : cases) EXPECT_EQ(TrimBlanksAndTabs(text), expected) << toUtf8(text);
}

TEST(Decimal, WritesEveryNumberPlainly) {
    using Limits = std::numeric_limits<std::int32_t>;
    const std::vector<std::pair<std::int32_t, std::u16string_view>> cases = {
        {0, u"0"},
        {1, u"1"},
        {-1, u"-1"},
        {1000000, u"1000000"},
        {Limits::max(), u"2147483647"},
        {Limits::min(), u"-2147483648"},
    };
    for (const auto& [number, expected] : cases) EXPECT_EQ(decimal(number), expected);
}

}  // namespace
}  // namespace corvane
