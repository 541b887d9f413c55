#pragma once

#include <activscp.h>

#include <string>

#include "bench/component/sinks.h"

namespace corvane::bench {

/// What a peer's script calls as `host`: it counts, and answers everything with True.
class ScriptHost final : public LocalDispatch {
public:
    std::size_t calls = 0;
    std::size_t arguments = 0;

    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, OLECHAR** names, UINT count, LCID, DISPID* ids) override;
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT* result, EXCEPINFO*,
                                     UINT*) override;
};

/// A script engine of the system's with its own idea of a language, and a `host` to call.
class ScriptPeer final : private IActiveScriptSite {
public:
    ScriptPeer(const CLSID& language, ScriptHost& host);
    ScriptPeer(const ScriptPeer&) = delete;
    ScriptPeer& operator=(const ScriptPeer&) = delete;
    virtual ~ScriptPeer();

    /// Parses a text, and runs what of it stands outside of procedures.
    void load(const std::u16string& text);
    /// Runs the procedure `Work`.
    void work();

private:
    void require(HRESULT result, const char* what) const;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE GetLCID(LCID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetItemInfo(LPCOLESTR, DWORD mask, IUnknown** item, ITypeInfo** information) override;
    HRESULT STDMETHODCALLTYPE GetDocVersionString(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE OnScriptTerminate(const VARIANT*, const EXCEPINFO*) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnStateChange(SCRIPTSTATE) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnScriptError(IActiveScriptError* error) override;
    HRESULT STDMETHODCALLTYPE OnEnterScript() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnLeaveScript() override { return S_OK; }

    ScriptHost& host_;
    ComReference<IActiveScript> engine_;
    ComReference<IActiveScriptParse> parser_;
    ComReference<IDispatch> procedures_;
    DISPID work_ = DISPID_UNKNOWN;
    ULONG failedLine_ = 0;  // from 1
};

extern const CLSID vbscript;
extern const CLSID jscript;

}  // namespace corvane::bench
