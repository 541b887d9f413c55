#include "platform/value_rules.h"

namespace corvane::platform_rules {

bool isNumeric(std::u16string_view text, const NumberLocale& locale) { return portable::isNumeric(text, locale); }
float toSingle(const Value& value, const NumberLocale& locale) { return portable::toSingle(value, locale); }
std::int32_t toLong(const Value& value, const NumberLocale& locale) { return portable::toLong(value, locale); }
bool toBoolean(const Value& value, const NumberLocale& locale) { return portable::toBoolean(value, locale); }
Text toText(const Value& value, const NumberLocale& locale) { return portable::toText(value, locale); }
Value add(const Value& left, const Value& right, const NumberLocale& locale) {
    return portable::add(left, right, locale);
}
Value subtract(const Value& left, const Value& right, const NumberLocale& locale) {
    return portable::subtract(left, right, locale);
}
std::weak_ordering compare(const Value& left, const Value& right) { return portable::compare(left, right); }

}  // namespace corvane::platform_rules
