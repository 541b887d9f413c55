#pragma once

#include <memory>

#include "engine/operator_dialogs.h"
#include "platform/number_locale.h"

namespace corvane {

/// Whether this system can show the component's dialogs as windows.
bool hasWindowDialogs();

/// The operator dialogs as windows, the input box over the console that the program runs in; null where there are none.
std::unique_ptr<OperatorDialogs> makeWindowDialogs(const NumberLocale& locale);

}  // namespace corvane
