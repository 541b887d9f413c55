#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/clsLocale.h"

namespace corvane {

/// One thing that the component knows of the user's settings or of the system, in words.
struct LocaleFigure {
    std::u16string_view name;
    std::u16string value;
};

/// The figures of a locale and of the system; texts that may be blank or end unseen are quoted. The first ones, as many
/// as `localesOwnFigures` says, change with the locale.
std::vector<LocaleFigure> localeFigures(const clsLocale& locale, std::int32_t id);
inline constexpr std::size_t localesOwnFigures = 3;

}  // namespace corvane
