#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/automation_error.h"

namespace corvane {

/// `index` as a position in something of `size` elements; error 9 (subscript out of range) outside 0 to size - 1.
inline std::size_t subscript(std::int32_t index, std::size_t size) {
    if (index < 0 || static_cast<std::size_t>(index) >= size) throw automation_error(ErrorNumber::SubscriptOutOfRange);
    return static_cast<std::size_t>(index);
}

}  // namespace corvane
