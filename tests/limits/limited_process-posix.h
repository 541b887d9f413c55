#pragma once

#include <cstddef>
#include <functional>
#include <string>

namespace corvane::testing {

/// What `work` answers in a process of its own, which gets `megabytes` more of address space than the test has,
/// and a minute. A process that ended otherwise answers "signal NUMBER" or "exception: TEXT".
std::string inLimitedProcess(std::size_t megabytes, const std::function<std::string()>& work);

}  // namespace corvane::testing
