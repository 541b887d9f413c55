#pragma once

#include "engine/operator_dialogs.h"
#include "platform/number_locale.h"

struct IDispatch;

namespace corvane {

/// The window of the input box: it shows what InputRules says and reports what the operator does.
class frmCDInputBox {
public:
    /// What the controls are known by in their window.
    enum Control : int {
        cmdOK = 1,
        cmdCancel = 2,
        lblQuestion = 101,
        txtNumValue,
        txtStrValue,
        lblRange,
        lblReturnValue,
        lblReason,
        lblValueCaption,
        lblEntryName,  ///< names the entry for screen readers where the question is too long for a label
    };

    /// `locale` is how numbers are written and which key is the decimal separator's.
    explicit frmCDInputBox(NumberLocale locale);

    /// Shows the box modally and returns when it has closed.
    ///
    /// The box stands centred over `tOwnerForm`, an automation object whose `Left`, `Top`, `Width` and `Height` are
    /// read by name and are in twips (1440 to the inch, at the resolution of the system); without one, or when one of
    /// the four cannot be read, over the host's window. It is kept on the screen.
    ///
    /// Unavailable, at once, where no window can be shown and while a box of the same thread is open; unavailable also
    /// when the box had to close because its owner was destroyed or the program is to quit, in which case the request
    /// to quit stays for the host.
    InputAnswer GetInput(const InputRequest& request, IDispatch* tOwnerForm = nullptr);

private:
    NumberLocale locale_;
};

}  // namespace corvane
