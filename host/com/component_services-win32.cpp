#include "host/com/component_services.h"
#include "ui/windows_dialogs.h"

namespace corvane {

ComponentServices makeServices() { return {std::make_unique<WindowsDialogs>(), std::make_unique<SystemMessagePump>()}; }

}  // namespace corvane
