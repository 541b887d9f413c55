#include "cli/terminal_dialogs.h"

#include <cstddef>
#include <istream>
#include <ostream>
#include <span>
#include <utility>

#include "cli/message_buttons.h"
#include "engine/text_utilities.h"
#include "platform/control_character.h"
#include "platform/text_case.h"
#include "platform/utf8.h"

namespace corvane {

namespace {

const MessageButton& defaultButton(std::span<const MessageButton> buttons, std::int32_t style) {
    const auto position = static_cast<std::size_t>(style >> 8 & 0xF);
    return position < buttons.size() ? buttons[position] : buttons[0];
}

std::string_view iconWord(std::int32_t style) {
    switch (style & 0xF0) {
        case 0x10: return "Error: ";
        case 0x20: return "Question: ";
        case 0x30: return "Warning: ";
        case 0x40: return "Information: ";
        default: return "";
    }
}

// The one button whose caption begins with `answer`.
const MessageButton* chosenButton(std::span<const MessageButton> buttons, std::u16string_view answer) {
    const MessageButton* chosen = nullptr;
    for (const MessageButton& button : buttons) {
        if (!equalIgnoringCase(button.caption.substr(0, answer.size()), answer)) continue;
        if (chosen != nullptr) return nullptr;
        chosen = &button;
    }
    return chosen;
}

// Whoever sends more of them than this is no operator.
constexpr int uselessAnswersInARow = 25;
constexpr std::size_t longestLine = 65536;

constexpr std::u16string_view cancelCommand = u"!cancel";
constexpr std::u16string_view emptyCommand = u"!empty";

// The text that a line of input stands for.
std::u16string_view typedText(const InputRules& rules, std::u16string_view line) {
    if (line == emptyCommand) return {};
    if (line.starts_with(u"!!")) line.remove_prefix(1);
    return rules.typeable(line);
}

// Texts of a script go to a terminal, which must not take any of them for a command.
char16_t harmless(char16_t unit) { return isControl(unit) && unit != u'\n' && unit != u'\t' ? u'\xFFFD' : unit; }

}  // namespace

TerminalDialogs::TerminalDialogs(std::istream& input, std::ostream& output, std::u16string_view applicationTitle,
                                 NumberLocale locale, Typing typing)
    : input_(input),
      output_(output),
      applicationTitle_(applicationTitle),
      locale_(std::move(locale)),
      typing_(typing) {}

std::optional<std::int32_t> TerminalDialogs::showMessage(const OperatorMessage& message) {
    const std::span<const MessageButton> buttons = buttonsOf(message.style);
    const MessageButton& onEnter = defaultButton(buttons, message.style);
    output_ << "\n--- ";
    showText(message.caption.value_or(applicationTitle_));
    output_ << " ---\n" << iconWord(message.style);
    showText(message.text);
    output_ << '\n';
    for (int asked = 0; asked < uselessAnswersInARow; ++asked) {
        output_ << "[";
        for (const MessageButton& button : buttons)
            output_ << (&button == &buttons[0] ? "" : " / ") << toUtf8(button.caption);
        output_ << "] Enter = " << toUtf8(onEnter.caption) << " > " << std::flush;
        const std::optional<std::u16string> line = readLine();
        if (!line) return std::nullopt;
        const std::u16string_view answer = TrimBlanksAndTabs(*line);
        if (answer.empty()) return onEnter.answer;
        if (const MessageButton* chosen = chosenButton(buttons, answer)) return chosen->answer;
    }
    return std::nullopt;
}

InputAnswer TerminalDialogs::askInput(const InputRequest& request) {
    InputRules rules(request, applicationTitle_, locale_);
    output_ << "\n--- ";
    showText(rules.title());
    output_ << " ---\n";
    showText(rules.question());
    output_ << '\n' << toUtf8(rules.rangeText()) << '\n';
    if (!converse(rules)) return {request.initialValue, InputAnswer::Ending::Unavailable};
    return {rules.result(), rules.isCancelled() ? InputAnswer::Ending::Cancelled : InputAnswer::Ending::Accepted};
}

// Until OK or Cancel; false when nobody is there.
bool TerminalDialogs::converse(InputRules& rules) {
    for (int asked = 0; asked < uselessAnswersInARow; ++asked) {
        showReturnValue(rules);
        output_ << "Enter = OK, !cancel = Cancel > " << std::flush;
        const std::optional<std::u16string> line = readLine();
        if (!line) return false;
        if (TrimBlanksAndTabs(*line) == cancelCommand) {
            rules.pressCancel();
            return true;
        }
        if (!line->empty()) rules.change(typedText(rules, *line));
        const bool isSeen = line->empty() || rules.correction() == Correction::None;
        if (isSeen) {
            rules.pressOk();
            return true;
        }
    }
    return false;
}

void TerminalDialogs::showReturnValue(const InputRules& rules) {
    output_ << "Value: ";
    showText(rules.returnValueText());
    if (rules.correction() != Correction::None) output_ << ' ' << toUtf8(rules.reason());
    output_ << '\n';
}

void TerminalDialogs::showText(std::u16string_view text) {
    std::u16string shown;
    shown.reserve(text.size());
    for (std::size_t index = 0; index < text.size(); ++index) {
        const bool isLineEnd = text[index] == u'\r';
        if (isLineEnd && index + 1 < text.size() && text[index + 1] == u'\n') continue;
        shown.push_back(isLineEnd ? u'\n' : harmless(text[index]));
    }
    output_ << toUtf8(shown);
}

// None at the input's end, and when a line has no end that is worth waiting for.
std::optional<std::u16string> TerminalDialogs::readLine() {
    std::string line;
    char character = 0;
    while (line.size() <= longestLine && input_.get(character) && character != '\n') line.push_back(character);
    if (line.size() > longestLine || (!input_ && line.empty())) {
        output_ << '\n';
        return std::nullopt;
    }
    if (line.ends_with('\r')) line.pop_back();
    std::u16string text = fromUtf8(line);
    if (typing_ == Typing::Unseen) {
        showText(text);
        output_ << '\n';
    }
    return text;
}

}  // namespace corvane
