#include <windows.h>

#include <algorithm>
#include <cstddef>

#include "platform/code_page.h"
#include "platform/system_information.h"

namespace corvane {

namespace {

class WindowsInformation final : public SystemInformation {
public:
    std::int32_t userLocaleId() const override { return static_cast<std::int32_t>(GetUserDefaultLCID()); }

    std::u16string localeText(LocaleItem item, std::int32_t localeId) const override {
        const auto locale = static_cast<LCID>(localeId);
        const auto type = static_cast<LCTYPE>(item);
        const int length = GetLocaleInfoA(locale, type, nullptr, 0);
        if (length <= 0) return {};
        std::string text(static_cast<std::size_t>(length), '\0');
        if (GetLocaleInfoA(locale, type, text.data(), length) == 0) return {};
        return fromSystemCodePage(text);
    }

    VersionRecord version() const override {
        OSVERSIONINFOA system{};
        static_assert(sizeof(system) == 148);
        system.dwOSVersionInfoSize = sizeof(system);
        VersionRecord record;
        if (GetVersionExA(&system) == FALSE) return record;
        record.platform = static_cast<std::int32_t>(system.dwPlatformId);
        record.majorVersion = static_cast<std::int32_t>(system.dwMajorVersion);
        record.minorVersion = static_cast<std::int32_t>(system.dwMinorVersion);
        record.buildNumber = static_cast<std::int32_t>(system.dwBuildNumber);
        static_assert(sizeof(system.szCSDVersion) == sizeof(record.servicePack));
        std::copy(std::begin(system.szCSDVersion), std::end(system.szCSDVersion), record.servicePack.begin());
        return record;
    }
};

}  // namespace

const SystemInformation& systemInformation() {
    static const WindowsInformation information;
    return information;
}

}  // namespace corvane
