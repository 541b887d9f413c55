#pragma once

#include <string_view>

#include "engine/clsCommandList.h"

namespace corvane {

/// Whether this system has windows for tables at all.
bool hasTableWindow();

/// Shows the diagnostic views of a loaded script in a window and returns when the user has closed it; false, at once,
/// when no window can be shown.
bool showTableWindow(clsCommandList& commandList, std::u16string_view title);

}  // namespace corvane
