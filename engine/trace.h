#pragma once

#include <cstdint>
#include <string_view>

#include "engine/enumerations.h"

namespace corvane {

/// Receives the trace lines of loads and runs. An engine without one composes no line.
class TraceSink {
public:
    virtual ~TraceSink() = default;
    virtual void trace(enumDebugOptions category, std::u16string_view line) = 0;
};

/// The debug options word: one for each thread, shared by every engine on it. A combination of enumDebugOptions bits,
/// 0 at first; other bits are kept and mean nothing.
std::int32_t debugOptions() noexcept;
void setDebugOptions(std::int32_t options) noexcept;

}  // namespace corvane
