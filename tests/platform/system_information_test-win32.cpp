#include <gtest/gtest.h>
#include <windows.h>

#include "platform/system_information.h"

namespace corvane {
namespace {

using namespace std::string_literals;

TEST(WindowsInformation, TakesTheUsersLocale) {
    EXPECT_EQ(systemInformation().userLocaleId(), static_cast<std::int32_t>(GetUserDefaultLCID()));
}

TEST(WindowsInformation, DeliversALocaleItemWithItsNul) {
    EXPECT_EQ(systemInformation().localeText(LocaleItem::DecimalSeparator, 1031), u",\0"s);
    EXPECT_EQ(systemInformation().localeText(LocaleItem::ListSeparator, 1031), u";\0"s);
}

TEST(WindowsInformation, DeliversNothingForALocaleThatDoesNotExist) {
    EXPECT_EQ(systemInformation().localeText(LocaleItem::DecimalSeparator, 0x12345), u"");
}

TEST(WindowsInformation, ReadsTheVersionRecord) {
    OSVERSIONINFOA system{};
    system.dwOSVersionInfoSize = sizeof(system);
    ASSERT_TRUE(GetVersionExA(&system));
    const VersionRecord record = systemInformation().version();
    EXPECT_EQ(record.platform, 2);
    EXPECT_EQ(record.majorVersion, static_cast<std::int32_t>(system.dwMajorVersion));
    EXPECT_EQ(record.minorVersion, static_cast<std::int32_t>(system.dwMinorVersion));
    EXPECT_EQ(record.buildNumber, static_cast<std::int32_t>(system.dwBuildNumber));
    EXPECT_STREQ(record.servicePack.data(), system.szCSDVersion);
}

}  // namespace
}  // namespace corvane
