#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/value.h"

namespace corvane {

/// Style words of a message box: buttons plus icon, as the platform numbers them.
inline constexpr std::int32_t okExclamationStyle = 48;
inline constexpr std::int32_t okInformationStyle = 64;
inline constexpr std::int32_t yesNoQuestionStyle = 36;

/// Answers of a message box, as the platform numbers them.
inline constexpr std::int32_t okAnswer = 1;
inline constexpr std::int32_t cancelAnswer = 2;
inline constexpr std::int32_t abortAnswer = 3;
inline constexpr std::int32_t retryAnswer = 4;
inline constexpr std::int32_t ignoreAnswer = 5;
inline constexpr std::int32_t yesAnswer = 6;
inline constexpr std::int32_t noAnswer = 7;

/// A modal message to the operator. The texts are valid during the call only.
struct OperatorMessage {
    std::u16string_view text;
    std::optional<std::u16string_view> caption;  ///< without one the box bears the host application's own title
    std::int32_t style = okInformationStyle;     ///< buttons (bits 0-3), icon (bits 4-7), default button (bits 8-11)
    std::u16string_view helpFile;                ///< handed to the platform as it is; no help context goes with it
};

/// What an input box asks for.
enum class InputKind : std::int32_t {
    WholeNumber = 0,   ///< answered with a Long
    SingleNumber = 1,  ///< answered with a Single
    String = 2,        ///< answered with a Text
};

/// Ends of the range that stand for "no limit"; a string dialog reads them as 0 and 1024.
inline constexpr float unlimitedMinimum = -1000000.0F;
inline constexpr float unlimitedMaximum = 1000000.0F;

/// One question of the component's own input box. The texts are valid during the call only.
struct InputRequest {
    Value initialValue;  ///< shown first; handed back as it is when the operator cancels
    InputKind kind = InputKind::SingleNumber;
    std::u16string_view question;      ///< empty: "Please enter a Single:" and the like
    float minimum = unlimitedMinimum;  ///< for a string the minimum length
    float maximum = unlimitedMaximum;  ///< for a string the maximum length
    bool allowZero = true;             ///< whether 0, or an empty text, is acceptable
    std::u16string_view title;         ///< empty: the host application's title
};

struct InputAnswer {
    enum class Ending {
        Accepted,
        Cancelled,    ///< the operator cancelled; `value` is the initial value
        Unavailable,  ///< nobody could be asked; `value` is the initial value
    };
    Value value;
    Ending ending = Ending::Unavailable;
};

/// How the engine reaches the operator. An implementation that cannot show a dialog says so at once; it never waits for
/// somebody who is not there.
class OperatorDialogs {
public:
    virtual ~OperatorDialogs() = default;
    /// The platform's answer code, or none when nobody could be asked.
    virtual std::optional<std::int32_t> showMessage(const OperatorMessage& message) = 0;
    virtual InputAnswer askInput(const InputRequest& request) = 0;
};

/// Dialogs where there is no operator: every question goes unanswered, every input ends as unavailable.
class NoOperator final : public OperatorDialogs {
public:
    std::optional<std::int32_t> showMessage(const OperatorMessage&) override { return std::nullopt; }
    InputAnswer askInput(const InputRequest& request) override {
        return {request.initialValue, InputAnswer::Ending::Unavailable};
    }
};

}  // namespace corvane
