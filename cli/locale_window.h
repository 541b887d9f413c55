#pragma once

#include <cstdint>

#include "platform/clsLocale.h"

namespace corvane {

/// Whether this system has windows for a locale at all.
bool hasLocaleWindow();

/// Shows the box of countries, set to `id`, and the figures in a window, where another country can be chosen, and
/// returns when the user has closed it; false, at once, when no window can be shown.
bool showLocaleWindow(const clsLocale& locale, std::int32_t id);

}  // namespace corvane
