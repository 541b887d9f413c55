#include "platform/value_rules.h"

namespace corvane::platform_rules {

bool isNumeric(std::u16string_view text, const NumberLocale& locale) { return portable::isNumeric(text, locale); }
float toSingle(ValueView value, const NumberLocale& locale) { return portable::toSingle(value, locale); }
std::int32_t toLong(ValueView value, const NumberLocale& locale) { return portable::toLong(value, locale); }
bool toBoolean(ValueView value, const NumberLocale& locale) { return portable::toBoolean(value, locale); }
Text toText(ValueView value, const NumberLocale& locale) { return portable::toText(value, locale); }
Value add(ValueView left, ValueView right, const NumberLocale& locale) { return portable::add(left, right, locale); }
Value subtract(ValueView left, ValueView right, const NumberLocale& locale) {
    return portable::subtract(left, right, locale);
}
std::weak_ordering compare(ValueView left, ValueView right) { return portable::compare(left, right); }

}  // namespace corvane::platform_rules
