// The component as a registered one: COM finds the DLL, loads it and lets it go. It is registered for the duration of
// the test program.

#include <gtest/gtest.h>

#include "tests/com/component.h"

namespace corvane::testing {
namespace {

class Registered : public ::testing::Environment {
public:
    void SetUp() override { ASSERT_EQ(call("DllRegisterServer"), S_OK); }
    void TearDown() override { EXPECT_EQ(call("DllUnregisterServer"), S_OK); }

private:
    static HRESULT call(const char* name) {
        const HMODULE module = LoadLibraryW(CORVANE_COMPONENT);
        if (module == nullptr) return E_FAIL;
        const auto function =
            reinterpret_cast<HRESULT(STDAPICALLTYPE*)()>(reinterpret_cast<void*>(GetProcAddress(module, name)));
        const HRESULT result = function();
        FreeLibrary(module);
        return result;
    }
};

[[maybe_unused]] ::testing::Environment* const registered = ::testing::AddGlobalTestEnvironment(new Registered);

}  // namespace

HRESULT getClassObject(REFCLSID classId, REFIID id, void** factory) {
    return CoGetClassObject(classId, CLSCTX_INPROC_SERVER, nullptr, id, factory);
}

HRESULT canUnloadNow() {
    const HMODULE module = GetModuleHandleW(L"CorvaneScript.dll");
    if (module == nullptr) return S_OK;
    const auto function = reinterpret_cast<decltype(&DllCanUnloadNow)>(
        reinterpret_cast<void*>(GetProcAddress(module, "DllCanUnloadNow")));
    return function();
}

}  // namespace corvane::testing
