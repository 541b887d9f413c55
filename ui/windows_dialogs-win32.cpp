#include <utility>

#include "platform/message_box.h"
#include "ui/frmCDInputBox.h"
#include "ui/windows_dialogs.h"

namespace corvane {

WindowsDialogs::WindowsDialogs(std::optional<NumberLocale> locale, IDispatch* ownerForm)
    : locale_(std::move(locale)), ownerForm_(ownerForm) {}

// A help file without a context in it has nothing to show: the platform's own boxes take none.
std::optional<std::int32_t> WindowsDialogs::showMessage(const OperatorMessage& message) {
    return showMessageBox(message.text, message.caption, message.style);
}

InputAnswer WindowsDialogs::askInput(const InputRequest& request) {
    return frmCDInputBox(locale_ ? *locale_ : NumberLocale::user()).GetInput(request, ownerForm_);
}

}  // namespace corvane
