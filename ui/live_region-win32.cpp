#include "ui/live_region-win32.h"
// After windows.h, which it needs.
#include <oleacc.h>

namespace corvane {
namespace {

// The property that says how urgent the text is, and the class that keeps it.
constexpr GUID liveSetting = {0xc12bcd8e, 0x2a8e, 0x4950, {0x8a, 0xe7, 0x36, 0x25, 0x11, 0x1d, 0x58, 0xeb}};
constexpr GUID propertyKeeper = {0xb5f8350b, 0x0548, 0x48b1, {0xa6, 0xee, 0x88, 0xbd, 0x00, 0xb4, 0xa5, 0xe7}};
constexpr GUID propertyKeeperInterface = {0x6e26e776, 0x04f0, 0x495d, {0x80, 0xe4, 0x33, 0x30, 0x35, 0x2e, 0x31, 0x69}};
constexpr LONG polite = 1;

template <typename Step>
void withPropertyKeeper(Step step) {
    IAccPropServices* keeper = nullptr;
    if (FAILED(CoCreateInstance(propertyKeeper, nullptr, CLSCTX_INPROC_SERVER, propertyKeeperInterface,
                                reinterpret_cast<void**>(&keeper))))
        return;
    step(*keeper);
    keeper->Release();
}

}  // namespace

LiveRegion::LiveRegion(HWND label) : label_(label) {
    withPropertyKeeper([label](IAccPropServices& keeper) {
        VARIANT setting;
        V_VT(&setting) = VT_I4;
        V_I4(&setting) = polite;
        keeper.SetHwndProp(label, static_cast<DWORD>(OBJID_CLIENT), CHILDID_SELF, liveSetting, setting);
    });
}

LiveRegion::~LiveRegion() {
    withPropertyKeeper([this](IAccPropServices& keeper) {
        keeper.ClearHwndProps(label_, static_cast<DWORD>(OBJID_CLIENT), CHILDID_SELF, &liveSetting, 1);
    });
}

void LiveRegion::announce() const {
    NotifyWinEvent(EVENT_OBJECT_LIVEREGIONCHANGED, label_, OBJID_CLIENT, CHILDID_SELF);
}

}  // namespace corvane
