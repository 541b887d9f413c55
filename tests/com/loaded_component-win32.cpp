#include "tests/com/component.h"
#include "tests/com/loaded_component.h"

namespace corvane::testing {
namespace {

HMODULE module = nullptr;

template <typename Function>
Function entryPoint(const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

}  // namespace

LoadedComponent::LoadedComponent() { module = LoadLibraryW(CORVANE_COMPONENT); }
LoadedComponent::~LoadedComponent() { FreeLibrary(std::exchange(module, nullptr)); }

bool LoadedComponent::isInTheProcess() { return GetModuleHandleW(L"CorvaneScript.dll") != nullptr; }

HRESULT getClassObject(REFCLSID classId, REFIID id, void** factory) {
    return entryPoint<decltype(&DllGetClassObject)>("DllGetClassObject")(classId, id, factory);
}

HRESULT canUnloadNow() { return entryPoint<decltype(&DllCanUnloadNow)>("DllCanUnloadNow")(); }

}  // namespace corvane::testing
