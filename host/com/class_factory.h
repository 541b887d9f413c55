#pragma once

#include "host/com/automation.h"

namespace corvane {

/// The factory of a creatable class, as DllGetClassObject answers. E_POINTER, CLASS_E_CLASSNOTAVAILABLE,
/// E_NOINTERFACE, E_OUTOFMEMORY.
HRESULT classObject(REFCLSID classId, REFIID id, void** factory) noexcept;

}  // namespace corvane
