// What the variant rules say, as tables; each table holds for the door, for the platform's own rules and for the
// portable ones.
#include "platform/value_rules.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "tests/platform/rule_sets.h"

namespace corvane::test {
namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float greatest = std::numeric_limits<float>::max();
constexpr std::int32_t greatestLong = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t leastLong = std::numeric_limits<std::int32_t>::min();

Outcome failure(ErrorNumber number) { return {std::nullopt, static_cast<std::int32_t>(number)}; }
const Outcome mismatch = failure(ErrorNumber::TypeMismatch);
const Outcome overflow = failure(ErrorNumber::Overflow);

Value integer(int number) { return Value::ofInteger(static_cast<std::int16_t>(number)); }
Value longInteger(std::int32_t number) { return Value::ofLong(number); }
Value single(float number) { return Value::ofSingle(number); }
Value doubleFloat(double number) { return Value::ofDouble(number); }
Value boolean(bool truth) { return Value::ofBoolean(truth); }
Value text(std::u16string_view characters) { return Value::ofText(characters); }
Outcome gives(Value value) { return {std::move(value), 0}; }

const NumberLocale point = NumberLocale::pointDecimal();
const NumberLocale comma = NumberLocale::commaDecimal();

class SharedNothing final : public SharedRecord {};

class ValueRules : public testing::TestWithParam<RuleSet> {
protected:
    const RuleSet& rules() const { return GetParam(); }

    static void expectOutcome(const Outcome& expected, const Outcome& actual, const std::string& given) {
        EXPECT_TRUE(areSame(expected, actual))
            << given << ": expected " << printable(expected) << ", got " << printable(actual);
    }
};

TEST_P(ValueRules, NumericTestAdmitsWhatThePlatformConverts) {
    struct Row {
        std::u16string_view text;
        bool underPoint;
        bool underComma;
    };
    const Row rows[] = {
        {u"12", true, true},         {u"-3", true, true},      {u"+4", true, true},       {u"4-", true, true},
        {u"0", true, true},          {u"007", true, true},     {u"1.5", true, true},      {u"1,5", true, true},
        {u".5", true, false},        {u",5", false, true},     {u"5.", true, true},       {u"1.234,5", true, true},
        {u"1,234.5", true, true},    {u"1.2.3", false, true},  {u"1,2,3", true, false},   {u" 12 ", true, true},
        {u"\t12\r\n", true, true},   {u"- 12", true, true},    {u"12 -", true, true},     {u"1e5", true, true},
        {u"1E-5", true, true},       {u"1e+5", true, true},    {u"(12)", true, true},     {u"$12", true, false},
        {u"12 \u20AC", false, true}, {u"&HFF", true, true},    {u"&o17", true, true},     {u"", false, false},
        {u" ", false, false},        {u"-", false, false},     {u".", false, false},      {u",", false, false},
        {u"abc", false, false},      {u"12abc", false, false}, {u"1 5", false, false},    {u"--1", false, false},
        {u"1-2", false, false},      {u"-1-", false, false},   {u"1e", false, false},     {u"e5", false, false},
        {u"1 e5", false, false},     {u"(12", false, false},   {u"12)", false, false},    {u"&H", false, false},
        {u"&HG", false, false},      {u"&O8", false, false},   {u"True", false, false},   {u"Infinity", false, false},
        {u"NaN", false, false},      {u"0x10", false, false},  {u"1e308", true, true},    {u"1e309", false, false},
        {u"1e99999", false, false},  {u"1e-400", true, true},  {u"\uFF11", false, false}, {u"1d5", false, false},
        {u"50%", false, false},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(rules().isNumeric(row.text, point), row.underPoint) << printable(row.text) << " under a point";
        EXPECT_EQ(rules().isNumeric(row.text, comma), row.underComma) << printable(row.text) << " under a comma";
    }
}

TEST_P(ValueRules, SingleOfAValue) {
    struct Row {
        Value given;
        Outcome expected;
    };
    SharedNothing object;
    object.retain();
    const Row rows[] = {
        {integer(-7), gives(single(-7))},
        {longInteger(16777217), gives(single(16777216))},
        {longInteger(greatestLong), gives(single(2147483648.0f))},
        {single(0.1f), gives(single(0.1f))},
        {single(infinity), gives(single(infinity))},
        {single(notANumber), gives(single(notANumber))},
        {doubleFloat(0.1), gives(single(0.1f))},
        {doubleFloat(1e-60), gives(single(0))},
        {doubleFloat(3.4028235e38), gives(single(greatest))},
        {doubleFloat(3.4028235677973366e38), overflow},
        {doubleFloat(-1e39), overflow},
        {doubleFloat(double{infinity}), overflow},
        {boolean(true), gives(single(-1))},
        {boolean(false), gives(single(0))},
        {text(u"12"), gives(single(12))},
        {text(u"-0.25"), gives(single(-0.25f))},
        {text(u"0.1"), gives(single(0.1f))},
        {text(u"1,234.5"), gives(single(1234.5f))},
        {text(u"16777217"), gives(single(16777216))},
        {text(u"8388608.5"), gives(single(8388608))},
        {text(u"&HFFFF"), gives(single(65535))},
        {text(u"-&H10"), gives(single(16))},
        {text(u"&H80000000"), gives(single(-2147483648.0f))},
        {text(u"&H80000001"), overflow},
        {text(u"1e38"), gives(single(1e38f))},
        {text(u"1e39"), overflow},
        {text(u"1e309"), overflow},
        {text(u"1e-40"), gives(single(1e-40f))},
        {text(u"1e-46"), overflow},
        {text(u"1e-400"), gives(single(0))},
        {text(u""), mismatch},
        {text(u"abc"), mismatch},
        {text(u"True"), mismatch},
        {Value::ofObject(object), mismatch},
    };
    for (const Row& row : rows)
        expectOutcome(row.expected, toSingleOutcome(rules(), row.given, point), printable(row.given));
}

TEST_P(ValueRules, SingleOfATextUnderACommaDecimal) {
    expectOutcome(gives(single(1.5f)), toSingleOutcome(rules(), text(u"1,5"), comma), "1,5");
    expectOutcome(gives(single(15)), toSingleOutcome(rules(), text(u"1.5"), comma), "1.5");
    expectOutcome(gives(single(1234.5f)), toSingleOutcome(rules(), text(u"1.234,5"), comma), "1.234,5");
}

TEST_P(ValueRules, TextEndsAtItsFirstNul) {
    const std::u16string_view withNul(u"12\0x", 4);
    EXPECT_TRUE(rules().isNumeric(withNul, point));
    EXPECT_EQ(rules().toSingle(text(withNul), point), 12.0f);
    EXPECT_EQ(rules().toLong(text(withNul), point), 12);
}

TEST_P(ValueRules, LongRoundsHalfToEvenAndOverflows) {
    struct Row {
        Value given;
        Outcome expected;
    };
    SharedNothing object;
    object.retain();
    const Row rows[] = {
        {integer(-32768), gives(longInteger(-32768))},
        {longInteger(leastLong), gives(longInteger(leastLong))},
        {boolean(true), gives(longInteger(-1))},
        {boolean(false), gives(longInteger(0))},
        {single(0.5f), gives(longInteger(0))},
        {single(1.5f), gives(longInteger(2))},
        {single(2.5f), gives(longInteger(2))},
        {single(-0.5f), gives(longInteger(0))},
        {single(-1.5f), gives(longInteger(-2))},
        {single(-2.5f), gives(longInteger(-2))},
        {single(2.4f), gives(longInteger(2))},
        {single(2.6f), gives(longInteger(3))},
        {single(2147483520.0f), gives(longInteger(2147483520))},
        {single(2147483648.0f), overflow},
        {single(-2147483648.0f), gives(longInteger(leastLong))},
        {single(-2147483904.0f), overflow},
        {single(infinity), overflow},
        {doubleFloat(2147483647.49), gives(longInteger(greatestLong))},
        {doubleFloat(2147483647.5), overflow},
        {doubleFloat(-2147483648.5), gives(longInteger(leastLong))},
        {doubleFloat(-2147483648.51), overflow},
        {doubleFloat(0.50000000001), gives(longInteger(1))},
        {text(u"0.5"), gives(longInteger(0))},
        {text(u"1.5"), gives(longInteger(2))},
        {text(u"2.5"), gives(longInteger(2))},
        {text(u"2.5000000000000000000001"), gives(longInteger(3))},
        {text(u"2.4999999999999999999999"), gives(longInteger(2))},
        {text(u"-2.5"), gives(longInteger(-2))},
        {text(u"0.06"), gives(longInteger(0))},
        {text(u"0.6"), gives(longInteger(1))},
        {text(u"9e-20"), gives(longInteger(0))},
        {text(u"2147483647"), gives(longInteger(greatestLong))},
        {text(u"2147483647.49999"), gives(longInteger(greatestLong))},
        {text(u"2147483647.5"), overflow},
        {text(u"2147483648"), overflow},
        {text(u"-2147483648.5"), gives(longInteger(leastLong))},
        {text(u"-2147483649"), overflow},
        {text(u"1e9"), gives(longInteger(1000000000))},
        {text(u"1e10"), overflow},
        {text(u"&HFFFFFFFF"), gives(longInteger(-1))},
        {text(u"&H100000000"), overflow},
        {text(u"&O37777777777"), gives(longInteger(-1))},
        {text(u""), mismatch},
        {text(u"label"), mismatch},
        {Value::ofObject(object), mismatch},
    };
    for (const Row& row : rows)
        expectOutcome(row.expected, toLongOutcome(rules(), row.given, point), printable(row.given));
}

TEST_P(ValueRules, BooleanOfAValue) {
    struct Row {
        Value given;
        Outcome expected;
    };
    SharedNothing object;
    object.retain();
    const Row rows[] = {
        {integer(0), gives(boolean(false))},
        {integer(-1), gives(boolean(true))},
        {longInteger(0), gives(boolean(false))},
        {longInteger(65536), gives(boolean(true))},
        {single(0), gives(boolean(false))},
        {single(-0.0f), gives(boolean(false))},
        {single(1e-40f), gives(boolean(true))},
        {single(notANumber), gives(boolean(true))},
        {doubleFloat(0), gives(boolean(false))},
        {doubleFloat(1e-300), gives(boolean(true))},
        {boolean(true), gives(boolean(true))},
        {boolean(false), gives(boolean(false))},
        {text(u"True"), gives(boolean(true))},
        {text(u"tRUE"), gives(boolean(true))},
        {text(u"False"), gives(boolean(false))},
        {text(u"FALSE"), gives(boolean(false))},
        {text(u"#TRUE#"), gives(boolean(true))},
        {text(u"#FALSE#"), gives(boolean(false))},
        {text(u"0"), gives(boolean(false))},
        {text(u"0.0"), gives(boolean(false))},
        {text(u"0.001"), gives(boolean(true))},
        {text(u"-1"), gives(boolean(true))},
        {text(u"&H0"), gives(boolean(false))},
        {text(u"1e309"), overflow},
        {text(u""), mismatch},
        {text(u" True"), mismatch},
        {text(u"#true#"), mismatch},
        {text(u"yes"), mismatch},
        {Value::ofObject(object), mismatch},
    };
    for (const Row& row : rows)
        expectOutcome(row.expected, toBooleanOutcome(rules(), row.given, point), printable(row.given));
}

TEST_P(ValueRules, TextOfANumberHasTheDigitsOfItsType) {
    struct Row {
        Value given;
        std::u16string_view underPoint;
        std::u16string_view underComma;
    };
    const Row rows[] = {
        {integer(0), u"0", u"0"},
        {integer(-32768), u"-32768", u"-32768"},
        {longInteger(greatestLong), u"2147483647", u"2147483647"},
        {longInteger(leastLong), u"-2147483648", u"-2147483648"},
        {boolean(true), u"True", u"True"},
        {boolean(false), u"False", u"False"},
        {text(u" as it is "), u" as it is ", u" as it is "},
        {single(0), u"0", u"0"},
        {single(-0.0f), u"0", u"0"},
        {single(1), u"1", u"1"},
        {single(-1234.5f), u"-1234.5", u"-1234,5"},
        {single(0.1f), u"0.1", u"0,1"},
        {single(33.333332f), u"33.33333", u"33,33333"},
        {single(0.0001f), u"0.0001", u"0,0001"},
        {single(0.00012345678f), u"0.0001234568", u"0,0001234568"},
        {single(0.00001f), u"1E-05", u"1E-05"},
        {single(1.5e-5f), u"1.5E-05", u"1,5E-05"},
        {single(1000000), u"1000000", u"1000000"},
        {single(9999999), u"9999999", u"9999999"},
        {single(-9999999), u"-9999999", u"-9999999"},
        {single(1e7f), u"1E+07", u"1E+07"},
        {single(16777216), u"1.677722E+07", u"1,677722E+07"},
        {single(99999992), u"9.999999E+07", u"9,999999E+07"},
        {single(1e20f), u"1E+20", u"1E+20"},
        {single(greatest), u"3.402823E+38", u"3,402823E+38"},
        {single(1e-20f), u"1E-20", u"1E-20"},
        {single(999999.95f), u"999999.9", u"999999,9"},
        // Halves are rounded away from zero.
        {single(1234566.5f), u"1234567", u"1234567"},
        {single(-1234567.5f), u"-1234568", u"-1234568"},
        {single(infinity), u"INF", u"INF"},
        {single(-infinity), u"-INF", u"-INF"},
        {doubleFloat(0.1), u"0.1", u"0,1"},
        {doubleFloat(0.1 + 0.2), u"0.3", u"0,3"},
        {doubleFloat(1.0 / 3), u"0.333333333333333", u"0,333333333333333"},
        {doubleFloat(123456789012345), u"123456789012345", u"123456789012345"},
        {doubleFloat(1234567890123456), u"1.23456789012346E+15", u"1,23456789012346E+15"},
        {doubleFloat(999999999999999.5), u"1E+15", u"1E+15"},
        {doubleFloat(1e-5), u"1E-05", u"1E-05"},
        {doubleFloat(1e100), u"1E+100", u"1E+100"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(printable(rules().toText(row.given, point).view()), printable(row.underPoint))
            << printable(row.given);
        EXPECT_EQ(printable(rules().toText(row.given, comma).view()), printable(row.underComma))
            << printable(row.given);
    }
}

TEST_P(ValueRules, TextOfAnObjectIsAMismatch) {
    SharedNothing object;
    object.retain();
    expectOutcome(mismatch, toTextOutcome(rules(), Value::ofObject(object), point), "object");
}

TEST_P(ValueRules, SumHasTheTypeOfItsOperands) {
    struct Row {
        Value left;
        Value right;
        Outcome sum;
        Outcome difference;
    };
    SharedNothing object;
    object.retain();
    const Row rows[] = {
        {integer(2), integer(1), gives(integer(3)), gives(integer(1))},
        {integer(32767), integer(1), gives(longInteger(32768)), gives(integer(32766))},
        {integer(-32768), integer(1), gives(integer(-32767)), gives(longInteger(-32769))},
        {integer(2), boolean(true), gives(integer(1)), gives(integer(3))},
        {boolean(true), boolean(true), gives(integer(-2)), gives(integer(0))},
        {longInteger(2), integer(1), gives(longInteger(3)), gives(longInteger(1))},
        {longInteger(greatestLong), integer(1), gives(doubleFloat(2147483648.0)), gives(longInteger(greatestLong - 1))},
        {longInteger(leastLong), integer(1), gives(longInteger(leastLong + 1)), gives(doubleFloat(-2147483649.0))},
        {single(1.5f), integer(1), gives(single(2.5f)), gives(single(0.5f))},
        {integer(1), single(1.5f), gives(single(2.5f)), gives(single(-0.5f))},
        {single(16777216), integer(1), gives(single(16777216)), gives(single(16777215))},
        {single(0.1f), single(0.2f), gives(single(0.1f + 0.2f)), gives(single(0.1f - 0.2f))},
        {single(1.5f), boolean(true), gives(single(0.5f)), gives(single(2.5f))},
        {single(greatest), single(greatest), gives(doubleFloat(2 * double{greatest})), gives(single(0))},
        {single(-greatest), single(greatest), gives(single(0)), gives(single(-infinity))},
        {single(notANumber), integer(1), gives(single(notANumber)), gives(single(notANumber))},
        {single(infinity), integer(1), gives(doubleFloat(double{infinity})), gives(single(infinity))},
        {single(1.5f), longInteger(1), gives(doubleFloat(2.5)), gives(doubleFloat(0.5))},
        {longInteger(16777217), single(1), gives(doubleFloat(16777218)), gives(doubleFloat(16777216))},
        {single(0.1f), doubleFloat(0), gives(doubleFloat(double{0.1f})), gives(doubleFloat(double{0.1f}))},
        {doubleFloat(1e308), doubleFloat(1e308), gives(doubleFloat(double{infinity})), gives(doubleFloat(0))},
        {text(u"12"), integer(1), gives(doubleFloat(13)), gives(doubleFloat(11))},
        {integer(1), text(u"1.5"), gives(doubleFloat(2.5)), gives(doubleFloat(-0.5))},
        {text(u" 5- "), single(1), gives(doubleFloat(-4)), gives(doubleFloat(-6))},
        {text(u"12"), text(u"3"), gives(text(u"123")), gives(doubleFloat(9))},
        {text(u"a"), text(u""), gives(text(u"a")), mismatch},
        {text(u"abc"), integer(1), mismatch, mismatch},
        {text(u""), integer(1), mismatch, mismatch},
        {integer(1), text(u"True"), mismatch, mismatch},
        {text(u"1e309"), integer(1), overflow, overflow},
        {Value::ofObject(object), integer(1), mismatch, mismatch},
        {single(1), Value::ofObject(object), mismatch, mismatch},
    };
    for (const Row& row : rows) {
        const std::string given = printable(row.left) + " and " + printable(row.right);
        expectOutcome(row.sum, addOutcome(rules(), row.left, row.right, point), "sum of " + given);
        expectOutcome(row.difference, subtractOutcome(rules(), row.left, row.right, point), "difference of " + given);
    }
}

TEST_P(ValueRules, ArithmeticReadsTextsUnderTheLocale) {
    expectOutcome(gives(doubleFloat(2.5)), addOutcome(rules(), text(u"1,5"), integer(1), comma), "1,5 + 1");
    expectOutcome(gives(doubleFloat(16)), addOutcome(rules(), text(u"1,5"), integer(1), point), "1,5 + 1");
    expectOutcome(gives(doubleFloat(0.5)), subtractOutcome(rules(), text(u"1,5"), integer(1), comma), "1,5 - 1");
}

TEST_P(ValueRules, ComparisonPutsNumbersBeforeTexts) {
    struct Row {
        Value left;
        Value right;
        std::int32_t order;
    };
    const Row rows[] = {
        {integer(1), integer(1), 0},
        {integer(1), longInteger(2), -1},
        {integer(1), single(1), 0},
        {single(1.5f), integer(1), 1},
        {single(-0.0f), single(0), 0},
        {longInteger(greatestLong), doubleFloat(2147483647), 0},
        {longInteger(greatestLong), doubleFloat(2147483647.5), -1},
        {boolean(true), integer(-1), 0},
        {boolean(true), boolean(false), -1},
        {single(infinity), single(greatest), 1},
        // Beside a single, a single's precision counts.
        {single(0.1f), doubleFloat(0.1), 0},
        {single(16777216), longInteger(16777217), 0},
        {single(greatest), doubleFloat(1e39), -1},
        // No number is greater than any, on either side.
        {single(notANumber), single(1), 1},
        {single(1), single(notANumber), 1},
        {single(notANumber), single(notANumber), 1},
        {doubleFloat(double{notANumber}), longInteger(1), 1},
        {text(u"a"), text(u"a"), 0},
        {text(u"A"), text(u"a"), -1},
        {text(u"Z"), text(u"a"), -1},
        {text(u"a"), text(u"ab"), -1},
        {text(u""), text(u"a"), -1},
        {text(u"\u00E4"), text(u"z"), 1},
        // By code unit: half of a surrogate pair is less than the last units of the basic plane.
        {text(u"\U0001F600"), text(u"\uFFFD"), -1},
        {integer(5), text(u"5"), -1},
        {integer(9), text(u""), -1},
        {boolean(true), text(u"True"), -1},
        {text(u"1"), doubleFloat(1e300), 1},
    };
    for (const Row& row : rows)
        expectOutcome(gives(longInteger(row.order)), compareOutcome(rules(), row.left, row.right),
                      printable(row.left) + " beside " + printable(row.right));
}

TEST_P(ValueRules, ComparisonWithAnObjectIsAMismatch) {
    SharedNothing object;
    object.retain();
    for (const Value& other : {integer(1), text(u"1")}) {
        expectOutcome(mismatch, compareOutcome(rules(), Value::ofObject(object), other), "object on the left");
        expectOutcome(mismatch, compareOutcome(rules(), other, Value::ofObject(object)), "object on the right");
    }
}

TEST_P(ValueRules, ExponentsBeyondEveryNumberAreHandled) {
    for (const std::u16string_view huge : {u"1e2147483648", u"1e4294967297", u"1e99999999999999999999"}) {
        EXPECT_FALSE(rules().isNumeric(huge, point)) << printable(huge);
        expectOutcome(overflow, toSingleOutcome(rules(), text(huge), point), printable(huge));
        expectOutcome(overflow, toLongOutcome(rules(), text(huge), point), printable(huge));
        expectOutcome(overflow, addOutcome(rules(), text(huge), integer(1), point), printable(huge));
    }
    EXPECT_EQ(rules().toSingle(text(u"1e-99999999999999999999"), point), 0.0f);
    EXPECT_EQ(rules().toLong(text(u"0e99999999999999999999"), point), 0);
    EXPECT_TRUE(rules().toBoolean(text(std::u16string(100000, u'0') + u"1"), point));
    expectOutcome(overflow, toSingleOutcome(rules(), text(std::u16string(100000, u'9')), point), "many nines");
}

INSTANTIATE_TEST_SUITE_P(Sets, ValueRules, testing::Values(door, platformRules, portableRules),
                         [](const auto& parameter) { return std::string(parameter.param.name); });

TEST(ValueRulesDoor, TakesWhatIsNotANumberForNoLong) {
    for (const Value& value : {single(notANumber), doubleFloat(double{notANumber})}) {
        EXPECT_EQ(printable(toLongOutcome(door, value, point)), "error 6");
        EXPECT_EQ(printable(toTextOutcome(door, value, point)), "Text \"NAN\"");
    }
}

TEST(PlainNumber, ReadsDigitsAndOneMark) {
    struct Row {
        std::u16string_view text;
        float expected;
    };
    const Row rows[] = {{u"0", 0},
                        {u"12", 12},
                        {u"-3", -3},
                        {u"1.5", 1.5f},
                        {u".5", 0.5f},
                        {u"5.", 5},
                        {u"-.25", -0.25f},
                        {u"007", 7},
                        {u"0.1", 0.1f},
                        {u"9999999", 9999999},
                        {u"0.000001", 0.000001f},
                        {u"-123456.7", -123456.7f}};
    for (const Row& row : rows) {
        for (const NumberLocale& locale : {point, comma}) {
            const std::optional<float> number = plainNumber(row.text, locale);
            ASSERT_TRUE(number) << printable(row.text);
            EXPECT_EQ(*number, row.expected) << printable(row.text);
        }
    }
    EXPECT_EQ(plainNumber(u"1,5", comma), 1.5f);
}

TEST(PlainNumber, LeavesEverythingElseAlone) {
    for (const std::u16string_view text : {u"", u"-", u".", u"-.", u"+1", u"1-", u" 1", u"1 ", u"1e5", u"1.2.3", u"--1",
                                           u"$1", u"abc", u"12345678", u"0.0000001", u"&H1", u"\uFF11"})
        EXPECT_EQ(plainNumber(text, point), std::nullopt) << printable(text);
    EXPECT_EQ(plainNumber(u"1,5", point), std::nullopt);
    EXPECT_EQ(plainNumber(u"1.5,5", comma), std::nullopt);
    EXPECT_EQ(plainNumber(std::u16string_view(u"1\0", 2), point), std::nullopt);
    NumberLocale arabic = point;
    arabic.decimalMark = u"\u066B";
    EXPECT_EQ(plainNumber(u"1\u066B5", arabic), std::nullopt);
    EXPECT_EQ(plainNumber(u"1.5", arabic), 1.5f);
    NumberLocale twoUnits = point;
    twoUnits.decimalMark = u"::";
    EXPECT_EQ(plainNumber(u"1::5", twoUnits), std::nullopt);
    EXPECT_EQ(plainNumber(u"15", twoUnits), 15);
}

constexpr std::u16string_view plainUnits = u"-.,0179";

TEST(PlainNumber, IsWhatTheFullRulesMakeOfTheText) {
    for (const NumberLocale& locale : {point, comma}) {
        std::u16string text;
        const auto extend = [&](const auto& self, int length) -> void {
            if (const auto number = plainNumber(text, locale)) {
                std::u16string local = text;
                if (const auto mark = local.find(u'.'); mark != local.npos) local.replace(mark, 1, locale.decimalMark);
                ASSERT_TRUE(portable::isNumeric(local, locale)) << printable(text);
                ASSERT_EQ(*number, portable::toSingle(Value::ofText(local), locale)) << printable(text);
            }
            if (length == 0) return;
            for (const char16_t unit : plainUnits) {
                text.push_back(unit);
                self(self, length - 1);
                text.pop_back();
            }
        };
        extend(extend, 6);
    }
}

TEST(BeginsAsName, IsTrueForNamesAndNeverForWhatTheNumericTestAdmits) {
    for (const std::u16string_view name : {u"Count", u"x", u"Zero", u"h12", u"\"1\""})
        EXPECT_TRUE(beginsAsName(name, point));
    for (const std::u16string_view other :
         {u"", u"1", u"-x", u"_x", u"Energy", u"e1,5", u"&H1", u" x", u"\u00E9t\u00E9"})
        EXPECT_FALSE(beginsAsName(other, point)) << printable(other);
    EXPECT_TRUE(portable::isNumeric(u"e1,5", point));

    NumberLocale kroner = point;
    kroner.currencySymbol = u"kr";
    EXPECT_TRUE(portable::isNumeric(u"kr5", kroner));
    EXPECT_FALSE(beginsAsName(u"kr5", kroner));
    EXPECT_TRUE(beginsAsName(u"Count", kroner));

    NumberLocale lettered = point;
    lettered.decimalMark = u"x";
    EXPECT_TRUE(portable::isNumeric(u"x5", lettered));
    EXPECT_FALSE(beginsAsName(u"x5", lettered));
    EXPECT_TRUE(beginsAsName(u"Count", lettered));
}

TEST(BeginsAsName, NoTextThatItAnswersIsNumeric) {
    constexpr std::u16string_view units = u"aeEhHk1-+.,&$( \"";
    for (const NumberLocale& locale : {point, comma}) {
        std::u16string text;
        const auto extend = [&](const auto& self, int length) -> void {
            if (beginsAsName(text, locale)) {
                ASSERT_FALSE(portable::isNumeric(text, locale)) << printable(text);
            }
            if (length == 0) return;
            for (const char16_t unit : units) {
                text.push_back(unit);
                self(self, length - 1);
                text.pop_back();
            }
        };
        extend(extend, 4);
    }
}

}  // namespace
}  // namespace corvane::test
