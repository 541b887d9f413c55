#include "engine/modCommand.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "engine/clsCommand.h"
#include "engine/statement_table.h"
#include "tests/support/engine_fixture.h"

namespace corvane {
namespace {

using testing::EngineTest;
using testing::errorOf;

constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();

/// A catalogue that is the published one before and after each test.
class Catalogue : public EngineTest {
protected:
    void SetUp() override { BuildFunctionCatalogue(); }
    void TearDown() override {
        BuildFunctionCatalogue();
        EngineTest::TearDown();
    }

    std::string lastMessage() const { return dialogs.messages.empty() ? "" : dialogs.messages.back().text; }
};

bool isEmptyRecord(const FunctionDefinition& record) {
    bool empty = record.Name.empty() && record.ParamCount == 0 && record.Description.empty();
    for (const ParameterDefinition& slot : record.Params)
        empty = empty && slot.ParamType == 0 && slot.ParamName.empty();
    return empty;
}

TEST_F(Catalogue, HoldsOneHundredRecordsOfTwentyFiveSlots) {
    EXPECT_EQ(catalogueSize, 100);
    EXPECT_EQ(functionDefinition(99).Params.size(), 25U);
}

TEST_F(Catalogue, RecordZeroIsUnknown) {
    const FunctionDefinition& record = functionDefinition(0);
    EXPECT_EQ(record.Name, u"<unknown>");
    EXPECT_EQ(record.ParamCount, 0);
    EXPECT_EQ(record.Description, u"<unknown>");
    EXPECT_EQ(record.Params[0].ParamType, 0);
}

TEST_F(Catalogue, DeclarationsAndRecordsBehindTheLastKindAreEmpty) {
    for (std::int32_t kind = 1; kind <= 3; ++kind) EXPECT_TRUE(isEmptyRecord(functionDefinition(kind))) << kind;
    for (std::int32_t kind = 53; kind <= 99; ++kind) EXPECT_TRUE(isEmptyRecord(functionDefinition(kind))) << kind;
}

TEST_F(Catalogue, RecordsOfStatementsAreTheStatementTables) {
    for (const StatementRow& row : statementTable) {
        const FunctionDefinition& record = functionDefinition(row.kind);
        EXPECT_EQ(record.Name, row.definition.Name);
        EXPECT_EQ(record.Params[0].ParamName, row.definition.Params[0].ParamName);
    }
}

TEST_F(Catalogue, ReadingARecordThatDoesNotExistIsOutOfRange) {
    for (const std::int32_t kind : {-1, 100, highest, lowest})
        EXPECT_EQ(errorOf([&] { functionDefinition(kind); }), 9) << kind;
}

// Looking keywords up

TEST_F(Catalogue, KeywordsAreFoundInAnyCase) {
    for (const std::u16string_view keyword : {u"goto", u"GOTO", u"Goto", u"gOtO"})
        EXPECT_EQ(FunctionTypeFromName(keyword), 4);
}

TEST_F(Catalogue, EveryKeywordLeadsToItsKind) {
    for (const StatementRow& row : statementTable) {
        std::u16string upper(row.definition.Name);
        for (char16_t& c : upper)
            if (c >= u'a' && c <= u'z') c = static_cast<char16_t>(c - u'a' + u'A');
        EXPECT_EQ(FunctionTypeFromName(row.definition.Name), row.kind) << toUtf8(upper);
        EXPECT_EQ(FunctionTypeFromName(upper), row.kind) << toUtf8(upper);
    }
}

TEST_F(Catalogue, BlanksOfAKeywordCount) {
    for (const std::u16string_view keyword : {u" Goto", u"Goto ", u"Go to", u"Goto\t"})
        EXPECT_EQ(FunctionTypeFromName(keyword), 0) << toUtf8(keyword);
}

TEST_F(Catalogue, WhatIsNoKeywordIsUnknown) {
    for (const std::u16string_view keyword : {u"Got", u"Gotoo", u"VAR", u"Declare Variable", u"Unknown", u"G\u00F6to"})
        EXPECT_EQ(FunctionTypeFromName(keyword), 0) << toUtf8(keyword);
    EXPECT_EQ(FunctionTypeFromName(std::u16string(100000, u'x')), 0);
    EXPECT_EQ(FunctionTypeFromName(std::u16string_view(u"Goto\0", 5)), 0);
}

TEST_F(Catalogue, TheNameOfRecordZeroYieldsZero) { EXPECT_EQ(FunctionTypeFromName(u"<unknown>"), 0); }

TEST_F(Catalogue, TheEmptyKeywordMatchesTheFirstRecordWithoutAName) { EXPECT_EQ(FunctionTypeFromName(u""), 1); }

// Display names

TEST_F(Catalogue, DisplayNamesOfDeclarationsAreTheirOwn) {
    EXPECT_EQ(CommandNameFromType(0), u"Unknown");
    EXPECT_EQ(CommandNameFromType(1), u"Declare Environment Variable");
    EXPECT_EQ(CommandNameFromType(2), u"Declare Variable");
    EXPECT_EQ(CommandNameFromType(3), u"Declare Constant");
}

TEST_F(Catalogue, DisplayNamesOfStatementsAreTheirKeywords) {
    for (const StatementRow& row : statementTable) EXPECT_EQ(CommandNameFromType(row.kind), row.definition.Name);
    EXPECT_EQ(CommandNameFromType(12), u"Set");
    EXPECT_EQ(CommandNameFromType(50), u"AerationControl");
    EXPECT_EQ(CommandNameFromType(51), u"PressureControl");
}

TEST_F(Catalogue, OtherKindsHaveNoDisplayName) {
    for (const std::int32_t kind : {-1, 53, 99, 100, highest, lowest})
        EXPECT_EQ(CommandNameFromType(kind), u"Function not recognised") << kind;
}

// Writing

TEST_F(Catalogue, DefinitionsAreWrittenWholeExceptForTheirSlots) {
    SetFunctionDefinition(ctInfo, u"Hinweis", 2, u"Zeigt etwas an");
    const FunctionDefinition& record = functionDefinition(ctInfo);
    EXPECT_EQ(record.Name, u"Hinweis");
    EXPECT_EQ(record.ParamCount, 2);
    EXPECT_EQ(record.Description, u"Zeigt etwas an");
    EXPECT_EQ(record.Params[0].ParamName, u"Information");
    EXPECT_EQ(record.Params[0].ParamType, 132);
}

TEST_F(Catalogue, ASlotIsWrittenWithoutChangingTheCount) {
    SetParameterDefinition(ctInfo, 24, 255, u"Last");
    const FunctionDefinition& record = functionDefinition(ctInfo);
    EXPECT_EQ(record.Params[24].ParamType, 255);
    EXPECT_EQ(record.Params[24].ParamName, u"Last");
    EXPECT_EQ(record.Params[23].ParamType, 0);
    EXPECT_EQ(record.ParamCount, 1);
    EXPECT_EQ(record.Name, u"Info");
}

TEST_F(Catalogue, OtherRecordsKeepTheirContentWhenOneIsWritten) {
    SetFunctionDefinition(60, u"Dance", 0, u"");
    for (const StatementRow& row : statementTable)
        EXPECT_EQ(functionDefinition(row.kind).Name, row.definition.Name) << row.kind;
    EXPECT_EQ(functionDefinition(0).Name, u"<unknown>");
    EXPECT_TRUE(isEmptyRecord(functionDefinition(1)));
}

TEST_F(Catalogue, KeepsItsOwnCopyOfTheTexts) {
    {
        const std::u16string name = u"A keyword that is too long to be kept in place";
        const std::u16string description = u"A description that is too long to be kept in place";
        SetFunctionDefinition(99, name, 1, description);
        SetParameterDefinition(99, 0, 2, name);
    }
    EXPECT_EQ(functionDefinition(99).Name, u"A keyword that is too long to be kept in place");
    EXPECT_EQ(functionDefinition(99).Description, u"A description that is too long to be kept in place");
    EXPECT_EQ(functionDefinition(99).Params[0].ParamName, u"A keyword that is too long to be kept in place");
}

TEST_F(Catalogue, WritingARecordThatDoesNotExistIsOutOfRange) {
    for (const std::int32_t kind : {-1, 100, highest, lowest}) {
        EXPECT_EQ(errorOf([&] { SetFunctionDefinition(kind, u"x", 0, u""); }), 9) << kind;
        EXPECT_EQ(errorOf([&] { SetParameterDefinition(kind, 0, 2, u"x"); }), 9) << kind;
    }
}

TEST_F(Catalogue, WritingASlotThatDoesNotExistIsOutOfRangeAndWritesNothing) {
    for (const std::int32_t slot : {-1, 25, highest, lowest})
        EXPECT_EQ(errorOf([&] { SetParameterDefinition(ctSCTestFull, slot, 2, u"x"); }), 9) << slot;
    const FunctionDefinition& record = functionDefinition(ctSCTestFull);
    const FunctionDefinition& published = findStatementRow(ctSCTestFull)->definition;
    for (std::size_t i = 0; i < record.Params.size(); ++i) {
        EXPECT_EQ(record.Params[i].ParamName, published.Params[i].ParamName) << i;
        EXPECT_EQ(record.Params[i].ParamType, published.Params[i].ParamType) << i;
    }
}

TEST_F(Catalogue, FirstAndLastRecordAndSlotCanBeWritten) {
    SetFunctionDefinition(0, u"Zero", 1, u"first");
    SetParameterDefinition(0, 0, 2, u"a");
    SetFunctionDefinition(99, u"Last", 25, u"last");
    SetParameterDefinition(99, 24, 4, u"b");
    EXPECT_EQ(functionDefinition(0).Params[0].ParamName, u"a");
    EXPECT_EQ(functionDefinition(99).Params[24].ParamName, u"b");
    EXPECT_EQ(FunctionTypeFromName(u"zero"), 0);
    EXPECT_EQ(FunctionTypeFromName(u"last"), 99);
}

TEST_F(Catalogue, LookupReadsWhatWasWritten) {
    SetFunctionDefinition(ctGoto, u"Springe", 1, u"");
    SetFunctionDefinition(60, u"Dance", 0, u"");
    EXPECT_EQ(FunctionTypeFromName(u"SPRINGE"), ctGoto);
    EXPECT_EQ(FunctionTypeFromName(u"Goto"), 0);
    EXPECT_EQ(FunctionTypeFromName(u"dance"), 60);
    EXPECT_EQ(FunctionTypeFromName(u"Call"), ctCall);
    EXPECT_EQ(FunctionTypeFromName(u"<Unknown>"), 0);
}

TEST_F(Catalogue, OfTwoRecordsWithOneKeywordTheFirstIsFound) {
    SetFunctionDefinition(60, u"GOTO", 0, u"");
    EXPECT_EQ(FunctionTypeFromName(u"Goto"), ctGoto);
    SetFunctionDefinition(2, u"goto", 0, u"");
    EXPECT_EQ(FunctionTypeFromName(u"Goto"), 2);
}

TEST_F(Catalogue, TheEmptyKeywordFollowsTheFirstEmptyRecordThatIsLeft) {
    for (std::int32_t kind = 1; kind <= 3; ++kind) SetFunctionDefinition(kind, u"x", 0, u"");
    EXPECT_EQ(FunctionTypeFromName(u""), 53);
}

TEST_F(Catalogue, DisplayNamesDoNotReadIt) {
    SetFunctionDefinition(ctGoto, u"Springe", 1, u"");
    SetFunctionDefinition(60, u"Dance", 0, u"");
    EXPECT_EQ(CommandNameFromType(ctGoto), u"Goto");
    EXPECT_EQ(CommandNameFromType(60), u"Function not recognised");
}

TEST_F(Catalogue, BindingReadsWhatWasWritten) {
    SetFunctionDefinition(ctGoto, u"Springe", 2, u"");
    SetParameterDefinition(ctGoto, 1, ptNumber, u"Variable");
    ASSERT_TRUE(load(u"VAR Count = 1\nVAR Name = \"n\"\nspringe(Here, Count)\nHere:"));
    EXPECT_EQ(engine.Command(1).CommandType(), ctGoto);
    EXPECT_EQ(engine.Command(1).boundCount(), 2);
    EXPECT_FALSE(load(u"VAR Name = \"n\"\nSpringe(Here, Name)\nHere:"));
    EXPECT_EQ(lastMessage(), "Incorrect parameter type: 2");
    EXPECT_FALSE(load(u"Springe(Here)\nHere:"));
    EXPECT_EQ(lastMessage(), "Springe requires 2 parameters");
}

TEST_F(Catalogue, BuildingItAgainDiscardsWhatWasWritten) {
    SetFunctionDefinition(ctGoto, u"Springe", 2, u"weg");
    SetParameterDefinition(ctGoto, 1, ptNumber, u"Variable");
    SetFunctionDefinition(60, u"Dance", 3, u"");
    BuildFunctionCatalogue();
    EXPECT_EQ(functionDefinition(ctGoto).Name, u"Goto");
    EXPECT_EQ(functionDefinition(ctGoto).ParamCount, 1);
    EXPECT_EQ(functionDefinition(ctGoto).Description, u"Goto a given label");
    EXPECT_EQ(functionDefinition(ctGoto).Params[1].ParamType, 0);
    EXPECT_TRUE(isEmptyRecord(functionDefinition(60)));
    EXPECT_EQ(FunctionTypeFromName(u"Goto"), ctGoto);
    EXPECT_EQ(FunctionTypeFromName(u"Dance"), 0);
    EXPECT_EQ(FunctionTypeFromName(u""), 1);
}

TEST_F(Catalogue, BuildingItTwiceGivesTheSameContent) {
    BuildFunctionCatalogue();
    BuildFunctionCatalogue();
    EXPECT_EQ(functionDefinition(ctBlockStart).Name, u"BlockStart");
}

TEST_F(Catalogue, AnotherThreadSeesThePublishedOne) {
    SetFunctionDefinition(ctGoto, u"Springe", 2, u"");
    std::u16string name;
    std::int32_t kind = -1;
    std::int32_t written = -1;
    std::thread([&] {
        name = functionDefinition(ctGoto).Name;
        kind = FunctionTypeFromName(u"Goto");
        written = FunctionTypeFromName(u"Springe");
    }).join();
    EXPECT_EQ(name, u"Goto");
    EXPECT_EQ(kind, ctGoto);
    EXPECT_EQ(written, 0);
}

TEST_F(Catalogue, WhatAnotherThreadWritesOrBuildsStaysThere) {
    SetFunctionDefinition(60, u"Dance", 0, u"");
    std::int32_t kind = -1;
    std::thread([&] {
        SetFunctionDefinition(ctCall, u"Rufe", 1, u"");
        kind = FunctionTypeFromName(u"Rufe");
        BuildFunctionCatalogue();
    }).join();
    EXPECT_EQ(kind, ctCall);
    EXPECT_EQ(functionDefinition(ctCall).Name, u"Call");
    EXPECT_EQ(FunctionTypeFromName(u"Dance"), 60);
}

// Numbers as scripts write them

struct NumericText {
    std::u16string_view text;
    bool isNumber;
    std::u16string_view left;  // what the caller is left with
};

void expectVerdicts(const NumberLocale& locale, const std::vector<NumericText>& cases) {
    for (const NumericText& expected : cases) {
        std::u16string text(expected.text);
        EXPECT_EQ(IsNumericText(text, locale), expected.isNumber) << toUtf8(expected.text);
        EXPECT_EQ(text, expected.left) << toUtf8(expected.text);
    }
}

TEST(IsNumericText, UnderADecimalPointTakesPointNumbersUnchanged) {
    expectVerdicts(NumberLocale::pointDecimal(), {
                                                     {u"12", true, u"12"},
                                                     {u"-3", true, u"-3"},
                                                     {u"+4", true, u"+4"},
                                                     {u"4-", true, u"4-"},
                                                     {u"1.5", true, u"1.5"},
                                                     {u".5", true, u".5"},
                                                     {u"5.", true, u"5."},
                                                     {u"-.5", true, u"-.5"},
                                                     {u"007.50", true, u"007.50"},
                                                 });
}

TEST(IsNumericText, UnderADecimalPointAdmitsWhateverTheGeneralTestAdmits) {
    expectVerdicts(NumberLocale::pointDecimal(), {
                                                     {u" 12 ", true, u" 12 "},
                                                     {u"1e3", true, u"1e3"},
                                                     {u"1,234.5", true, u"1,234.5"},
                                                     {u"$5", true, u"$5"},
                                                     {u"(5)", true, u"(5)"},
                                                 });
}

// Kept: the point is tried first, and for the general test a comma is a group mark: this is fifteen.
TEST(IsNumericText, UnderADecimalPointACommaGroupsDigits) {
    expectVerdicts(NumberLocale::pointDecimal(), {{u"1,5", true, u"1,5"}});
}

TEST(IsNumericText, UnderADecimalPointStrictCommaNumbersAreRewrittenWhereTheGeneralTestRefuses) {
    expectVerdicts(NumberLocale::pointDecimal(), {{u",-5", true, u"-.5"}, {u",+25", true, u"+.25"}});
}

TEST(IsNumericText, UnderADecimalPointRefusesWhatIsNoNumber) {
    expectVerdicts(NumberLocale::pointDecimal(), {
                                                     {u"", false, u""},
                                                     {u"1.2.3", false, u"1.2.3"},
                                                     {u"--1", false, u"--1"},
                                                     {u"1-2", false, u"1-2"},
                                                     {u"abc", false, u"abc"},
                                                     {u"1 5", false, u"1 5"},
                                                     {u"5x", false, u"5x"},
                                                     {u".", false, u"."},
                                                     {u"-.", false, u"-."},
                                                     {u"\u0661\u0662", false, u"\u0661\u0662"},
                                                 });
}

TEST(IsNumericText, UnderADecimalPointARefusedTextMayBeLeftRewritten) {
    expectVerdicts(NumberLocale::pointDecimal(), {
                                                     {u",", false, u""},
                                                     {u"-,", false, u"-"},
                                                     {u"+", false, u"+"},
                                                     {u"1:,", false, u"1:,"},
                                                 });
}

TEST(IsNumericText, UnderADecimalCommaRewritesPointNumbers) {
    expectVerdicts(NumberLocale::commaDecimal(), {
                                                     {u"12", true, u"12"},
                                                     {u"-3", true, u"-3"},
                                                     {u"+4", true, u"+4"},
                                                     {u"4-", true, u"-4"},
                                                     {u"4+", true, u"+4"},
                                                     {u"1.5", true, u"1,5"},
                                                     {u".5", true, u",5"},
                                                     {u"-.5", true, u"-,5"},
                                                     {u"007.50", true, u"007,50"},
                                                     {u"1.5-", true, u"-1,5"},
                                                 });
}

TEST(IsNumericText, ATextThatEndsInTheSeparatorLosesIt) {
    expectVerdicts(NumberLocale::commaDecimal(), {{u"5.", true, u"5"}, {u"-5.", true, u"-5"}, {u"5.-", true, u"-5"}});
}

TEST(IsNumericText, ASignBehindTheSeparatorStandsInFrontOfTheFraction) {
    expectVerdicts(NumberLocale::commaDecimal(), {{u".-5", true, u"-,5"}});
}

TEST(IsNumericText, UnderADecimalCommaTakesCommaNumbersUnchanged) {
    expectVerdicts(NumberLocale::commaDecimal(), {
                                                     {u"1,5", true, u"1,5"},
                                                     {u",5", true, u",5"},
                                                     {u"-1,5", true, u"-1,5"},
                                                     {u"1,5-", true, u"1,5-"},
                                                     {u"1.234,5", true, u"1.234,5"},
                                                     {u" 12 ", true, u" 12 "},
                                                     {u"1e3", true, u"1e3"},
                                                 });
}

// Kept: two points are refused as decimal marks and then admitted by the general test, where they group digits.
TEST(IsNumericText, UnderADecimalCommaSeveralPointsGroupDigits) {
    expectVerdicts(NumberLocale::commaDecimal(),
                   {{u"1.2.3", true, u"1.2.3"}, {u"1.234.567", true, u"1.234.567"}, {u"1.5e1", true, u"1.5e1"}});
}

TEST(IsNumericText, UnderADecimalCommaRefusesWhatIsNoNumber) {
    expectVerdicts(NumberLocale::commaDecimal(), {
                                                     {u"", false, u""},
                                                     {u"1,2,3", false, u"1,2,3"},
                                                     {u"--1", false, u"--1"},
                                                     {u"1-2", false, u"1-2"},
                                                     {u"abc", false, u"abc"},
                                                     {u"1 5", false, u"1 5"},
                                                     {u",", false, u","},
                                                     {u"5x", false, u"5x"},
                                                     {u"1.2.x", false, u"1.2.x"},
                                                 });
}

TEST(IsNumericText, UnderADecimalCommaALonePointIsLeftEmpty) {
    expectVerdicts(NumberLocale::commaDecimal(),
                   {{u".", false, u""}, {u"-.", false, u"-"}, {u".+", false, u"+"}, {u"-", false, u"-"}});
}

TEST(IsNumericText, UnderAnotherDecimalMarkPointAndCommaAreBothHeldToTheStrictRules) {
    NumberLocale locale = NumberLocale::pointDecimal();
    locale.decimalMark = u"'";
    expectVerdicts(locale, {
                               {u"12", true, u"12"},
                               {u"12.", true, u"12"},
                               {u"12,", true, u"12"},
                               {u"4-", true, u"-4"},
                               {u" 12", false, u" 12"},
                               {u"1e3", false, u"1e3"},
                               {u"$5", false, u"$5"},
                               {u"1,234.5", false, u"1,234.5"},
                               {u"+-1", false, u"+-1"},
                               {u"", false, u""},
                               {u",", false, u""},
                           });
}

}  // namespace
}  // namespace corvane
