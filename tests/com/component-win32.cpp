#include "tests/com/component.h"

namespace corvane::testing {
namespace {

// Loaded once for the program, which leaves it to the process's end.
template <typename Function>
Function entryPoint(const char* name) {
    static const HMODULE module = LoadLibraryW(CORVANE_COMPONENT);
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

}  // namespace

HRESULT getClassObject(REFCLSID classId, REFIID id, void** factory) {
    static const auto function = entryPoint<decltype(&DllGetClassObject)>("DllGetClassObject");
    return function(classId, id, factory);
}

HRESULT canUnloadNow() {
    static const auto function = entryPoint<decltype(&DllCanUnloadNow)>("DllCanUnloadNow");
    return function();
}

}  // namespace corvane::testing
