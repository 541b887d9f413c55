#include "tests/com/logged_control.h"

namespace corvane::testing {

std::vector<Binding> automationBindings() { return {{"EarlyBound", makeEarlyBoundControl}}; }

}  // namespace corvane::testing
