#include "platform/number_locale.h"

namespace corvane {

NumberLocale NumberLocale::pointDecimal() {
    return {.localeId = 1033, .decimalMark = u".", .groupMark = u",", .currencySymbol = u"$"};
}

NumberLocale NumberLocale::commaDecimal() {
    return {.localeId = 1031, .decimalMark = u",", .groupMark = u".", .currencySymbol = u"\u20AC"};
}

}  // namespace corvane
