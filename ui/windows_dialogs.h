#pragma once

#include <optional>

#include "engine/operator_dialogs.h"
#include "platform/number_locale.h"

struct IDispatch;

namespace corvane {

/// The operator dialogs as windows of the running program. Where no window can be shown they say so at once.
///
/// Everything that a dialog needs lives as long as its call, so an object may be destroyed while a dialog of its is
/// open, and nothing is left behind when one has closed.
class WindowsDialogs final : public OperatorDialogs {
public:
    /// Without a locale each input box writes numbers as the user does at that moment. The input box stands over
    /// `ownerForm`, if there is one; it must outlive the dialogs.
    explicit WindowsDialogs(std::optional<NumberLocale> locale = std::nullopt, IDispatch* ownerForm = nullptr);

    std::optional<std::int32_t> showMessage(const OperatorMessage& message) override;
    InputAnswer askInput(const InputRequest& request) override;

private:
    std::optional<NumberLocale> locale_;
    IDispatch* ownerForm_;
};

}  // namespace corvane
