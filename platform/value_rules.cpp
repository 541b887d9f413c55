// The door to the variant rules. What is answered here every set of rules decides the same way, and nothing is
// allocated for it but a text that is the result. What is not a number (NaN) is answered here because the routines of
// the platform's releases differ in it.
#include "platform/value_rules.h"

#include <cmath>
#include <iterator>
#include <utility>

#include "platform/automation_error.h"

namespace corvane {

namespace {

// `mark` and `otherMark` are decimal marks; 0 is none.
std::optional<float> plainSingle(std::u16string_view text, char16_t mark, char16_t otherMark) {
    const bool isNegative = text.starts_with(u'-');
    if (isNegative) text.remove_prefix(1);
    const char16_t* const end = text.data() + text.size();
    double magnitude = 0;
    if (text.empty() || readPlainDigits(text.data(), end, mark, otherMark, magnitude) != end) return std::nullopt;
    return static_cast<float>(isNegative ? -magnitude : magnitude);
}

char16_t decimalMarkOf(const NumberLocale& locale) {
    return locale.decimalMark.size() == 1 ? locale.decimalMark.front() : u'\0';
}

std::optional<float> smallNumber(ValueView value) {
    if (value.type() == ValueType::Single) return value.single();
    if (value.type() == ValueType::Integer) return value.integer();
    return std::nullopt;
}

// A sum or difference of the types that a script's counters have, unless it overflows.
template <typename Operation>
std::optional<Value> simpleResult(ValueView left, ValueView right, Operation operation) {
    const bool areIntegers = left.type() == ValueType::Integer && right.type() == ValueType::Integer;
    const auto leftNumber = smallNumber(left);
    const auto rightNumber = smallNumber(right);
    if (areIntegers || !leftNumber || !rightNumber) return std::nullopt;
    const float result = operation(*leftNumber, *rightNumber);
    if (!std::isfinite(result)) return std::nullopt;
    return Value::ofSingle(result);
}

// The digits of a number that is written with digits alone: whole, and of no more digits than a single shows.
std::optional<std::int32_t> wholeNumber(ValueView value) {
    if (value.type() == ValueType::Integer) return value.integer();
    if (value.type() == ValueType::Long) return value.longInteger();
    if (value.type() != ValueType::Single || !(std::abs(value.single()) < 1e7f)) return std::nullopt;
    const auto whole = static_cast<std::int32_t>(value.single());
    if (static_cast<float>(whole) != value.single()) return std::nullopt;
    return whole;
}

Text textOf(std::int32_t number) {
    char16_t buffer[11];
    char16_t* const end = buffer + std::size(buffer);
    char16_t* begin = end;
    auto magnitude = number < 0 ? 0u - static_cast<std::uint32_t>(number) : static_cast<std::uint32_t>(number);
    do {
        *--begin = static_cast<char16_t>(u'0' + magnitude % 10);
        magnitude /= 10;
    } while (magnitude != 0);
    if (number < 0) *--begin = u'-';
    return Text(std::u16string_view(begin, static_cast<std::size_t>(end - begin)));
}

bool isNotANumber(ValueView value) {
    return (value.type() == ValueType::Single && std::isnan(value.single())) ||
           (value.type() == ValueType::Double && std::isnan(value.doubleFloat()));
}

}  // namespace

bool beginsAsName(std::u16string_view text, const NumberLocale& locale) {
    if (text.empty()) return false;
    const char16_t first = text.front();
    const bool isLetter = (first >= u'a' && first <= u'z') || (first >= u'A' && first <= u'Z');
    // An exponent may stand in front of the digits that it belongs to, and a currency symbol may begin with a letter.
    return (isLetter || first == u'"') && first != u'e' && first != u'E' && !locale.currencySymbol.starts_with(first) &&
           !locale.decimalMark.starts_with(first);
}

bool isNumeric(std::u16string_view text, const NumberLocale& locale) {
    if (beginsAsName(text, locale)) return false;
    return plainSingle(text, decimalMarkOf(locale), u'\0') || platform_rules::isNumeric(text, locale);
}

std::optional<float> plainNumber(std::u16string_view text, const NumberLocale& locale) {
    // A script knows two marks. The comma is one here only where the numeric test reads it as the locale's own: beside
    // another mark it may part groups.
    return plainSingle(text, u'.', locale.decimalMark == u"," ? u',' : u'\0');
}

Text toText(ValueView value, const NumberLocale& locale) {
    if (value.isText()) return value.text();
    if (const auto number = wholeNumber(value)) return textOf(*number);
    if (isNotANumber(value)) return Text(u"NAN");
    return platform_rules::toText(value, locale);
}

namespace unusual {

float toSingle(ValueView value, const NumberLocale& locale) {
    if (const auto number = smallNumber(value)) return *number;
    if (value.isText()) {
        if (const auto number = plainSingle(value.textView(), decimalMarkOf(locale), u'\0')) return *number;
    }
    return platform_rules::toSingle(value, locale);
}

std::int32_t toLong(ValueView value, const NumberLocale& locale) {
    if (isNotANumber(value)) throw automation_error(ErrorNumber::Overflow);
    return platform_rules::toLong(value, locale);
}

Value add(ValueView left, ValueView right, const NumberLocale& locale) {
    if (auto sum = simpleResult(left, right, [](float a, float b) { return a + b; })) return *std::move(sum);
    return platform_rules::add(left, right, locale);
}

Value subtract(ValueView left, ValueView right, const NumberLocale& locale) {
    if (auto difference = simpleResult(left, right, [](float a, float b) { return a - b; }))
        return *std::move(difference);
    return platform_rules::subtract(left, right, locale);
}

}  // namespace unusual

}  // namespace corvane
