#pragma once

#include <cmath>
#include <compare>
#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/number_locale.h"
#include "platform/value.h"

/// The automation platform's variant rules: conversions, arithmetic, comparison.
///
/// The functions of `namespace corvane` are the door: they answer the everyday cases themselves, without an allocation,
/// and ask `namespace platform_rules` for the rest. On Windows the platform's own routines decide there; elsewhere
/// `namespace portable` does, and a test holds all three together. Failures are automation errors: 13 (type mismatch)
/// where a text is no number or a value is an object, 6 (overflow) where a number does not fit.
namespace corvane {

/// The general numeric test: whether the platform converts `text` to a 64-bit float.
bool isNumeric(std::u16string_view text, const NumberLocale& locale);

/// Whether `text` begins as no number does (with a letter or a double quote), so that neither the numeric test nor the
/// strict one can accept it: a quick answer for names and strings. False where only the tests can tell.
bool beginsAsName(std::u16string_view text, const NumberLocale& locale);

/// The value of a plainly written script number: an optional minus, digits, at most one decimal mark, seven digits at
/// most. The mark is a point, or a comma where it is the locale's. None for any other text, numeric or not; what it
/// answers is what the numeric-text test and a conversion to single make of the text.
std::optional<float> plainNumber(std::u16string_view text, const NumberLocale& locale);

/// Reads the digits of a plainly written number from `begin` on, and a mark among them, which is `mark` or `otherMark`;
/// 0 is none. Returns where it stopped, and in `number` what the digits make; `begin` when they make no such number.
inline const char16_t* readPlainDigits(const char16_t* begin, const char16_t* end, char16_t mark, char16_t otherMark,
                                       double& number) {
    constexpr std::ptrdiff_t exactDigits = 7;
    static constexpr double powersOfTen[exactDigits + 1] = {1, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7};
    std::uint32_t digits = 0;
    const auto readDigits = [&](const char16_t* at) {
        for (; at != end && static_cast<std::uint32_t>(*at - u'0') <= 9; ++at) digits = digits * 10 + (*at - u'0');
        return at;
    };
    const char16_t* const wholeEnd = readDigits(begin);
    const char16_t* at = wholeEnd;
    if (at != end && *at != 0 && (*at == mark || *at == otherMark)) at = readDigits(at + 1);
    const std::ptrdiff_t fraction = at == wholeEnd ? 0 : at - wholeEnd - 1;
    const std::ptrdiff_t count = wholeEnd - begin + fraction;
    if (count == 0 || count > exactDigits) return begin;
    // Seven digits are exact in a double and, divided by a power of ten, too far from the middle between two singles
    // for any routine's last-place errors to matter.
    number = fraction == 0 ? digits : digits / powersOfTen[fraction];
    return at;
}

namespace platform_rules {
bool isNumeric(std::u16string_view text, const NumberLocale& locale);
float toSingle(ValueView value, const NumberLocale& locale);
std::int32_t toLong(ValueView value, const NumberLocale& locale);
bool toBoolean(ValueView value, const NumberLocale& locale);
Text toText(ValueView value, const NumberLocale& locale);
Value add(ValueView left, ValueView right, const NumberLocale& locale);
Value subtract(ValueView left, ValueView right, const NumberLocale& locale);
std::weak_ordering compare(ValueView left, ValueView right);
}  // namespace platform_rules

/// What the doors below do not answer at once.
namespace unusual {
float toSingle(ValueView value, const NumberLocale& locale);
std::int32_t toLong(ValueView value, const NumberLocale& locale);
Value add(ValueView left, ValueView right, const NumberLocale& locale);
Value subtract(ValueView left, ValueView right, const NumberLocale& locale);
}  // namespace unusual

/// The conversions and sums that need no locale and cannot fail; each says itself of which values that is so.
namespace everyday {

inline bool isLong(ValueView value) {
    return value.type() == ValueType::Long || value.type() == ValueType::Integer ||
           (value.type() == ValueType::Single && std::abs(value.single()) < 2147483648.0F);
}
inline std::int32_t toLong(ValueView value) {
    if (value.type() == ValueType::Long) return value.longInteger();
    if (value.type() == ValueType::Integer) return value.integer();
    // Adding it leaves a double no place for a fraction, so the sum is rounded, and half to even.
    constexpr double wholeNumbersOnly = 6755399441055744.0;
    return static_cast<std::int32_t>((value.single() + wholeNumbersOnly) - wholeNumbersOnly);
}

inline bool isBoolean(ValueView value) {
    return value.type() == ValueType::Boolean || (value.type() == ValueType::Single && !std::isnan(value.single()));
}
inline bool toBoolean(ValueView value) {
    return value.type() == ValueType::Boolean ? value.boolean() : value.single() != 0;
}

/// What a single on the left and a single or a 16-bit integer on the right make; none for other types, and where the
/// result is no finite number.
template <typename Operation>
std::optional<float> combine(ValueView left, ValueView right, Operation operation) {
    if (left.type() != ValueType::Single) return std::nullopt;
    if (right.type() != ValueType::Single && right.type() != ValueType::Integer) return std::nullopt;
    const float other = right.type() == ValueType::Single ? right.single() : static_cast<float>(right.integer());
    const float result = operation(left.single(), other);
    if (!std::isfinite(result)) return std::nullopt;
    return result;
}
inline std::optional<float> add(ValueView left, ValueView right) {
    return combine(left, right, [](float a, float b) { return a + b; });
}
inline std::optional<float> subtract(ValueView left, ValueView right) {
    return combine(left, right, [](float a, float b) { return a - b; });
}

inline bool isComparable(ValueView left, ValueView right) {
    return left.type() == ValueType::Single && right.type() == ValueType::Single;
}
inline std::weak_ordering compare(ValueView left, ValueView right) {
    if (left.single() < right.single()) return std::weak_ordering::less;
    return left.single() == right.single() ? std::weak_ordering::equivalent : std::weak_ordering::greater;
}

}  // namespace everyday

inline float toSingle(ValueView value, const NumberLocale& locale) {
    return value.type() == ValueType::Single ? value.single() : unusual::toSingle(value, locale);
}

/// Rounds half to even.
inline std::int32_t toLong(ValueView value, const NumberLocale& locale) {
    return everyday::isLong(value) ? everyday::toLong(value) : unusual::toLong(value, locale);
}

/// Any number but zero is true; a text is converted as the platform does ("True", "False", "#TRUE#" or a number).
inline bool toBoolean(ValueView value, const NumberLocale& locale) {
    return everyday::isBoolean(value) ? everyday::toBoolean(value) : platform_rules::toBoolean(value, locale);
}

/// Numbers with the locale's decimal mark: 7 significant digits for a single, 15 for a double; "True" or "False".
Text toText(ValueView value, const NumberLocale& locale);

/// left + right. The result's type follows the operands (single and 16-bit integer: single; text counts as a double);
/// a 16-bit sum that overflows becomes a Long, a 32-bit one or a single a Double. Two texts are joined.
inline Value add(ValueView left, ValueView right, const NumberLocale& locale) {
    const auto sum = everyday::add(left, right);
    return sum ? Value::ofSingle(*sum) : unusual::add(left, right, locale);
}

/// left - right, under the rules of `add`; but two texts are subtracted as numbers, and a single stays a single.
inline Value subtract(ValueView left, ValueView right, const NumberLocale& locale) {
    const auto difference = everyday::subtract(left, right);
    return difference ? Value::ofSingle(*difference) : unusual::subtract(left, right, locale);
}

/// Numbers by value (a double beside a single in a single's precision), texts by code unit; any number is less than any
/// text. What is not a number is greater than every number, itself included, on either side.
inline std::weak_ordering compare(ValueView left, ValueView right) {
    return everyday::isComparable(left, right) ? everyday::compare(left, right) : platform_rules::compare(left, right);
}

namespace portable {
bool isNumeric(std::u16string_view text, const NumberLocale& locale);
float toSingle(ValueView value, const NumberLocale& locale);
std::int32_t toLong(ValueView value, const NumberLocale& locale);
bool toBoolean(ValueView value, const NumberLocale& locale);
Text toText(ValueView value, const NumberLocale& locale);
Value add(ValueView left, ValueView right, const NumberLocale& locale);
Value subtract(ValueView left, ValueView right, const NumberLocale& locale);
std::weak_ordering compare(ValueView left, ValueView right);
}  // namespace portable

}  // namespace corvane
