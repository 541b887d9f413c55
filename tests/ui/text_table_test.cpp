#include "ui/text_table.h"

#include <gtest/gtest.h>

#include "tests/support/engine_fixture.h"

namespace corvane {
namespace {

TextTable tableOf(const std::vector<std::u16string>& headers, const std::vector<std::vector<std::u16string>>& rows) {
    TextTable table;
    table.prepare();
    for (const std::u16string& header : headers) table.addColumn(header);
    for (const auto& row : rows) {
        table.addRow(row.at(0));
        for (std::size_t i = 1; i < row.size(); ++i) table.setSubItem(static_cast<int>(i), row[i]);
    }
    table.fitColumns();
    return table;
}

std::string aligned(const std::vector<std::u16string>& headers, const std::vector<std::vector<std::u16string>>& rows) {
    return toUtf8(tableOf(headers, rows).aligned());
}

TEST(TextTable, KeepsColumnsAndRows) {
    const TextTable table = tableOf({u"A", u"B", u"C"}, {{u"1", u"2"}, {u"3", u"", u"4"}});
    EXPECT_EQ(table.columns(), (std::vector<std::u16string>{u"A", u"B", u"C"}));
    EXPECT_EQ(table.rows(), (std::vector<std::vector<std::u16string>>{{u"1", u"2", u""}, {u"3", u"", u"4"}}));
}

TEST(TextTable, WritesSubItemsIntoTheLastRow) {
    TextTable table = tableOf({u"A", u"B"}, {{u"1"}, {u"2"}});
    table.setSubItem(1, u"first");
    table.setSubItem(1, u"second");
    EXPECT_EQ(table.rows(), (std::vector<std::vector<std::u16string>>{{u"1", u""}, {u"2", u"second"}}));
}

TEST(TextTable, PrepareDropsAnEarlierFill) {
    TextTable table = tableOf({u"A", u"B"}, {{u"1", u"2"}});
    table.prepare();
    EXPECT_TRUE(table.columns().empty());
    EXPECT_TRUE(table.rows().empty());
    EXPECT_EQ(table.aligned(), u"\n\n");
}

TEST(TextTable, AlignsColumnsTwoBlanksApart) {
    EXPECT_EQ(aligned({u"No.", u"Name", u"V"}, {{u"1", u"a", u"12345"}, {u"1000", u"longer", u""}}),
              "No.   Name    V\n"
              "----  ------  -----\n"
              "1     a       12345\n"
              "1000  longer\n");
}

TEST(TextTable, AColumnIsAtLeastAsWideAsItsHeader) {
    EXPECT_EQ(aligned({u"Header", u"B"}, {{u"a", u"b"}}),
              "Header  B\n"
              "------  -\n"
              "a       b\n");
}

TEST(TextTable, LeavesOutColumnsWithoutContent) {
    EXPECT_EQ(aligned({u"A", u"B", u"C", u"D"}, {{u"1", u" ", u"", u"x"}, {u"2", u"", u"  ", u"y"}}),
              "A  D\n"
              "-  -\n"
              "1  x\n"
              "2  y\n");
}

TEST(TextTable, KeepsAColumnThatOneRowFills) {
    EXPECT_EQ(aligned({u"A", u"B", u"C"}, {{u"1", u"", u"x"}, {u"2", u"b", u"y"}}),
              "A  B  C\n"
              "-  -  -\n"
              "1     x\n"
              "2  b  y\n");
}

TEST(TextTable, ShowsAllHeadersWhenThereIsNoRow) { EXPECT_EQ(aligned({u"No.", u"B"}, {}), "No.  B\n---  -\n"); }

TEST(TextTable, EndsNoLineWithBlanks) {
    EXPECT_EQ(aligned({u"A", u"B"}, {{u"1", u"trailing  "}, {u"2  ", u""}}),
              "A    B\n"
              "---  ----------\n"
              "1    trailing\n"
              "2\n");
}

TEST(TextTable, KeepsLeadingAndInnerBlanks) {
    EXPECT_EQ(aligned({u"A", u"B"}, {{u"  a b", u"c"}}),
              "A      B\n"
              "-----  -\n"
              "  a b  c\n");
}

TEST(TextTable, ShowsControlCharactersAsEscapes) {
    EXPECT_EQ(aligned({u"A", u"B"}, {{u"one\r\ntwo", u"x"}, {u"\t\x1B[0m\x01\x1F\x7F", u"y"}}),
              "A                      B\n"
              "---------------------  -\n"
              "one\\r\\ntwo             x\n"
              "\\t\\x1b[0m\\x01\\x1f\\x7f  y\n");
}

TEST(TextTable, ShowsAZeroCharacterAsAnEscape) {
    EXPECT_EQ(aligned({u"A"}, {{std::u16string(u"a\0b", 3)}}), "A\n------\na\\x00b\n");
}

TEST(TextTable, CountsASurrogatePairOnce) {
    EXPECT_EQ(aligned({u"A", u"B"}, {{u"\U0001F600\u00E4", u"x"}, {u"abc", u"y"}}),
              "A    B\n"
              "---  -\n"
              "\xF0\x9F\x98\x80\xC3\xA4   x\n"
              "abc  y\n");
}

TEST(TextTable, CountsHalvesOfSurrogatePairsEach) {
    const std::u16string high(1, char16_t{0xD83D});
    const std::u16string shown = high + u"a" + high + u"\uFF11" + high + high;
    EXPECT_EQ(aligned({u"A", u"B"}, {{shown, u"x"}}).substr(0, 20), "A       B\n------  -\n");
}

TEST(TextTable, ShowsTheSecondSetOfControlCharactersAsEscapes) {
    EXPECT_EQ(aligned({u"A"}, {{u"a\u0085\u009F"}}), "A\n---------\na\\x85\\x9f\n");
}

TEST(TextTable, KeepsAColumnOfHalvesOfSurrogatePairs) {
    const std::u16string half(1, char16_t{0xDC00});
    EXPECT_EQ(aligned({u"A", u"B"}, {{half, u"x"}, {half + half, u"y"}}),
              "A   B\n"
              "--  -\n"
              "\xEF\xBF\xBD   x\n"
              "\xEF\xBF\xBD\xEF\xBF\xBD  y\n");
}

class TextTableViews : public testing::EngineTest {};

TEST_F(TextTableViews, ShowAScript) {
    ASSERT_TRUE(
        load(u"; fill and count\nVAR Count = 0\nCONST Limit = 10\n\nAgain:\nInfo(\"one|two\")\nIncrement(Count)\n"
             u"IfLessThan(Count, Limit, Again)"));
    TextTable statements;
    TextTable items;
    engine.DisplayDataInListViews(&statements, &items);
    EXPECT_EQ(statements.columns().size(), 27u);
    EXPECT_EQ(toUtf8(statements.aligned()),
              "No.  Function    P1          P2     P3\n"
              "---  ----------  ----------  -----  -----------------\n"
              "1    Info        one\\r\\ntwo\n"
              "2    Increment   Count\n"
              "3    IfLessThan  Count       Limit  0 - (Label Again)\n");
    EXPECT_EQ(toUtf8(items.aligned()),
              "No.  Identifier        Type  Initial Val\n"
              "---  ----------------  ----  -----------\n"
              "0    FINISH_LOOP_FLAG  16    0\n"
              "1    Count             2     0\n"
              "2    Limit             130   10\n"
              "3    Again             8     0\n"
              "4                      132   one\\r\\ntwo\n");
}

TEST_F(TextTableViews, ShowAnEmptyScript) {
    ASSERT_TRUE(load(u""));
    TextTable statements;
    engine.DisplayDataInListViews(&statements);
    EXPECT_TRUE(statements.rows().empty());
    const std::string text = toUtf8(statements.aligned());
    EXPECT_TRUE(text.starts_with("No.  Function  P1  P2")) << text;
    EXPECT_NE(text.find("P25\n"), std::string::npos) << text;
}

}  // namespace
}  // namespace corvane
