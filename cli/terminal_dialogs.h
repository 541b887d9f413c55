#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>

#include "engine/operator_dialogs.h"
#include "platform/number_locale.h"
#include "ui/input_rules.h"

namespace corvane {

/// The operator dialogs in a terminal: one question, one line of answer, UTF-8 in both directions.
///
/// Messages: the answer is a button's word or as much of it as tells it from the others; Enter alone presses the
/// default button. Input boxes: Enter alone accepts the value shown; a typed value is accepted at once when the rules
/// of the input box leave it as it is, otherwise the corrected value and its reason are shown, to be accepted with
/// Enter or replaced by another. `!cancel` cancels, `!empty` is the empty text, and a text that begins with "!" is
/// typed with a second "!" in front.
///
/// Nobody is there when the input ends, or after many answers in a row that are none; a dialog never waits for ever
/// then.
class TerminalDialogs final : public OperatorDialogs {
public:
    /// Whether a terminal shows what comes in, or it comes from elsewhere and is written behind its question.
    enum class Typing { Seen, Unseen };

    /// The streams must outlive the object. `applicationTitle` heads dialogs without a title of their own.
    TerminalDialogs(std::istream& input, std::ostream& output, std::u16string_view applicationTitle,
                    NumberLocale locale = NumberLocale::user(), Typing typing = Typing::Seen);

    std::optional<std::int32_t> showMessage(const OperatorMessage& message) override;
    InputAnswer askInput(const InputRequest& request) override;

private:
    std::optional<std::u16string> readLine();
    void showText(std::u16string_view text);
    void showReturnValue(const InputRules& rules);
    bool converse(InputRules& rules);

    std::istream& input_;
    std::ostream& output_;
    std::u16string applicationTitle_;
    NumberLocale locale_;
    Typing typing_;
};

}  // namespace corvane
