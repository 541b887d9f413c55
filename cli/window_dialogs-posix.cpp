#include "cli/window_dialogs.h"

namespace corvane {

bool hasWindowDialogs() { return false; }

std::unique_ptr<OperatorDialogs> makeWindowDialogs(const NumberLocale&) { return nullptr; }

}  // namespace corvane
