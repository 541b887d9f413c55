#pragma once

#include <windows.h>
// After windows.h, which it needs.
#include <oleauto.h>

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Automation objects that stand in for a host's controls.
namespace corvane::testing {

/// One thing that is asked of a stand-in: to look up a member's id, or to call the member.
struct Step {
    int number;  ///< from 1, over all objects of a test
    std::wstring_view member;
    WORD kind;  ///< DISPATCH_...; 0 for a look-up
    VARIANT* result;
    EXCEPINFO* fault;
};

/// What the stand-ins of one test are asked, and what they do then beside their work.
struct Happenings {
    int lookUps = 0;
    int calls = 0;
    int objects = 0;                 ///< that exist
    std::vector<std::string> lines;  ///< values put and methods called, but for those of single cells
    /// Sees each step first; a result of its is the step's result, and the object does nothing.
    std::function<std::optional<HRESULT>(const Step&)> onStep;
};

/// The arguments of a call, first to last.
class Arguments {
public:
    explicit Arguments(const DISPPARAMS& parameters) : parameters_(parameters) {}
    UINT count() const { return parameters_.cArgs; }
    const VARIANT& operator[](UINT position) const { return parameters_.rgvarg[parameters_.cArgs - 1 - position]; }
    /// Whether the last one is marked as a property's new value, and no other has a name.
    bool endInNewValue() const {
        return parameters_.cNamedArgs == 1 && parameters_.rgdispidNamedArgs[0] == DISPID_PROPERTYPUT;
    }

private:
    const DISPPARAMS& parameters_;
};

/// As a line shows it: 3, True, "text", missing, and its type's number for anything else.
std::string show(const VARIANT& value);

/// A late-bound object. Every object has ids of its own, even one of the same kind as another.
class StandIn : public IDispatch {
public:
    StandIn(Happenings& happenings, std::string name, std::vector<const wchar_t*> members);
    StandIn(const StandIn&) = delete;
    StandIn& operator=(const StandIn&) = delete;

    LONG references() const { return references_; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(++references_); }
    ULONG STDMETHODCALLTYPE Release() override;
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, OLECHAR** names, UINT count, LCID, DISPID* ids) override;
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD kind, DISPPARAMS* parameters, VARIANT* result,
                                     EXCEPINFO* fault, UINT*) override;

protected:
    virtual ~StandIn();
    /// Does the member's work, the member counted from 0.
    virtual HRESULT run(std::size_t member, WORD kind, const Arguments& arguments, VARIANT* result) = 0;
    Happenings& happenings() const { return happenings_; }
    void addLine(const std::string& line) const { happenings_.lines.push_back(line); }

    /// A result that is an object, which the caller gives a reference to.
    static HRESULT answer(VARIANT* result, IDispatch* object);
    static HRESULT answer(VARIANT* result, LONG number);

private:
    std::optional<HRESULT> before(std::size_t member, WORD kind, VARIANT* result, EXCEPINFO* fault);

    Happenings& happenings_;
    std::string name_;
    std::vector<const wchar_t*> members_;
    DISPID firstId_;
    LONG references_ = 1;
};

/// The test's own reference to a stand-in.
template <typename Object>
class Held {
public:
    explicit Held(Object* object) : object_(object) {}
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
    ~Held() { release(); }
    void release() {
        if (Object* const object = std::exchange(object_, nullptr)) object->Release();
    }
    Object* operator->() const { return object_; }
    Object& operator*() const { return *object_; }

private:
    Object* object_;
};

}  // namespace corvane::testing
