#include "cli/terminal_dialogs.h"

#include <cstddef>
#include <istream>
#include <ostream>
#include <span>
#include <utility>

#include "platform/text_case.h"
#include "platform/utf8.h"

namespace corvane {

namespace {

struct Button {
    std::u16string_view word;
    std::int32_t answer;
};

constexpr std::int32_t tryAgainAnswer = 10;
constexpr std::int32_t continueAnswer = 11;

constexpr Button okButtons[] = {{u"OK", okAnswer}};
constexpr Button okCancelButtons[] = {{u"OK", okAnswer}, {u"Cancel", cancelAnswer}};
constexpr Button abortRetryIgnoreButtons[] = {
    {u"Abort", abortAnswer}, {u"Retry", retryAnswer}, {u"Ignore", ignoreAnswer}};
constexpr Button yesNoCancelButtons[] = {{u"Yes", yesAnswer}, {u"No", noAnswer}, {u"Cancel", cancelAnswer}};
constexpr Button yesNoButtons[] = {{u"Yes", yesAnswer}, {u"No", noAnswer}};
constexpr Button retryCancelButtons[] = {{u"Retry", retryAnswer}, {u"Cancel", cancelAnswer}};
constexpr Button cancelTryContinueButtons[] = {
    {u"Cancel", cancelAnswer}, {u"Try Again", tryAgainAnswer}, {u"Continue", continueAnswer}};

// Indexed by bits 0-3 of the style word.
constexpr std::span<const Button> buttonSets[] = {
    okButtons,    okCancelButtons,    abortRetryIgnoreButtons,  yesNoCancelButtons,
    yesNoButtons, retryCancelButtons, cancelTryContinueButtons,
};

std::span<const Button> buttonsOf(std::int32_t style) {
    const auto set = static_cast<std::size_t>(style & 0xF);
    return set < std::size(buttonSets) ? buttonSets[set] : buttonSets[0];
}

const Button& defaultButton(std::span<const Button> buttons, std::int32_t style) {
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

// The one button whose word begins with `answer`.
const Button* chosenButton(std::span<const Button> buttons, std::u16string_view answer) {
    const Button* chosen = nullptr;
    for (const Button& button : buttons) {
        if (!equalIgnoringCase(button.word.substr(0, answer.size()), answer)) continue;
        if (chosen != nullptr) return nullptr;
        chosen = &button;
    }
    return chosen;
}

std::u16string_view trimmed(std::u16string_view line) {
    constexpr std::u16string_view blanks = u" \t";
    const std::size_t first = line.find_first_not_of(blanks);
    return first == std::u16string_view::npos ? std::u16string_view()
                                              : line.substr(first, line.find_last_not_of(blanks) - first + 1);
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
    const auto limit = static_cast<std::size_t>(rules.maximumLength());
    return limit == 0 ? line : line.substr(0, limit);
}

// Texts of a script go to a terminal, which must not take any of them for a command.
char16_t harmless(char16_t unit) {
    const bool isControl = unit < 0x20 || (unit >= 0x7F && unit < 0xA0);
    return isControl && unit != u'\n' && unit != u'\t' ? u'\xFFFD' : unit;
}

}  // namespace

TerminalDialogs::TerminalDialogs(std::istream& input, std::ostream& output, std::u16string_view applicationTitle,
                                 NumberLocale locale)
    : input_(input), output_(output), applicationTitle_(applicationTitle), locale_(std::move(locale)) {}

std::optional<std::int32_t> TerminalDialogs::showMessage(const OperatorMessage& message) {
    const std::span<const Button> buttons = buttonsOf(message.style);
    const Button& onEnter = defaultButton(buttons, message.style);
    output_ << "\n--- ";
    showText(message.caption.value_or(applicationTitle_));
    output_ << " ---\n" << iconWord(message.style);
    showText(message.text);
    output_ << '\n';
    for (int asked = 0; asked < uselessAnswersInARow; ++asked) {
        output_ << "[";
        for (const Button& button : buttons) output_ << (&button == &buttons[0] ? "" : " / ") << toUtf8(button.word);
        output_ << "] Enter = " << toUtf8(onEnter.word) << " > " << std::flush;
        const std::optional<std::u16string> line = readLine();
        if (!line) return std::nullopt;
        const std::u16string_view answer = trimmed(*line);
        if (answer.empty()) return onEnter.answer;
        if (const Button* chosen = chosenButton(buttons, answer)) return chosen->answer;
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
        if (trimmed(*line) == cancelCommand) {
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
    while (input_.get(character) && character != '\n') {
        if (line.size() == longestLine) return std::nullopt;
        line.push_back(character);
    }
    if (!input_ && line.empty()) {
        output_ << '\n';
        return std::nullopt;
    }
    if (line.ends_with('\r')) line.pop_back();
    return fromUtf8(line);
}

}  // namespace corvane
