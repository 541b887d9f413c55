#include <langinfo.h>
#include <locale.h>
#include <wchar.h>

#include <memory>
#include <type_traits>

#include "platform/number_locale.h"

namespace corvane {

namespace {

struct FreeLocale {
    void operator()(locale_t locale) const noexcept { freelocale(locale); }
};
using OwnedLocale = std::unique_ptr<std::remove_pointer_t<locale_t>, FreeLocale>;

// Makes a locale this thread's own for a while; the process keeps its locale.
class ThreadLocale {
public:
    explicit ThreadLocale(locale_t locale) : before_(uselocale(locale)) {}
    ThreadLocale(const ThreadLocale&) = delete;
    ThreadLocale& operator=(const ThreadLocale&) = delete;
    ~ThreadLocale() { uselocale(before_); }

private:
    locale_t before_;
};

// `bytes` in the encoding of the thread's locale; empty when they are not in that encoding.
std::u16string fromThreadEncoding(const char* bytes) {
    wchar_t wide[32];
    mbstate_t state{};
    const std::size_t length = mbsrtowcs(wide, &bytes, std::size(wide), &state);
    if (length == static_cast<std::size_t>(-1)) return {};
    std::u16string text;
    for (std::size_t i = 0; i < length; ++i) {
        const auto point = static_cast<char32_t>(wide[i]);
        if (point < 0x10000) {
            text.push_back(static_cast<char16_t>(point));
        } else {
            text.push_back(static_cast<char16_t>(0xD7C0 + (point >> 10)));
            text.push_back(static_cast<char16_t>(0xDC00 + (point & 0x3FF)));
        }
    }
    return text;
}

}  // namespace

NumberLocale NumberLocale::user() {
    const OwnedLocale environment(newlocale(LC_ALL_MASK, "", nullptr));
    if (!environment) return pointDecimal();
    const ThreadLocale settings(environment.get());

    NumberLocale locale = pointDecimal();
    const std::u16string decimalMark = fromThreadEncoding(nl_langinfo_l(RADIXCHAR, environment.get()));
    const std::u16string groupMark = fromThreadEncoding(nl_langinfo_l(THOUSEP, environment.get()));
    // The plain language of a system without settings groups nothing. Its users get the settings that a Windows without
    // any has, so that a script means the same on both.
    if (decimalMark == locale.decimalMark && groupMark.empty()) return locale;
    if (!decimalMark.empty()) locale.decimalMark = decimalMark;
    locale.groupMark = groupMark;
    // The first character tells where the symbol stands beside an amount.
    const char* currency = nl_langinfo_l(CRNCYSTR, environment.get());
    locale.currencySymbol = fromThreadEncoding(*currency == '\0' ? currency : currency + 1);
    return locale;
}

}  // namespace corvane
