#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace corvane {

/// Items of a locale, by the platform's numbers.
enum class LocaleItem : std::int32_t {
    ListSeparator = 12,
    DecimalSeparator = 14,
};

/// The operating system's version, in the platform's form.
struct VersionRecord {
    std::int32_t platform = 0;  ///< 2 is the NT family
    std::int32_t majorVersion = 0;
    std::int32_t minorVersion = 0;
    std::int32_t buildNumber = 0;
    std::array<char, 128> servicePack{};  ///< a text and a NUL; a text that fills the field has no NUL
};

/// What the operating system tells about itself and about its user's regional settings.
class SystemInformation {
public:
    virtual ~SystemInformation() = default;
    /// The locale id of the user's regional settings.
    virtual std::int32_t userLocaleId() const = 0;
    /// An item as the system delivers it, its final NUL included; empty when the system does not know the locale.
    virtual std::u16string localeText(LocaleItem item, std::int32_t localeId) const = 0;
    virtual VersionRecord version() const = 0;
};

/// This machine; lives as long as the program.
const SystemInformation& systemInformation();

}  // namespace corvane
