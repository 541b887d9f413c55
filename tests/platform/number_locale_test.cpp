#include "platform/number_locale.h"

#include <gtest/gtest.h>

#include <clocale>
#include <string>

namespace corvane {
namespace {

TEST(NumberLocale, PointDecimalIsTheEnglishForm) {
    const NumberLocale locale = NumberLocale::pointDecimal();
    EXPECT_EQ(locale.localeId, 1033u);
    EXPECT_EQ(locale.decimalMark, u".");
    EXPECT_EQ(locale.groupMark, u",");
    EXPECT_EQ(locale.currencySymbol, u"$");
}

TEST(NumberLocale, CommaDecimalIsTheGermanForm) {
    const NumberLocale locale = NumberLocale::commaDecimal();
    EXPECT_EQ(locale.localeId, 1031u);
    EXPECT_EQ(locale.decimalMark, u",");
    EXPECT_EQ(locale.groupMark, u".");
    EXPECT_EQ(locale.currencySymbol, u"\u20AC");
}

TEST(NumberLocale, UserHasADecimalMarkThatIsNoGroupMark) {
    const NumberLocale locale = NumberLocale::user();
    EXPECT_FALSE(locale.decimalMark.empty());
    EXPECT_NE(locale.decimalMark, locale.groupMark);
}

TEST(NumberLocale, UserLeavesTheProcessLocaleAlone) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    NumberLocale::user();
    EXPECT_EQ(std::setlocale(LC_ALL, nullptr), before);
}

}  // namespace
}  // namespace corvane
