#include "cli/locale_figures.h"

#include "cli/json_writer.h"
#include "engine/text_utilities.h"
#include "platform/utf8.h"

namespace corvane {
namespace {

std::u16string shown(std::u16string_view text) { return fromUtf8(quoted(text)); }

std::u16string numbered(std::int32_t number, std::u16string_view text) {
    return decimal(number).append(u", ").append(text);
}

}  // namespace

std::vector<LocaleFigure> localeFigures(const clsLocale& locale, std::int32_t id) {
    const std::int32_t asked = id == omittedLocale ? locale.DefaultLocaleID() : id;
    return {
        {u"Locale", numbered(asked, locale.LocaleIDtoCountryName(asked))},
        {u"Decimal separator", shown(locale.GetDecimalSeparator(id))},
        {u"List separator", shown(locale.GetListSeparator(id))},
        {u"Windows type", numbered(locale.GetWindowsType(), locale.GetWindowsTypeText())},
        {u"Version", locale.GetWindowsOSVersion()},
        {u"Service pack", shown(locale.GetWindowsServicePack())},
    };
}

}  // namespace corvane
