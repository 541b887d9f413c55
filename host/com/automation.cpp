#include "host/com/automation.h"

#include "platform/automation_error.h"

namespace corvane {

BSTR newText(std::u16string_view text) {
    const BSTR copy = SysAllocStringLen(reinterpret_cast<const OLECHAR*>(text.data()), static_cast<UINT>(text.size()));
    if (copy == nullptr) throw automation_error(ErrorNumber::OutOfMemory);
    return copy;
}

}  // namespace corvane
