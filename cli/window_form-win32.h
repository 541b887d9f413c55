#pragma once

#include <windows.h>
// After windows.h, which it needs.
#include <oleauto.h>

namespace corvane {

/// A window as automation hosts hand over their forms: an object whose `Left`, `Top`, `Width` and `Height` are read by
/// name and are in twips. The object is its owner's: references to it are not counted.
class WindowForm final : public IDispatch {
public:
    explicit WindowForm(HWND window) : window_(window) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return DISP_E_BADINDEX; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, OLECHAR** names, UINT count, LCID, DISPID* ids) override;
    /// Fails for a window that is not there any more, and for one that is minimised or hidden.
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD kind, DISPPARAMS* parameters, VARIANT* result,
                                     EXCEPINFO*, UINT*) override;

private:
    HWND window_;
};

}  // namespace corvane
