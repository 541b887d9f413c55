#include "cli/locale_window.h"

namespace corvane {

bool hasLocaleWindow() { return false; }

bool showLocaleWindow(const clsLocale&, std::int32_t) { return false; }

}  // namespace corvane
