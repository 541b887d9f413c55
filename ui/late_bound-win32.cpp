#include "ui/late_bound-win32.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <iterator>
#include <string>

#include "platform/automation_error.h"
#include "platform/utf8.h"

namespace corvane {
namespace {

// Errors that only an object from outside can cause.
constexpr auto objectRequired = static_cast<ErrorNumber>(424);
constexpr auto automationFailed = static_cast<ErrorNumber>(440);

std::string textOf(ErrorNumber number) {
    if (number == objectRequired) return "Object required";
    if (number == automationFailed) return "Automation error";
    return std::string(errorText(number));
}

ErrorNumber numberOf(HRESULT result) {
    // Results of this facility are error numbers of automation.
    if (HRESULT_FACILITY(result) == FACILITY_CONTROL && HRESULT_CODE(result) != 0)
        return static_cast<ErrorNumber>(HRESULT_CODE(result));
    switch (result) {
        case DISP_E_MEMBERNOTFOUND:
        case DISP_E_UNKNOWNNAME:
        case DISP_E_NONAMEDARGS:
        case E_NOTIMPL: return ErrorNumber::MemberNotFound;
        case DISP_E_TYPEMISMATCH:
        case DISP_E_BADVARTYPE: return ErrorNumber::TypeMismatch;
        case DISP_E_BADPARAMCOUNT:
        case DISP_E_PARAMNOTFOUND:
        case DISP_E_PARAMNOTOPTIONAL:
        case E_INVALIDARG: return ErrorNumber::InvalidProcedureCall;
        case DISP_E_BADINDEX: return ErrorNumber::SubscriptOutOfRange;
        case DISP_E_OVERFLOW: return ErrorNumber::Overflow;
        case E_OUTOFMEMORY: return ErrorNumber::OutOfMemory;
        default: return automationFailed;
    }
}

void check(HRESULT result) {
    if (SUCCEEDED(result)) return;
    const ErrorNumber number = numberOf(result);
    throw automation_error(number, textOf(number));
}

/// What an object says of a call that it failed.
struct FaultReport : EXCEPINFO {
    FaultReport() : EXCEPINFO{} {}
    FaultReport(const FaultReport&) = delete;
    FaultReport& operator=(const FaultReport&) = delete;
    ~FaultReport() {
        SysFreeString(bstrSource);
        SysFreeString(bstrDescription);
        SysFreeString(bstrHelpFile);
    }

    [[noreturn]] void raise() {
        if (pfnDeferredFillIn != nullptr) pfnDeferredFillIn(this);
        const ErrorNumber number = wCode != 0 ? static_cast<ErrorNumber>(wCode) : numberOf(scode);
        const std::string description = toUtf8(viewOf(bstrDescription));
        throw automation_error(number, description.empty() ? textOf(number) : description);
    }

private:
    static std::u16string_view viewOf(BSTR text) {
        return {reinterpret_cast<const char16_t*>(text), static_cast<std::size_t>(SysStringLen(text))};
    }
};

}  // namespace

Variant Variant::ofLong(std::int32_t number) noexcept {
    Variant variant;
    V_VT(&variant.variant_) = VT_I4;
    V_I4(&variant.variant_) = number;
    return variant;
}

Variant Variant::ofBoolean(bool truth) noexcept {
    Variant variant;
    V_VT(&variant.variant_) = VT_BOOL;
    V_BOOL(&variant.variant_) = truth ? VARIANT_TRUE : VARIANT_FALSE;
    return variant;
}

Variant Variant::ofText(std::u16string_view text) {
    Variant variant;
    V_BSTR(&variant.variant_) =
        SysAllocStringLen(reinterpret_cast<const OLECHAR*>(text.data()), static_cast<UINT>(text.size()));
    if (V_BSTR(&variant.variant_) == nullptr) throw automation_error(ErrorNumber::OutOfMemory);
    V_VT(&variant.variant_) = VT_BSTR;
    return variant;
}

Variant Variant::missing() noexcept {
    Variant variant;
    V_VT(&variant.variant_) = VT_ERROR;
    V_ERROR(&variant.variant_) = DISP_E_PARAMNOTFOUND;
    return variant;
}

Variant Variant::converted(VARTYPE type) const {
    Variant result;
    check(VariantChangeType(&result.variant_, const_cast<VARIANT*>(&variant_), 0, type));
    return result;
}

std::int32_t Variant::toLong() const { return V_I4(converted(VT_I4).get()); }

std::int64_t Variant::toLongLong() const { return V_I8(converted(VT_I8).get()); }

double Variant::toDouble() const { return V_R8(converted(VT_R8).get()); }

LateBoundObject Variant::toObject() const {
    Variant content;
    check(VariantCopyInd(&content.variant_, const_cast<VARIANT*>(&variant_)));
    const VARTYPE type = V_VT(&content.variant_);
    if (type != VT_DISPATCH && type != VT_UNKNOWN) throw automation_error(objectRequired, textOf(objectRequired));
    if (V_UNKNOWN(&content.variant_) == nullptr) throw automation_error(ErrorNumber::ObjectNotSet);
    return LateBoundObject(V_DISPATCH(content.converted(VT_DISPATCH).get()));
}

DISPID LateBoundObject::idOf(const wchar_t* member) const {
    if (object_ == nullptr) throw automation_error(ErrorNumber::ObjectNotSet);
    auto* name = const_cast<LPOLESTR>(member);
    DISPID id = DISPID_UNKNOWN;
    check(object_->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &id));
    return id;
}

// As languages ask that cannot tell a property from a method without arguments: some objects offer the one, some the
// other.
Variant LateBoundObject::get(const wchar_t* property) const {
    return invoke(idOf(property), DISPATCH_METHOD | DISPATCH_PROPERTYGET, {});
}

void LateBoundObject::put(const wchar_t* property, Variant value) const {
    invoke(idOf(property), DISPATCH_PROPERTYPUT, {std::move(value)});
}

Variant LateBoundObject::call(const wchar_t* method, std::initializer_list<Variant> arguments) const {
    return call(idOf(method), arguments);
}

Variant LateBoundObject::call(DISPID method, std::initializer_list<Variant> arguments) const {
    return invoke(method, DISPATCH_METHOD, arguments);
}

void LateBoundObject::putIndexed(DISPID property, std::int32_t index, Variant value) const {
    invoke(property, DISPATCH_PROPERTYPUT, {Variant::ofLong(index), std::move(value)});
}

Variant LateBoundObject::invoke(DISPID member, WORD kind, std::initializer_list<Variant> arguments) const {
    if (object_ == nullptr) throw automation_error(ErrorNumber::ObjectNotSet);
    // Lent for the call, the last one first as automation wants them.
    std::array<VARIANT, 3> lent;
    assert(arguments.size() <= lent.size());
    std::transform(std::rbegin(arguments), std::rend(arguments), lent.begin(),
                   [](const Variant& argument) { return *argument.get(); });
    DISPID newValue = DISPID_PROPERTYPUT;
    const bool isPut = kind == DISPATCH_PROPERTYPUT;
    DISPPARAMS parameters{lent.data(), isPut ? &newValue : nullptr, static_cast<UINT>(arguments.size()),
                          isPut ? 1U : 0U};
    Variant result;
    FaultReport fault;
    const HRESULT status = object_->Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, kind, &parameters,
                                           isPut ? nullptr : result.get(), &fault, nullptr);
    if (status == DISP_E_EXCEPTION) fault.raise();
    check(status);
    return result;
}

}  // namespace corvane
