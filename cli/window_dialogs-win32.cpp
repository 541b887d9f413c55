#include "cli/window_dialogs.h"
#include "ui/windows_dialogs.h"

namespace corvane {

bool hasWindowDialogs() { return true; }

std::unique_ptr<OperatorDialogs> makeWindowDialogs(const NumberLocale& locale) {
    return std::make_unique<WindowsDialogs>(locale);
}

}  // namespace corvane
