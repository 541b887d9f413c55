#include "host/com/class_factory.h"
#include "host/com/module.h"
#include "tests/com/component.h"

namespace corvane::testing {

HRESULT getClassObject(REFCLSID classId, REFIID id, void** factory) { return classObject(classId, id, factory); }

HRESULT canUnloadNow() { return ModuleUse::none() ? S_OK : S_FALSE; }

}  // namespace corvane::testing
