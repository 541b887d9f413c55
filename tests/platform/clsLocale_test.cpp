#include "platform/clsLocale.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <tuple>
#include <vector>

#include "platform/number_locale.h"

namespace corvane {
namespace {

using namespace std::string_literals;

class FakeSystem final : public SystemInformation {
public:
    std::int32_t userLocaleId() const override {
        ++askedForUserLocale;
        return userLocale;
    }
    std::u16string localeText(LocaleItem item, std::int32_t localeId) const override {
        asked.emplace_back(static_cast<int>(item), localeId);
        return item == LocaleItem::DecimalSeparator ? decimal : list;
    }
    VersionRecord version() const override { return record; }

    std::int32_t userLocale = 1031;
    std::u16string decimal = u",\0"s;
    std::u16string list = u";\0"s;
    VersionRecord record;
    mutable int askedForUserLocale = 0;
    mutable std::vector<std::pair<int, std::int32_t>> asked;
};

class FakeComboBox final : public CountryComboBox {
public:
    void clear() override { rows.clear(); }
    void add(std::u16string_view text, std::int32_t itemData) override { rows.emplace_back(text, itemData); }
    void select(std::int32_t row) override { selected = row; }

    std::vector<std::pair<std::u16string, std::int32_t>> rows = {{u"an old row", 7}};
    std::int32_t selected = -1;
};

VersionRecord versionOf(std::int32_t platform, std::int32_t major, std::int32_t minor) {
    VersionRecord record;
    record.platform = platform;
    record.majorVersion = major;
    record.minorVersion = minor;
    return record;
}

TEST(ClsLocale, ReadsTheUsersLocaleOnce) {
    FakeSystem system;
    const clsLocale locale(system);
    system.userLocale = 1036;
    EXPECT_EQ(locale.DefaultLocaleID(), 1031);
    EXPECT_EQ(locale.GetDecimalSeparator(), u",");
    EXPECT_EQ(system.askedForUserLocale, 1);
    EXPECT_EQ(system.asked.back().second, 1031);
}

TEST(ClsLocale, AsksForTheSeparatorsByTheirItems) {
    const FakeSystem system;
    const clsLocale locale(system);
    EXPECT_EQ(locale.GetDecimalSeparator(2057), u",");
    EXPECT_EQ(locale.GetListSeparator(1036), u";");
    EXPECT_EQ(system.asked, (std::vector<std::pair<int, std::int32_t>>{{14, 2057}, {12, 1036}}));
}

TEST(ClsLocale, TakesMinusOneForAnOmittedLocale) {
    const FakeSystem system;
    const clsLocale locale(system);
    std::u16string decimal, list;
    locale.GetDecimalSeparator(-1);
    locale.GetListSeparator(-1);
    locale.GetLocaleValues(decimal, list, -1);
    EXPECT_EQ(system.asked,
              (std::vector<std::pair<int, std::int32_t>>{{14, 1031}, {12, 1031}, {14, 1031}, {12, 1031}}));
    FakeComboBox box;
    locale.PopulateComboBoxWithCountries(box, -1);
    EXPECT_EQ(box.selected, 1);
}

TEST(ClsLocale, UsesEveryOtherLocaleAsItIs) {
    const FakeSystem system;
    const clsLocale locale(system);
    for (const std::int32_t id : {0, 1, -2, 0x7FFFFFFF}) {
        locale.GetDecimalSeparator(id);
        EXPECT_EQ(system.asked.back().second, id);
    }
}

TEST(ClsLocale, CutsASeparatorBeforeItsFirstNul) {
    FakeSystem system;
    const clsLocale locale(system);
    const std::pair<std::u16string, std::u16string> rows[] = {
        {u".\0"s, u"."}, {u"ab\0cd\0"s, u"ab"}, {u"\0x"s, u""}, {u"."s, u"."}, {u""s, u""},
    };
    for (const auto& [given, expected] : rows) {
        system.decimal = given;
        EXPECT_EQ(locale.GetDecimalSeparator(), expected);
    }
}

TEST(ClsLocale, GivesBothSeparatorsAtOnce) {
    FakeSystem system;
    const clsLocale locale(system);
    std::u16string decimal = u"old", list = u"old";
    EXPECT_TRUE(locale.GetLocaleValues(decimal, list));
    EXPECT_EQ(decimal, u",");
    EXPECT_EQ(list, u";");
    system.list.clear();
    EXPECT_FALSE(locale.GetLocaleValues(decimal, list, 99999));
    EXPECT_EQ(list, u"");
    system.list = u";\0"s;
    system.decimal.clear();
    EXPECT_FALSE(locale.GetLocaleValues(decimal, list, 99999));
    EXPECT_EQ(decimal, u"");
    EXPECT_EQ(list, u";");
}

TEST(ClsLocale, FillsTheBoxWithTheCountriesInOrder) {
    const FakeSystem system;
    FakeComboBox box;
    clsLocale(system).PopulateComboBoxWithCountries(box);
    EXPECT_EQ(
        box.rows,
        (std::vector<std::pair<std::u16string, std::int32_t>>{
            {u"Unknown", 0}, {u"Germany", 1031}, {u"English - US", 1033}, {u"France", 1036}, {u"English - UK", 2057}}));
}

TEST(ClsLocale, SelectsTheRowOfTheLocale) {
    const FakeSystem system;
    const clsLocale locale(system);
    const std::pair<std::int32_t, std::int32_t> rows[] = {
        {0, 0}, {1031, 1}, {1033, 2}, {1036, 3}, {2057, 4}, {1034, 0}, {-2, 0},
    };
    for (const auto& [id, row] : rows) {
        FakeComboBox box;
        locale.PopulateComboBoxWithCountries(box, id);
        EXPECT_EQ(box.selected, row) << id;
    }
}

TEST(ClsLocale, SelectsUnknownForADefaultLocaleOutsideTheTable) {
    FakeSystem system;
    system.userLocale = 1034;
    FakeComboBox box;
    clsLocale(system).PopulateComboBoxWithCountries(box);
    EXPECT_EQ(box.selected, 0);
}

TEST(ClsLocale, NamesTheCountryOfALocale) {
    const FakeSystem system;
    const clsLocale locale(system);
    const std::pair<std::int32_t, std::u16string> rows[] = {
        {0, u"Unknown"},         {1031, u"Germany"}, {1033, u"English - US"}, {1036, u"France"},
        {2057, u"English - UK"}, {1034, u"Unknown"}, {-1, u"Unknown"},
    };
    for (const auto& [id, name] : rows) EXPECT_EQ(locale.LocaleIDtoCountryName(id), name) << id;
}

TEST(ClsLocale, MapsVersionsToWindowsTypes) {
    const std::tuple<VersionRecord, int> rows[] = {
        {versionOf(2, 3, 51), 2}, {versionOf(2, 4, 0), 2},  {versionOf(2, 5, 0), 1}, {versionOf(2, 5, 1), 1},
        {versionOf(2, 6, 2), 1},  {versionOf(2, 10, 0), 1}, {versionOf(1, 4, 0), 4}, {versionOf(1, 4, 1), 3},
        {versionOf(1, 4, 10), 3}, {versionOf(1, 5, 0), 5},  {versionOf(1, 6, 0), 5}, {versionOf(1, 3, 95), 4},
        {versionOf(0, 3, 10), 4}, {versionOf(0, 5, 0), 5},  {versionOf(3, 4, 0), 4},
    };
    for (const auto& [record, type] : rows)
        EXPECT_EQ(windowsTypeOf(record), type)
            << record.platform << ' ' << record.majorVersion << '.' << record.minorVersion;
}

TEST(ClsLocale, CountsEveryLaterNtReleaseAsWindows2000) {
    for (std::int32_t major = 5; major < 20; ++major) EXPECT_EQ(windowsTypeOf(versionOf(2, major, 90)), 1);
}

TEST(ClsLocale, CountsRelease490AsWindows98) { EXPECT_EQ(windowsTypeOf(versionOf(1, 4, 90)), 3); }

TEST(ClsLocale, NamesTheWindowsTypes) {
    const FakeSystem system;
    const clsLocale locale(system);
    const std::pair<std::int32_t, std::u16string> rows[] = {
        {1, u"Windows 2000"}, {2, u"Windows NT"},      {3, u"Windows 98"},      {4, u"Windows 95"},
        {5, u"Windows ME"},   {0, u"Windows Unknown"}, {6, u"Windows Unknown"}, {-1, u"Windows Unknown"},
    };
    for (const auto& [type, name] : rows) EXPECT_EQ(locale.WindowsVersionToText(type), name) << type;
}

TEST(ClsLocale, AnswersFromTheSystemsVersion) {
    FakeSystem system;
    system.record = versionOf(1, 4, 10);
    system.record.buildNumber = 67766222;
    std::strcpy(system.record.servicePack.data(), " A ");
    const clsLocale locale(system);
    EXPECT_EQ(locale.GetWindowsType(), 3);
    EXPECT_EQ(locale.GetWindowsTypeText(), u"Windows 98");
    EXPECT_EQ(locale.GetWindowsOSVersion(), u"4.10.67766222");
    EXPECT_EQ(locale.GetWindowsServicePack(), u" A \0"s);
}

TEST(ClsLocale, WritesTheVersionInPlainDecimal) {
    VersionRecord record = versionOf(2, 10, 0);
    EXPECT_EQ(windowsVersionOf(record), u"10.0.0");
    record.buildNumber = 19045;
    EXPECT_EQ(windowsVersionOf(record), u"10.0.19045");
}

TEST(ClsLocale, KeepsTheNulOfTheServicePack) {
    VersionRecord record;
    EXPECT_EQ(servicePackOf(record), u"\0"s);
    std::strcpy(record.servicePack.data(), "Service Pack 1");
    record.servicePack[20] = 'x';
    EXPECT_EQ(servicePackOf(record), u"Service Pack 1\0"s);
    record.servicePack.fill('y');
    record.servicePack.back() = '\0';
    EXPECT_EQ(servicePackOf(record), std::u16string(127, u'y') + u'\0');
}

TEST(ClsLocale, HasNoServicePackWhenNoNulEndsIt) {
    VersionRecord record;
    record.servicePack.fill('y');
    EXPECT_EQ(servicePackOf(record), u"");
}

TEST(ClsLocale, KnowsThisMachine) {
    const clsLocale locale;
    EXPECT_EQ(locale.DefaultLocaleID(), systemInformation().userLocaleId());
    EXPECT_EQ(locale.GetDecimalSeparator().size(), 1U);
    EXPECT_EQ(locale.GetDecimalSeparator(), NumberLocale::user().decimalMark);
    EXPECT_EQ(locale.GetListSeparator().size(), 1U);
    EXPECT_EQ(locale.GetDecimalSeparator(1033), u".");
    EXPECT_EQ(locale.GetListSeparator(1033), u",");
    EXPECT_EQ(locale.GetDecimalSeparator(1031), u",");
    EXPECT_EQ(locale.GetListSeparator(1031), u";");
    EXPECT_EQ(locale.GetDecimalSeparator(1036), u",");
    EXPECT_EQ(locale.GetListSeparator(1036), u";");
    EXPECT_EQ(locale.GetDecimalSeparator(2057), u".");
    EXPECT_EQ(locale.GetListSeparator(2057), u",");
    EXPECT_EQ(locale.GetDecimalSeparator(0x12345), u"") << "a locale that no system knows";
    EXPECT_EQ(locale.GetWindowsType(), 1);
    EXPECT_EQ(std::ranges::count(locale.GetWindowsOSVersion(), u'.'), 2);
    EXPECT_EQ(locale.GetWindowsServicePack().back(), u'\0');
}

}  // namespace
}  // namespace corvane
