#include "ui/input_rules.h"

#include <gtest/gtest.h>

#include <limits>

namespace corvane {
namespace {

using enum InputKind;

InputRequest numberRequest(InputKind kind, float minimum, float maximum, bool allowZero = true) {
    InputRequest request;
    request.initialValue = Value::ofSingle(0);
    request.kind = kind;
    request.minimum = minimum;
    request.maximum = maximum;
    request.allowZero = allowZero;
    return request;
}

InputRequest stringRequest(std::u16string_view initial, float minimum, float maximum, bool allowEmpty = true) {
    InputRequest request;
    request.initialValue = Value::ofText(initial);
    request.kind = String;
    request.minimum = minimum;
    request.maximum = maximum;
    request.allowZero = allowEmpty;
    return request;
}

InputRules pointRules(const InputRequest& request) {
    return InputRules(request, u"Host", NumberLocale::pointDecimal());
}

// --------------------------------------------------------------------------------------------------------- the texts

TEST(InputRules, ComposesTheQuestionFromTheKindWhenThereIsNone) {
    const std::pair<InputKind, std::u16string> rows[] = {
        {WholeNumber, u"Please enter an Long:"},
        {SingleNumber, u"Please enter a Single:"},
        {String, u"Please enter a String:"},
    };
    for (const auto& [kind, question] : rows) {
        InputRequest request;
        request.kind = kind;
        EXPECT_EQ(pointRules(request).question(), question);
        request.question = u"How much?";
        EXPECT_EQ(pointRules(request).question(), u"How much?");
    }
}

TEST(InputRules, BearsTheHostsTitleWhenThereIsNone) {
    InputRequest request;
    EXPECT_EQ(pointRules(request).title(), u"Host");
    request.title = u"Enter Number";
    EXPECT_EQ(pointRules(request).title(), u"Enter Number");
}

TEST(InputRules, WritesTheRangeOfANumber) {
    const InputRequest request = numberRequest(SingleNumber, -2.5F, 10);
    EXPECT_EQ(pointRules(request).rangeText(), u"(Please enter a value between: -2.5 and 10)");
    EXPECT_EQ(InputRules(request, u"", NumberLocale::commaDecimal()).rangeText(),
              u"(Please enter a value between: -2,5 and 10)");
}

TEST(InputRules, WritesTheUnlimitedRangeOfANumberAsItIs) {
    EXPECT_EQ(pointRules(numberRequest(WholeNumber, -1000000, 1000000)).rangeText(),
              u"(Please enter a value between: -1000000 and 1000000)");
}

TEST(InputRules, WritesTheLengthOfAString) {
    struct Row {
        float minimum, maximum;
        std::u16string text;
        std::int32_t length;
    };
    const Row rows[] = {
        {unlimitedMinimum, unlimitedMaximum, u"(Maximum String Lenght: 1024)", 1024},
        {unlimitedMinimum, 20, u"(Maximum String Lenght: 20)", 20},
        {0, 0, u"(String of any length)", 0},
        {unlimitedMinimum, 0, u"(String of any length)", 0},
        {20, 5, u"(Maximum String Lenght: 20)", 20},
        {0, 999999, u"(Maximum String Lenght: 999999)", 999999},
        {0, 2.5F, u"(Maximum String Lenght: 2.5)", 2},
        {0, 1e20F, u"(Maximum String Lenght: 1E+20)", 2147483647},
        {unlimitedMinimum, -5, u"(Maximum String Lenght: -5)", 0},
    };
    for (const Row& row : rows) {
        const InputRules rules = pointRules(stringRequest(u"", row.minimum, row.maximum));
        EXPECT_EQ(rules.rangeText(), row.text);
        EXPECT_EQ(rules.maximumLength(), row.length) << row.maximum;
    }
}

TEST(InputRules, ARequestIsForAnySingleUnlessItSaysOtherwise) {
    InputRequest request;
    EXPECT_EQ(pointRules(request).question(), u"Please enter a Single:");
    EXPECT_EQ(pointRules(request).rangeText(), u"(Please enter a value between: -1000000 and 1000000)");
    request.kind = String;
    EXPECT_EQ(pointRules(request).rangeText(), u"(Maximum String Lenght: 1024)");
}

TEST(InputRules, TakesOnlyTheExactUnlimitedRangeForLengthsWithoutLimit) {
    const InputRules unlimited = pointRules(stringRequest(u"", -1000000, 1000000));
    EXPECT_EQ(unlimited.minimum(), 0);
    EXPECT_EQ(unlimited.maximum(), 1024);
    const InputRules beyond = pointRules(stringRequest(u"", -1000001, 1000001));
    EXPECT_EQ(beyond.minimum(), -1000001);
    EXPECT_EQ(beyond.maximum(), 1000001);
    const InputRules number = pointRules(numberRequest(SingleNumber, -1000000, 1000000));
    EXPECT_EQ(number.minimum(), -1000000);
    EXPECT_EQ(number.maximum(), 1000000);
}

TEST(InputRules, TakesNoMoreOfATextThanItsLength) {
    const InputRules five = pointRules(stringRequest(u"", 0, 5));
    EXPECT_EQ(five.typeable(u"abcdefghij"), u"abcde");
    EXPECT_EQ(five.typeable(u"abcde"), u"abcde");
    EXPECT_EQ(pointRules(stringRequest(u"", 0, 0)).typeable(u"abcdefghij"), u"abcdefghij");
    EXPECT_EQ(pointRules(numberRequest(SingleNumber, 0, 1)).typeable(u"12345"), u"12345");
}

TEST(InputRules, HasNoLengthForANumber) {
    EXPECT_EQ(pointRules(numberRequest(SingleNumber, 0, 10)).maximumLength(), 0);
}

TEST(InputRules, ShowsTheInitialValueUncorrected) {
    InputRequest request = numberRequest(SingleNumber, 0, 10);
    request.initialValue = Value::ofSingle(12.5F);
    EXPECT_EQ(pointRules(request).initialText(), u"12.5");
    EXPECT_EQ(InputRules(request, u"", NumberLocale::commaDecimal()).initialText(), u"12,5");
    request.initialValue = Value::ofText(u"abc");
    EXPECT_EQ(pointRules(request).initialText(), u"abc");
}

TEST(MakeStr, FillsTheNumberedPlaces) {
    EXPECT_EQ(MakeStr(u"[1] and [2]", {u"a", u"b"}), u"a and b");
    EXPECT_EQ(MakeStr(u"[2][1][2]", {u"a", u"b"}), u"bab");
    EXPECT_EQ(MakeStr(u"[0] [3]", {u"a", u"b"}), u"[0] [3]");
    EXPECT_EQ(MakeStr(u"", {u"a"}), u"");
    EXPECT_EQ(MakeStr(u"[1]", {}), u"[1]");
    EXPECT_EQ(MakeStr(u"[1][1]", {u""}), u"");
    EXPECT_EQ(MakeStr(u"[10]", {u"1", u"2", u"3", u"4", u"5", u"6", u"7", u"8", u"9", u"ten"}), u"ten");
}

TEST(MakeStr, DoesNotFillAPlaceThatItsOwnElementBrings) {
    EXPECT_EQ(MakeStr(u"[1]", {u"<[1]>"}), u"<[1]>");
    EXPECT_EQ(MakeStr(u"[1]", {u"<[2]>", u"b"}), u"<b>") << "but a later element's place is filled";
}

TEST(InputRules, HasNoLengthWhereTheMaximumIsNoNumber) {
    EXPECT_EQ(pointRules(stringRequest(u"", 0, std::numeric_limits<float>::quiet_NaN())).maximumLength(), 0);
}

// -------------------------------------------------------------------------------------------------------- validation

struct Case {
    InputKind kind;
    float minimum, maximum;
    bool allowZero;
    std::u16string typed;
    float value;
    Correction correction;
};

constexpr auto None = Correction::None;
constexpr auto NonLong = Correction::NonLong;
constexpr auto TooLarge = Correction::TooLarge;
constexpr auto TooSmall = Correction::TooSmall;
constexpr auto Zero = Correction::Zero;

const Case cases[] = {
    // in range
    {SingleNumber, 0, 10, true, u"2.5", 2.5F, None},
    {SingleNumber, 0, 10, true, u"0", 0, None},
    {SingleNumber, 0, 10, true, u"10", 10, None},
    {WholeNumber, 0, 10, true, u"7", 7, None},
    // a comma that groups digits, a sign behind the digits, an exponent between blanks
    {SingleNumber, 0, 100, true, u"2,5", 25, None},
    {SingleNumber, -10, 10, true, u"5-", -5, None},
    {SingleNumber, 0, 1000, true, u" 1e2 ", 100, None},
    // half to even
    {WholeNumber, 0, 10, true, u"2.6", 3, NonLong},
    {WholeNumber, 0, 10, true, u"2.5", 2, NonLong},
    {WholeNumber, 0, 10, true, u"3.5", 4, NonLong},
    {WholeNumber, -10, 10, true, u"-2.5", -2, NonLong},
    {WholeNumber, 0, 10, true, u"0.4", 0, NonLong},
    {WholeNumber, 0, 10, true, u"4.0", 4, None},
    // the range
    {SingleNumber, 1, 10, true, u"10.1", 10, TooLarge},
    {SingleNumber, 1, 10, true, u"0.9", 1, TooSmall},
    {SingleNumber, 10, 1, true, u"11", 10, TooLarge},
    {SingleNumber, 10, 1, true, u"0.5", 1, TooSmall},
    {SingleNumber, 10, 1, true, u"5", 5, None},
    {SingleNumber, 5, 5, true, u"6", 5, TooLarge},
    {WholeNumber, 1, 10, true, u"11", 10, TooLarge},
    {WholeNumber, 1, 10, true, u"-3", 1, TooSmall},
    // zero
    {SingleNumber, -5, 5, false, u"0", 1, Zero},
    {SingleNumber, -5, 5, false, u"-0", 1, Zero},
    {WholeNumber, -5, 5, false, u"0", 1, Zero},
    {SingleNumber, -5, 0.5F, false, u"0", 1, Zero},
    {SingleNumber, -5, 5, false, u"0.1", 0.1F, None},
    // no number
    {SingleNumber, -5, 5, true, u"abc", 0, None},
    {SingleNumber, -5, 5, true, u"", 0, None},
    {SingleNumber, -5, 5, true, u"-", 0, None},
    {SingleNumber, -5, 5, true, u"1n5", 0, None},
    {SingleNumber, -5, 5, false, u"abc", 1, Zero},
    {SingleNumber, 2, 5, true, u"abc", 2, TooSmall},
    {SingleNumber, 2, 5, false, u"abc", 2, TooSmall},
    {SingleNumber, -5, -2, false, u"abc", -2, TooLarge},
    // only the first rule acts
    {WholeNumber, 0, 2, true, u"2.6", 3, NonLong},
    {WholeNumber, 5, 10, true, u"1.2", 1, NonLong},
    {WholeNumber, -5, 5, false, u"0.4", 0, NonLong},
    // numbers that no single can hold
    {SingleNumber, 0, 10, true, u"99999999999999999999999999999999999999999", 10, TooLarge},
    {SingleNumber, 0, 10, true, u"-99999999999999999999999999999999999999999", 0, TooSmall},
    {WholeNumber, 0, 10, true, u"1e300", 10, TooLarge},
    // beyond the platform's numbers: no number
    {SingleNumber, 0, 10, true, u"1e999", 0, None},
    {SingleNumber, 1, 10, true, u"1e999", 1, TooSmall},
    {SingleNumber, -10, -1, true, u"-1e999", -1, TooLarge},
    {WholeNumber, -10, 10, false, u"1e999", 1, Zero},
    {SingleNumber, 1, 10, true, std::u16string(400, u'9'), 1, TooSmall},
};

TEST(InputRules, CorrectsByTheFirstRuleThatApplies) {
    for (const Case& row : cases) {
        InputRules rules = pointRules(numberRequest(row.kind, row.minimum, row.maximum, row.allowZero));
        rules.change(row.typed);
        const std::string label = "typed " + testing::PrintToString(row.typed);
        EXPECT_EQ(rules.correction(), row.correction) << label;
        if (row.kind == WholeNumber) {
            ASSERT_EQ(rules.returnValue().type(), ValueType::Long) << label;
            EXPECT_EQ(static_cast<float>(rules.returnValue().longInteger()), row.value) << label;
        } else {
            ASSERT_EQ(rules.returnValue().type(), ValueType::Single) << label;
            EXPECT_EQ(rules.returnValue().single(), row.value) << label;
        }
    }
}

TEST(InputRules, TreatsRange10To1As1To10) {
    const InputRules rules = pointRules(numberRequest(SingleNumber, 10, 1));
    EXPECT_EQ(rules.rangeText(), u"(Please enter a value between: 1 and 10)");
}

TEST(InputRules, RoundsWithoutLookingAtTheRangeAfterwards) {
    InputRules rules = pointRules(numberRequest(WholeNumber, 0, 2));
    rules.change(u"2.6");
    EXPECT_EQ(rules.returnValue().longInteger(), 3);
    EXPECT_EQ(rules.reason(), u"(Non Long)");
}

TEST(InputRules, TakesATextThatIsNoNumberForZero) {
    InputRules rules = pointRules(numberRequest(SingleNumber, -5, 5, false));
    rules.change(u"abc");
    EXPECT_EQ(rules.returnValue().single(), 1);
    EXPECT_EQ(rules.reason(), u"(Value is Zero)");
}

TEST(InputRules, ReportsZeroOutsideTheRangeByTheRange) {
    InputRules rules = pointRules(numberRequest(SingleNumber, 2, 5, false));
    rules.change(u"abc");
    EXPECT_EQ(rules.returnValue().single(), 2);
    EXPECT_EQ(rules.reason(), u"(Too small)");
}

TEST(InputRules, NamesEveryCorrection) {
    InputRules rules = pointRules(numberRequest(WholeNumber, -5, 5, false));
    const std::pair<std::u16string, std::u16string> rows[] = {
        {u"1.5", u"(Non Long)"},
        {u"6", u"(Too large)"},
        {u"-6", u"(Too small)"},
        {u"0", u"(Value is Zero)"},
        {u"1", u""},
    };
    for (const auto& [typed, reason] : rows) {
        rules.change(typed);
        EXPECT_EQ(rules.reason(), reason);
    }
}

TEST(InputRules, ShowsTheRangeOnlyWhileItIsViolated) {
    InputRules rules = pointRules(numberRequest(WholeNumber, -5, 5, false));
    const std::pair<std::u16string, bool> rows[] = {
        {u"1.5", false}, {u"6", true}, {u"-6", true}, {u"0", false}, {u"1", false},
    };
    for (const auto& [typed, isVisible] : rows) {
        rules.change(typed);
        EXPECT_EQ(rules.isRangeVisible(), isVisible) << testing::PrintToString(typed);
    }
}

TEST(InputRules, ShowsTheLengthOfAStringAlways) {
    InputRules rules = pointRules(stringRequest(u"", 0, 5));
    EXPECT_TRUE(rules.isRangeVisible());
    rules.change(u"x");
    EXPECT_TRUE(rules.isRangeVisible());
}

TEST(InputRules, EmphasisesTheReasonOfACorrection) {
    InputRules rules = pointRules(numberRequest(SingleNumber, 0, 5));
    rules.change(u"6");
    EXPECT_EQ(rules.reasonLook(), (LabelLook{0x800000, true}));
    EXPECT_EQ(rules.returnValueLook(), (LabelLook{0x800000, true}));
    rules.change(u"5");
    EXPECT_EQ(rules.reasonLook(), (LabelLook{0x404040, false}));
    EXPECT_EQ(rules.returnValueLook(), (LabelLook{0x800000, true}));
}

TEST(LabelLook, EqualsAnotherOnlyInColourAndWeight) {
    EXPECT_NE((LabelLook{darkBlue, true}), (LabelLook{darkGrey, true}));
    EXPECT_NE((LabelLook{darkBlue, true}), (LabelLook{darkBlue, false}));
}

TEST(InputRules, ShowsTheValueThatWillBeReturned) {
    InputRules rules(numberRequest(SingleNumber, 0, 5), u"", NumberLocale::commaDecimal());
    rules.change(u"2.25");
    EXPECT_EQ(rules.returnValueText(), u"2,25");
    rules.change(u"77");
    EXPECT_EQ(rules.returnValueText(), u"5");
}

TEST(InputRules, ReadsBothDecimalMarksUnderACommaLocale) {
    InputRules rules(numberRequest(SingleNumber, 0, 5), u"", NumberLocale::commaDecimal());
    for (const char16_t* typed : {u"2,25", u"2.25"}) {
        rules.change(typed);
        EXPECT_EQ(rules.returnValue().single(), 2.25F);
    }
}

TEST(InputRules, ReturnsAWholeNumberEvenFromARangeThatIsNone) {
    InputRules rules = pointRules(numberRequest(WholeNumber, 0, 2.5F));
    rules.change(u"3");
    EXPECT_EQ(rules.returnValue().longInteger(), 2);
    EXPECT_EQ(rules.returnValueText(), u"2") << "what is shown is what is returned";
}

TEST(InputRules, ReturnsTheNearestLongForWhatNoLongCanHold) {
    InputRules rules = pointRules(numberRequest(WholeNumber, -1e20F, 1e20F));
    rules.change(u"1e15");
    EXPECT_EQ(rules.returnValue().longInteger(), std::numeric_limits<std::int32_t>::max());
    rules.change(u"-1e15");
    EXPECT_EQ(rules.returnValue().longInteger(), std::numeric_limits<std::int32_t>::min());
}

TEST(InputRules, ReturnsTheLargestSingleForWhatNoSingleCanHold) {
    const float infinite = std::numeric_limits<float>::infinity();
    InputRules rules = pointRules(numberRequest(SingleNumber, -infinite, infinite));
    rules.change(u"1e300");
    EXPECT_EQ(rules.returnValue().single(), std::numeric_limits<float>::max());
    rules.change(u"-1e300");
    EXPECT_EQ(rules.returnValue().single(), std::numeric_limits<float>::lowest());
}

TEST(InputRules, SurvivesARangeThatIsNoNumber) {
    const float notANumber = std::numeric_limits<float>::quiet_NaN();
    const float infinite = std::numeric_limits<float>::infinity();
    for (const InputKind kind : {WholeNumber, SingleNumber, String}) {
        for (const float end : {notANumber, infinite, -infinite}) {
            InputRules rules = pointRules(numberRequest(kind, end, end));
            rules.change(u"7");
            InputRules upper = pointRules(numberRequest(kind, 0, end));
            upper.change(u"7");
            EXPECT_GE(upper.maximumLength(), 0);
        }
    }
}

TEST(InputRules, ReturnsABlankForAnEmptyStringThatIsNotAllowed) {
    InputRules rules = pointRules(stringRequest(u"start", 0, 10, false));
    rules.change(u"");
    EXPECT_EQ(rules.returnValue().textView(), u" ");
    EXPECT_EQ(rules.reason(), u"");
    EXPECT_EQ(rules.correction(), Correction::None);
    rules.change(u"x");
    EXPECT_EQ(rules.returnValue().textView(), u"x");
}

TEST(InputRules, ReturnsAStringAsItIs) {
    InputRules rules = pointRules(stringRequest(u"", 0, 3));
    for (const char16_t* text : {u"", u" ", u"1.5", u"longer than it should be"}) {
        rules.change(text);
        EXPECT_EQ(rules.returnValue().textView(), text);
        EXPECT_EQ(rules.reason(), u"");
    }
}

// ------------------------------------------------------------------------------------------------------ how it ends

TEST(InputRules, IsCancelledUntilOkIsPressed) {
    InputRules rules = pointRules(numberRequest(SingleNumber, 0, 10));
    EXPECT_TRUE(rules.isCancelled());
    rules.pressOk();
    EXPECT_FALSE(rules.isCancelled());
    rules.pressCancel();
    EXPECT_TRUE(rules.isCancelled());
}

TEST(InputRules, ReturnsTheCorrectedInitialValueWhenNothingWasTyped) {
    InputRequest request = numberRequest(SingleNumber, 0, 10);
    request.initialValue = Value::ofSingle(50);
    InputRules rules = pointRules(request);
    EXPECT_EQ(rules.reason(), u"(Too large)");
    rules.pressOk();
    EXPECT_EQ(rules.result().single(), 10);
}

TEST(InputRules, HandsBackTheInitialValueExactlyWhenCancelled) {
    InputRequest request = numberRequest(SingleNumber, 0, 10);
    request.initialValue = Value::ofInteger(50);
    InputRules rules = pointRules(request);
    rules.change(u"7");
    rules.pressCancel();
    ASSERT_EQ(rules.result().type(), ValueType::Integer);
    EXPECT_EQ(rules.result().integer(), 50);
    request.initialValue = Value::ofText(u"abc");
    EXPECT_EQ(pointRules(request).result().textView(), u"abc");
}

TEST(InputRules, DoesNotValidateAgainWhenOkIsPressed) {
    InputRules rules = pointRules(numberRequest(WholeNumber, 0, 2));
    rules.change(u"2.6");
    rules.pressOk();
    EXPECT_EQ(rules.result().longInteger(), 3);
}

TEST(InputRules, ShowsANumberInAStringBox) {
    InputRequest request = stringRequest(u"", 0, 10);
    request.initialValue = Value::ofSingle(1.5F);
    InputRules rules = pointRules(request);
    rules.pressOk();
    EXPECT_EQ(rules.result().textView(), u"1.5");
}

// -------------------------------------------------------------------------------------------------------------- keys

const KeyEffect insert{KeyEffect::Action::Insert};
const KeyEffect reject{KeyEffect::Action::Reject};
const KeyEffect ok{KeyEffect::Action::Ok};
const KeyEffect cancel{KeyEffect::Action::Cancel};

KeyEffect replace(std::u16string text, std::size_t caret) {
    return {KeyEffect::Action::Replace, std::move(text), caret};
}

TEST(KeyEffect, EqualsAnotherOnlyInAllThatItDoes) {
    EXPECT_EQ(replace(u"-1", 1), replace(u"-1", 1));
    EXPECT_NE(replace(u"-1", 1), insert);
    EXPECT_NE(replace(u"-1", 1), replace(u"1", 1));
    EXPECT_NE(replace(u"-1", 1), replace(u"-1", 2));
}

TEST(NumberKey, AcceptsTheDigitsAndBackspace) {
    for (char16_t key = u'0'; key <= u'9'; ++key) EXPECT_EQ(numberKey(key, u"1.5", 0, u"."), insert);
    EXPECT_EQ(numberKey(8, u"1.5", 3, u"."), insert);
}

TEST(NumberKey, AcceptsTheSystemsDecimalSeparatorOnce) {
    struct Row {
        char16_t key;
        std::u16string text, separator;
        KeyEffect effect;
    };
    const Row rows[] = {
        {u',', u"12", u",", insert},  {u',', u"", u",", insert},    {u',', u"1,2", u",", reject},
        {u',', u"1.2", u",", insert}, {u',', u"12", u".", reject},  {u'.', u"12", u".", insert},
        {u'.', u"", u".", insert},    {u'.', u"1.2", u".", reject}, {u'.', u"1,2", u".", insert},
        {u'.', u"12", u",", reject},  {u'.', u"12", u";", reject},  {u',', u"12", u"", reject},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(numberKey(row.key, row.text, row.text.size(), row.separator), row.effect)
            << static_cast<char>(row.key) << ' ' << testing::PrintToString(row.text);
    }
}

TEST(NumberKey, AcceptsTheLetterNLikeThePoint) {
    EXPECT_EQ(numberKey(u'n', u"12", 2, u"."), insert);
    EXPECT_EQ(numberKey(u'n', u"1.2", 2, u"."), reject);
    EXPECT_EQ(numberKey(u'n', u"1n2", 2, u"."), insert);
    EXPECT_EQ(numberKey(u'n', u"12", 2, u","), reject);
    EXPECT_EQ(numberKey(u'N', u"12", 2, u"."), reject);
}

TEST(NumberKey, TogglesTheSignInFront) {
    EXPECT_EQ(numberKey(u'-', u"12", 2, u"."), replace(u"-12", 3));
    EXPECT_EQ(numberKey(u'-', u"12", 0, u"."), replace(u"-12", 1));
    EXPECT_EQ(numberKey(u'-', u"", 0, u"."), replace(u"-", 1));
    EXPECT_EQ(numberKey(u'-', u"-12", 3, u"."), replace(u"12", 2));
    EXPECT_EQ(numberKey(u'-', u"-12", 0, u"."), replace(u"12", 0));
    EXPECT_EQ(numberKey(u'-', u"-", 1, u"."), replace(u"", 0));
}

TEST(NumberKey, LeavesTheTextAsItWasAfterTwoSigns) {
    for (const char16_t* text : {u"", u"12", u"-12"}) {
        const KeyEffect first = numberKey(u'-', text, 1, u".");
        EXPECT_EQ(numberKey(u'-', first.text, first.caret, u".").text, text);
    }
}

TEST(NumberKey, PressesTheButtons) {
    EXPECT_EQ(numberKey(13, u"12", 0, u"."), ok);
    EXPECT_EQ(numberKey(27, u"12", 0, u"."), cancel);
}

TEST(NumberKey, RejectsAnythingElse) {
    for (char16_t key = 0; key < 0x180; ++key) {
        const bool isListed = (key >= u'0' && key <= u'9') || key == u'-' || key == u'.' || key == u'n' || key == 8 ||
                              key == 13 || key == 27;
        EXPECT_EQ(numberKey(key, u"", 0, u".") == reject, !isListed) << +key;
    }
}

TEST(StringKey, PressesTheButtonsAndAcceptsEverythingElse) {
    for (char16_t key = 0; key < 0x180; ++key)
        EXPECT_EQ(stringKey(key), key == 13 ? ok : key == 27 ? cancel : insert) << +key;
}

}  // namespace
}  // namespace corvane
