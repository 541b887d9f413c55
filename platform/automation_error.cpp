#include "platform/automation_error.h"

namespace corvane {

std::string_view errorText(ErrorNumber number) {
    switch (number) {
        case ErrorNumber::InvalidProcedureCall: return "Invalid procedure call or argument";
        case ErrorNumber::Overflow: return "Overflow";
        case ErrorNumber::OutOfMemory: return "Out of memory";
        case ErrorNumber::SubscriptOutOfRange: return "Subscript out of range";
        case ErrorNumber::ArrayLocked: return "This array is fixed or temporarily locked";
        case ErrorNumber::TypeMismatch: return "Type mismatch";
        case ErrorNumber::Internal: return "Internal error";
        case ErrorNumber::BadFileName: return "Bad file name or number";
        case ErrorNumber::DeviceIoError: return "Device I/O error";
        case ErrorNumber::PermissionDenied: return "Permission denied";
        case ErrorNumber::PathFileAccess: return "Path/File access error";
        case ErrorNumber::PathNotFound: return "Path not found";
        case ErrorNumber::ObjectNotSet: return "Object variable not set";
        case ErrorNumber::MemberNotFound: return "Object doesn't support this property or method";
        case ErrorNumber::KeyAlreadyInUse: return "This key is already associated with an element of this collection";
    }
    return "Application-defined or object-defined error";
}

}  // namespace corvane
