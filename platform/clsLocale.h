#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/system_information.h"

namespace corvane {

/// Stands for a locale argument that is left out.
inline constexpr std::int32_t omittedLocale = -1;

/// A selection box that can be filled with the countries.
class CountryComboBox {
public:
    virtual ~CountryComboBox() = default;
    virtual void clear() = 0;
    /// Appends a row; `itemData` is a number that the row carries.
    virtual void add(std::u16string_view text, std::int32_t itemData) = 0;
    /// Selects a row, counted from 0.
    virtual void select(std::int32_t row) = 0;
};

/// Regional settings and the Windows family. A locale argument that is left out, or -1, means the user's default
/// locale.
class clsLocale {
public:
    /// Reads the user's default locale once. `system` must outlive the object.
    explicit clsLocale(const SystemInformation& system = systemInformation());

    /// Empty for a locale that the system does not know.
    std::u16string GetDecimalSeparator(std::int32_t tLocaleID = omittedLocale) const;
    /// Empty for a locale that the system does not know.
    std::u16string GetListSeparator(std::int32_t tLocaleID = omittedLocale) const;
    /// Both separators; false when the system does not know one of them.
    bool GetLocaleValues(std::u16string& tDecimal, std::u16string& tList, std::int32_t tLocaleID = omittedLocale) const;

    /// Replaces the box's rows by the countries and selects that of `tDefaultID`, the first ("Unknown") when it is none
    /// of theirs.
    void PopulateComboBoxWithCountries(CountryComboBox& tCmb, std::int32_t tDefaultID = omittedLocale) const;
    /// The country's name; "Unknown" for any other locale, -1 among them.
    std::u16string LocaleIDtoCountryName(std::int32_t tLocaleID) const;
    std::int32_t DefaultLocaleID() const { return defaultLocaleId_; }

    /// 1 Windows 2000 and all later of the NT family, 2 Windows NT, 3 Windows 98, 4 Windows 95, 5 Windows ME.
    std::int32_t GetWindowsType() const;
    /// The text of a Windows type; "Windows Unknown" for any other number.
    std::u16string WindowsVersionToText(std::int32_t tVer) const;
    std::u16string GetWindowsTypeText() const;
    /// Major version, minor version and build number, with points between.
    std::u16string GetWindowsOSVersion() const;
    /// The service pack's text with the NUL that ends it; empty when nothing ends it.
    std::u16string GetWindowsServicePack() const;

private:
    std::u16string separator(LocaleItem item, std::int32_t localeId) const;
    std::int32_t idOrDefault(std::int32_t localeId) const;

    const SystemInformation& system_;
    std::int32_t defaultLocaleId_;
};

/// The mappings of `clsLocale` from a version record.
std::int32_t windowsTypeOf(const VersionRecord& record);
std::u16string windowsVersionOf(const VersionRecord& record);
std::u16string servicePackOf(const VersionRecord& record);

}  // namespace corvane
