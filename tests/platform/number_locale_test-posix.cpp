#include <gtest/gtest.h>

#include "platform/number_locale.h"
#include "tests/support/user_language-posix.h"

namespace corvane {
namespace {

using testing::UserLanguage;

TEST(NumberLocale, UserOfThePlainLanguageWritesAsAPointDecimalUser) {
    for (const char* language : {"C", "C.UTF-8", "POSIX"}) {
        const UserLanguage user(language);
        const NumberLocale locale = NumberLocale::user();
        EXPECT_EQ(locale.decimalMark, u".") << language;
        EXPECT_EQ(locale.groupMark, u",") << language;
        EXPECT_EQ(locale.currencySymbol, u"$") << language;
    }
}

TEST(NumberLocale, UserOfAnUnknownLanguageWritesAPoint) {
    const UserLanguage user("xx_NOWHERE.UTF-8");
    const NumberLocale locale = NumberLocale::user();
    EXPECT_EQ(locale.decimalMark, u".");
    EXPECT_EQ(locale.groupMark, u",");
}

}  // namespace
}  // namespace corvane
