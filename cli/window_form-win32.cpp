#include "cli/window_form-win32.h"

#include <iterator>

#include "platform/desktop-win32.h"

namespace corvane {
namespace {

// A property's identifier is its place here, counted from 1.
constexpr const wchar_t* properties[] = {L"Left", L"Top", L"Width", L"Height"};

}  // namespace

HRESULT STDMETHODCALLTYPE WindowForm::QueryInterface(REFIID id, void** object) {
    const bool isKnown = IsEqualIID(id, IID_IUnknown) != FALSE || IsEqualIID(id, IID_IDispatch) != FALSE;
    *object = isKnown ? this : nullptr;
    return isKnown ? S_OK : E_NOINTERFACE;
}

HRESULT STDMETHODCALLTYPE WindowForm::GetTypeInfoCount(UINT* count) {
    *count = 0;
    return S_OK;
}

HRESULT STDMETHODCALLTYPE WindowForm::GetIDsOfNames(REFIID, OLECHAR** names, UINT count, LCID, DISPID* ids) {
    for (UINT i = 0; i < count; ++i) ids[i] = DISPID_UNKNOWN;
    for (std::size_t i = 0; i < std::size(properties); ++i)
        if (count == 1 && lstrcmpiW(names[0], properties[i]) == 0) ids[0] = static_cast<DISPID>(i + 1);
    return count == 1 && ids[0] != DISPID_UNKNOWN ? S_OK : DISP_E_UNKNOWNNAME;
}

HRESULT STDMETHODCALLTYPE WindowForm::Invoke(DISPID id, REFIID, LCID, WORD kind, DISPPARAMS* parameters,
                                             VARIANT* result, EXCEPINFO*, UINT*) {
    if (id < 1 || id > 4 || (kind & DISPATCH_PROPERTYGET) == 0 || result == nullptr) return DISP_E_MEMBERNOTFOUND;
    if (parameters->cArgs != 0) return DISP_E_BADPARAMCOUNT;
    RECT area{};
    if (IsWindowVisible(window_) == FALSE || IsIconic(window_) != FALSE || GetWindowRect(window_, &area) == FALSE)
        return E_FAIL;
    const LONG pixels[] = {area.left, area.top, area.right - area.left, area.bottom - area.top};
    V_VT(result) = VT_R4;
    V_R4(result) = static_cast<float>(static_cast<double>(pixels[id - 1]) * twipsPerInch / systemDpi());
    return S_OK;
}

}  // namespace corvane
