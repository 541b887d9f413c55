#include "bench/component/script_peer.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace corvane::bench {

const CLSID vbscript{0xB54F3741, 0x5B07, 0x11CF, {0xA4, 0xB0, 0x00, 0xAA, 0x00, 0x4A, 0x55, 0xE8}};
const CLSID jscript{0xF414C260, 0x6AC0, 0x11CF, {0xB6, 0xD1, 0x00, 0xAA, 0x00, 0xBB, 0xBB, 0x58}};

namespace {

constexpr std::array<std::wstring_view, 8> members{L"Increment", L"FunctionCalled", L"KeepGoing",    L"Park",
                                                   L"SCTest",    L"SCTestFull",     L"MoveToHeight", L"Info"};

}  // namespace

HRESULT ScriptHost::GetIDsOfNames(REFIID, OLECHAR** names, UINT count, LCID, DISPID* ids) {
    if (count != 1) return DISP_E_UNKNOWNNAME;
    const auto* const found = std::find(members.begin(), members.end(), std::wstring_view(names[0]));
    if (found == members.end()) return DISP_E_UNKNOWNNAME;
    ids[0] = static_cast<DISPID>(found - members.begin()) + 1;
    return S_OK;
}

HRESULT ScriptHost::Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT* result, EXCEPINFO*, UINT*) {
    ++calls;
    arguments += parameters->cArgs;
    if (result != nullptr) {
        V_VT(result) = VT_BOOL;
        V_BOOL(result) = VARIANT_TRUE;
    }
    return S_OK;
}

ScriptPeer::ScriptPeer(const CLSID& language, ScriptHost& host) : host_(host) {
    void* found = nullptr;
    require(CoCreateInstance(language, nullptr, CLSCTX_INPROC_SERVER, IID_IActiveScript, &found), "be there");
    engine_ = ComReference<IActiveScript>::adopt(static_cast<IActiveScript*>(found));
    parser_ = queryFor<IActiveScriptParse>(engine_.get(), __uuidof(IActiveScriptParse));
    require(parser_->InitNew(), "start");
    require(engine_->SetScriptSite(this), "take its site");
    require(engine_->AddNamedItem(L"host", SCRIPTITEM_ISVISIBLE | SCRIPTITEM_GLOBALMEMBERS), "take its host");
    require(engine_->SetScriptState(SCRIPTSTATE_CONNECTED), "begin");
}

ScriptPeer::~ScriptPeer() {
    procedures_ = {};
    engine_->Close();
}

void ScriptPeer::require(HRESULT result, const char* what) const {
    if (SUCCEEDED(result) && failedLine_ == 0) return;
    throw std::runtime_error(std::string("a script engine fails to ") + what + ": result " + std::to_string(result) +
                             ", line " + std::to_string(failedLine_));
}

void ScriptPeer::load(const std::u16string& text) {
    require(parser_->ParseScriptText(reinterpret_cast<const OLECHAR*>(text.c_str()), nullptr, nullptr, nullptr, 0, 0,
                                     SCRIPTTEXT_ISVISIBLE, nullptr, nullptr),
            "load a text");
}

void ScriptPeer::work() {
    if (!procedures_) {
        require(engine_->GetScriptDispatch(nullptr, procedures_.receive()), "show its procedures");
        std::wstring name = L"Work";
        OLECHAR* names = name.data();
        require(procedures_->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &work_), "find a procedure");
    }
    DISPPARAMS none{};
    require(
        procedures_->Invoke(work_, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr),
        "run a procedure");
}

HRESULT ScriptPeer::QueryInterface(REFIID id, void** object) {
    const bool known = IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, IID_IActiveScriptSite);
    *object = known ? static_cast<IActiveScriptSite*>(this) : nullptr;
    return known ? S_OK : E_NOINTERFACE;
}

HRESULT ScriptPeer::GetItemInfo(LPCOLESTR, DWORD mask, IUnknown** item, ITypeInfo** information) {
    if (information != nullptr) *information = nullptr;
    if ((mask & SCRIPTINFO_IUNKNOWN) == 0) return E_FAIL;
    *item = &host_;
    return S_OK;
}

HRESULT ScriptPeer::OnScriptError(IActiveScriptError* error) {
    DWORD context = 0;
    ULONG line = 0;
    LONG column = 0;
    error->GetSourcePosition(&context, &line, &column);
    failedLine_ = line + 1;
    return S_OK;
}

}  // namespace corvane::bench
