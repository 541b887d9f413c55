#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>

#include "platform/system_information.h"

namespace corvane {
namespace {

using namespace std::string_literals;

// Sets the variables that choose a locale, and sets them back.
class LanguageOfEnvironment {
public:
    LanguageOfEnvironment(const char* all, const char* numeric, const char* lang) {
        set(0, all);
        set(1, numeric);
        set(2, lang);
    }
    LanguageOfEnvironment(const LanguageOfEnvironment&) = delete;
    LanguageOfEnvironment& operator=(const LanguageOfEnvironment&) = delete;
    ~LanguageOfEnvironment() {
        for (int index = 0; index < 3; ++index) {
            if (before_[index])
                setenv(names[index], before_[index]->c_str(), 1);
            else
                unsetenv(names[index]);
        }
    }

private:
    static constexpr const char* names[] = {"LC_ALL", "LC_NUMERIC", "LANG"};

    void set(int index, const char* value) {
        if (const char* before = std::getenv(names[index])) before_[index] = before;
        if (value == nullptr)
            unsetenv(names[index]);
        else
            setenv(names[index], value, 1);
    }

    std::optional<std::string> before_[3];
};

TEST(PosixInformation, TakesTheLocaleFromTheEnvironmentsLanguage) {
    const std::pair<const char*, std::int32_t> rows[] = {
        {"de_DE.UTF-8", 1031}, {"de_DE@euro", 1031},  {"de", 1031},   {"en_US.UTF-8", 1033}, {"en_US", 1033},
        {"fr_FR.UTF-8", 1036}, {"en_GB.UTF-8", 2057}, {"C", 1033},    {"C.UTF-8", 1033},     {"POSIX", 1033},
        {"de_AT.UTF-8", 0},    {"es_ES.UTF-8", 0},    {"english", 0}, {nullptr, 1033},       {"", 1033},
    };
    for (const auto& [language, id] : rows) {
        const LanguageOfEnvironment environment(nullptr, nullptr, language);
        EXPECT_EQ(systemInformation().userLocaleId(), id) << (language == nullptr ? "(none)" : language);
    }
}

TEST(PosixInformation, PrefersTheMoreParticularVariable) {
    {
        const LanguageOfEnvironment environment(nullptr, "fr_FR", "de_DE");
        EXPECT_EQ(systemInformation().userLocaleId(), 1036);
    }
    {
        const LanguageOfEnvironment environment("en_GB", "fr_FR", "de_DE");
        EXPECT_EQ(systemInformation().userLocaleId(), 2057);
    }
    {
        const LanguageOfEnvironment environment("", "", "de_DE");
        EXPECT_EQ(systemInformation().userLocaleId(), 1031) << "an empty variable counts as none";
    }
}

TEST(PosixInformation, TakesTheUsersSeparatorsFromTheirLocale) {
    {
        const LanguageOfEnvironment environment("C", nullptr, nullptr);
        EXPECT_EQ(systemInformation().localeText(LocaleItem::DecimalSeparator, 1033), u".\0"s);
        EXPECT_EQ(systemInformation().localeText(LocaleItem::ListSeparator, 1033), u",\0"s);
    }
    {
        const LanguageOfEnvironment environment("de_DE.UTF-8", nullptr, nullptr);
        for (const std::int32_t id : {1031, 0, 0x400, 0x800}) {
            EXPECT_EQ(systemInformation().localeText(LocaleItem::DecimalSeparator, id), u",\0"s) << id;
            EXPECT_EQ(systemInformation().localeText(LocaleItem::ListSeparator, id), u";\0"s) << id;
        }
    }
}

TEST(PosixInformation, PresentsTheKernelsVersionAsNtFamily) {
    const VersionRecord record = systemInformation().version();
    EXPECT_EQ(record.platform, 2);
    EXPECT_GT(record.majorVersion, 0);
    EXPECT_EQ(record.servicePack[0], '\0');
}

}  // namespace
}  // namespace corvane
