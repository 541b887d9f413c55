// A host in C++, late bound: it knows the component by IDispatch alone, as scripting languages do. No header of the
// component's is needed; members and events are found by their names while the program runs.
//
//     cpp_late_bound [--dll PATH] SCRIPT
//
// The component is found by its programmatic identifier, through the registry or a manifest beside this program. With
// --dll it is taken out of that file, which need not be registered. Exit code: 0 the script ran to its end, 1 it was
// stopped or a statement failed, 2 it was rejected, 3 an error, 64 the command line is wrong.

#include <windows.h>
// Needs the former.
#include <ocidl.h>
#include <oleauto.h>

#include <cstdio>
#include <initializer_list>
#include <iterator>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

enum ExitCode { Ended = 0, Stopped = 1, Rejected = 2, Failed = 3, Usage = 64 };

std::string utf8(const std::wstring& text) {
    std::string bytes(text.size() * 3, '\0');
    bytes.resize(
        static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()),
                                                     bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr)));
    return bytes;
}

void writeLine(const std::wstring& line) { std::printf("%s\n", utf8(line).c_str()); }

void check(HRESULT result, const char* what) {
    if (SUCCEEDED(result)) return;
    char text[96];
    std::snprintf(text, sizeof text, "error %08lx: %s", static_cast<unsigned long>(result), what);
    throw std::runtime_error(text);
}

/// An interface pointer that is released in the end.
template <typename Interface>
class Owned {
public:
    Owned() = default;
    explicit Owned(Interface* object) : object_(object) { object_->AddRef(); }
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

/// The system's declarations differ in whether a source is const.
VARIANTARG* source(const VARIANTARG& variant) { return const_cast<VARIANTARG*>(&variant); }

/// A text, number, truth or object on its way to the component or back.
class Variant {
public:
    Variant() { VariantInit(&variant_); }
    Variant(const wchar_t* text) : Variant() {
        V_VT(&variant_) = VT_BSTR;
        V_BSTR(&variant_) = SysAllocString(text);
    }
    Variant(LONG number) : Variant() {
        V_VT(&variant_) = VT_I4;
        V_I4(&variant_) = number;
    }
    Variant(const Variant& other) : Variant() { VariantCopy(&variant_, source(other.variant_)); }
    Variant(Variant&& other) noexcept : Variant() { std::swap(variant_, other.variant_); }
    Variant& operator=(Variant other) {
        std::swap(variant_, other.variant_);
        return *this;
    }
    ~Variant() { VariantClear(&variant_); }

    VARIANT* raw() { return &variant_; }
    const VARIANT* raw() const { return &variant_; }

    /// The value in another type, whether it is held or referred to.
    VARIANT as(VARTYPE type) const {
        VARIANT converted;
        VariantInit(&converted);
        check(VariantChangeTypeEx(&converted, source(variant_), LOCALE_INVARIANT, 0, type),
              "a value is of another kind");
        return converted;
    }
    double number() const {
        const VARIANT converted = as(VT_R8);
        return V_R8(&converted);
    }
    bool truth() const {
        const VARIANT converted = as(VT_BOOL);
        return V_BOOL(&converted) != VARIANT_FALSE;
    }
    std::wstring text() const {
        VARIANT converted = as(VT_BSTR);
        std::wstring text(V_BSTR(&converted), SysStringLen(V_BSTR(&converted)));
        VariantClear(&converted);
        return text;
    }

private:
    VARIANT variant_;
};

std::wstring shown(double number) {
    wchar_t text[32];
    std::swprintf(text, std::size(text), L"%g", number);
    return text;
}

/// An object that is used by the names of its members.
class LateBound {
public:
    explicit LateBound(IDispatch* object) : object_(object) {}

    Variant call(const wchar_t* member, std::initializer_list<Variant> arguments = {}) const {
        return invoke(member, DISPATCH_METHOD, arguments);
    }
    Variant get(const wchar_t* member) const { return invoke(member, DISPATCH_PROPERTYGET, {}); }
    void put(const wchar_t* member, const Variant& value) const { invoke(member, DISPATCH_PROPERTYPUT, {value}); }

private:
    Variant invoke(const wchar_t* member, WORD flags, std::initializer_list<Variant> arguments) const {
        auto* name = const_cast<wchar_t*>(member);
        DISPID id = 0;
        check(object_->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &id), utf8(member).c_str());

        // Last to first. Plain values will do for by-reference parameters, as long as no answer is wanted back.
        std::vector<VARIANTARG> passed;
        for (auto argument = std::rbegin(arguments); argument != std::rend(arguments); ++argument)
            passed.push_back(*argument->raw());
        DISPID newValue = DISPID_PROPERTYPUT;
        const bool puts = flags == DISPATCH_PROPERTYPUT;
        DISPPARAMS parameters{passed.data(), puts ? &newValue : nullptr, static_cast<UINT>(passed.size()),
                              puts ? 1U : 0U};
        Variant result;
        EXCEPINFO exception{};
        const HRESULT called =
            object_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters, result.raw(), &exception, nullptr);
        if (called == DISP_E_EXCEPTION) fail(exception);
        check(called, utf8(member).c_str());
        return result;
    }

    /// The number of an automation error is the lower half of the code.
    [[noreturn]] static void fail(EXCEPINFO& exception) {
        std::wstring text = L"automation error " + std::to_wstring(HRESULT_CODE(exception.scode)) + L": ";
        if (exception.bstrDescription != nullptr) text += exception.bstrDescription;
        SysFreeString(exception.bstrSource);
        SysFreeString(exception.bstrDescription);
        SysFreeString(exception.bstrHelpFile);
        throw std::runtime_error(utf8(text));
    }

    Owned<IDispatch> object_;
};

/// What the control tells of its events: the interface that it calls, and the names of the identifiers.
class EventInterface {
public:
    explicit EventInterface(IDispatch* control) {
        Owned<IProvideClassInfo2> provider;
        check(control->QueryInterface(IID_IProvideClassInfo2, provider.receiveAny()), "class information");
        check(provider->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &id_), "the event interface");

        Owned<ITypeInfo> members;
        Owned<ITypeInfo> any;
        Owned<ITypeLib> library;
        UINT position = 0;
        check(control->GetTypeInfo(0, LOCALE_USER_DEFAULT, any.receive()), "type information");
        check(any->GetContainingTypeLib(library.receive(), &position), "the type library");
        check(library->GetTypeInfoOfGuid(id_, members.receive()), "the events");
        readNames(*members.get());
    }

    REFIID id() const { return id_; }
    const std::wstring& nameOf(DISPID event) const { return names_.at(event); }

private:
    void readNames(ITypeInfo& members) {
        TYPEATTR* attributes = nullptr;
        check(members.GetTypeAttr(&attributes), "the events");
        const UINT count = attributes->cFuncs;
        members.ReleaseTypeAttr(attributes);
        for (UINT i = 0; i < count; ++i) {
            FUNCDESC* function = nullptr;
            check(members.GetFuncDesc(i, &function), "an event");
            const DISPID event = function->memid;
            members.ReleaseFuncDesc(function);
            BSTR name = nullptr;
            UINT named = 0;
            check(members.GetNames(event, &name, 1, &named), "an event's name");
            names_[event] = name;
            SysFreeString(name);
        }
    }

    IID id_{};
    std::map<DISPID, std::wstring> names_;
};

/// Stands for the code that drives the instrument, which here can do anything. It lives longer than the control that
/// calls it, so nobody needs to count references.
class Instrument final : public IDispatch {
public:
    explicit Instrument(const EventInterface& events) : events_(events) {}

    /// Whether an event was left without success.
    bool refused = false;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        *object = nullptr;
        if (id != IID_IUnknown && id != IID_IDispatch && id != events_.id()) return E_NOINTERFACE;
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

    /// Every event arrives here. The arguments stand last to first: argument 0 is always tSucess.
    HRESULT STDMETHODCALLTYPE Invoke(DISPID event, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        try {
            const bool done = handle(events_.nameOf(event), parameters->rgvarg);
            if (!done) refused = true;
            answer(parameters->rgvarg[0], done);
            return S_OK;
        } catch (const std::exception&) {
            return E_FAIL;  // counts as unanswered; no exception of ours may leave this function
        }
    }

private:
    static void answer(VARIANTARG& argument, bool truth) {
        *V_BOOLREF(&argument) = truth ? VARIANT_TRUE : VARIANT_FALSE;
    }

    // By-value arguments carry their value, the others a pointer to it.
    static Variant valueOf(const VARIANTARG& argument) {
        Variant value;
        check(VariantCopyInd(value.raw(), source(argument)), "an argument");
        return value;
    }

    /// Whether the work is done.
    static bool handle(const std::wstring& event, VARIANTARG* arguments) {
        if (event == L"MathsFunction") return calculate(arguments);
        if (event == L"GetDataSet") return acquire(arguments[1]);
        if (event.starts_with(L"Input") || event.starts_with(L"Msg")) {
            answer(arguments[1], false);  // tDLLExecute: nobody is here to be asked
        } else if (event == L"Info") {
            writeLine(L"info: " + valueOf(arguments[1]).text());
        } else if (event == L"MoveToHeight") {
            writeLine(L"blade to " + shown(valueOf(arguments[4]).number()) + L" mm");
        } else if (event == L"MoveIntoVessel") {
            writeLine(L"blade into the vessel, to " + shown(valueOf(arguments[1]).number()) + L" mm");
        } else if (event == L"Park") {
            writeLine(L"blade parked");
        }
        return true;  // KeepGoing, FunctionCalled, declarations, and what this instrument does without a word
    }

    /// MathsFunction(tFunction, tParam0, tParam1, tParam2, tParam3, tReturn, tSucess)
    static bool calculate(VARIANTARG* arguments) {
        const std::wstring function = valueOf(arguments[6]).text();
        const auto first = static_cast<float>(valueOf(arguments[5]).number());
        const auto second = static_cast<float>(valueOf(arguments[4]).number());
        float& result = *V_R4REF(&arguments[1]);
        if (_wcsicmp(function.c_str(), L"Add") == 0)
            result = first + second;
        else if (_wcsicmp(function.c_str(), L"Subtract") == 0)
            result = first - second;
        else if (_wcsicmp(function.c_str(), L"Multiply") == 0)
            result = first * second;
        else if (_wcsicmp(function.c_str(), L"Divide") == 0 && second != 0)
            result = first / second;
        else
            return false;
        return true;
    }

    /// The record is the component's own object: what is written into it stays there.
    static bool acquire(const VARIANTARG& argument) {
        const LateBound dataSet(V_DISPATCH(&argument));
        writeLine(L"data set to " + shown(dataSet.get(L"Height").number()) + L" mm at " +
                  shown(dataSet.get(L"TipSpeed").number()) + L" mm/s");
        constexpr LONG complete = 1;
        dataSet.put(L"TestResult", complete);
        return true;
    }

    const EventInterface& events_;
};

/// Tells an object's events to a sink until the end of the scope.
class Connection {
public:
    Connection(IDispatch* control, const EventInterface& events, IDispatch& sink) {
        Owned<IConnectionPointContainer> container;
        check(control->QueryInterface(IID_IConnectionPointContainer, container.receiveAny()), "no events");
        check(container->FindConnectionPoint(events.id(), point_.receive()), "no such events");
        check(point_->Advise(&sink, &cookie_), "the sink is refused");
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection() { point_->Unadvise(cookie_); }

private:
    Owned<IConnectionPoint> point_;
    DWORD cookie_ = 0;
};

ExitCode run(IDispatch* object, const wchar_t* script) {
    const EventInterface events(object);
    Instrument instrument(events);
    const Connection connection(object, events, instrument);
    const LateBound control(object);
    if (!control.call(L"LoadScript_FromFile", {script}).truth()) {
        writeLine(L"the script is rejected");
        return Rejected;
    }
    if (!control.call(L"RunScript").truth()) {
        writeLine(L"the run was stopped");
        return Stopped;
    }
    // RunScript answers true after a failed statement too; this host knows, for it refused the work.
    writeLine(instrument.refused ? L"a statement failed" : L"the run ended");
    return instrument.refused ? Stopped : Ended;
}

// Of the component a late-bound host knows the name; the identifier stands here for use without the registry.
constexpr wchar_t programId[] = L"prjCorvaneScript.clsScriptControl";
constexpr CLSID classId{0xF3C0FD1F, 0xA4B4, 0x4FBB, {0x81, 0x8D, 0xBF, 0xDC, 0x51, 0xFD, 0xBF, 0x4C}};

ExitCode runRegistered(const wchar_t* script) {
    CLSID registered;
    check(CLSIDFromProgID(programId, &registered), "the component is not registered");
    Owned<IDispatch> control;
    check(CoCreateInstance(registered, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, control.receiveAny()),
          "the component cannot be created");
    return run(control.get(), script);
}

ExitCode runFrom(const wchar_t* path, const wchar_t* script) {
    wchar_t absolute[MAX_PATH];
    GetFullPathNameW(path, MAX_PATH, absolute, nullptr);
    const HMODULE module = LoadLibraryExW(absolute, nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (module == nullptr) check(HRESULT_FROM_WIN32(GetLastError()), "the component cannot be loaded");
    const auto getClassObject = reinterpret_cast<decltype(&DllGetClassObject)>(
        reinterpret_cast<void*>(GetProcAddress(module, "DllGetClassObject")));
    Owned<IClassFactory> factory;
    Owned<IDispatch> control;
    check(getClassObject(classId, IID_IClassFactory, factory.receiveAny()), "no class object");
    check(factory->CreateInstance(nullptr, IID_IDispatch, control.receiveAny()), "no control");
    return run(control.get(), script);
}

ExitCode host(int count, wchar_t** arguments) {
    if (count == 2) return runRegistered(arguments[1]);
    if (count == 4 && std::wstring(arguments[1]) == L"--dll") return runFrom(arguments[2], arguments[3]);
    writeLine(L"cpp_late_bound [--dll PATH] SCRIPT");
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
    } catch (const std::exception& error) {
        std::printf("%s\n", error.what());
    }
    LocalFree(arguments);
    CoUninitialize();
    return code;
}
