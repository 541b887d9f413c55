#include "cli/answers_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>

#include "engine/operator_dialogs.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

Answers answersIn(std::string_view json) {
    const AnswersResult result = readAnswers(json);
    EXPECT_EQ(result.fault, "");
    return result.answers.value_or(Answers{});
}

TEST(AnswersFile, MayBeEmpty) {
    const Answers answers = answersIn("{}");
    EXPECT_TRUE(answers.events.empty());
    EXPECT_FALSE(answers.dialogs);
    EXPECT_EQ(answers.finishLoopAfter, 3);
}

TEST(AnswersFile, AnswersByEventAndOccurrence) {
    const Answers answers = answersIn(R"({"$schema": "answers.schema.json", "events": {"MathsFunction": [
        {"answer": {"tSucess": false}}, {"occurrence": 2, "answer": {"tReturn": 4.5, "tSucess": true}}]}})");
    const EventAnswer* second = answers.find(HostEvent::MathsFunction, 2);
    ASSERT_NE(second, nullptr);
    ASSERT_EQ(second->size(), 2U);
    EXPECT_EQ((*second)[0].first, 5U);
    EXPECT_EQ((*second)[0].second.single(), 4.5F);
    EXPECT_EQ((*second)[1].first, 6U);
    EXPECT_TRUE((*second)[1].second.boolean());
    for (const int occurrence : {1, 3}) {
        const EventAnswer* other = answers.find(HostEvent::MathsFunction, occurrence);
        ASSERT_NE(other, nullptr);
        EXPECT_EQ(other->size(), 1U);
    }
    EXPECT_EQ(answers.find(HostEvent::Park, 1), nullptr);
}

TEST(AnswersFile, TakesEveryTypeOfArgument) {
    const Answers answers = answersIn(R"({"events": {
        "InputString": [{"answer": {"tQuest": "\u00e4\ud83d\ude00", "tMaxLen": -2147483648, "tDLLExecute": false}}],
        "WaitTime": [{"answer": {"tDuration": 3}}],
        "MsgAsk": [{"answer": {"tResult": 2147483647}}]}})");
    const EventAnswer& input = *answers.find(HostEvent::InputString, 1);
    // By name: tDLLExecute, tMaxLen, tQuest.
    EXPECT_FALSE(input[0].second.boolean());
    EXPECT_EQ(input[1].second.longInteger(), -2147483647 - 1);
    EXPECT_EQ(input[2].second.textView(), u"\u00E4\U0001F600");
    EXPECT_EQ(answers.find(HostEvent::WaitTime, 7)->front().second.single(), 3);
    EXPECT_EQ(answers.find(HostEvent::MsgAsk, 1)->front().second.longInteger(), 2147483647);
}

TEST(AnswersFile, AnswersForTheOperator) {
    const Answers answers = answersIn(R"({"finishLoopAfter": 7, "dialogs": {
        "messages": ["yes", "no", "ok", "cancel", "abort", "retry", "ignore", "try again", "continue"],
        "inputs": [12.5, "two", {"cancel": true}]}})");
    EXPECT_EQ(answers.finishLoopAfter, 7);
    EXPECT_THAT(answers.dialogs->messages, ElementsAre(yesAnswer, noAnswer, okAnswer, cancelAnswer, abortAnswer,
                                                       retryAnswer, ignoreAnswer, 10, 11));
    ASSERT_EQ(answers.dialogs->inputs.size(), 3U);
    EXPECT_EQ(answers.dialogs->inputs[0].kind, TypedInput::Kind::Number);
    EXPECT_EQ(answers.dialogs->inputs[0].number, 12.5F);
    EXPECT_EQ(answers.dialogs->inputs[1].text, u"two");
    EXPECT_EQ(answers.dialogs->inputs[2].kind, TypedInput::Kind::Cancel);
}

TEST(AnswersFile, SaysWhereItsContentIsWrong) {
    struct Row {
        const char* json;
        const char* fault;
    };
    constexpr Row rows[] = {
        {"[]", "/: must be an object"},
        {"null", "/: must be an object"},
        {R"({"event": {}})", "/event: is not known here"},
        {R"({"events": []})", "/events: must be an object"},
        {R"({"events": {"Frob": []}})", "/events/Frob: there is no such event"},
        {R"({"events": {"park": []}})", "/events/park: there is no such event"},
        {R"({"events": {"Park": {}}})", "/events/Park: must be an array"},
        {R"({"events": {"Park": [1]}})", "/events/Park/0: must be an object"},
        {R"({"events": {"Park": [{}]}})", "/events/Park/0: has no \"answer\""},
        {R"({"events": {"Park": [{"answer": true}]}})", "/events/Park/0/answer: must be an object"},
        {R"({"events": {"Park": [{"answer": {}, "when": 1}]}})", "/events/Park/0/when: is not known here"},
        {R"({"events": {"Park": [{"answer": {"tSuccess": true}}]}})",
         "/events/Park/0/answer/tSuccess: Park has no such argument"},
        {R"({"events": {"Park": [{"answer": {"tSucess": 1}}]}})",
         "/events/Park/0/answer/tSucess: must be true or false"},
        {R"({"events": {"ShakeBlade": [{"answer": {"tAmplitude": 1}}]}})",
         "/events/ShakeBlade/0/answer/tAmplitude: is passed by value and takes no answer"},
        {R"({"events": {"Info": [{"answer": {"tInfoStr": 1}}]}})", "/events/Info/0/answer/tInfoStr: must be a text"},
        {R"({"events": {"WaitTime": [{"answer": {"tDuration": "1"}}]}})",
         "/events/WaitTime/0/answer/tDuration: must be a number"},
        {R"({"events": {"WaitTime": [{"answer": {"tDuration": 1e39}}]}})",
         "/events/WaitTime/0/answer/tDuration: must fit a single"},
        {R"({"events": {"MsgAsk": [{"answer": {"tResult": 2147483648}}]}})",
         "/events/MsgAsk/0/answer/tResult: must be a whole number of 32 bits"},
        {R"({"events": {"MsgAsk": [{"answer": {"tResult": -2147483649}}]}})",
         "/events/MsgAsk/0/answer/tResult: must be a whole number of 32 bits"},
        {R"({"events": {"MsgAsk": [{"answer": {"tResult": 6.0}}]}})",
         "/events/MsgAsk/0/answer/tResult: must be a whole number of 32 bits"},
        {R"({"events": {"Park": [{"occurrence": 0, "answer": {}}]}})",
         "/events/Park/0/occurrence: must be a whole number from 1"},
        {R"({"events": {"Park": [{"occurrence": -1, "answer": {}}]}})",
         "/events/Park/0/occurrence: must be a whole number from 1"},
        {R"({"events": {"Park": [{"occurrence": 18446744073709551615, "answer": {}}]}})",
         "/events/Park/0/occurrence: must be a whole number from 1"},
        {R"({"events": {"Park": [{"answer": {}}, {"answer": {}}]}})",
         "/events/Park/1: answers the same occurrence once more"},
        {R"({"events": {"Park": [{"occurrence": 2, "answer": {}}, {"occurrence": 2, "answer": {}}]}})",
         "/events/Park/1: answers the same occurrence once more"},
        {R"({"dialogs": []})", "/dialogs: must be an object"},
        {R"({"dialogs": {"message": []}})", "/dialogs/message: is not known here"},
        {R"({"dialogs": {"messages": "yes"}})", "/dialogs/messages: must be an array"},
        {R"({"dialogs": {"messages": ["yes", "maybe"]}})",
         "/dialogs/messages/1: must be \"yes\", \"no\", \"ok\", \"cancel\", "
         "\"abort\", \"retry\", \"ignore\", \"try again\" or \"continue\""},
        {R"({"dialogs": {"messages": [6]}})",
         "/dialogs/messages/0: must be \"yes\", \"no\", \"ok\", \"cancel\", "
         "\"abort\", \"retry\", \"ignore\", \"try again\" or \"continue\""},
        {R"({"dialogs": {"inputs": [null]}})", "/dialogs/inputs/0: must be a number, a text or {\"cancel\": true}"},
        {R"({"dialogs": {"inputs": [{"cancel": false}]}})",
         "/dialogs/inputs/0: must be a number, a text or {\"cancel\": true}"},
        {R"({"dialogs": {"inputs": [-1e300]}})", "/dialogs/inputs/0: must fit a single"},
        {R"({"finishLoopAfter": 0})", "/finishLoopAfter: must be a whole number from 1"},
        {R"({"finishLoopAfter": "3"})", "/finishLoopAfter: must be a whole number from 1"},
        {R"({"a\u001b\u00e4/": 1})", "/a\\u001b\\u00e4/: is not known here"},
    };
    for (const Row& row : rows) {
        const AnswersResult result = readAnswers(row.json);
        EXPECT_FALSE(result.answers);
        EXPECT_EQ(result.fault, row.fault) << row.json;
    }
}

TEST(AnswersFile, SaysWhereItsFormIsWrong) {
    struct Row {
        std::string_view json;
        const char* place;
    };
    constexpr Row rows[] = {
        {"", "1:1: "},
        {"{", "1:2: "},
        {"{\n  \"events\": {},\n}", "3:1: "},
        {"{\"a\": tru}", "1:10: "},
        {"\xEF\xBB\xBF{]", "1:2: "},
        {"{\"\xC3\xA4\": \x01}", "1:7: "},
        {"{\"a\": \"\xFF\"}", "1:8: "},
        {"{} {}", "1:4: "},
    };
    for (const Row& row : rows) {
        const AnswersResult result = readAnswers(row.json);
        EXPECT_FALSE(result.answers);
        EXPECT_THAT(result.fault, StartsWith(row.place)) << row.json;
        EXPECT_THAT(result.fault, testing::Not(testing::AnyOf(HasSubstr("json.exception"), HasSubstr("at line"))));
    }
}

TEST(AnswersFile, RefusesANumberThatNothingHolds) {
    const std::pair<const char*, const char*> rows[] = {
        {R"({"finishLoopAfter": 1e999})", "/finishLoopAfter: number overflow parsing '1e999'"},
        {R"({"events": {"Park": [], "MsgAsk": [{}, [1, 2], {"answer": {"tResult": -1e400}}]}})",
         "/events/MsgAsk/2/answer/tResult: number overflow parsing '-1e400'"},
        {R"({"dialogs": {"inputs": [[], 1, 1e400]}})", "/dialogs/inputs/2: number overflow parsing '1e400'"},
        {"1e400", "/: number overflow parsing '1e400'"},
    };
    for (const auto& [json, fault] : rows) EXPECT_EQ(readAnswers(json).fault, fault);
}

TEST(AnswersFile, RefusesANameThatStandsTwice) {
    EXPECT_EQ(readAnswers(R"({"events": {"Park": [], "Info": [], "Park": []}})").fault,
              "/events/Park: stands twice in one object");
    EXPECT_EQ(readAnswers(R"({"events": {"Park": [{}, {"a\u001b": 1, "a\u001b": 2}]}})").fault,
              "/events/Park/1/a\\u001b: stands twice in one object");
    EXPECT_EQ(readAnswers(R"({"events": {"Park": [{"answer": {}}], "Info": [{"answer": {}}]}})").fault, "");
}

TEST(AnswersFile, SurvivesDeepNesting) {
    EXPECT_FALSE(readAnswers(std::string(200000, '[')).answers);
    EXPECT_EQ(readAnswers(std::string(200000, '[') + std::string(200000, ']')).fault, "/: must be an object");
}

TEST(AnswersSchema, KnowsEveryArgumentThatTakesAnAnswer) {
    std::ifstream file("docs/answers.schema.json");
    const auto schema = nlohmann::json::parse(file);
    const auto& events = schema["properties"]["events"]["properties"];
    EXPECT_EQ(events.size(), eventTable.size());
    for (const EventRow& row : eventTable) {
        nlohmann::json expected = nlohmann::json::object();
        for (std::size_t i = 0; i < row.argumentCount; ++i) {
            const EventArgument& argument = row.arguments[i];
            if (!argument.byReference) continue;
            const char* type = argument.type == ValueType::Text     ? "text"
                               : argument.type == ValueType::Single ? "single"
                               : argument.type == ValueType::Long   ? "long"
                                                                    : "boolean";
            expected[std::string(argument.name)] = {{"$ref", std::string("#/$defs/") + type}};
        }
        EXPECT_EQ(events[std::string(row.name)]["items"]["properties"]["answer"]["properties"], expected) << row.name;
    }
}

}  // namespace
}  // namespace corvane
