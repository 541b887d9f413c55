#pragma once

#include <string>
#include <vector>

#include "host/com/automation.h"

/// Calls through IDispatch as a host makes them, and what comes back, in the raw.
namespace corvane::testing {

// Variants of the simple types; texts and objects are copied.
VARIANT emptyVariant();
VARIANT integer(LONG number);
VARIANT shortInteger(SHORT number);
VARIANT single(float number);
VARIANT number(double number);
VARIANT boolean(bool truth);
VARIANT text(std::u16string_view content);
VARIANT object(IDispatch* content);
VARIANT ofType(VARTYPE type);
/// An argument that a caller leaves out.
VARIANT leftOut();
/// A reference to a variable; the type goes without VT_BYREF.
VARIANT reference(VARTYPE type, void* variable);
VARIANT reference(VARIANT& variable);

/// What a call through IDispatch came to.
struct Answer {
    HRESULT result = S_OK;
    UINT faultyArgument = untouched;  ///< as the callee numbers them: from the last
    VARTYPE type = VT_EMPTY;          ///< of the value
    OwnedVariant value;
    HRESULT scode = S_OK;
    std::u16string source;
    std::u16string description;

    static constexpr UINT untouched = 99;
};

/// The arguments of a call, in the order of the parameters: released at the end of the scope.
class Arguments {
public:
    Arguments(std::initializer_list<VARIANT> inOrder);
    explicit Arguments(const std::vector<VARIANT>& inOrder);
    Arguments(const Arguments&) = delete;
    Arguments& operator=(const Arguments&) = delete;
    ~Arguments();
    /// The last `names.size()` arguments bear these names, the last argument the first of them.
    Arguments& named(std::vector<DISPID> names);
    DISPPARAMS* parameters() { return &parameters_; }

private:
    std::vector<VARIANTARG> passed_;
    std::vector<DISPID> names_;
    DISPPARAMS parameters_{};
};

Answer invoke(IDispatch& object, DISPID member, WORD flags, Arguments&& arguments);
/// Sets a property: the value is the last of the arguments.
Answer put(IDispatch& object, DISPID member, Arguments&& arguments);

/// The identifier of a member, or DISPID_UNKNOWN.
DISPID identifierOf(IDispatch& object, std::u16string_view name);

}  // namespace corvane::testing
