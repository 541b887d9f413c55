#include <gtest/gtest.h>

#include "platform/message_pump.h"

namespace corvane {
namespace {

TEST(SystemMessagePump, HasNothingToDoWhereThreadsHaveNoMessages) {
    SystemMessagePump pump;
    MessagePump& anyPump = pump;
    EXPECT_NO_THROW(anyPump.yield());
}

}  // namespace
}  // namespace corvane
