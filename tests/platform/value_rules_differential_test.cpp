// Holds the portable variant rules and the platform's own routines together: the door, the routines and the portable
// rules get the same values and must give the same results and the same errors. Where a text takes part, doubles may
// differ in their last places, since not every release of the routines rounds a long text correctly; a single and a
// Long made from a text must be the same. Where the routines are not the platform's, the door is what is tested.
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstdlib>
#include <limits>
#include <random>
#include <vector>

#include "tests/platform/rule_sets.h"

namespace corvane::test {
namespace {

constexpr std::uint32_t seed = 20240229;
constexpr int randomTexts = 60000;
constexpr int randomValues = 60000;
static_assert(randomTexts + randomValues >= 100000, "what the agreement of the rules rests on");
#ifdef __SANITIZE_ADDRESS__
// Under the sanitizers it takes longer than all else, on a busy machine minutes. The programs without them do it whole.
const bool isWhole = std::getenv("CORVANE_LONG") != nullptr;
#else
constexpr bool isWhole = true;
#endif
constexpr int mostReports = 20;

class Generator {
public:
    explicit Generator(const NumberLocale& locale) : locale_(locale), engine_(seed) {}

    int below(int limit) { return static_cast<int>(engine_() % static_cast<std::uint32_t>(limit)); }
    bool oneIn(int times) { return below(times) == 0; }
    std::uint64_t bits() { return std::uint64_t{engine_()} << 32 | engine_(); }

    std::u16string digits(int most) {
        std::u16string text;
        for (int i = below(most + 1); i > 0; --i) text.push_back(static_cast<char16_t>(u'0' + below(10)));
        return text;
    }

    // Mostly numbers, some of them damaged.
    std::u16string text() {
        std::u16string text = oneIn(12) ? pattern() : decimal();
        if (oneIn(4)) text.insert(0, blanksAndMarks());
        if (oneIn(4)) text += blanksAndMarks();
        if (oneIn(8)) text.insert(text.begin() + below(static_cast<int>(text.size()) + 1), anyUnit());
        if (oneIn(16) && !text.empty()) text.erase(static_cast<std::size_t>(below(static_cast<int>(text.size()))), 1);
        return text;
    }

    Value value() {
        switch (below(8)) {
            case 0: return Value::ofInteger(static_cast<std::int16_t>(bits()));
            case 1: return Value::ofLong(static_cast<std::int32_t>(bits() >> below(64)));
            case 2: return Value::ofSingle(std::bit_cast<float>(static_cast<std::uint32_t>(bits())));
            case 3: return Value::ofSingle(static_cast<float>(quotient()));
            case 4: return Value::ofDouble(std::bit_cast<double>(bits()));
            case 5: return Value::ofDouble(quotient());
            case 6: return Value::ofBoolean(oneIn(2));
            default: return Value::ofText(text());
        }
    }

private:
    // Short decimals and halves, which real values are.
    double quotient() {
        static constexpr std::array<double, 8> divisors = {1, 2, 4, 8, 10, 100, 1000, 1e7};
        const auto number = static_cast<double>(static_cast<std::int64_t>(bits()) >> below(64));
        return number / divisors[static_cast<std::size_t>(below(static_cast<int>(divisors.size())))];
    }

    std::u16string decimal() {
        std::u16string text = digits(oneIn(8) ? 30 : 9);
        if (oneIn(6))
            text.insert(static_cast<std::size_t>(below(static_cast<int>(text.size()) + 1)), locale_.groupMark);
        if (!oneIn(3)) text += locale_.decimalMark + digits(oneIn(8) ? 30 : 7);
        if (oneIn(4)) {
            text.push_back(oneIn(2) ? u'e' : u'E');
            if (oneIn(2)) text.push_back(oneIn(3) ? u'+' : u'-');
            const std::string exponent = std::to_string(oneIn(3) ? below(320) : below(45));
            text.append(exponent.begin(), exponent.end());
        }
        return text;
    }

    std::u16string pattern() {
        static constexpr std::u16string_view hexDigits = u"0123456789ABCDEFabcdef";
        const bool isHex = oneIn(2);
        std::u16string text = isHex ? (oneIn(2) ? u"&H" : u"&h") : (oneIn(2) ? u"&O" : u"&o");
        for (int i = below(isHex ? 10 : 14); i > 0; --i)
            text.push_back(hexDigits[static_cast<std::size_t>(below(isHex ? 22 : 8))]);
        return text;
    }

    std::u16string blanksAndMarks() {
        std::u16string text;
        for (int i = below(3); i >= 0; --i) {
            switch (below(7)) {
                case 0: text.push_back(u'-'); break;
                case 1: text.push_back(u'+'); break;
                case 2: text.push_back(u'('); break;
                case 3: text.push_back(u')'); break;
                case 4: text += locale_.currencySymbol; break;
                case 5: text.push_back(u'\u00A0'); break;
                default: text.push_back(u' '); break;
            }
        }
        return text;
    }

    char16_t anyUnit() {
        static constexpr std::u16string_view usual = u"0159.,eE+-()$\u20AC&Hx#% '\t\n";
        return oneIn(3) ? static_cast<char16_t>(bits())
                        : usual[static_cast<std::size_t>(below(static_cast<int>(usual.size())))];
    }

    const NumberLocale& locale_;
    std::mt19937 engine_;
};

class Differential : public testing::TestWithParam<NumberLocale> {
protected:
    // Every text of up to four of these: all orders of signs, blanks, parentheses, marks and exponents.
    static constexpr std::u16string_view alphabet = u" -+()$\u20AC,.1e5";

    const NumberLocale& locale() const { return GetParam(); }

    void expectSame(const char* rule, const std::string& operands, const Outcome& routine, const Outcome& ours,
                    const char* whose, double tolerance = 0) {
        if (areSame(routine, ours, tolerance) || ++differences_ > mostReports) return;
        ADD_FAILURE() << rule << " of " << operands << " under locale " << locale().localeId << ": the routine gives "
                      << printable(routine) << ", " << whose << ' ' << printable(ours);
    }

    void checkNumericTest(std::u16string_view text) {
        for (const RuleSet& ours : {door, portableRules})
            expectSame("isNumeric", printable(text), isNumericOutcome(platformRules, text, locale()),
                       isNumericOutcome(ours, text, locale()), ours.name);
    }

    void checkText(std::u16string_view text) {
        checkNumericTest(text);
        checkConversions(Value::ofText(text));
    }

    void checkConversions(const Value& value) {
        const std::string operands = printable(value);
        for (const RuleSet& ours : {door, portableRules}) {
            const auto check = [&](const char* rule, auto outcome) {
                expectSame(rule, operands, outcome(platformRules, value, locale()), outcome(ours, value, locale()),
                           ours.name);
            };
            check("toSingle", toSingleOutcome);
            check("toBoolean", toBooleanOutcome);
            // The routines' releases differ in what they make of no number; the door decides it for all.
            if (isNotANumber(value)) continue;
            check("toLong", toLongOutcome);
            check("toText", toTextOutcome);
        }
    }

    void checkPair(const Value& left, const Value& right) {
        const std::string operands = printable(left) + " and " + printable(right);
        const double tolerance = toleranceFor(left) + toleranceFor(right);
        for (const RuleSet& ours : {door, portableRules}) {
            expectSame("add", operands, addOutcome(platformRules, left, right, locale()),
                       addOutcome(ours, left, right, locale()), ours.name, tolerance);
            expectSame("subtract", operands, subtractOutcome(platformRules, left, right, locale()),
                       subtractOutcome(ours, left, right, locale()), ours.name, tolerance);
            expectSame("compare", operands, compareOutcome(platformRules, left, right),
                       compareOutcome(ours, left, right), ours.name);
        }
    }

    static bool isNotANumber(const Value& value) {
        return (value.type() == ValueType::Single && std::isnan(value.single())) ||
               (value.type() == ValueType::Double && std::isnan(value.doubleFloat()));
    }

    // What the last places of an operand may be worth in a Double: those of a text, and one place where the routines
    // calculate in wider registers.
    double toleranceFor(const Value& value) const {
        constexpr double ofText = 4e-15;
        constexpr double ofNumber = sizeof(void*) == 4 ? std::numeric_limits<double>::epsilon() : 0;
        constexpr double ofTinyText = 1e-320;
        const Outcome number = outcomeOf([&] { return portable::add(value, Value::ofDouble(0), locale()); });
        if (!number.value) return 0;
        const double magnitude = std::abs(number.value->doubleFloat());
        if (!std::isfinite(magnitude)) return 0;
        return value.isText() ? magnitude * ofText + ofTinyText : magnitude * ofNumber;
    }

    int differences_ = 0;
};

TEST_P(Differential, AllShortTexts) {
    std::u16string text;
    const auto extend = [&](const auto& self, int length) -> void {
        checkText(text);
        if (length == 0) return;
        for (const char16_t unit : alphabet) {
            text.push_back(unit);
            self(self, length - 1);
            text.pop_back();
        }
    };
    extend(extend, isWhole ? 4 : 3);
    EXPECT_EQ(differences_, 0);
}

TEST_P(Differential, EveryCodeUnitBesideADigit) {
    for (std::uint32_t unit = 0; unit < 0x10000; ++unit) {
        const auto character = static_cast<char16_t>(unit);
        for (const std::u16string& text :
             {std::u16string{character, u'5'}, std::u16string{u'5', character}, std::u16string{u'5', character, u'7'}})
            checkNumericTest(text);
    }
    EXPECT_EQ(differences_, 0);
}

TEST_P(Differential, BoundaryTexts) {
    static constexpr std::u16string_view texts[] = {u"",
                                                    u" ",
                                                    u"\t12\r\n",
                                                    u"12 ",
                                                    u"12",
                                                    u"007",
                                                    u"-0",
                                                    u"0",
                                                    u"9999999",
                                                    u"99999999",
                                                    u"16777217",
                                                    u"2147483647",
                                                    u"2147483648",
                                                    u"-2147483648",
                                                    u"-2147483649",
                                                    u"21474836475e-1",
                                                    u"21474836465e-1",
                                                    u"21474836474e-1",
                                                    u"-21474836485e-1",
                                                    u"-21474836486e-1",
                                                    u"6e-1",
                                                    u"6e-2",
                                                    u"-9e-9",
                                                    u"51e-3",
                                                    u"5e-1",
                                                    u"15e-1",
                                                    u"25e-1",
                                                    u"35e-1",
                                                    u"-5e-1",
                                                    u"-15e-1",
                                                    u"-25e-1",
                                                    u"500000000000000000001e-21",
                                                    u"2500000000000000000001e-21",
                                                    u"2499999999999999999999e-21",
                                                    u"1e38",
                                                    u"34028235e31",
                                                    u"34028236e31",
                                                    u"-34028236e31",
                                                    u"1e39",
                                                    u"1e-37",
                                                    u"1e-40",
                                                    u"15e-46",
                                                    u"14e-46",
                                                    u"1e-46",
                                                    u"1e-100",
                                                    u"1e-400",
                                                    u"-1e-400",
                                                    u"1e308",
                                                    u"179e306",
                                                    u"18e307",
                                                    u"1e309",
                                                    u"1e9999",
                                                    u"1e-9999",
                                                    u"0e9999",
                                                    u"1e99999",
                                                    u"1e99999999999",
                                                    u"1e-99999999999",
                                                    u"1e2147483648",
                                                    u"0e2147483648",
                                                    u"1e4294967297",
                                                    u"1e0000000005",
                                                    u"&H0",
                                                    u"&H7FFF",
                                                    u"&H8000",
                                                    u"&HFFFF",
                                                    u"&H7FFFFFFF",
                                                    u"&H80000000",
                                                    u"&H80000001",
                                                    u"&HFFFFFFFF",
                                                    u"&H100000000",
                                                    u"&H0000000000000000000001",
                                                    u"&O37777777777",
                                                    u"&O40000000000",
                                                    u"-&H10",
                                                    u"&H",
                                                    u"&",
                                                    u"&G1",
                                                    u"(&HF)",
                                                    u"&HF$",
                                                    u"True",
                                                    u"true",
                                                    u"TRUE",
                                                    u"tRuE",
                                                    u"False",
                                                    u"FALSE",
                                                    u"#TRUE#",
                                                    u"#FALSE#",
                                                    u"#true#",
                                                    u" True",
                                                    u"True ",
                                                    u"Truex",
                                                    u"Yes",
                                                    u"-1",
                                                    u"INF",
                                                    u"NAN",
                                                    u"Infinity",
                                                    u"12abc",
                                                    u"0x10",
                                                    u"12%",
                                                    u"\uFF11\uFF12",
                                                    u"\u0661"};
    for (const std::u16string_view text : texts) checkText(text);
    checkText(std::u16string_view(u"12\0x", 4));
    checkText(std::u16string_view(u"True\0x", 6));
    checkText(std::u16string(300, u'0') + u"5");
    checkText(std::u16string(250, u'0') + u"5");
    checkText(u"1" + std::u16string(250, u'0'));
    checkText(u"1" + std::u16string(400, u'0'));
    checkText(std::u16string(5000, u'9'));
    for (std::u16string text : {u"1.5",
                                u".5",
                                u"5.",
                                u"-.25",
                                u"0.1",
                                u"1,234.5",
                                u"1,2,3.",
                                u"131072.0078125",
                                u"4194304.25",
                                u"8388608.5",
                                u"1.000000059604644775390625",
                                u"0.0000001",
                                u"123456.7",
                                u"2147483647.5",
                                u"2147483647.49999",
                                u"-2147483648.5",
                                u"0.5",
                                u"2.5",
                                u"3.5",
                                u"2.5000000000000000000001",
                                u"1.2.3",
                                u".",
                                u"-.",
                                u"1.5E+3",
                                u"(1,000.50)"}) {
        for (char16_t& unit : text)
            unit = unit == u'.' ? locale().decimalMark[0] : unit == u',' ? locale().groupMark[0] : unit;
        checkText(text);
    }
    EXPECT_EQ(differences_, 0);
}

TEST_P(Differential, RandomTexts) {
    Generator generator(locale());
    for (int i = 0; i < (isWhole ? randomTexts : randomTexts / 10); ++i) checkText(generator.text());
    EXPECT_EQ(differences_, 0);
}

TEST_P(Differential, BoundaryValues) {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    constexpr float greatest = std::numeric_limits<float>::max();
    constexpr double greatestDouble = std::numeric_limits<double>::max();
    std::vector<Value> values;
    for (const int number : {0, 1, -1, 2, 32766, 32767, -32767, -32768})
        values.push_back(Value::ofInteger(static_cast<std::int16_t>(number)));
    for (const std::int32_t number : {0, 1, -1, 32767, 32768, -32768, -32769, 16777216, 16777217, 2147483646,
                                      2147483647, -2147483647, std::numeric_limits<std::int32_t>::min()})
        values.push_back(Value::ofLong(number));
    for (const float number : {0.0f,
                               -0.0f,
                               1.0f,
                               0.5f,
                               1.5f,
                               2.5f,
                               -0.5f,
                               -2.5f,
                               0.1f,
                               0.01f,
                               0.0001f,
                               0.00001f,
                               0.00012345678f,
                               999999.9f,
                               999999.95f,
                               9999999.0f,
                               9999999.5f,
                               1e7f,
                               1.2345678e7f,
                               16777216.0f,
                               1234566.5f,
                               1234567.5f,
                               262143.25f,
                               2147483520.0f,
                               2147483648.0f,
                               -2147483648.0f,
                               -2147483904.0f,
                               1e20f,
                               1e-20f,
                               greatest,
                               -greatest,
                               std::numeric_limits<float>::min(),
                               std::numeric_limits<float>::denorm_min(),
                               infinity,
                               -infinity,
                               nan})
        values.push_back(Value::ofSingle(number));
    for (const double number : {0.0,
                                -0.0,
                                0.1,
                                0.3,
                                1.0 / 3,
                                0.5,
                                1.5,
                                2.5,
                                -2.5,
                                1e-4,
                                1e-5,
                                123456789012345.0,
                                999999999999999.0,
                                999999999999999.5,
                                100000000000000.5,
                                562949953421312.5,
                                1e14,
                                1e15,
                                1e16,
                                1e100,
                                1e-100,
                                2147483647.0,
                                2147483647.49,
                                2147483647.5,
                                -2147483648.5,
                                -2147483648.51,
                                16777217.0,
                                3.4028234663852886e38,
                                3.4028235e38,
                                3.4028235677973355e38,
                                3.4028235677973366e38,
                                -3.4028235677973366e38,
                                1e39,
                                1e-39,
                                1e-45,
                                7e-46,
                                1e-60,
                                1e308,
                                greatestDouble,
                                -greatestDouble,
                                std::numeric_limits<double>::min(),
                                std::numeric_limits<double>::denorm_min(),
                                double{infinity},
                                double{-infinity},
                                double{nan}})
        values.push_back(Value::ofDouble(number));
    values.push_back(Value::ofBoolean(true));
    values.push_back(Value::ofBoolean(false));
    for (const std::u16string_view text :
         {u"", u"12", u"-3", u"abc", u"True", u"1e309", u"1e99999999999", u"&HFFFF", u"12x"})
        values.push_back(Value::ofText(text));
    for (const Value& left : values) {
        checkConversions(left);
        for (const Value& right : values) checkPair(left, right);
    }
    EXPECT_EQ(differences_, 0);
}

TEST_P(Differential, RandomValues) {
    Generator generator(locale());
    for (int i = 0; i < (isWhole ? randomValues : randomValues / 10); ++i) {
        const Value left = generator.value();
        checkConversions(left);
        checkPair(left, generator.value());
        checkPair(left, Value::ofInteger(1));
    }
    EXPECT_EQ(differences_, 0);
}

INSTANTIATE_TEST_SUITE_P(Locales, Differential,
                         testing::Values(NumberLocale::pointDecimal(), NumberLocale::commaDecimal()),
                         [](const auto& parameter) {
                             return parameter.param.decimalMark == u"." ? "PointDecimal" : "CommaDecimal";
                         });

}  // namespace
}  // namespace corvane::test
