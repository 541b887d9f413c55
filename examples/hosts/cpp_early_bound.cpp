// A host in C++, early bound: it calls through the vtable, with the declarations that are generated from the
// component's interface definition, and without any library of wrappers.
//
//     cpp_early_bound [--dll PATH] SCRIPT
//
// The component is found by its class identifier, through the registry or a manifest beside this program. With --dll it
// is taken out of that file, which need not be registered. Exit code: 0 the script ran to its end, 1 it was stopped or
// a statement failed, 2 it was rejected, 3 an error, 64 the command line is wrong.

#include <windows.h>
// Needs the former.
#include <ocidl.h>
#include <oleauto.h>

#include <cstdio>
#include <cwchar>
#include <iterator>
#include <string>

// A macro of the system's, which would rename a member.
#undef GetEnvironmentVariable
#include "script_component.h"

namespace {

enum ExitCode { Ended = 0, Stopped = 1, Rejected = 2, Failed = 3, Usage = 64 };

struct Failure {
    HRESULT result;
};

void check(HRESULT result) {
    if (FAILED(result)) throw Failure{result};
}

/// An interface pointer that is released in the end.
template <typename Interface>
class Owned {
public:
    Owned() = default;
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;
    ~Owned() {
        if (object_ != nullptr) object_->Release();
    }
    Interface* get() const { return object_; }
    Interface* operator->() const { return object_; }
    /// Where a call puts the pointer that it hands out.
    Interface** receive() { return &object_; }
    void** receiveAny() { return reinterpret_cast<void**>(&object_); }

private:
    Interface* object_ = nullptr;
};

/// An automation text that is freed in the end. Texts are passed by reference, so a caller needs variables for them.
class AutomationText {
public:
    explicit AutomationText(const wchar_t* text = L"") : text_(SysAllocString(text)) {}
    AutomationText(const AutomationText&) = delete;
    AutomationText& operator=(const AutomationText&) = delete;
    ~AutomationText() { SysFreeString(text_); }
    BSTR* address() { return &text_; }
    /// Null is the empty text.
    const wchar_t* get() const { return text_ == nullptr ? L"" : text_; }

private:
    BSTR text_;
};

void writeLine(const std::wstring& line) {
    std::string bytes(line.size() * 3, '\0');
    const int length = WideCharToMultiByte(CP_UTF8, 0, line.data(), static_cast<int>(line.size()), bytes.data(),
                                           static_cast<int>(bytes.size()), nullptr, nullptr);
    std::printf("%.*s\n", length, bytes.data());
}

std::wstring shown(float number) {
    wchar_t text[32];
    std::swprintf(text, std::size(text), L"%g", static_cast<double>(number));
    return text;
}

/// Stands for the code that drives the instrument, which here can do anything. It lives longer than the control that
/// calls it, so nobody needs to count references.
class Instrument final : public IDispatch {
public:
    /// Whether an event was left without success.
    bool refused = false;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        *object = nullptr;
        if (id != IID_IUnknown && id != IID_IDispatch && id != DIID___clsScriptControl) return E_NOINTERFACE;
        *object = this;
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        *count = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, OLECHAR**, UINT, LCID, DISPID*) override { return E_NOTIMPL; }

    /// Every event arrives here, with the identifier that the interface definition gives it. The arguments stand last
    /// to first: argument 0 is always tSucess.
    HRESULT STDMETHODCALLTYPE Invoke(DISPID event, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        try {
            VARIANTARG* const arguments = parameters->rgvarg;
            const bool done = handle(event, arguments, parameters->cArgs);
            if (!done) refused = true;
            *V_BOOLREF(&arguments[0]) = done ? VARIANT_TRUE : VARIANT_FALSE;
            return S_OK;
        } catch (const Failure& failure) {
            return failure.result;  // counts as unanswered; no exception of ours may leave this function
        }
    }

private:
    /// Whether the work is done. By-value arguments carry their value, the others a pointer to it.
    static bool handle(DISPID event, VARIANTARG* arguments, UINT count) {
        switch (event) {
            case 2:  // MathsFunction(tFunction, tParam0, tParam1, tParam2, tParam3, tReturn, tSucess)
                return calculate(*V_BSTRREF(&arguments[6]), *V_R4REF(&arguments[5]), *V_R4REF(&arguments[4]),
                                 *V_R4REF(&arguments[1]));
            case 3:  // InputNumber
            case 4:  // InputString
            case 6:  // MsgAsk
            case 7:  // MsgInfo
            case 8:  // MsgInfoEx: tDLLExecute stands before tSucess. Nobody is here to be asked.
                *V_BOOLREF(&arguments[1]) = VARIANT_FALSE;
                return true;
            case 5:  // Info(tInfoStr, tSucess)
                writeLine(L"info: " + std::wstring(*V_BSTRREF(&arguments[1])));
                return true;
            case 14:  // GetDataSet(tTestParameters, tSucess)
                return acquire(V_DISPATCH(&arguments[1]));
            case 16:  // MoveToHeight(tHeightMM, tMoveType, tHelixAngle, tTipSpeed, tSucess)
                writeLine(L"blade to " + shown(*V_R4REF(&arguments[4])) + L" mm");
                return true;
            case 22:  // Park(tSucess)
                writeLine(L"blade parked");
                return true;
            case 25:  // MoveIntoVessel(tTestStartHeight by value, tSucess)
                writeLine(L"blade into the vessel, to " + shown(V_R4(&arguments[1])) + L" mm");
                return true;
            default:  // KeepGoing, FunctionCalled, declarations, and what this instrument does without a word
                return count > 0;
        }
    }

    static bool calculate(const wchar_t* function, float first, float second, float& result) {
        if (_wcsicmp(function, L"Add") == 0)
            result = first + second;
        else if (_wcsicmp(function, L"Subtract") == 0)
            result = first - second;
        else if (_wcsicmp(function, L"Multiply") == 0)
            result = first * second;
        else if (_wcsicmp(function, L"Divide") == 0 && second != 0)
            result = first / second;
        else
            return false;
        return true;
    }

    /// The record is the component's own object: what is written into it stays there.
    static bool acquire(IDispatch* argument) {
        Owned<_clsDataSetParameters> dataSet;
        check(argument->QueryInterface(IID__clsDataSetParameters, dataSet.receiveAny()));
        float height = 0;
        float tipSpeed = 0;
        check(dataSet->get_Height(&height));
        check(dataSet->get_TipSpeed(&tipSpeed));
        writeLine(L"data set to " + shown(height) + L" mm at " + shown(tipSpeed) + L" mm/s");
        enumTestResult complete = trComplete;
        check(dataSet->put_TestResult(&complete));
        return true;
    }
};

/// The component's file, used as the system does it for a registered one.
class ComponentFile {
public:
    explicit ComponentFile(const wchar_t* path) {
        wchar_t absolute[MAX_PATH];
        if (GetFullPathNameW(path, MAX_PATH, absolute, nullptr) != 0)
            module_ = LoadLibraryExW(absolute, nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
        if (module_ == nullptr) throw Failure{HRESULT_FROM_WIN32(GetLastError())};
    }
    ComponentFile(const ComponentFile&) = delete;
    ComponentFile& operator=(const ComponentFile&) = delete;
    ~ComponentFile() {
        if (entry<decltype(&DllCanUnloadNow)>("DllCanUnloadNow")() == S_OK) FreeLibrary(module_);
    }

    void createControl(_clsScriptControl** control) const {
        const auto getClassObject = entry<decltype(&DllGetClassObject)>("DllGetClassObject");
        Owned<IClassFactory> factory;
        check(getClassObject(CLSID_clsScriptControl, IID_IClassFactory, factory.receiveAny()));
        check(factory->CreateInstance(nullptr, IID__clsScriptControl, reinterpret_cast<void**>(control)));
    }

private:
    template <typename Function>
    Function entry(const char* name) const {
        return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module_, name)));
    }

    HMODULE module_ = nullptr;
};

ExitCode run(_clsScriptControl& control, const wchar_t* script) {
    Instrument instrument;
    Owned<IConnectionPointContainer> container;
    Owned<IConnectionPoint> events;
    DWORD cookie = 0;
    check(control.QueryInterface(IID_IConnectionPointContainer, container.receiveAny()));
    check(container->FindConnectionPoint(DIID___clsScriptControl, events.receive()));
    check(events->Advise(&instrument, &cookie));

    AutomationText file(script);
    VARIANT_BOOL accepted = VARIANT_FALSE;
    VARIANT_BOOL ran = VARIANT_FALSE;
    HRESULT result = control.LoadScript_FromFile(file.address(), &accepted);
    if (SUCCEEDED(result) && accepted != VARIANT_FALSE) result = control.RunScript(&ran);
    events->Unadvise(cookie);
    check(result);

    if (accepted == VARIANT_FALSE) {
        writeLine(L"the script is rejected");
        return Rejected;
    }
    if (ran == VARIANT_FALSE) {
        writeLine(L"the run was stopped");
        return Stopped;
    }
    // RunScript answers true after a failed statement too; this host knows, for it refused the work.
    writeLine(instrument.refused ? L"a statement failed" : L"the run ended");
    return instrument.refused ? Stopped : Ended;
}

ExitCode runFrom(const ComponentFile& component, const wchar_t* script) {
    Owned<_clsScriptControl> control;
    component.createControl(control.receive());
    return run(*control.get(), script);
}

ExitCode runRegistered(const wchar_t* script) {
    Owned<_clsScriptControl> control;
    check(CoCreateInstance(CLSID_clsScriptControl, nullptr, CLSCTX_INPROC_SERVER, IID__clsScriptControl,
                           control.receiveAny()));
    return run(*control.get(), script);
}

/// A failed call leaves its description with the thread. The number of an automation error is the lower half of the
/// call's result.
void report(HRESULT result) {
    Owned<IErrorInfo> information;
    AutomationText description;
    if (GetErrorInfo(0, information.receive()) == S_OK) information->GetDescription(description.address());
    if (HRESULT_FACILITY(result) == FACILITY_CONTROL)
        writeLine(L"automation error " + std::to_wstring(HRESULT_CODE(result)) + L": " + description.get());
    else
        std::printf("error %08lx\n", static_cast<unsigned long>(result));
}

ExitCode host(int count, wchar_t** arguments) {
    if (count == 2) return runRegistered(arguments[1]);
    if (count == 4 && std::wcscmp(arguments[1], L"--dll") == 0) {
        const ComponentFile component(arguments[2]);
        return runFrom(component, arguments[3]);
    }
    writeLine(L"cpp_early_bound [--dll PATH] SCRIPT");
    return Usage;
}

}  // namespace

int main() {
    if (FAILED(CoInitialize(nullptr))) return Failed;
    ExitCode code = Failed;
    int count = 0;
    wchar_t** const arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    try {
        code = host(count, arguments);
    } catch (const Failure& failure) {
        report(failure.result);
    }
    LocalFree(arguments);
    CoUninitialize();
    return code;
}
