#pragma once

#include <stdexcept>
#include <string>

#include "engine/event_table.h"
#include "host/com/automation.h"

namespace corvane::bench {

/// Ends the program: what was measured is worth nothing.
inline void require(bool condition, const std::string& fault) {
    if (!condition) throw std::runtime_error(fault);
}

/// An object that lives on the stack and is reached through IDispatch.
class LocalDispatch : public IDispatch {
public:
    LocalDispatch() = default;
    LocalDispatch(const LocalDispatch&) = delete;
    LocalDispatch& operator=(const LocalDispatch&) = delete;
    virtual ~LocalDispatch() = default;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        const bool known =
            IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, IID_IDispatch) || IsEqualIID(id, DIID___clsScriptControl);
        *object = known ? static_cast<IDispatch*>(this) : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        *count = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, OLECHAR**, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
};

/// A host's sink as C++ hosts write it: it counts, and answers each event with success.
class CountingSink final : public LocalDispatch {
public:
    std::size_t events = 0;
    std::size_t arguments = 0;

    HRESULT STDMETHODCALLTYPE Invoke(DISPID event, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        ++events;
        arguments += parameters->cArgs;
        *V_BOOLREF(&parameters->rgvarg[0]) = VARIANT_TRUE;
        if (event == static_cast<DISPID>(HostEvent::FunctionCalled)) *V_BOOLREF(&parameters->rgvarg[1]) = VARIANT_TRUE;
        return S_OK;
    }
};

}  // namespace corvane::bench
