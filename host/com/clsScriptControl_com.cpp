#include "host/com/clsScriptControl_com.h"

#include "host/clsScriptControl.h"
#include "host/com/automation_object.h"
#include "host/com/com_variant.h"
#include "host/com/component_services.h"
#include "host/com/connection_point.h"
#include "host/com/event_dispatch.h"

namespace corvane {
namespace {

class ScriptControlObject final : public AutomationObject<_clsScriptControl>, public IConnectionPointContainer {
public:
    ScriptControlObject()
        : AutomationObject(publishedScriptControl),
          services_(hostArithmetic()),
          control_({services_, services_}),
          events_(*this, DIID___clsScriptControl),
          relay_(events_, hostArithmetic()) {
        control_.setEventSink(&relay_);
    }

    // IUnknown

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        return AutomationObject::QueryInterface(id, object);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return AutomationObject::AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return AutomationObject::Release(); }

    // _clsScriptControl

    HRESULT STDMETHODCALLTYPE put_TestMode(VARIANT_BOOL* tNewValue) override {
        return call([&] { control_.setTestMode(*tNewValue != 0); }, tNewValue);
    }
    HRESULT STDMETHODCALLTYPE get_ScriptFrom(::enumScriptSource* tValue) override {
        return call([&] { *tValue = static_cast<::enumScriptSource>(control_.ScriptFrom()); }, tValue);
    }
    HRESULT STDMETHODCALLTYPE get_ScriptFile(BSTR* tValue) override {
        if (tValue != nullptr) *tValue = nullptr;
        return call([&] { *tValue = newText(control_.ScriptFile()); }, tValue);
    }
    HRESULT STDMETHODCALLTYPE get_ScriptDB_UID(LONG* tValue) override {
        return call([&] { *tValue = control_.ScriptDB_UID(); }, tValue);
    }
    HRESULT STDMETHODCALLTYPE get_ScriptDB_Version(LONG* tValue) override {
        return call([&] { *tValue = control_.ScriptDB_Version(); }, tValue);
    }
    HRESULT STDMETHODCALLTYPE LoadScript_FromFile(BSTR* tScript, VARIANT_BOOL* tResult) override {
        if (tResult != nullptr) *tResult = VARIANT_FALSE;
        return call(
            [&] {
                const std::u16string script(viewOf(*tScript));
                *tResult = variantBool(control_.LoadScript_FromFile(script));
            },
            tScript, tResult);
    }
    HRESULT STDMETHODCALLTYPE LoadScript_FromScript(BSTR* tScriptString, BSTR* tScriptName, LONG* tUID, LONG* tVersion,
                                                    VARIANT_BOOL* tResult) override {
        if (tResult != nullptr) *tResult = VARIANT_FALSE;
        return call(
            [&] {
                // Copies: the host may free its own while it answers an event of the load.
                const std::u16string script(viewOf(*tScriptString));
                const std::u16string name(viewOf(*tScriptName));
                *tResult = variantBool(control_.LoadScript_FromScript(script, name, *tUID, *tVersion));
            },
            tScriptString, tScriptName, tUID, tVersion, tResult);
    }
    HRESULT STDMETHODCALLTYPE RunScript(VARIANT_BOOL* tResult) override {
        if (tResult != nullptr) *tResult = VARIANT_FALSE;
        return call([&] { *tResult = variantBool(control_.RunScript()); }, tResult);
    }
    HRESULT STDMETHODCALLTYPE FinishLoopFlag() override {
        return call([&] { control_.FinishLoopFlag(); });
    }
    HRESULT STDMETHODCALLTYPE put_DebugMode(::enumDebugOptions* tNewValue) override {
        return call(
            [&] {
                std::int32_t options = 0;
                copyNumber(options, *tNewValue);
                control_.setDebugMode(options);
            },
            tNewValue);
    }
    HRESULT STDMETHODCALLTYPE GetEnvironmentVariable(BSTR* tVal, BSTR* tResult) override {
        if (tResult != nullptr) *tResult = nullptr;
        return call([&] { *tResult = newText(control_.GetEnvironmentVariable(viewOf(*tVal))); }, tVal, tResult);
    }
    HRESULT STDMETHODCALLTYPE GetConstant(BSTR* tVal, BSTR* tResult) override {
        if (tResult != nullptr) *tResult = nullptr;
        return call([&] { *tResult = newText(control_.GetConstant(viewOf(*tVal))); }, tVal, tResult);
    }
    HRESULT STDMETHODCALLTYPE GetMemoryValue(BSTR* tVal, VARIANT* tResult) override {
        if (tResult != nullptr) VariantInit(tResult);
        return call([&] { setVariant(*tResult, control_.GetMemoryValue(viewOf(*tVal))); }, tVal, tResult);
    }
    HRESULT STDMETHODCALLTYPE GetEditable(SAFEARRAY** tStr, LONG* tCount) override {
        return call(
            [&] {
                StringTable table;
                std::int32_t count = 0;
                control_.GetEditable(table, count);
                if (count >= 1) replaceStringArray(*tStr, table);
                *tCount = count;
            },
            tStr, tCount);
    }
    HRESULT STDMETHODCALLTYPE EditDataVariable(LONG* tIndex, float* tNewValue, VARIANT_BOOL* tResult) override {
        if (tResult != nullptr) *tResult = VARIANT_FALSE;
        return call([&] { *tResult = variantBool(control_.EditDataVariable(*tIndex, *tNewValue)); }, tIndex, tNewValue,
                    tResult);
    }
    HRESULT STDMETHODCALLTYPE FunctionNameFromType(::enumCommandType* tType, VARIANT* tResult) override {
        if (tResult != nullptr) VariantInit(tResult);
        return call(
            [&] {
                std::int32_t kind = 0;
                copyNumber(kind, *tType);
                V_BSTR(tResult) = newText(control_.FunctionNameFromType(kind));
                V_VT(tResult) = VT_BSTR;
            },
            tType, tResult);
    }

    // IConnectionPointContainer

    HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints** enumerator) override {
        return enumerateConnectionPoints(&events_, enumerator);
    }
    HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID id, IConnectionPoint** point) override {
        if (point == nullptr) return E_POINTER;
        *point = nullptr;
        if (!IsEqualIID(id, DIID___clsScriptControl)) return CONNECT_E_NOCONNECTION;
        *point = ComReference<IConnectionPoint>(&events_).detach();
        return S_OK;
    }

    clsScriptControl& facade() noexcept { return control_; }

private:
    IUnknown* interfaceFor(REFIID id) noexcept override {
        if (IsEqualIID(id, IID_IConnectionPointContainer)) return static_cast<IConnectionPointContainer*>(this);
        return AutomationObject::interfaceFor(id);
    }

    HostSideServices services_;
    clsScriptControl control_;
    ConnectionPoint events_;
    EventRelay relay_;
};

}  // namespace

ComReference<IUnknown> createScriptControl() {
    return ComReference<IUnknown>(static_cast<_clsScriptControl*>(new ScriptControlObject));
}

clsScriptControl& facadeOf(_clsScriptControl& object) { return static_cast<ScriptControlObject&>(object).facade(); }

}  // namespace corvane
