#include "cli/run_dialogs.h"

#include "platform/value_rules.h"
#include "ui/input_rules.h"

namespace corvane {
namespace {

/// The buttons of a style word, as bits by answer code.
constexpr std::int32_t buttonBits(std::int32_t style) {
    constexpr auto bits = [](auto... codes) { return ((1 << codes) | ...); };
    switch (style & 0xF) {
        case 1: return bits(okAnswer, cancelAnswer);
        case 2: return bits(abortAnswer, retryAnswer, ignoreAnswer);
        case 3: return bits(yesAnswer, noAnswer, cancelAnswer);
        case 4: return bits(yesAnswer, noAnswer);
        case 5: return bits(retryAnswer, cancelAnswer);
        default: return bits(okAnswer);
    }
}

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
    const std::int32_t buttons = buttonBits(message.style);
    if (buttons == 1 << okAnswer) return okAnswer;
    if (nextMessage_ == answers_.messages.size()) return std::nullopt;
    const std::int32_t answer = answers_.messages[nextMessage_++];
    if ((buttons & 1 << answer) == 0) return std::nullopt;
    return answer;
}

InputAnswer AnsweredDialogs::askInput(const InputRequest& request) {
    if (nextInput_ == answers_.inputs.size()) return {request.initialValue, InputAnswer::Ending::Unavailable};
    const TypedInput& typed = answers_.inputs[nextInput_++];
    if (typed.kind == TypedInput::Kind::Cancel) return {request.initialValue, InputAnswer::Ending::Cancelled};
    InputRules rules(request, {}, locale_);
    if (typed.kind == TypedInput::Kind::Number)
        rules.change(portable::toText(Value::ofSingle(typed.number), locale_).view());
    else
        rules.change(typed.text);
    rules.pressOk();
    return {rules.result(), InputAnswer::Ending::Accepted};
}

std::optional<std::int32_t> WatchedDialogs::showMessage(const OperatorMessage& message) {
    const std::optional<std::int32_t> answer = dialogs_.showMessage(message);
    if (logs_) log_.dialog({"message", message.text, {}, answer ? answerWord(*answer) : "nobody there"});
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
