#pragma once

#include <string>

namespace corvane::testing {

/// What the process holds at this moment, after it gave back what it keeps for later: "NAME=NUMBER ...". Sizes in bytes
/// are called heap (what is in use) and private (what the process has for itself); the rest are counts.
std::string measurement();

}  // namespace corvane::testing
