#pragma once

#include "host/com/automation.h"

namespace corvane {

/// Writes what COM needs to find the classes and the type library, for all users of this machine. All or nothing: what
/// a failed attempt has written is removed again. SELFREG_E_CLASS, SELFREG_E_TYPELIB.
HRESULT registerServer() noexcept;

/// Removes everything that `registerServer` writes; what is not there does not matter.
HRESULT unregisterServer() noexcept;

}  // namespace corvane
