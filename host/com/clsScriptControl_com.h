#pragma once

#include "host/clsScriptControl.h"
#include "host/com/automation.h"

namespace corvane {

/// A new clsScriptControl as automation reaches it. Throws error 7.
ComReference<IUnknown> createScriptControl();

/// What is behind an object that createScriptControl made, for observers and diagnostic views. It lives as long as the
/// object.
clsScriptControl& facadeOf(_clsScriptControl& object);

}  // namespace corvane
