#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

#include "engine/operator_dialogs.h"
#include "platform/number_locale.h"
#include "platform/value.h"

/// The input box without its window: what frmCDInputBox shows, which keys it takes and which value it returns. A window
/// or a terminal draws what this says and reports what the operator does.
namespace corvane {

/// Why a number was corrected. Only the first rule that applies acts.
enum class Correction {
    None,
    NonLong,
    TooLarge,
    TooSmall,
    Zero,
};

/// What the operator reads of a correction; empty for none.
std::u16string_view reasonText(Correction correction);

/// How a label is drawn.
struct LabelLook {
    std::uint32_t colour;  ///< 0xBBGGRR
    bool bold;
    friend bool operator==(const LabelLook&, const LabelLook&) = default;
};
inline constexpr std::uint32_t darkBlue = 0x800000;
inline constexpr std::uint32_t darkGrey = 0x404040;

/// One showing of the input box, from its opening to its closing.
class InputRules {
public:
    /// `applicationTitle` is the host application's. The texts of the request are copied.
    InputRules(const InputRequest& request, std::u16string_view applicationTitle, NumberLocale locale);

    // What is shown and does not change.
    InputKind kind() const { return kind_; }
    const std::u16string& title() const { return title_; }
    const std::u16string& question() const { return question_; }
    /// The range in order; the lengths of a string.
    float minimum() const { return minimum_; }
    float maximum() const { return maximum_; }
    const std::u16string& rangeText() const { return rangeText_; }
    /// What the entry holds first: the initial value, not corrected.
    const std::u16string& initialText() const { return initialText_; }
    /// The longest text, in code units, that can be typed into the entry of a string; 0 is no limit.
    std::int32_t maximumLength() const { return maximumLength_; }
    /// As much of `text` as can be typed into the entry.
    std::u16string_view typeable(std::u16string_view text) const;

    // What follows the entry's text.
    /// To be called whenever the entry's text has changed.
    void change(std::u16string_view text);
    /// What will be returned: a Long, a Single or a Text, by the kind.
    const Value& returnValue() const { return returnValue_; }
    std::u16string returnValueText() const;
    Correction correction() const { return correction_; }
    /// Why the value was corrected; empty when it was not.
    std::u16string_view reason() const { return reasonText(correction_); }
    /// A number's range is shown only while it is violated, a string's always.
    bool isRangeVisible() const;
    LabelLook returnValueLook() const { return {darkBlue, true}; }
    LabelLook reasonLook() const;

    // How it ends.
    void pressOk() { isCancelled_ = false; }
    void pressCancel() { isCancelled_ = true; }
    bool isCancelled() const { return isCancelled_; }
    /// The initial value exactly as it was passed in when cancelled, otherwise the return value.
    const Value& result() const { return isCancelled_ ? initialValue_ : returnValue_; }

private:
    void setRange(float minimum, float maximum);
    void composeTexts(const InputRequest& request, std::u16string_view applicationTitle);
    std::u16string numberText(float number) const;
    float numberIn(std::u16string_view text) const;
    float corrected(float number);

    NumberLocale locale_;
    InputKind kind_;
    float minimum_ = 0;
    float maximum_ = 0;
    bool allowZero_;
    bool isCancelled_ = true;
    Value initialValue_;
    Value returnValue_;
    Correction correction_ = Correction::None;
    std::u16string title_;
    std::u16string question_;
    std::u16string rangeText_;
    std::u16string initialText_;
    std::int32_t maximumLength_ = 0;
};

/// `tStr` with every "[1]", "[2]" ... replaced by the first, second ... of `tParams`.
std::u16string MakeStr(std::u16string_view tStr, std::initializer_list<std::u16string_view> tParams);

/// What a key does to an entry, before it is inserted.
struct KeyEffect {
    enum class Action {
        Insert,   ///< the entry takes the key
        Reject,   ///< the key is swallowed
        Ok,       ///< the key is swallowed and OK pressed
        Cancel,   ///< the key is swallowed and Cancel pressed
        Replace,  ///< the key is swallowed; the entry gets `text` and `caret`
    };
    Action action = Action::Reject;
    std::u16string text{};
    std::size_t caret = 0;  ///< in code units from the text's beginning
    friend bool operator==(const KeyEffect&, const KeyEffect&) = default;
};

/// The key filter of the number entry. `key` is a character code, `text` and `caret` the entry as it is.
KeyEffect numberKey(char16_t key, std::u16string_view text, std::size_t caret, std::u16string_view decimalSeparator);

/// The key filter of the string entry.
KeyEffect stringKey(char16_t key);

}  // namespace corvane
