#pragma once

#include <cstdint>
#include <string>

namespace corvane {

/// How one user writes numbers: a snapshot of the regional settings.
struct NumberLocale {
    std::uint32_t localeId = 1033;         ///< what Windows' conversion routines are handed; unused elsewhere
    std::u16string decimalMark = u".";     ///< at least one character
    std::u16string groupMark = u",";       ///< between groups of digits; may be empty
    std::u16string currencySymbol = u"$";  ///< admitted by the general numeric test; may be empty

    /// The present settings of the user who runs this process; a point decimal where they cannot be had.
    static NumberLocale user();
    /// English (United States): 1,234.5
    static NumberLocale pointDecimal();
    /// German (Germany): 1.234,5
    static NumberLocale commaDecimal();
};

}  // namespace corvane
