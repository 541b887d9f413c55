#include "host/com/error_boundary.h"

#include <cstdint>
#include <exception>
#include <new>
#include <string>

#include "platform/automation_error.h"
#include "platform/utf8.h"

namespace corvane {
namespace {

HRESULT reported(const CallSource& source, std::int32_t number, std::string_view description) {
    ComReference<ICreateErrorInfo> information;
    SetErrorInfo(0, nullptr);
    if (SUCCEEDED(CreateErrorInfo(information.receive()))) {
        std::u16string programId(source.programId);
        std::u16string sentence = fromUtf8(description);
        information->SetGUID(source.interfaceId);
        information->SetSource(reinterpret_cast<OLECHAR*>(programId.data()));
        information->SetDescription(reinterpret_cast<OLECHAR*>(sentence.data()));
        SetErrorInfo(0, queryFor<IErrorInfo>(information.get(), IID_IErrorInfo).get());
    }
    return resultOf(number);
}

HRESULT reported(const CallSource& source, ErrorNumber number) {
    return reported(source, static_cast<std::int32_t>(number), errorText(number));
}

}  // namespace

HRESULT resultOfPresentException(const CallSource& source) noexcept {
    try {
        try {
            throw;
        } catch (const automation_error& error) {
            return reported(source, static_cast<std::int32_t>(error.number()), error.what());
        } catch (const std::bad_alloc&) {
            return reported(source, ErrorNumber::OutOfMemory);
        } catch (const std::exception& error) {
            return reported(source, static_cast<std::int32_t>(ErrorNumber::Internal), error.what());
        }
    } catch (...) {
        // Not even memory for the description: the result alone must do.
        SetErrorInfo(0, nullptr);
        return resultOf(static_cast<std::int32_t>(ErrorNumber::OutOfMemory));
    }
}

}  // namespace corvane
