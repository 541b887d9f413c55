// The four entry points of an in-process server.

#include "host/com/class_factory.h"
#include "host/com/module.h"
#include "host/com/registration.h"

extern "C" {

HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID classId, REFIID id, void** factory) {
    return corvane::classObject(classId, id, factory);
}

HRESULT STDAPICALLTYPE DllCanUnloadNow() { return corvane::ModuleUse::none() ? S_OK : S_FALSE; }

HRESULT STDAPICALLTYPE DllRegisterServer() { return corvane::registerServer(); }

HRESULT STDAPICALLTYPE DllUnregisterServer() { return corvane::unregisterServer(); }
}
