#pragma once

#include "host/com/automation.h"

/// The type library that the module bears.
namespace corvane {

/// The full path of the module that this code is in. Throws error 7.
std::u16string modulePath();

/// Loads the library from the module itself, registered or not.
HRESULT loadTypeLibrary(ComReference<ITypeLib>& library) noexcept;

/// The description of a published class, interface or event interface.
HRESULT loadTypeInfo(REFGUID id, ComReference<ITypeInfo>& information) noexcept;

}  // namespace corvane
