#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>

#include "platform/number_locale.h"

namespace corvane {
namespace {

// Sets LC_ALL for the life of the object.
class LanguageOfEnvironment {
public:
    explicit LanguageOfEnvironment(const char* language) {
        if (const char* before = std::getenv("LC_ALL")) before_ = before;
        setenv("LC_ALL", language, 1);
    }
    LanguageOfEnvironment(const LanguageOfEnvironment&) = delete;
    LanguageOfEnvironment& operator=(const LanguageOfEnvironment&) = delete;
    ~LanguageOfEnvironment() {
        if (before_)
            setenv("LC_ALL", before_->c_str(), 1);
        else
            unsetenv("LC_ALL");
    }

private:
    std::optional<std::string> before_;
};

TEST(NumberLocale, UserOfThePlainLanguageWritesAsAPointDecimalUser) {
    for (const char* language : {"C", "C.UTF-8", "POSIX"}) {
        const LanguageOfEnvironment environment(language);
        const NumberLocale locale = NumberLocale::user();
        EXPECT_EQ(locale.decimalMark, u".") << language;
        EXPECT_EQ(locale.groupMark, u",") << language;
        EXPECT_EQ(locale.currencySymbol, u"$") << language;
    }
}

TEST(NumberLocale, UserOfAnUnknownLanguageWritesAPoint) {
    const LanguageOfEnvironment environment("xx_NOWHERE.UTF-8");
    const NumberLocale locale = NumberLocale::user();
    EXPECT_EQ(locale.decimalMark, u".");
    EXPECT_EQ(locale.groupMark, u",");
}

}  // namespace
}  // namespace corvane
