// A text, and values of every type, through the variant rules in both ways of writing numbers. The door's quick answers
// are those of the portable rules; the numeric test and the conversions agree; a number comes back from its text.

#include <bit>

#include "engine/modCommand.h"
#include "tests/fuzz/fuzz_input.h"
#include "tests/platform/rule_sets.h"

namespace corvane::fuzz {
namespace {

using namespace corvane::test;

constexpr std::int32_t mismatch = static_cast<std::int32_t>(ErrorNumber::TypeMismatch);

void requireSame(const Outcome& quick, const Outcome& portable, const char* rule) {
    if (!areSame(quick, portable))
        std::fprintf(stderr, "%s against %s\n", printable(quick).c_str(), printable(portable).c_str());
    require(areSame(quick, portable), rule);
}

void checkConversions(const Value& value, const NumberLocale& locale) {
    requireSame(toSingleOutcome(door, value, locale), toSingleOutcome(portableRules, value, locale), "toSingle");
    requireSame(toLongOutcome(door, value, locale), toLongOutcome(portableRules, value, locale), "toLong");
    requireSame(toBooleanOutcome(door, value, locale), toBooleanOutcome(portableRules, value, locale), "toBoolean");
    requireSame(toTextOutcome(door, value, locale), toTextOutcome(portableRules, value, locale), "toText");
}

void checkPair(const Value& left, const Value& right, const NumberLocale& locale) {
    requireSame(addOutcome(door, left, right, locale), addOutcome(portableRules, left, right, locale), "add");
    requireSame(subtractOutcome(door, left, right, locale), subtractOutcome(portableRules, left, right, locale),
                "subtract");
    require(compare(left, right) == portable::compare(left, right), "compare");
}

void checkNumericTest(const std::u16string& text, const NumberLocale& locale) {
    const bool numeric = isNumeric(text, locale);
    require(numeric == portable::isNumeric(text, locale), "the door's numeric test is the portable one");
    const Outcome asSingle = toSingleOutcome(door, Value::ofText(text), locale);
    require(!numeric || asSingle.error != mismatch, "what is numeric is a number, if not a single");
    require(numeric || !asSingle.value, "what is not numeric is no single");
}

void checkScriptNumber(const std::u16string& text, const NumberLocale& locale) {
    std::u16string once = text;
    const bool isNumber = IsNumericText(once, locale);
    if (const auto plain = plainNumber(text, locale)) {
        require(isNumber, "a plain number is a number");
        requireSame({Value::ofSingle(*plain), 0}, toSingleOutcome(door, Value::ofText(once), locale),
                    "a plain number has its value");
    }
    require(!isNumber || !beginsAsName(text, locale), "a number does not begin as a name");
    if (!isNumber) return;
    require(isNumeric(once, locale), "an accepted text is left in the locale's form");
    std::u16string twice = once;
    require(IsNumericText(twice, locale), "an accepted text is accepted again");
    requireSame(toSingleOutcome(door, Value::ofText(once), locale), toSingleOutcome(door, Value::ofText(twice), locale),
                "an accepted text keeps its value");
}

// Seven digits tell two singles apart or leave them as near as digits can.
void checkWayBack(float number, const NumberLocale& locale) {
    if (!std::isfinite(number)) return;
    const Outcome back = toSingleOutcome(door, Value::ofText(toText(Value::ofSingle(number), locale)), locale);
    if (!back.value) {
        require(std::abs(number) == std::numeric_limits<float>::denorm_min(),
                "every single but the least comes back from its text");
        return;
    }
    // Half of the seventh digit's place, and half of a single's last place.
    constexpr double nearest = 0.5e-6 + 0x1p-24;
    const double tolerance = std::max(nearest * std::abs(static_cast<double>(number)), 1e-45);
    require(std::abs(static_cast<double>(back.value->single()) - number) <= tolerance, "a single is near its text");
}

}  // namespace
}  // namespace corvane::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace corvane;
    using namespace corvane::fuzz;
    FuzzInput input(data, size);
    const std::u16string text = textOf(input.text);
    constexpr std::uint32_t types = 6;
    const Value left = input.choices.value(static_cast<ValueType>(input.choices.below(types)));
    const Value right = input.choices.value(static_cast<ValueType>(input.choices.below(types)));
    const auto number = input.choices.bits<float>();
    for (const NumberLocale& locale : {NumberLocale::pointDecimal(), NumberLocale::commaDecimal()}) {
        checkNumericTest(text, locale);
        checkScriptNumber(text, locale);
        checkWayBack(number, locale);
        for (const Value& value : {Value::ofText(text), left, right}) checkConversions(value, locale);
        checkPair(left, right, locale);
        checkPair(Value::ofText(text), left, locale);
        checkPair(left, Value::ofText(text), locale);
    }
    return 0;
}
