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

namespace platform_rules {
bool isNumeric(std::u16string_view text, const NumberLocale& locale);
float toSingle(const Value& value, const NumberLocale& locale);
std::int32_t toLong(const Value& value, const NumberLocale& locale);
bool toBoolean(const Value& value, const NumberLocale& locale);
Text toText(const Value& value, const NumberLocale& locale);
Value add(const Value& left, const Value& right, const NumberLocale& locale);
Value subtract(const Value& left, const Value& right, const NumberLocale& locale);
std::weak_ordering compare(const Value& left, const Value& right);
}  // namespace platform_rules

/// What the doors below do not answer at once.
namespace unusual {
float toSingle(const Value& value, const NumberLocale& locale);
std::int32_t toLong(const Value& value, const NumberLocale& locale);
Value add(const Value& left, const Value& right, const NumberLocale& locale);
Value subtract(const Value& left, const Value& right, const NumberLocale& locale);
}  // namespace unusual

inline float toSingle(const Value& value, const NumberLocale& locale) {
    return value.type() == ValueType::Single ? value.single() : unusual::toSingle(value, locale);
}

/// Rounds half to even.
inline std::int32_t toLong(const Value& value, const NumberLocale& locale) {
    if (value.type() == ValueType::Long) return value.longInteger();
    if (value.type() == ValueType::Integer) return value.integer();
    if (value.type() == ValueType::Single && std::abs(value.single()) < 2147483648.0F) {
        // Adding it leaves a double no place for a fraction, so the sum is rounded, and half to even.
        constexpr double wholeNumbersOnly = 6755399441055744.0;
        return static_cast<std::int32_t>((value.single() + wholeNumbersOnly) - wholeNumbersOnly);
    }
    return unusual::toLong(value, locale);
}

/// Any number but zero is true; a text is converted as the platform does ("True", "False", "#TRUE#" or a number).
inline bool toBoolean(const Value& value, const NumberLocale& locale) {
    if (value.type() == ValueType::Boolean) return value.boolean();
    if (value.type() == ValueType::Single && !std::isnan(value.single())) return value.single() != 0;
    return platform_rules::toBoolean(value, locale);
}

/// Numbers with the locale's decimal mark: 7 significant digits for a single, 15 for a double; "True" or "False".
Text toText(const Value& value, const NumberLocale& locale);

/// left + right. The result's type follows the operands (single and 16-bit integer: single; text counts as a double);
/// a 16-bit sum that overflows becomes a Long, a 32-bit one or a single a Double. Two texts are joined.
inline Value add(const Value& left, const Value& right, const NumberLocale& locale) {
    if (left.type() == ValueType::Single && (right.type() == ValueType::Single || right.type() == ValueType::Integer)) {
        const float sum = left.single() + (right.type() == ValueType::Single ? right.single() : right.integer());
        if (std::isfinite(sum)) return Value::ofSingle(sum);
    }
    return unusual::add(left, right, locale);
}

/// left - right, under the rules of `add`; but two texts are subtracted as numbers, and a single stays a single.
inline Value subtract(const Value& left, const Value& right, const NumberLocale& locale) {
    if (left.type() == ValueType::Single && (right.type() == ValueType::Single || right.type() == ValueType::Integer)) {
        const float difference = left.single() - (right.type() == ValueType::Single ? right.single() : right.integer());
        if (std::isfinite(difference)) return Value::ofSingle(difference);
    }
    return unusual::subtract(left, right, locale);
}

/// Numbers by value (a double beside a single in a single's precision), texts by code unit; any number is less than any
/// text. What is not a number is greater than every number, itself included, on either side.
inline std::weak_ordering compare(const Value& left, const Value& right) {
    if (left.type() == ValueType::Single && right.type() == ValueType::Single) {
        if (left.single() < right.single()) return std::weak_ordering::less;
        return left.single() == right.single() ? std::weak_ordering::equivalent : std::weak_ordering::greater;
    }
    return platform_rules::compare(left, right);
}

namespace portable {
bool isNumeric(std::u16string_view text, const NumberLocale& locale);
float toSingle(const Value& value, const NumberLocale& locale);
std::int32_t toLong(const Value& value, const NumberLocale& locale);
bool toBoolean(const Value& value, const NumberLocale& locale);
Text toText(const Value& value, const NumberLocale& locale);
Value add(const Value& left, const Value& right, const NumberLocale& locale);
Value subtract(const Value& left, const Value& right, const NumberLocale& locale);
std::weak_ordering compare(const Value& left, const Value& right);
}  // namespace portable

}  // namespace corvane
