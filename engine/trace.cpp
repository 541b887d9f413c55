#include "engine/trace.h"

namespace corvane {
namespace {

thread_local std::int32_t debugOptionsWord = 0;

}  // namespace

std::int32_t debugOptions() noexcept { return debugOptionsWord; }
void setDebugOptions(std::int32_t options) noexcept { debugOptionsWord = options; }

}  // namespace corvane
