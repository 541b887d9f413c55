// An input box with any range, initial value, texts and keys: what it would return fits what it says of it.

#include <cmath>

#include "platform/value_rules.h"
#include "tests/fuzz/fuzz_input.h"
#include "ui/input_rules.h"

namespace corvane::fuzz {
namespace {

/// As the box stores a number of its range for a kind.
double storable(const InputRules& box, float number) {
    if (box.kind() != InputKind::WholeNumber) return number;
    return std::clamp(std::nearbyint(static_cast<double>(number)), -2147483648.0, 2147483647.0);
}

void checkNumber(const InputRules& box, bool allowZero) {
    const Value& value = box.returnValue();
    const bool isWhole = box.kind() == InputKind::WholeNumber;
    require(value.type() == (isWhole ? ValueType::Long : ValueType::Single), "a number has the type of its box");
    const double number = isWhole ? static_cast<double>(value.longInteger()) : static_cast<double>(value.single());
    require(std::isnan(box.minimum()) || std::isnan(box.maximum()) || box.minimum() <= box.maximum(),
            "a range is in order");
    require(
        box.isRangeVisible() == (box.correction() == Correction::TooLarge || box.correction() == Correction::TooSmall),
        "a number's range is shown while it is violated");
    // What is not a number bounds nothing, and none is the greatest or the least.
    if (std::isnan(box.minimum()) || std::isnan(box.maximum())) return;
    switch (box.correction()) {
        case Correction::None:
            require(number >= storable(box, box.minimum()) && number <= storable(box, box.maximum()),
                    "an uncorrected number lies within the range");
            require(allowZero || number != 0, "an uncorrected number is not zero where none may be");
            break;
        case Correction::NonLong: require(isWhole, "only a whole number is rounded"); break;
        case Correction::TooLarge: require(number == storable(box, box.maximum()), "the maximum"); break;
        case Correction::TooSmall: require(number == storable(box, box.minimum()), "the minimum"); break;
        case Correction::Zero: require(!allowZero && number == 1, "zero becomes one"); break;
    }
}

void check(const InputRules& box, std::u16string_view entry, const InputRequest& request) {
    require(box.reason().empty() == (box.correction() == Correction::None), "a correction has a reason");
    require(box.reasonLook().bold == !box.reason().empty(), "a reason is bold");
    box.returnValueText();
    if (box.kind() != InputKind::String) {
        checkNumber(box, request.allowZero);
        return;
    }
    require(box.returnValue().isText() && box.correction() == Correction::None && box.isRangeVisible(),
            "a string is not corrected");
    require(box.returnValue().textView() == (entry.empty() && !request.allowZero ? u" " : entry),
            "a string is returned as it is");
}

/// Keys as a box of a number takes them, until the choices are spent.
std::u16string typed(Choices& choices, std::u16string entry, const std::u16string& mark) {
    std::size_t caret = std::min<std::size_t>(choices.byte(), entry.size());
    for (int i = 0; i < 32 && !choices.isSpent(); ++i) {
        static constexpr std::u16string_view keys = u"0123456789-,.n\b\r\x1b ex";
        const char16_t key = choices.oneIn(8) ? choices.bits<char16_t>() : keys[choices.below(keys.size())];
        const KeyEffect effect = numberKey(key, entry, caret, mark);
        if (effect.action == KeyEffect::Action::Replace) {
            require(effect.caret <= effect.text.size(), "the caret stays within the entry");
            require(entry.starts_with(u"--") || numberKey(u'-', effect.text, effect.caret, mark).text == entry,
                    "a sign twice is none");
            entry = effect.text;
            caret = effect.caret;
        } else if (effect.action == KeyEffect::Action::Insert && key == u'\b') {
            if (caret > 0) entry.erase(--caret, 1);
        } else if (effect.action == KeyEffect::Action::Insert) {
            require(std::u16string_view(u"0123456789n").find(key) != std::u16string_view::npos || mark.front() == key,
                    "only what numbers are written with is inserted");
            entry.insert(caret++, 1, key);
        }
    }
    return entry;
}

}  // namespace
}  // namespace corvane::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace corvane;
    using namespace corvane::fuzz;
    FuzzInput input(data, size);
    Choices& choices = input.choices;
    const NumberLocale locale = choices.locale();
    InputRequest request;
    request.kind = static_cast<InputKind>(choices.below(3));
    request.allowZero = !choices.oneIn(2);
    request.initialValue = choices.value(static_cast<ValueType>(choices.below(6)));
    if (choices.oneIn(2)) request.minimum = choices.single();
    if (choices.oneIn(2)) request.maximum = choices.single();
    const std::u16string question = choices.text();
    request.question = question;
    InputRules box(request, u"Host", locale);
    require(!box.title().empty() && !box.question().empty() && !box.rangeText().empty(), "a box says what it asks");
    check(box, box.initialText(), request);

    const std::u16string text = textOf(input.text);
    const std::u16string_view pasted = box.typeable(text);
    require(text.starts_with(pasted), "what fits is the text's beginning");
    box.change(pasted);
    check(box, pasted, request);
    require(box.isCancelled(), "a box that is not answered is cancelled");
    require(box.result().type() == request.initialValue.type(), "a cancel gives the initial value back");

    const std::u16string entry = typed(choices, text, locale.decimalMark);
    box.change(entry);
    check(box, entry, request);
    box.pressOk();
    require(box.result().type() == box.returnValue().type(), "OK gives what was shown");
    return 0;
}
