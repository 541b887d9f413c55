#include "tests/com/component.h"

namespace corvane::testing {

void Sink::succeed(DISPID event, DISPPARAMS& arguments) {
    *V_BOOLREF(&arguments.rgvarg[0]) = VARIANT_TRUE;
    constexpr DISPID functionCalled = 41;
    if (event == functionCalled) *V_BOOLREF(&arguments.rgvarg[1]) = VARIANT_TRUE;
}

HRESULT Sink::QueryInterface(REFIID id, void** object) {
    *object = nullptr;
    if (!IsEqualIID(id, IID_IUnknown) && !IsEqualIID(id, IID_IDispatch) && !IsEqualIID(id, DIID___clsScriptControl))
        return E_NOINTERFACE;
    *object = static_cast<IDispatch*>(this);
    AddRef();
    return S_OK;
}

HRESULT Sink::GetTypeInfoCount(UINT* count) {
    *count = 0;
    return S_OK;
}

ComReference<IConnectionPoint> connectionPointOf(IUnknown& object) {
    const auto container = queryFor<IConnectionPointContainer>(&object, IID_IConnectionPointContainer);
    ComReference<IConnectionPoint> point;
    if (container) container->FindConnectionPoint(DIID___clsScriptControl, point.receive());
    return point;
}

}  // namespace corvane::testing
