#include "tests/com/dispatch_call.h"

#include "tests/com/component.h"
#include "tests/memory/memory_fault.h"

namespace corvane::testing {

VARIANT ofType(VARTYPE type) {
    VARIANT variant{};
    V_VT(&variant) = type;
    return variant;
}

VARIANT emptyVariant() { return ofType(VT_EMPTY); }

VARIANT integer(LONG number) {
    VARIANT variant = ofType(VT_I4);
    V_I4(&variant) = number;
    return variant;
}

VARIANT shortInteger(SHORT number) {
    VARIANT variant = ofType(VT_I2);
    V_I2(&variant) = number;
    return variant;
}

VARIANT single(float number) {
    VARIANT variant = ofType(VT_R4);
    V_R4(&variant) = number;
    return variant;
}

VARIANT number(double number) {
    VARIANT variant = ofType(VT_R8);
    V_R8(&variant) = number;
    return variant;
}

VARIANT boolean(bool truth) {
    VARIANT variant = ofType(VT_BOOL);
    V_BOOL(&variant) = variantBool(truth);
    return variant;
}

VARIANT text(std::u16string_view content) {
    VARIANT variant = ofType(VT_BSTR);
    V_BSTR(&variant) = newText(content);
    return variant;
}

VARIANT object(IDispatch* content) {
    VARIANT variant = ofType(VT_DISPATCH);
    V_DISPATCH(&variant) = content;
    if (content != nullptr) content->AddRef();
    return variant;
}

VARIANT leftOut() {
    VARIANT variant = ofType(VT_ERROR);
    V_ERROR(&variant) = DISP_E_PARAMNOTFOUND;
    return variant;
}

VARIANT reference(VARTYPE type, void* variable) {
    VARIANT variant = ofType(static_cast<VARTYPE>(type | VT_BYREF));
    V_BYREF(&variant) = variable;
    return variant;
}

VARIANT reference(VARIANT& variable) { return reference(VT_VARIANT, &variable); }

Arguments::Arguments(std::initializer_list<VARIANT> inOrder) : Arguments(std::vector<VARIANT>(inOrder)) {}

Arguments::Arguments(const std::vector<VARIANT>& inOrder) : passed_(inOrder.rbegin(), inOrder.rend()) {
    parameters_.rgvarg = passed_.data();
    parameters_.cArgs = static_cast<UINT>(passed_.size());
}

Arguments::~Arguments() {
    for (VARIANTARG& argument : passed_) VariantClear(&argument);
}

Arguments& Arguments::named(std::vector<DISPID> names) {
    names_ = std::move(names);
    parameters_.rgdispidNamedArgs = names_.data();
    parameters_.cNamedArgs = static_cast<UINT>(names_.size());
    return *this;
}

Answer invoke(IDispatch& object, DISPID member, WORD flags, Arguments&& arguments) {
    Answer answer;
    EXCEPINFO exception{};
    answer.result = object.Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, flags, arguments.parameters(),
                                  answer.value.get(), &exception, &answer.faultyArgument);
    const test::HostsOwnMemory own;
    answer.type = V_VT(answer.value.get());
    answer.scode = exception.scode;
    answer.source = taken(exception.bstrSource);
    answer.description = taken(exception.bstrDescription);
    SysFreeString(exception.bstrHelpFile);
    return answer;
}

Answer put(IDispatch& object, DISPID member, Arguments&& arguments) {
    return invoke(object, member, DISPATCH_PROPERTYPUT, std::move(arguments.named({DISPID_PROPERTYPUT})));
}

DISPID identifierOf(IDispatch& object, std::u16string_view name) {
    std::u16string terminated(name);
    auto* member = reinterpret_cast<OLECHAR*>(terminated.data());
    DISPID id = DISPID_UNKNOWN;
    object.GetIDsOfNames(IID_NULL, &member, 1, LOCALE_USER_DEFAULT, &id);
    return id;
}

}  // namespace corvane::testing
