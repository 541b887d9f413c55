#include <clocale>
#include <cwctype>

#include "platform/text_case.h"

namespace corvane {

namespace {

// Not the user's locale: a script's names must not change their meaning with it (Turkish has its own i). Every current
// C library has this one built in; on another the null locale leaves letters beyond ASCII as they are.
locale_t unicodeLocale() {
    static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    return locale;
}

}  // namespace

char16_t toLowerBeyondAscii(char16_t unit) {
    const locale_t locale = unicodeLocale();
    const bool isSurrogate = unit >= 0xD800 && unit < 0xE000;
    if (locale == nullptr || isSurrogate) return unit;
    const std::wint_t lower = towlower_l(unit, locale);
    return lower <= 0xFFFF ? static_cast<char16_t>(lower) : unit;
}

}  // namespace corvane
