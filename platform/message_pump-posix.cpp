#include "platform/message_pump.h"

namespace corvane {

void SystemMessagePump::yield() {}

}  // namespace corvane
