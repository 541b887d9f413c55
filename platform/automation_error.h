#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace corvane {

/// The automation errors that this component raises, by the number that a host's error object shows.
enum class ErrorNumber : std::int32_t {
    InvalidProcedureCall = 5,  ///< an argument or a position is outside what the call accepts
    Overflow = 6,              ///< a number does not fit the type that it is converted to
    OutOfMemory = 7,
    SubscriptOutOfRange = 9,
    ArrayLocked = 10,   ///< an array in use cannot be redimensioned
    TypeMismatch = 13,  ///< a text is no number
    Internal = 51,      ///< a fault of the component's own
    BadFileName = 52,
    DeviceIoError = 57,
    PermissionDenied = 70,
    PathFileAccess = 75,
    PathNotFound = 76,
    ObjectNotSet = 91,
    MemberNotFound = 438,   ///< object does not support this property or method
    KeyAlreadyInUse = 457,  ///< in a collection
};

/// The platform's own sentence for `number`, without a final stop.
std::string_view errorText(ErrorNumber number);

/// A run-time error: it ends the call that it happens in and reaches the host as that call's automation error.
class automation_error : public std::runtime_error {
public:
    explicit automation_error(ErrorNumber number) : automation_error(number, std::string(errorText(number))) {}

    /// `description` replaces the platform's sentence; ASCII or UTF-8.
    automation_error(ErrorNumber number, const std::string& description)
        : std::runtime_error(description), number_(number) {}

    ErrorNumber number() const noexcept { return number_; }

private:
    ErrorNumber number_;
};

}  // namespace corvane
