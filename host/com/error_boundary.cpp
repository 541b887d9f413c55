#include "host/com/error_boundary.h"

#include <cstdint>
#include <exception>
#include <new>
#include <string>

#include "platform/automation_error.h"
#include "platform/utf8.h"

namespace corvane {
namespace {

/// Leaves the error information of the thread: whole, or none where there is no memory for it.
void leaveInformation(const CallSource& source, std::string_view description) noexcept {
    SetErrorInfo(0, nullptr);
    try {
        ComReference<ICreateErrorInfo> information;
        if (FAILED(CreateErrorInfo(information.receive()))) return;
        std::u16string programId(source.programId);
        std::u16string sentence = fromUtf8(description);
        information->SetGUID(source.interfaceId);
        if (FAILED(information->SetSource(reinterpret_cast<OLECHAR*>(programId.data())))) return;
        if (FAILED(information->SetDescription(reinterpret_cast<OLECHAR*>(sentence.data())))) return;
        SetErrorInfo(0, queryFor<IErrorInfo>(information.get(), IID_IErrorInfo).get());
    } catch (const std::bad_alloc&) {
        return;  // the result alone must do
    }
}

HRESULT reported(const CallSource& source, ErrorNumber number, std::string_view description) noexcept {
    leaveInformation(source, description);
    return resultOf(static_cast<std::int32_t>(number));
}

}  // namespace

HRESULT resultOfPresentException(const CallSource& source) noexcept {
    try {
        throw;
    } catch (const automation_error& error) {
        return reported(source, error.number(), error.what());
    } catch (const std::bad_alloc&) {
        return reported(source, ErrorNumber::OutOfMemory, errorText(ErrorNumber::OutOfMemory));
    } catch (const std::exception& error) {
        return reported(source, ErrorNumber::Internal, error.what());
    } catch (...) {
        return reported(source, ErrorNumber::Internal, errorText(ErrorNumber::Internal));
    }
}

}  // namespace corvane
