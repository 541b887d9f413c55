#include "platform/clsLocale.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>

#include "platform/code_page.h"

namespace corvane {

namespace {

struct Country {
    std::int32_t localeId;
    std::u16string_view name;
};

// In the order of the selection box.
constexpr std::array<Country, 5> countries = {{
    {0, u"Unknown"},
    {1031, u"Germany"},
    {1033, u"English - US"},
    {1036, u"France"},
    {2057, u"English - UK"},
}};

constexpr std::int32_t ntFamily = 2;

enum WindowsType : std::int32_t { Windows2000 = 1, WindowsNT = 2, Windows98 = 3, Windows95 = 4, WindowsME = 5 };

// The row of a locale; the first one, "Unknown", for a locale of no row.
std::size_t countryRow(std::int32_t localeId) {
    const auto row = std::ranges::find(countries, localeId, &Country::localeId);
    return row == countries.end() ? 0 : static_cast<std::size_t>(std::distance(countries.begin(), row));
}

std::u16string decimal(std::int32_t number) {
    const std::string digits = std::to_string(number);
    return {digits.begin(), digits.end()};
}

}  // namespace

clsLocale::clsLocale(const SystemInformation& system) : system_(system), defaultLocaleId_(system.userLocaleId()) {}

std::u16string clsLocale::GetDecimalSeparator(std::int32_t tLocaleID) const {
    return separator(LocaleItem::DecimalSeparator, tLocaleID);
}

std::u16string clsLocale::GetListSeparator(std::int32_t tLocaleID) const {
    return separator(LocaleItem::ListSeparator, tLocaleID);
}

bool clsLocale::GetLocaleValues(std::u16string& tDecimal, std::u16string& tList, std::int32_t tLocaleID) const {
    tDecimal = GetDecimalSeparator(tLocaleID);
    tList = GetListSeparator(tLocaleID);
    return !tDecimal.empty() && !tList.empty();
}

void clsLocale::PopulateComboBoxWithCountries(CountryComboBox& tCmb, std::int32_t tDefaultID) const {
    tCmb.clear();
    for (const Country& country : countries) tCmb.add(country.name, country.localeId);
    tCmb.select(static_cast<std::int32_t>(countryRow(idOrDefault(tDefaultID))));
}

std::u16string clsLocale::LocaleIDtoCountryName(std::int32_t tLocaleID) const {
    return std::u16string(countries[countryRow(tLocaleID)].name);
}

std::int32_t clsLocale::GetWindowsType() const { return windowsTypeOf(system_.version()); }

std::u16string clsLocale::WindowsVersionToText(std::int32_t tVer) const {
    switch (tVer) {
        case Windows2000: return u"Windows 2000";
        case WindowsNT: return u"Windows NT";
        case Windows98: return u"Windows 98";
        case Windows95: return u"Windows 95";
        case WindowsME: return u"Windows ME";
        default: return u"Windows Unknown";
    }
}

std::u16string clsLocale::GetWindowsTypeText() const { return WindowsVersionToText(GetWindowsType()); }

std::u16string clsLocale::GetWindowsOSVersion() const { return windowsVersionOf(system_.version()); }

std::u16string clsLocale::GetWindowsServicePack() const { return servicePackOf(system_.version()); }

std::u16string clsLocale::separator(LocaleItem item, std::int32_t localeId) const {
    const std::u16string text = system_.localeText(item, idOrDefault(localeId));
    return text.substr(0, text.find(u'\0'));
}

std::int32_t clsLocale::idOrDefault(std::int32_t localeId) const {
    return localeId == omittedLocale ? defaultLocaleId_ : localeId;
}

std::int32_t windowsTypeOf(const VersionRecord& record) {
    if (record.platform == ntFamily) {
        // Kept: every later release counts as Windows 2000.
        return record.majorVersion < 5 ? WindowsNT : Windows2000;
    }
    if (record.majorVersion >= 5) return WindowsME;
    // Kept: 4.90, the number that Windows ME itself bears, counts as Windows 98.
    return record.majorVersion == 4 && record.minorVersion >= 1 ? Windows98 : Windows95;
}

std::u16string windowsVersionOf(const VersionRecord& record) {
    return decimal(record.majorVersion) + u'.' + decimal(record.minorVersion) + u'.' + decimal(record.buildNumber);
}

std::u16string servicePackOf(const VersionRecord& record) {
    const auto end = std::ranges::find(record.servicePack, '\0');
    if (end == record.servicePack.end()) return {};
    // Kept: unlike a separator, this text keeps its NUL.
    return fromSystemCodePage(std::string_view(record.servicePack.begin(), end + 1));
}

}  // namespace corvane
