// Lets every test of the program be a host with floating-point exceptions unmasked, where the environment says
// CORVANE_TRAPPING_HOST.

#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/floating_point.h"

namespace corvane::testing {
namespace {

/// As programs of some compilers run: invalid operations, divisions by zero and overflows trap.
constexpr FloatingPointState trapping{0x1372, 0x1900};

class TrappingHost : public ::testing::EmptyTestEventListener {
    void OnTestStart(const ::testing::TestInfo&) override { trapping.apply(); }
    void OnTestEnd(const ::testing::TestInfo&) override { ownFloatingPoint.apply(); }
};

[[maybe_unused]] const bool listening = [] {
    if (std::getenv("CORVANE_TRAPPING_HOST") != nullptr)
        ::testing::UnitTest::GetInstance()->listeners().Append(new TrappingHost);
    return true;
}();

}  // namespace
}  // namespace corvane::testing
