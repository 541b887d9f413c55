#include "ui/input_rules.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "engine/modCommand.h"
#include "platform/value_rules.h"

namespace corvane {

namespace {

constexpr float unlimitedStringMinimum = 0;
constexpr float unlimitedStringMaximum = 1024;

constexpr char16_t backspaceKey = 8;
constexpr char16_t enterKey = 13;
constexpr char16_t escapeKey = 27;

std::u16string_view typeText(InputKind kind) {
    switch (kind) {
        case InputKind::WholeNumber: return u"an Long";
        case InputKind::SingleNumber: return u"a Single";
        case InputKind::String: return u"a String";
    }
    return {};
}

// Half to even, and the nearest Long for what no Long can hold.
std::int32_t nearestLong(double number) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (std::isnan(number)) return 0;
    const double rounded = std::nearbyint(number);
    return static_cast<std::int32_t>(
        std::clamp(rounded, static_cast<double>(Limits::min()), static_cast<double>(Limits::max())));
}

bool holds(std::u16string_view text, char16_t character) { return text.find(character) != std::u16string_view::npos; }

KeyEffect toggleSign(std::u16string_view text, std::size_t caret) {
    using enum KeyEffect::Action;
    if (text.starts_with(u'-')) return {Replace, std::u16string(text.substr(1)), caret == 0 ? 0 : caret - 1};
    return {Replace, u'-' + std::u16string(text), caret + 1};
}

}  // namespace

InputRules::InputRules(const InputRequest& request, std::u16string_view applicationTitle, NumberLocale locale)
    : locale_(std::move(locale)),
      kind_(request.kind),
      allowZero_(request.allowZero),
      initialValue_(request.initialValue),
      initialText_(toText(request.initialValue, locale_).view()) {
    setRange(request.minimum, request.maximum);
    composeTexts(request, applicationTitle);
    change(initialText_);
}

void InputRules::setRange(float minimum, float maximum) {
    minimum_ = minimum;
    maximum_ = maximum;
    if (minimum_ >= maximum_) std::swap(minimum_, maximum_);
    if (kind_ != InputKind::String) return;
    if (minimum_ == unlimitedMinimum) minimum_ = unlimitedStringMinimum;
    if (maximum_ == unlimitedMaximum) maximum_ = unlimitedStringMaximum;
    maximumLength_ = std::max(0, nearestLong(maximum_));
}

void InputRules::composeTexts(const InputRequest& request, std::u16string_view applicationTitle) {
    title_ = request.title.empty() ? applicationTitle : request.title;
    question_ = request.question;
    if (question_.empty()) question_.append(u"Please enter ").append(typeText(kind_)).append(u":");
    if (kind_ != InputKind::String)
        rangeText_ =
            MakeStr(u"(Please enter a value between: [1] and [2])", {numberText(minimum_), numberText(maximum_)});
    else if (maximum_ == 0)
        rangeText_ = u"(String of any length)";
    else
        rangeText_ = u"(Maximum String Lenght: " + numberText(maximum_) + u")";
}

std::u16string_view InputRules::typeable(std::u16string_view text) const {
    return maximumLength_ == 0 ? text : text.substr(0, static_cast<std::size_t>(maximumLength_));
}

void InputRules::change(std::u16string_view text) {
    if (kind_ == InputKind::String) {
        returnValue_ = Value::ofText(text.empty() && !allowZero_ ? u" " : text);
        return;
    }
    const float number = corrected(numberIn(text));
    returnValue_ = kind_ == InputKind::WholeNumber ? Value::ofLong(nearestLong(number)) : Value::ofSingle(number);
}

std::u16string InputRules::returnValueText() const { return std::u16string(toText(returnValue_, locale_).view()); }

std::u16string_view reasonText(Correction correction) {
    switch (correction) {
        case Correction::None: return u"";
        case Correction::NonLong: return u"(Non Long)";
        case Correction::TooLarge: return u"(Too large)";
        case Correction::TooSmall: return u"(Too small)";
        case Correction::Zero: return u"(Value is Zero)";
    }
    return {};
}

bool InputRules::isRangeVisible() const {
    return kind_ == InputKind::String || correction_ == Correction::TooLarge || correction_ == Correction::TooSmall;
}

LabelLook InputRules::reasonLook() const {
    return correction_ == Correction::None ? LabelLook{darkGrey, false} : LabelLook{darkBlue, true};
}

std::u16string InputRules::numberText(float number) const {
    return std::u16string(toText(Value::ofSingle(number), locale_).view());
}

// A number beyond a single counts as the largest single: the operator may type one, and the range is to judge it.
float InputRules::numberIn(std::u16string_view text) const {
    std::u16string number(text);
    if (!IsNumericText(number, locale_)) return 0;
    const Value wide = add(Value::ofText(number), Value::ofInteger(0), locale_);
    constexpr double largest = std::numeric_limits<float>::max();
    return static_cast<float>(std::clamp(wide.doubleFloat(), -largest, largest));
}

// Kept: the first rule that applies ends the chain, so a rounded number is not compared with the range.
float InputRules::corrected(float number) {
    if (kind_ == InputKind::WholeNumber && number != std::nearbyint(number)) {
        correction_ = Correction::NonLong;
        return std::nearbyint(number);
    }
    if (number > maximum_) {
        correction_ = Correction::TooLarge;
        return maximum_;
    }
    if (number < minimum_) {
        correction_ = Correction::TooSmall;
        return minimum_;
    }
    if (!allowZero_ && number == 0) {
        correction_ = Correction::Zero;
        return 1;
    }
    correction_ = Correction::None;
    return number;
}

std::u16string MakeStr(std::u16string_view tStr, std::initializer_list<std::u16string_view> tParams) {
    std::u16string filled(tStr);
    std::size_t number = 0;
    for (const std::u16string_view parameter : tParams) {
        const std::string digits = std::to_string(++number);
        const std::u16string mark = u'[' + std::u16string(digits.begin(), digits.end()) + u']';
        for (std::size_t at = filled.find(mark); at != std::u16string::npos;
             at = filled.find(mark, at + parameter.size()))
            filled.replace(at, mark.size(), parameter);
    }
    return filled;
}

KeyEffect numberKey(char16_t key, std::u16string_view text, std::size_t caret, std::u16string_view decimalSeparator) {
    using enum KeyEffect::Action;
    const auto insertIf = [](bool isTaken) { return KeyEffect{isTaken ? Insert : Reject}; };
    switch (key) {
        case u'-': return toggleSign(text, caret);
        case u',': return insertIf(decimalSeparator == u"," && !holds(text, u','));
        // Kept: n has the keypad's decimal key's code and passes as the point does, but it is inserted as an n.
        case u'.':
        case u'n': return insertIf(decimalSeparator == u"." && !holds(text, u'.'));
        case backspaceKey: return {Insert};
        case enterKey: return {Ok};
        case escapeKey: return {Cancel};
        default: return insertIf(key >= u'0' && key <= u'9');
    }
}

KeyEffect stringKey(char16_t key) {
    using enum KeyEffect::Action;
    switch (key) {
        case enterKey: return {Ok};
        case escapeKey: return {Cancel};
        default: return {Insert};
    }
}

}  // namespace corvane
