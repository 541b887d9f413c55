#include "cli/table_window.h"

namespace corvane {

bool hasTableWindow() { return false; }

bool showTableWindow(clsCommandList&, std::u16string_view) { return false; }

}  // namespace corvane
