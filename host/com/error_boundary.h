#pragma once

#include "host/com/automation.h"
#include "platform/floating_point.h"

/// The wall between the component, where failures are exceptions, and automation, where they are results.
namespace corvane {

/// Which class a failing call was made on.
struct CallSource {
    const IID& interfaceId;
    std::u16string_view programId;  ///< what a host's error object shows as source
};

/// The result of a call that failed with the exception being handled, which is also left as the thread's error
/// information: number, source, description. Called from a catch block only.
HRESULT resultOfPresentException(const CallSource& source) noexcept;

/// Runs the body of a call from outside: with the component's arithmetic, and with every exception made the call's
/// automation error. The body is told how the host calculates, for its own calls back.
template <typename Body>
HRESULT guardedCall(const CallSource& source, Body&& body) noexcept {
    const ComponentArithmetic arithmetic;
    try {
        body(arithmetic.host());
        return S_OK;
    } catch (...) {
        return resultOfPresentException(source);
    }
}

/// The platform's result for an automation error.
constexpr HRESULT resultOf(int errorNumber) {
    return static_cast<HRESULT>(0x800A0000U | static_cast<unsigned>(errorNumber));
}

}  // namespace corvane
