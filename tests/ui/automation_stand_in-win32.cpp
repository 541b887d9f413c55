#include "tests/ui/automation_stand_in-win32.h"

#include <utility>

#include "platform/utf8.h"

namespace corvane::testing {
namespace {

std::string narrow(std::wstring_view text) { return toUtf8(std::u16string(text.begin(), text.end())); }

// The first of so many identifiers of members, which no other stand-in has.
DISPID takeIds(std::size_t count) {
    static DISPID next = 1;
    return std::exchange(next, next + static_cast<DISPID>(count));
}

}  // namespace

std::string show(const VARIANT& value) {
    switch (V_VT(&value)) {
        case VT_I4: return std::to_string(V_I4(&value));
        case VT_BOOL: return V_BOOL(&value) == VARIANT_TRUE ? "True" : V_BOOL(&value) == VARIANT_FALSE ? "False" : "?";
        case VT_BSTR: return '"' + narrow({V_BSTR(&value), SysStringLen(V_BSTR(&value))}) + '"';
        case VT_ERROR:
            if (V_ERROR(&value) == DISP_E_PARAMNOTFOUND) return "missing";
            [[fallthrough]];
        default: return "type " + std::to_string(V_VT(&value));
    }
}

StandIn::StandIn(Happenings& happenings, std::string name, std::vector<const wchar_t*> members)
    : happenings_(happenings),
      name_(std::move(name)),
      members_(std::move(members)),
      firstId_(takeIds(members_.size())) {
    ++happenings_.objects;
}

StandIn::~StandIn() { --happenings_.objects; }

HRESULT STDMETHODCALLTYPE StandIn::QueryInterface(REFIID id, void** object) {
    const bool isKnown = IsEqualIID(id, IID_IUnknown) != FALSE || IsEqualIID(id, IID_IDispatch) != FALSE;
    *object = isKnown ? this : nullptr;
    if (isKnown) AddRef();
    return isKnown ? S_OK : E_NOINTERFACE;
}

ULONG STDMETHODCALLTYPE StandIn::Release() {
    const LONG left = --references_;
    if (left == 0) delete this;
    return static_cast<ULONG>(left);
}

HRESULT STDMETHODCALLTYPE StandIn::GetIDsOfNames(REFIID, OLECHAR** names, UINT count, LCID, DISPID* ids) {
    ++happenings_.lookUps;
    if (count != 1) return E_INVALIDARG;
    for (std::size_t member = 0; member < members_.size(); ++member) {
        if (lstrcmpiW(members_[member], names[0]) != 0) continue;
        if (const std::optional<HRESULT> result = before(member, 0, nullptr, nullptr)) return *result;
        ids[0] = firstId_ + static_cast<DISPID>(member);
        return S_OK;
    }
    ids[0] = DISPID_UNKNOWN;
    return DISP_E_UNKNOWNNAME;
}

HRESULT STDMETHODCALLTYPE StandIn::Invoke(DISPID id, REFIID, LCID, WORD kind, DISPPARAMS* parameters, VARIANT* result,
                                          EXCEPINFO* fault, UINT*) {
    ++happenings_.calls;
    const auto member = static_cast<std::size_t>(id - firstId_);
    if (id < firstId_ || member >= members_.size()) return DISP_E_MEMBERNOTFOUND;
    if (const std::optional<HRESULT> status = before(member, kind, result, fault)) return *status;
    const Arguments arguments(*parameters);
    const bool isPut = kind == DISPATCH_PROPERTYPUT;
    if (isPut != arguments.endInNewValue()) return DISP_E_PARAMNOTOPTIONAL;
    if (isPut && arguments.count() == 1) addLine(narrow(members_[member]) + " = " + show(arguments[0]));
    if (kind == DISPATCH_METHOD) {
        std::string line = name_ + "." + narrow(members_[member]) + "(";
        for (UINT i = 0; i < arguments.count(); ++i) line += (i == 0 ? "" : ", ") + show(arguments[i]);
        addLine(line + ")");
    }
    return run(member, kind, arguments, result);
}

HRESULT StandIn::answer(VARIANT* result, IDispatch* object) {
    V_VT(result) = VT_DISPATCH;
    V_DISPATCH(result) = object;
    return S_OK;
}

HRESULT StandIn::answer(VARIANT* result, LONG number) {
    V_VT(result) = VT_I4;
    V_I4(result) = number;
    return S_OK;
}

std::optional<HRESULT> StandIn::before(std::size_t member, WORD kind, VARIANT* result, EXCEPINFO* fault) {
    if (!happenings_.onStep) return std::nullopt;
    // A copy: what it does may replace it.
    const auto onStep = happenings_.onStep;
    return onStep({happenings_.lookUps + happenings_.calls, members_[member], kind, result, fault});
}

}  // namespace corvane::testing
