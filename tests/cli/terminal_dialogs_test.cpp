#include "cli/terminal_dialogs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

namespace corvane {
namespace {

using testing::HasSubstr;
using testing::Not;

struct Terminal {
    explicit Terminal(const std::string& typed, const NumberLocale& locale = NumberLocale::pointDecimal(),
                      TerminalDialogs::Typing typing = TerminalDialogs::Typing::Seen)
        : input(typed), dialogs(input, output, u"Corvane Script", locale, typing) {}

    std::optional<std::int32_t> show(std::u16string_view text, std::int32_t style) {
        return dialogs.showMessage({.text = text, .caption = u"Corvane", .style = style, .helpFile = {}});
    }

    std::istringstream input;
    std::ostringstream output;
    TerminalDialogs dialogs;
};

InputRequest numberRequest(float initial, float minimum, float maximum) {
    InputRequest request;
    request.initialValue = Value::ofSingle(initial);
    request.question = u"How many shakes?";
    request.title = u"Enter Number";
    request.minimum = minimum;
    request.maximum = maximum;
    return request;
}

InputRequest stringRequest(std::u16string_view initial, float maximum = unlimitedMaximum) {
    InputRequest request;
    request.initialValue = Value::ofText(initial);
    request.kind = InputKind::String;
    request.maximum = maximum;
    request.title = u"Enter String";
    return request;
}

// ---------------------------------------------------------------------------------------------------------- messages

TEST(TerminalMessage, ShowsCaptionTextAndButtons) {
    Terminal terminal("y\n");
    EXPECT_EQ(terminal.show(u"Is the vessel in place?", yesNoQuestionStyle), yesAnswer);
    EXPECT_EQ(terminal.output.str(), "\n--- Corvane ---\nQuestion: Is the vessel in place?\n[Yes / No] Enter = Yes > ");
}

TEST(TerminalMessage, BearsTheApplicationsTitleWithoutACaption) {
    Terminal terminal("y\n");
    terminal.dialogs.showMessage({.text = u"x", .caption = std::nullopt, .style = yesNoQuestionStyle, .helpFile = {}});
    EXPECT_THAT(terminal.output.str(), HasSubstr("--- Corvane Script ---"));
}

TEST(TerminalMessage, KnowsTheAnswersOfEveryButtonSet) {
    struct Row {
        std::int32_t style;
        std::string typed;
        std::int32_t answer;
    };
    const Row rows[] = {
        {0, "o", 1},     {0, "OK", 1},        {1, "ok", 1},    {1, "c", 2},       {1, "Cancel", 2},
        {2, "Abort", 3}, {2, "a", 3},         {2, "retry", 4}, {2, "R", 4},       {2, "ignore", 5},
        {2, "i", 5},     {3, "y", 6},         {3, "n", 7},     {3, "c", 2},       {4, "yes", 6},
        {4, "NO", 7},    {5, "r", 4},         {5, "c", 2},     {6, "cancel", 2},  {6, "try again", 10},
        {6, "t", 10},    {6, "continue", 11}, {6, "co", 11},   {0x10034, "n", 7}, {4, "  no \t", 7},
        {36, "n\r", 7},
    };
    for (const Row& row : rows) {
        Terminal terminal(row.typed + "\n");
        EXPECT_EQ(terminal.show(u"?", row.style), row.answer) << row.style << ' ' << row.typed;
    }
}

TEST(TerminalMessage, ShowsAnUnknownButtonSetWithOk) {
    for (std::int32_t set = 7; set < 16; ++set) {
        Terminal terminal("\n");
        EXPECT_EQ(terminal.show(u"?", set), okAnswer);
        EXPECT_THAT(terminal.output.str(), HasSubstr("[OK] "));
    }
    Terminal terminal("\n");
    EXPECT_EQ(terminal.show(u"?", -1), okAnswer);
}

TEST(TerminalMessage, NamesTheIcon) {
    const std::pair<std::int32_t, std::string> rows[] = {
        {0, "\nmessage"},           {16, "\nError: message"},       {32, "\nQuestion: message"},
        {48, "\nWarning: message"}, {64, "\nInformation: message"}, {80, "\nmessage"},
    };
    for (const auto& [style, text] : rows) {
        Terminal terminal("\n");
        terminal.show(u"message", style);
        EXPECT_THAT(terminal.output.str(), HasSubstr(text)) << style;
    }
}

TEST(TerminalMessage, PressesTheDefaultButtonOnEnter) {
    const std::pair<std::int32_t, std::int32_t> rows[] = {
        {4, 6}, {4 + 256, 7}, {3 + 512, 2}, {2 + 256, 4}, {4 + 512, 6}, {0 + 768, 1},
    };
    for (const auto& [style, answer] : rows) {
        Terminal terminal("\n");
        EXPECT_EQ(terminal.show(u"?", style), answer) << style;
    }
}

TEST(TerminalMessage, AsksAgainAfterNonsense) {
    Terminal terminal("perhaps\nyess\nc\nno\n");
    EXPECT_EQ(terminal.show(u"?", yesNoQuestionStyle), noAnswer);
    EXPECT_EQ(terminal.input.peek(), EOF);
}

TEST(TerminalMessage, AsksAgainWhenTheLetterFitsTwoButtons) {
    Terminal terminal("c\nca\n");
    EXPECT_EQ(terminal.show(u"?", 6), cancelAnswer);
    EXPECT_EQ(terminal.input.peek(), EOF);
}

TEST(TerminalMessage, GoesUnansweredWhenTheInputEnds) {
    Terminal terminal("");
    EXPECT_EQ(terminal.show(u"?", yesNoQuestionStyle), std::nullopt);
    EXPECT_EQ(terminal.show(u"?", okInformationStyle), std::nullopt);
    Terminal afterNonsense("maybe\n");
    EXPECT_EQ(afterNonsense.show(u"?", yesNoQuestionStyle), std::nullopt);
}

TEST(TerminalMessage, TakesALastLineWithoutItsEnd) {
    Terminal terminal("no");
    EXPECT_EQ(terminal.show(u"?", yesNoQuestionStyle), noAnswer);
}

TEST(TerminalMessage, GoesUnansweredAfterNonsenseWithoutEnd) {
    std::string nonsense;
    for (int line = 0; line < 100'000; ++line) nonsense += "nonsense\n";
    Terminal terminal(nonsense);
    EXPECT_EQ(terminal.show(u"?", yesNoQuestionStyle), std::nullopt);
    EXPECT_LT(terminal.output.str().size(), 10'000U);
}

TEST(TerminalMessage, GoesUnansweredWhenALineDoesNotEnd) {
    Terminal terminal(std::string(1'000'000, 'y'));
    EXPECT_EQ(terminal.show(u"?", yesNoQuestionStyle), std::nullopt);
}

TEST(TerminalMessage, WritesUtf8AndLineEnds) {
    Terminal terminal("\n");
    terminal.show(
        u"20 \xB0"
        u"C\r\nin \x20AC\rnow\n\xD800",
        0);
    EXPECT_THAT(terminal.output.str(), HasSubstr("\n20 \xC2\xB0"
                                                 "C\nin \xE2\x82\xAC\nnow\n\xEF\xBF\xBD\n"));
}

TEST(TerminalMessage, LetsNoTextOfAScriptCommandTheTerminal) {
    Terminal terminal("\n");
    terminal.show(
        u"a\x1B[2Jb\a\x9B"
        u"c\x7F\td",
        0);
    EXPECT_THAT(terminal.output.str(), HasSubstr("a\xEF\xBF\xBD[2Jb\xEF\xBF\xBD\xEF\xBF\xBD"
                                                 "c\xEF\xBF\xBD\td"));
}

TEST(TerminalMessage, WritesWhatNoTerminalShowed) {
    Terminal terminal("mayb\x1B?\r\nyes\n", NumberLocale::pointDecimal(), TerminalDialogs::Typing::Unseen);
    EXPECT_EQ(terminal.show(u"?", yesNoQuestionStyle), yesAnswer);
    EXPECT_THAT(terminal.output.str(),
                testing::EndsWith("Enter = Yes > mayb\xEF\xBF\xBD?\n[Yes / No] Enter = Yes > yes\n"));
}

// ------------------------------------------------------------------------------------------------------------- input

TEST(TerminalInput, WritesWhatNoTerminalShowed) {
    Terminal terminal("99\n\n", NumberLocale::pointDecimal(), TerminalDialogs::Typing::Unseen);
    terminal.dialogs.askInput(numberRequest(5, 1, 10));
    EXPECT_THAT(terminal.output.str(), testing::EndsWith("> 99\nValue: 10 (Too large)\n"
                                                         "Enter = OK, !cancel = Cancel > \n"));
}

TEST(TerminalInput, ShowsTitleQuestionRangeAndStartValue) {
    Terminal terminal("\n");
    terminal.dialogs.askInput(numberRequest(5, 1, 10));
    EXPECT_EQ(terminal.output.str(),
              "\n--- Enter Number ---\nHow many shakes?\n(Please enter a value between: 1 and 10)\nValue: 5\n"
              "Enter = OK, !cancel = Cancel > ");
}

TEST(TerminalInput, AcceptsATypedNumberAtOnce) {
    Terminal terminal("7.5\n");
    const InputAnswer answer = terminal.dialogs.askInput(numberRequest(5, 1, 10));
    EXPECT_EQ(answer.ending, InputAnswer::Ending::Accepted);
    EXPECT_EQ(answer.value.single(), 7.5F);
}

TEST(TerminalInput, AcceptsTheStartValueOnEnter) {
    Terminal terminal("\n");
    const InputAnswer answer = terminal.dialogs.askInput(numberRequest(5, 1, 10));
    EXPECT_EQ(answer.ending, InputAnswer::Ending::Accepted);
    EXPECT_EQ(answer.value.single(), 5);
}

TEST(TerminalInput, ShowsTheStartValueCorrected) {
    Terminal terminal("\n");
    const InputAnswer answer = terminal.dialogs.askInput(numberRequest(50, 1, 10));
    EXPECT_THAT(terminal.output.str(), HasSubstr("Value: 10 (Too large)\n"));
    EXPECT_EQ(answer.value.single(), 10);
}

TEST(TerminalInput, ShowsACorrectionBeforeItIsAccepted) {
    Terminal terminal("99\n\n");
    const InputAnswer answer = terminal.dialogs.askInput(numberRequest(5, 1, 10));
    EXPECT_THAT(terminal.output.str(), HasSubstr("> Value: 10 (Too large)\n"));
    EXPECT_EQ(answer.ending, InputAnswer::Ending::Accepted);
    EXPECT_EQ(answer.value.single(), 10);
}

TEST(TerminalInput, LetsACorrectedValueBeReplaced) {
    Terminal terminal("99\n0\n8\n");
    const InputAnswer answer = terminal.dialogs.askInput(numberRequest(5, 1, 10));
    EXPECT_THAT(terminal.output.str(), HasSubstr("Value: 1 (Too small)\n"));
    EXPECT_EQ(answer.value.single(), 8);
}

TEST(TerminalInput, RoundsAWholeNumber) {
    InputRequest request = numberRequest(5, 1, 10);
    request.kind = InputKind::WholeNumber;
    Terminal terminal("2.6\n\n");
    const InputAnswer answer = terminal.dialogs.askInput(request);
    EXPECT_THAT(terminal.output.str(), HasSubstr("Value: 3 (Non Long)\n"));
    EXPECT_EQ(answer.value.longInteger(), 3);
}

TEST(TerminalInput, ReadsNumbersInTheUsersLocale) {
    Terminal terminal("2,5\n", NumberLocale::commaDecimal());
    EXPECT_EQ(terminal.dialogs.askInput(numberRequest(1.5F, 1, 10)).value.single(), 2.5F);
    EXPECT_THAT(terminal.output.str(), HasSubstr("Value: 1,5\n"));
}

TEST(TerminalInput, HandsBackTheStartValueExactlyWhenCancelled) {
    InputRequest request = numberRequest(0, 1, 10);
    request.initialValue = Value::ofInteger(50);
    Terminal terminal("99\n!cancel\n");
    const InputAnswer answer = terminal.dialogs.askInput(request);
    EXPECT_EQ(answer.ending, InputAnswer::Ending::Cancelled);
    ASSERT_EQ(answer.value.type(), ValueType::Integer);
    EXPECT_EQ(answer.value.integer(), 50);
}

TEST(TerminalInput, IsUnavailableWhenTheInputEnds) {
    for (const char* typed : {"", "99\n"}) {
        Terminal terminal(typed);
        const InputAnswer answer = terminal.dialogs.askInput(numberRequest(5, 1, 10));
        EXPECT_EQ(answer.ending, InputAnswer::Ending::Unavailable);
        EXPECT_EQ(answer.value.single(), 5);
    }
}

TEST(TerminalInput, IsUnavailableAfterCorrectionsWithoutEnd) {
    std::string lines;
    for (int line = 0; line < 100'000; ++line) lines += "99\n";
    Terminal terminal(lines);
    EXPECT_EQ(terminal.dialogs.askInput(numberRequest(5, 1, 10)).ending, InputAnswer::Ending::Unavailable);
}

TEST(TerminalInput, IsUnavailableWhenALineDoesNotEnd) {
    Terminal terminal(std::string(1'000'000, 'x'));
    EXPECT_EQ(terminal.dialogs.askInput(stringRequest(u"")).ending, InputAnswer::Ending::Unavailable);
}

TEST(TerminalInput, AcceptsATypedText) {
    const std::pair<std::string, std::u16string> rows[] = {
        {"Lactose \xC2\xB5m\r\n", u"Lactose \xB5m"},
        {"  blanks stay \n", u"  blanks stay "},
        {"\n", u"start"},
        {"!empty\n", u""},
        {"!!cancel\n", u"!cancel"},
        {"!!\n", u"!"},
        {"!other\n", u"!other"},
    };
    for (const auto& [typed, text] : rows) {
        Terminal terminal(typed);
        const InputAnswer answer = terminal.dialogs.askInput(stringRequest(u"start"));
        EXPECT_EQ(answer.ending, InputAnswer::Ending::Accepted);
        EXPECT_EQ(answer.value.textView(), text) << typed;
    }
}

TEST(TerminalInput, CutsATypedTextAtItsGreatestLength) {
    Terminal terminal("abcdef\n");
    EXPECT_EQ(terminal.dialogs.askInput(stringRequest(u"", 4)).value.textView(), u"abcd");
    EXPECT_THAT(terminal.output.str(), HasSubstr("(Maximum String Lenght: 4)"));
    Terminal unlimited("abcdef\n");
    EXPECT_EQ(unlimited.dialogs.askInput(stringRequest(u"", 0)).value.textView(), u"abcdef");
}

TEST(TerminalInput, ReturnsABlankForAnEmptyTextThatIsNotAllowed) {
    InputRequest request = stringRequest(u"start");
    request.allowZero = false;
    Terminal terminal("!empty\n");
    EXPECT_EQ(terminal.dialogs.askInput(request).value.textView(), u" ");
}

TEST(TerminalInput, ShowsNoControlCharactersOfTheStartValue) {
    Terminal terminal("\n");
    const InputAnswer answer = terminal.dialogs.askInput(stringRequest(u"a\x1B[0m"));
    EXPECT_THAT(terminal.output.str(), Not(HasSubstr("\x1B")));
    EXPECT_EQ(answer.value.textView(), u"a\x1B[0m");
}

}  // namespace
}  // namespace corvane
