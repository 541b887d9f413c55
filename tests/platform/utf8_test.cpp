#include "platform/utf8.h"

#include <gtest/gtest.h>

namespace corvane {
namespace {

using namespace std::string_literals;

struct Pair {
    std::u16string text;
    std::string bytes;
};

const Pair wellFormed[] = {
    {u"", ""},
    {u"A\0B"s, "A\0B"s},
    {u"\x7F", "\x7F"},
    {u"\x80", "\xC2\x80"},
    {u"\x7FF", "\xDF\xBF"},
    {u"\x800", "\xE0\xA0\x80"},
    {u"\x20AC", "\xE2\x82\xAC"},
    {u"\xD7FF\xE000", "\xED\x9F\xBF\xEE\x80\x80"},
    {u"\xFFFF", "\xEF\xBF\xBF"},
    {u"\U00010000", "\xF0\x90\x80\x80"},
    {u"x\U0001F600y", "x\xF0\x9F\x98\x80y"},
    {u"\U0010FFFF", "\xF4\x8F\xBF\xBF"},
};

TEST(Utf8, GoesThereAndBack) {
    for (const Pair& pair : wellFormed) {
        EXPECT_EQ(toUtf8(pair.text), pair.bytes);
        EXPECT_EQ(toUtf8(pair.text, LoneSurrogate::Keep), pair.bytes);
        EXPECT_EQ(fromUtf8(pair.bytes), pair.text) << testing::PrintToString(pair.bytes);
    }
}

TEST(Utf8, ReplacesLoneSurrogates) {
    EXPECT_EQ(toUtf8(u"a\xD800"), "a\xEF\xBF\xBD");
    EXPECT_EQ(toUtf8(u"\xDC00z"), "\xEF\xBF\xBDz");
    EXPECT_EQ(toUtf8(u"\xD83D\xD83D\xDE00"), "\xEF\xBF\xBD\xF0\x9F\x98\x80");
    EXPECT_EQ(toUtf8(u"\xDE00\xD83D"), "\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(Utf8, DoesNotReadBeyondTheEnd) {
    const std::u16string_view pair = u"\U0001F600";
    EXPECT_EQ(toUtf8(pair.substr(0, 1)), "\xEF\xBF\xBD");
    const std::string_view bytes = "\xE2\x82\xAC";
    EXPECT_EQ(fromUtf8(bytes.substr(0, 2)), u"\xFFFD");
}

TEST(Utf8, KeepsLoneSurrogatesWhenAskedTo) {
    EXPECT_EQ(toUtf8(u"a\xD800", LoneSurrogate::Keep), "a\xED\xA0\x80");
    EXPECT_EQ(toUtf8(u"\xDFFFz", LoneSurrogate::Keep), "\xED\xBF\xBFz");
}

TEST(Utf8, ReadsEachIllFormedSequenceAsOneReplacement) {
    const Pair pairs[] = {
        {u"\xFFFD", "\x80"},                                // continuation without lead
        {u"\xFFFD\xFFFD", "\xC0\xAF"},                      // overlong
        {u"\xFFFD\xFFFD\xFFFD", "\xE0\x80\x80"},            // overlong
        {u"\xFFFD\xFFFD\xFFFD", "\xED\xA0\x80"},            // a surrogate
        {u"\xFFFD\xFFFD\xFFFD\xFFFD", "\xF4\x90\x80\x80"},  // beyond the last character
        {u"\xFFFD", "\xF5"},
        {u"\xFFFD", "\xFF"},
        {u"\xFFFD"
         u"A",
         "\xE2\x82"
         "A"},                        // cut off by another character
        {u"\xFFFD", "\xF0\x9F\x98"},  // cut off by the end
        {u"\xFFFD", "\xC3"},
        {u"\xFFFD\xE9", "\xE2\xC3\xA9"},  // a lead cut off by a whole character
    };
    for (const Pair& pair : pairs) EXPECT_EQ(fromUtf8(pair.bytes), pair.text) << testing::PrintToString(pair.bytes);
}

}  // namespace
}  // namespace corvane
