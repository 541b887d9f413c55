#pragma once

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

float toSingle(const Value& value, const NumberLocale& locale);
/// Rounds half to even.
std::int32_t toLong(const Value& value, const NumberLocale& locale);
/// Any number but zero is true; a text is converted as the platform does ("True", "False", "#TRUE#" or a number).
bool toBoolean(const Value& value, const NumberLocale& locale);
/// Numbers with the locale's decimal mark: 7 significant digits for a single, 15 for a double; "True" or "False".
Text toText(const Value& value, const NumberLocale& locale);

/// left + right. The result's type follows the operands (single and 16-bit integer: single; text counts as a double);
/// a 16-bit sum that overflows becomes a Long, a 32-bit one or a single a Double. Two texts are joined.
Value add(const Value& left, const Value& right, const NumberLocale& locale);
/// left - right, under the rules of `add`; but two texts are subtracted as numbers, and a single stays a single.
Value subtract(const Value& left, const Value& right, const NumberLocale& locale);

/// Numbers by value (a double beside a single in a single's precision), texts by code unit; any number is less than any
/// text. What is not a number is greater than every number, itself included, on either side.
std::weak_ordering compare(const Value& left, const Value& right);

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
