#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "platform/clsLocale.h"
#include "platform/utf8.h"
#include "tests/cli/ran.h"

namespace corvane {
namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;

TEST(LocaleCommand, WritesTheFiguresOfALocale) {
    const Ran result = ran({"locale", "1031"});
    EXPECT_EQ(result.code, ExitCode::Success);
    EXPECT_THAT(result.output, StartsWith("Locale             1031, Germany\n"
                                          "Decimal separator  \",\"\n"
                                          "List separator     \";\"\n"
                                          "Windows type       1, Windows 2000\n"
                                          "Version            "));
    EXPECT_THAT(result.output, testing::EndsWith("\nCountries\n\n"
                                                 "Locale  Country\n"
                                                 "------  ------------  --------\n"
                                                 "0       Unknown\n"
                                                 "1031    Germany       selected\n"
                                                 "1033    English - US\n"
                                                 "1036    France\n"
                                                 "2057    English - UK\n"));
    EXPECT_THAT(ran({"locale", "2057"}).output, HasSubstr("Decimal separator  \".\"\nList separator     \",\"\n"));
}

TEST(LocaleCommand, SelectsUnknownForALocaleThatTheComponentDoesNotOffer) {
    const std::string output = ran({"locale", "1034"}).output;
    EXPECT_THAT(output, HasSubstr("Locale             1034, Unknown\n"));
    EXPECT_THAT(output, HasSubstr("\n0       Unknown       selected\n"));
}

TEST(LocaleCommand, IsOfTheUsersLocaleWithoutAnother) {
    const clsLocale locale;
    const std::string line = "Locale             " + std::to_string(locale.DefaultLocaleID()) + ", " +
                             toUtf8(locale.LocaleIDtoCountryName(locale.DefaultLocaleID())) + "\n";
    EXPECT_THAT(ran({"locale"}).output, StartsWith(line));
}

// Kept: the text ends with a NUL.
TEST(LocaleCommand, ShowsTheEndOfTheServicePack) {
    EXPECT_THAT(ran({"locale"}).output, testing::ContainsRegex("Service pack       \".*\\\\u0000\"\n"));
}

TEST(LocaleCommand, WritesJson) {
    const clsLocale locale;
    const auto written = json::parse(ran({"locale", "1036", "--json"}).output);
    const json expected = {
        {"locale", 1036},
        {"country", "France"},
        {"decimalSeparator", toUtf8(locale.GetDecimalSeparator(1036))},
        {"listSeparator", toUtf8(locale.GetListSeparator(1036))},
        {"windowsType", 1},
        {"windowsTypeText", "Windows 2000"},
        {"windowsVersion", toUtf8(locale.GetWindowsOSVersion())},
        {"servicePack", toUtf8(locale.GetWindowsServicePack())},
        {"countries", json::array({{{"locale", 0}, {"country", "Unknown"}},
                                   {{"locale", 1031}, {"country", "Germany"}},
                                   {{"locale", 1033}, {"country", "English - US"}},
                                   {{"locale", 1036}, {"country", "France"}},
                                   {{"locale", 2057}, {"country", "English - UK"}}})},
        {"selected", 3},
    };
    EXPECT_EQ(written, expected);
    EXPECT_EQ(json::parse(ran({"locale", "--json"}).output)["locale"], locale.DefaultLocaleID());
}

}  // namespace
}  // namespace corvane
