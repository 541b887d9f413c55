#include <sys/utsname.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "platform/number_locale.h"
#include "platform/system_information.h"

// The figures come from the environment's language and from the C library's locale of that language:
//   locale id           the country of LC_ALL, else LC_NUMERIC, else LANG, when it is one that the component offers;
//                       0 for another country, English (United States) where no language is set
//   decimal separator   of the user's locale, or the country's own when another one is asked for
//   list separator      a comma, or a semicolon where the comma is the decimal separator
//   version             of the running kernel, presented as a member of the NT family, without a service pack
namespace corvane {

namespace {

constexpr std::int32_t unknownLocale = 0;
constexpr std::int32_t germanGermany = 1031;
constexpr std::int32_t englishUnitedStates = 1033;
constexpr std::int32_t frenchFrance = 1036;
constexpr std::int32_t englishUnitedKingdom = 2057;

constexpr std::int32_t ntFamily = 2;

struct LanguageRow {
    std::string_view name;
    std::int32_t localeId;
};

constexpr LanguageRow languages[] = {
    {"", englishUnitedStates},   {"C", englishUnitedStates},     {"POSIX", englishUnitedStates},
    {"en", englishUnitedStates}, {"en_US", englishUnitedStates}, {"en_GB", englishUnitedKingdom},
    {"de", germanGermany},       {"de_DE", germanGermany},       {"fr", frenchFrance},
    {"fr_FR", frenchFrance},
};

std::string_view environmentLanguage() {
    for (const char* variable : {"LC_ALL", "LC_NUMERIC", "LANG"}) {
        const char* value = std::getenv(variable);
        if (value != nullptr && *value != '\0') return value;
    }
    return {};
}

// Empty for a locale that is not known here.
std::u16string decimalSeparator(std::int32_t localeId, std::int32_t userLocaleId) {
    // The platform's numbers for "no particular locale", "the user's" and "the system's".
    const bool isUsers = localeId == userLocaleId || localeId == 0 || localeId == 0x400 || localeId == 0x800;
    if (isUsers) return NumberLocale::user().decimalMark;
    switch (localeId) {
        case germanGermany:
        case frenchFrance: return u",";
        case englishUnitedStates:
        case englishUnitedKingdom: return u".";
        default: return {};
    }
}

class PosixInformation final : public SystemInformation {
public:
    std::int32_t userLocaleId() const override {
        const std::string_view setting = environmentLanguage();
        const std::string_view language = setting.substr(0, setting.find_first_of(".@"));
        for (const LanguageRow& row : languages)
            if (row.name == language) return row.localeId;
        return unknownLocale;
    }

    std::u16string localeText(LocaleItem item, std::int32_t localeId) const override {
        const std::u16string decimal = decimalSeparator(localeId, userLocaleId());
        if (decimal.empty()) return {};
        std::u16string text = item == LocaleItem::DecimalSeparator ? decimal : decimal == u"," ? u";" : u",";
        text.push_back(u'\0');
        return text;
    }

    VersionRecord version() const override {
        VersionRecord record;
        record.platform = ntFamily;
        utsname names{};
        if (::uname(&names) == 0)
            std::sscanf(names.release, "%9d.%9d.%9d", &record.majorVersion, &record.minorVersion, &record.buildNumber);
        return record;
    }
};

}  // namespace

const SystemInformation& systemInformation() {
    static const PosixInformation information;
    return information;
}

}  // namespace corvane
