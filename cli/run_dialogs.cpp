#include "cli/run_dialogs.h"

#include <algorithm>
#include <span>

#include "cli/message_buttons.h"
#include "platform/value_rules.h"
#include "ui/input_rules.h"

namespace corvane {
namespace {

std::string_view endingOf(InputAnswer::Ending ending) {
    switch (ending) {
        case InputAnswer::Ending::Accepted: return "accepted";
        case InputAnswer::Ending::Cancelled: return "cancelled";
        case InputAnswer::Ending::Unavailable: break;
    }
    return "nobody there";
}

}  // namespace

std::optional<std::int32_t> AnsweredDialogs::showMessage(const OperatorMessage& message) {
    const std::span<const MessageButton> buttons = buttonsOf(message.style);
    if (buttons.size() == 1) return buttons[0].answer;
    if (nextMessage_ == answers_.messages.size()) return std::nullopt;
    const std::int32_t answer = answers_.messages[nextMessage_++];
    const bool isThere =
        std::any_of(buttons.begin(), buttons.end(), [&](const MessageButton& b) { return b.answer == answer; });
    return isThere ? std::optional(answer) : std::nullopt;
}

InputAnswer AnsweredDialogs::askInput(const InputRequest& request) {
    if (nextInput_ == answers_.inputs.size()) return {request.initialValue, InputAnswer::Ending::Unavailable};
    const TypedInput& typed = answers_.inputs[nextInput_++];
    if (typed.kind == TypedInput::Kind::Cancel) return {request.initialValue, InputAnswer::Ending::Cancelled};
    InputRules rules(request, {}, locale_);
    if (typed.kind == TypedInput::Kind::Number)
        rules.change(rules.typeable(portable::toText(Value::ofSingle(typed.number), locale_).view()));
    else
        rules.change(rules.typeable(typed.text));
    rules.pressOk();
    return {rules.result(), InputAnswer::Ending::Accepted};
}

std::optional<std::int32_t> WatchedDialogs::showMessage(const OperatorMessage& message) {
    const std::optional<std::int32_t> answer = dialogs_.showMessage(message);
    const MessageButton* const button = answer ? findButton(*answer) : nullptr;
    if (logs_) log_.dialog({"message", message.text, {}, button != nullptr ? button->word : "nobody there"});
    return answer;
}

InputAnswer WatchedDialogs::askInput(const InputRequest& request) {
    InputAnswer answer = dialogs_.askInput(request);
    const bool isAccepted = answer.ending == InputAnswer::Ending::Accepted;
    if (logs_)
        log_.dialog({"input", request.question, isAccepted ? std::optional(answer.value) : std::nullopt,
                     endingOf(answer.ending)});
    if (watch_ != nullptr)
        watch_->noteOperator(isAccepted                                        ? ""
                             : answer.ending == InputAnswer::Ending::Cancelled ? "the operator cancelled"
                                                                               : "there was no operator to answer");
    return answer;
}

}  // namespace corvane
