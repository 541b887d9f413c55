#include <gtest/gtest.h>
#include <windows.h>

#include <iterator>
#include <string>

#include "platform/number_locale.h"

namespace corvane {
namespace {

std::u16string localeItem(LCTYPE item) {
    wchar_t text[32] = {};
    GetLocaleInfoW(LOCALE_USER_DEFAULT, item, text, static_cast<int>(std::size(text)));
    return std::u16string(text, text + std::char_traits<wchar_t>::length(text));
}

TEST(NumberLocale, UserHasTheSystemsRegionalSettings) {
    const NumberLocale locale = NumberLocale::user();
    EXPECT_EQ(locale.localeId, GetUserDefaultLCID());
    EXPECT_EQ(locale.decimalMark, localeItem(LOCALE_SDECIMAL));
    EXPECT_EQ(locale.groupMark, localeItem(LOCALE_STHOUSAND));
    EXPECT_EQ(locale.currencySymbol, localeItem(LOCALE_SCURRENCY));
}

}  // namespace
}  // namespace corvane
