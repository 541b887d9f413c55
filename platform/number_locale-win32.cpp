#include <windows.h>

#include "platform/number_locale.h"

namespace corvane {

namespace {

// The user's own changes to the locale included; `otherwise` where the system has no such item.
std::u16string userItem(LCTYPE item, std::u16string_view otherwise) {
    wchar_t text[32];
    const int length = GetLocaleInfoW(LOCALE_USER_DEFAULT, item, text, static_cast<int>(std::size(text)));
    if (length <= 0) return std::u16string(otherwise);
    return std::u16string(text, text + length - 1);
}

}  // namespace

NumberLocale NumberLocale::user() {
    NumberLocale locale = pointDecimal();
    locale.localeId = GetUserDefaultLCID();
    locale.decimalMark = userItem(LOCALE_SDECIMAL, locale.decimalMark);
    if (locale.decimalMark.empty()) locale.decimalMark = pointDecimal().decimalMark;
    locale.groupMark = userItem(LOCALE_STHOUSAND, locale.groupMark);
    locale.currencySymbol = userItem(LOCALE_SCURRENCY, locale.currencySymbol);
    return locale;
}

}  // namespace corvane
