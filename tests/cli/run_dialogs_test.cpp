#include "cli/run_dialogs.h"

#include <gtest/gtest.h>

#include <sstream>

#include "cli/message_buttons.h"

namespace corvane {
namespace {

std::optional<std::int32_t> show(AnsweredDialogs& dialogs, std::int32_t style) {
    return dialogs.showMessage({.text = u"?", .caption = u"Corvane", .style = style, .helpFile = {}});
}

TEST(AnsweredDialogs, AnswerQuestionsInOrderUntilThereIsNoOperator) {
    const DialogAnswers answers{{yesAnswer, noAnswer}, {}};
    AnsweredDialogs dialogs(answers, NumberLocale::pointDecimal());
    EXPECT_EQ(show(dialogs, yesNoQuestionStyle), yesAnswer);
    EXPECT_EQ(show(dialogs, yesNoQuestionStyle), noAnswer);
    EXPECT_EQ(show(dialogs, yesNoQuestionStyle), std::nullopt);
}

TEST(AnsweredDialogs, AcknowledgeABoxWithOneButtonWithoutAnAnswer) {
    const DialogAnswers answers{{yesAnswer}, {}};
    AnsweredDialogs dialogs(answers, NumberLocale::pointDecimal());
    for (const std::int32_t style : {okInformationStyle, okExclamationStyle, 0, 7})
        EXPECT_EQ(show(dialogs, style), okAnswer);
    EXPECT_EQ(show(dialogs, yesNoQuestionStyle), yesAnswer);
}

TEST(AnsweredDialogs, PressOnlyButtonsThatABoxHas) {
    constexpr std::int32_t all[] = {okAnswer,  cancelAnswer, abortAnswer,    retryAnswer,   ignoreAnswer,
                                    yesAnswer, noAnswer,     tryAgainAnswer, continueAnswer};
    struct Row {
        std::int32_t style;
        std::vector<std::int32_t> buttons;
    };
    const Row rows[] = {
        {1, {okAnswer, cancelAnswer}},
        {2, {abortAnswer, retryAnswer, ignoreAnswer}},
        {3, {cancelAnswer, yesAnswer, noAnswer}},
        {4, {yesAnswer, noAnswer}},
        {5, {cancelAnswer, retryAnswer}},
        {6, {cancelAnswer, tryAgainAnswer, continueAnswer}},
    };
    for (const Row& row : rows)
        for (const std::int32_t answer : all) {
            const DialogAnswers answers{{answer}, {}};
            AnsweredDialogs dialogs(answers, NumberLocale::pointDecimal());
            const bool has = std::find(row.buttons.begin(), row.buttons.end(), answer) != row.buttons.end();
            EXPECT_EQ(show(dialogs, row.style), has ? std::optional(answer) : std::nullopt);
        }
}

InputRequest request(InputKind kind, float minimum, float maximum) {
    InputRequest request;
    request.initialValue = kind == InputKind::String ? Value::ofText(u"old") : Value::ofSingle(1);
    request.kind = kind;
    request.minimum = minimum;
    request.maximum = maximum;
    return request;
}

TEST(AnsweredDialogs, TypeThroughTheRulesOfTheInputBox) {
    const DialogAnswers answers{{},
                                {{TypedInput::Kind::Number, 2.5F, {}},
                                 {TypedInput::Kind::Number, 99, {}},
                                 {TypedInput::Kind::Text, 0, u"1,5"},
                                 {TypedInput::Kind::Text, 0, u"new"},
                                 {TypedInput::Kind::Number, 2.5F, {}}}};
    AnsweredDialogs dialogs(answers, NumberLocale::commaDecimal());
    EXPECT_EQ(dialogs.askInput(request(InputKind::SingleNumber, 0, 10)).value.single(), 2.5F);
    EXPECT_EQ(dialogs.askInput(request(InputKind::SingleNumber, 0, 10)).value.single(), 10) << "too large";
    EXPECT_EQ(dialogs.askInput(request(InputKind::SingleNumber, 0, 10)).value.single(), 1.5F);
    EXPECT_EQ(dialogs.askInput(request(InputKind::String, 0, 10)).value.textView(), u"new");
    const InputAnswer last = dialogs.askInput(request(InputKind::String, 0, 10));
    EXPECT_EQ(last.value.textView(), u"2,5");
    EXPECT_EQ(last.ending, InputAnswer::Ending::Accepted);
}

TEST(AnsweredDialogs, TypeNoMoreThanTheInputBoxTakes) {
    const DialogAnswers answers{{},
                                {{TypedInput::Kind::Text, 0, u"abcdefghij"}, {TypedInput::Kind::Number, 1234567, {}}}};
    AnsweredDialogs dialogs(answers, NumberLocale::pointDecimal());
    EXPECT_EQ(dialogs.askInput(request(InputKind::String, 0, 5)).value.textView(), u"abcde");
    EXPECT_EQ(dialogs.askInput(request(InputKind::String, 0, 5)).value.textView(), u"12345");
}

TEST(AnsweredDialogs, HandBackTheInitialValueWithoutAnAnswer) {
    const DialogAnswers answers{{}, {{TypedInput::Kind::Cancel, 0, {}}}};
    AnsweredDialogs dialogs(answers, NumberLocale::pointDecimal());
    const InputAnswer cancelled = dialogs.askInput(request(InputKind::SingleNumber, 0, 10));
    EXPECT_EQ(cancelled.ending, InputAnswer::Ending::Cancelled);
    EXPECT_EQ(cancelled.value.single(), 1);
    const InputAnswer none = dialogs.askInput(request(InputKind::String, 0, 10));
    EXPECT_EQ(none.ending, InputAnswer::Ending::Unavailable);
    EXPECT_EQ(none.value.textView(), u"old");
}

TEST(WatchedDialogs, LogTheWordOfEveryButton) {
    const DialogAnswers answers{{tryAgainAnswer, continueAnswer}, {}};
    std::ostringstream output;
    const std::unique_ptr<EventLog> log = makeTextLog(output, {});
    AnsweredDialogs dialogs(answers, NumberLocale::pointDecimal());
    WatchedDialogs watched(dialogs, *log, true);
    for (const std::int32_t answer : answers.messages)
        EXPECT_EQ(watched.showMessage({.text = u"?", .caption = {}, .style = 6, .helpFile = {}}), answer);
    EXPECT_EQ(output.str(),
              "               message \"?\" -> (try again)\n               message \"?\" -> (continue)\n");
}

TEST(WatchedDialogs, AreLoggedOnlyWhereNobodySeesThem) {
    const DialogAnswers answers{{yesAnswer}, {{TypedInput::Kind::Text, 0, u"new"}}};
    for (const bool logs : {true, false}) {
        std::ostringstream output;
        const std::unique_ptr<EventLog> log = makeTextLog(output, {});
        AnsweredDialogs dialogs(answers, NumberLocale::pointDecimal());
        WatchedDialogs watched(dialogs, *log, logs);
        InputRequest input = request(InputKind::String, 0, 10);
        input.question = u"Name?";
        EXPECT_EQ(watched.askInput(input).value.textView(), u"new");
        EXPECT_EQ(watched.showMessage({.text = u"Sure?", .caption = {}, .style = 36, .helpFile = {}}), yesAnswer);
        EXPECT_EQ(watched.showMessage({.text = u"Sure?", .caption = {}, .style = 36, .helpFile = {}}), std::nullopt);
        EXPECT_EQ(output.str(), logs ? "               input \"Name?\" -> \"new\" (accepted)\n"
                                       "               message \"Sure?\" -> (yes)\n"
                                       "               message \"Sure?\" -> (nobody there)\n"
                                     : "");
    }
}

}  // namespace
}  // namespace corvane
