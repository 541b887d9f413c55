#pragma once

#include <string>
#include <vector>

#include "host/com/automation.h"

namespace corvane {

/// A dual interface as late-bound callers reach it: member names, and calls by dispatch identifier.
///
/// It is read from the embedded type library once and is plain data afterwards, the same for all threads.
class DispatchInterface {
public:
    /// The description of one of the published interfaces. Throws error 7, and std::runtime_error when the module
    /// bears no readable type library.
    static const DispatchInterface& of(const IID& interfaceId);
    /// For the module's last moment, when it is unloaded from a process that goes on.
    static void forgetAll() noexcept;

    /// The identifiers of a member and, after it, of its parameters: positions from 0.
    HRESULT identifiersOf(OLECHAR** names, UINT count, DISPID* identifiers) const noexcept;

    /// Calls a member of `object`, which points to the interface's own vtable. Arguments are converted as the platform
    /// converts them; what the member changes by reference comes back in the type of a typed variable, and in the
    /// parameter's own type in a variant.
    HRESULT invoke(IDispatch* object, DISPID id, WORD flags, LCID locale, DISPPARAMS* arguments, VARIANT* result,
                   EXCEPINFO* exception, UINT* faultyArgument) const noexcept;

private:
    struct Parameter {
        std::u16string name;
        VARTYPE type = VT_EMPTY;   // without VT_BYREF
        bool byReference = false;  // the callee is handed a pointer
        bool optional = false;
        IID interfaceId{};  // of an object
    };
    struct Member {
        DISPID id = DISPID_UNKNOWN;
        INVOKEKIND kind = INVOKE_FUNC;
        std::u16string name;
        ULONG_PTR vtableOffset = 0;
        std::vector<Parameter> parameters;
        VARTYPE result = VT_EMPTY;  // VT_EMPTY: none
    };
    class Call;

    explicit DispatchInterface(ITypeInfo& dualInterface);
    static Member describe(ITypeInfo& owner, const FUNCDESC& function);
    static Parameter describe(ITypeInfo& owner, const TYPEDESC& type);
    const Member* find(DISPID id, WORD flags) const noexcept;

    std::vector<Member> members_;
};

}  // namespace corvane
