#pragma once

#include <functional>
#include <string>

#include "host/com/automation.h"

/// The component as a host reaches it: on Windows through the real DLL, unregistered, by its class objects; elsewhere
/// the same classes, linked in.
namespace corvane::testing {

/// The factory of a class, as DllGetClassObject hands it out.
HRESULT getClassObject(REFCLSID classId, REFIID id, void** factory);
/// What DllCanUnloadNow says.
HRESULT canUnloadNow();

/// A new object of the class; a failed test and null when there is none.
template <typename Interface>
ComReference<Interface> create(REFCLSID classId, REFIID id) {
    ComReference<IClassFactory> factory;
    void* found = nullptr;
    if (FAILED(getClassObject(classId, IID_IClassFactory, &found))) return {};
    factory = ComReference<IClassFactory>::adopt(static_cast<IClassFactory*>(found));
    void* object = nullptr;
    if (FAILED(factory->CreateInstance(nullptr, id, &object))) return {};
    return ComReference<Interface>::adopt(static_cast<Interface*>(object));
}
inline ComReference<_clsScriptControl> newControl() {
    return create<_clsScriptControl>(CLSID_clsScriptControl, IID__clsScriptControl);
}
inline ComReference<_clsProgramFunctionList> newFunctionList() {
    return create<_clsProgramFunctionList>(CLSID_clsProgramFunctionList, IID__clsProgramFunctionList);
}

/// An automation text of the test's own.
class HostText {
public:
    explicit HostText(std::u16string_view text) : text_(newText(text)) {}
    HostText(const HostText&) = delete;
    HostText& operator=(const HostText&) = delete;
    ~HostText() { SysFreeString(text_); }
    BSTR* address() { return &text_; }
    BSTR get() const { return text_; }

private:
    BSTR text_;
};

/// The content of a text handed out by the component, which is released.
inline std::u16string taken(BSTR text) {
    std::u16string content(viewOf(text));
    SysFreeString(text);
    return content;
}

/// Loads a script that the host holds; true when the call succeeded with true.
inline bool load(_clsScriptControl& control, std::u16string_view script) {
    HostText text(script);
    HostText name(u"test");
    LONG uid = 0;
    LONG version = 0;
    VARIANT_BOOL result = VARIANT_FALSE;
    return SUCCEEDED(control.LoadScript_FromScript(text.address(), name.address(), &uid, &version, &result)) &&
           result == VARIANT_TRUE;
}

/// A host's sink. Without a handler it answers every event with success and asks for everything to go on.
class Sink : public IDispatch {
public:
    /// What the sink does with an event; the arguments stand last to first.
    using Handler = std::function<HRESULT(DISPID event, DISPPARAMS& arguments)>;

    explicit Sink(Handler handler = {}) : handler_(std::move(handler)) {}
    Sink(const Sink&) = delete;
    Sink& operator=(const Sink&) = delete;
    virtual ~Sink() = default;

    /// Answers `tSucess`, and `tDoExecuteCommand` of FunctionCalled, with true.
    static void succeed(DISPID event, DISPPARAMS& arguments);

    LONG references() const { return references_; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(++references_); }
    ULONG STDMETHODCALLTYPE Release() override { return static_cast<ULONG>(--references_); }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, OLECHAR**, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID event, REFIID, LCID, WORD, DISPPARAMS* arguments, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        if (handler_) return handler_(event, *arguments);
        succeed(event, *arguments);
        return S_OK;
    }

private:
    Handler handler_;
    LONG references_ = 0;  // the sink lives as long as the test wants; this only counts
};

/// The place where an object's sinks are advised.
ComReference<IConnectionPoint> connectionPointOf(IUnknown& object);

/// Advises a sink until the end of the scope.
class Advised {
public:
    Advised(IUnknown& object, IUnknown& sink) : point_(connectionPointOf(object)) {
        if (point_) point_->Advise(&sink, &cookie_);
    }
    Advised(const Advised&) = delete;
    Advised& operator=(const Advised&) = delete;
    ~Advised() { unadvise(); }
    DWORD cookie() const { return cookie_; }
    void unadvise() {
        if (point_ && cookie_ != 0) point_->Unadvise(cookie_);
        cookie_ = 0;
    }

private:
    ComReference<IConnectionPoint> point_;
    DWORD cookie_ = 0;
};

}  // namespace corvane::testing
