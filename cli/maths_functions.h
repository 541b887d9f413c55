#pragma once

#include <string>
#include <string_view>

namespace corvane {

/// What the simulated host makes of a `MathsFunction` event.
struct MathsResult {
    float value = 0;
    std::string refusal;  ///< empty when there is a value
};

/// Computes the function called `name`, in any case, of the event's four parameters; each function says in its row how
/// many of them it reads.
MathsResult computeMathsFunction(std::u16string_view name, const float (&parameters)[4]);

}  // namespace corvane
