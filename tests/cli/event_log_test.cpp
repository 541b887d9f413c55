#include "cli/event_log.h"

#include <gtest/gtest.h>

#include <sstream>

#include "host/clsDataSetParameters.h"

namespace corvane {
namespace {

/// What a log writes of one event that `answer` answers.
template <typename Answer>
std::string logged(Event& event, const Answer& answer, bool json, LogOptions options = {},
                   std::optional<LoggedPlace> place = LoggedPlace{12, 30}, const std::string& refusal = {}) {
    const std::vector<LoggedValue> before = loggedValues(event);
    answer(event);
    LoggedEvent record = loggedEvent(event.row().name, before, loggedValues(event));
    record.place = place;
    record.refusal = refusal;
    std::ostringstream output;
    (json ? makeJsonLog : makeTextLog)(output, options)->event(record);
    return output.str();
}

Event mathsEvent() {
    return {HostEvent::MathsFunction,
            {Value::ofText(u"Add\n"), Value::ofSingle(1), Value::ofSingle(2.5F), Value::ofSingle(0), Value::ofSingle(0),
             Value::ofSingle(0)}};
}
constexpr auto addUp = [](Event& event) {
    event.answer("tReturn", Value::ofSingle(3.5F));
    event.succeed();
};
constexpr auto succeed = [](Event& event) { event.succeed(); };
constexpr auto ignore = [](Event&) {};

TEST(EventLog, HoldsPlaceEventArgumentsAndAnswers) {
    Event event = mathsEvent();
    EXPECT_EQ(logged(event, addUp, false),
              "stmt   line  event\n"
              "  13     31  MathsFunction(tFunction=\"Add\\n\", tParam0=1, tParam1=2.5, tParam2=0, tParam3=0, "
              "tReturn=0) -> tReturn=3.5, tSucess=True\n");
}

TEST(EventLog, IsOneObjectALineForPrograms) {
    Event event = mathsEvent();
    EXPECT_EQ(logged(event, addUp, true),
              "{\"address\":12,\"line\":31,\"event\":\"MathsFunction\",\"arguments\":{\"tFunction\":\"Add\\n\","
              "\"tParam0\":1,\"tParam1\":2.5,\"tParam2\":0,\"tParam3\":0,\"tReturn\":0},"
              "\"answers\":{\"tReturn\":3.5,\"tSucess\":true}}\n");
}

TEST(EventLog, HasNoStatementWhileAScriptIsLoaded) {
    Event event(HostEvent::VariableAdded, {Value::ofText(u"N"), Value::ofText(u"0")});
    const LoggedPlace loading{std::nullopt, 3};
    EXPECT_EQ(logged(event, ignore, false, {}, loading),
              "stmt   line  event\n   -      4  VariableAdded(tIdentifier=\"N\", tValue=\"0\") -> tSucess=False\n");
    EXPECT_EQ(logged(event, ignore, true, {}, loading),
              "{\"line\":4,\"event\":\"VariableAdded\",\"arguments\":{\"tIdentifier\":\"N\",\"tValue\":\"0\"},"
              "\"answers\":{\"tSucess\":false}}\n");
}

TEST(EventLog, SaysWhyWorkWasRefused) {
    Event event(HostEvent::Park, {});
    EXPECT_EQ(logged(event, ignore, false, {.hostView = true}, LoggedPlace{0, 0}, "it rusted"),
              "Park() -> tSucess=False; refused: it rusted\n");
    EXPECT_EQ(logged(event, ignore, true, {.hostView = true}, LoggedPlace{0, 0}, "it rusted"),
              "{\"event\":\"Park\",\"arguments\":{},\"answers\":{\"tSucess\":false},\"refused\":\"it rusted\"}\n");
}

TEST(EventLog, OfAHostHasNothingThatHostsDoNotKnow) {
    for (const bool json : {false, true}) {
        std::ostringstream output;
        const std::unique_ptr<EventLog> log = (json ? makeJsonLog : makeTextLog)(output, {.hostView = true});
        log->dialog({"message", u"Sure?", {}, "yes"});
        log->end(RunOutcome{});
        EXPECT_EQ(output.str(), "");
    }
}

TEST(EventLog, LeavesBookkeepingToPrograms) {
    Event goingOn(HostEvent::KeepGoing, {});
    EXPECT_EQ(logged(goingOn, succeed, false), "");
    Event called(HostEvent::FunctionCalled, {Value::ofLong(37), Value::ofBoolean(true)});
    EXPECT_EQ(logged(called, succeed, false), "");
    Event all(HostEvent::KeepGoing, {});
    EXPECT_EQ(logged(all, succeed, false, {.hostView = true, .everyEvent = true}), "KeepGoing() -> tSucess=True\n");
    Event json(HostEvent::KeepGoing, {});
    EXPECT_NE(logged(json, succeed, true), "");
}

TEST(EventLog, ShowsBookkeepingThatStopsARun) {
    Event stop(HostEvent::KeepGoing, {});
    EXPECT_EQ(logged(stop, ignore, false, {.hostView = true}), "KeepGoing() -> tSucess=False\n");
}

TEST(EventLog, ShowsWhatADataSetSaysAndWhatTheHostWroteIntoIt) {
    const auto dataSet = makeReference<clsDataSetParameters>();
    dataSet->HelixAngle = -5;
    dataSet->AddDataSetVariable(2, u"wet");
    const auto complete = [&](Event& event) {
        dataSet->TestResult = trComplete;
        event.succeed();
    };
    Event event(HostEvent::GetDataSet, {Value::ofObject(*dataSet)});
    EXPECT_EQ(logged(event, complete, false, {.hostView = true}),
              "GetDataSet(tTestParameters={HelixAngle=-5, Direction=3, DataSetVariable2=\"wet\"}) -> "
              "tTestParameters={TestResult=1}, tSucess=True\n");
    Event again(HostEvent::GetDataSet, {Value::ofObject(*dataSet)});
    const std::string json = logged(again, succeed, true, {.hostView = true});
    EXPECT_NE(json.find("\"DataSetVariable1\":\"\",\"DataSetVariable2\":\"wet\""), json.npos);
    EXPECT_NE(json.find("\"TestResult\":1"), json.npos);
    EXPECT_NE(json.find("\"answers\":{\"tSucess\":true}"), json.npos);
}

TEST(EventLog, CanBeWrittenByAHostThatHasNoEventObjects) {
    LoggedEvent record;
    record.name = "Info";
    record.arguments = {{"tInfoStr", Value::ofText(u"hello"), {}}};
    record.answers = {{"tSucess", Value::ofBoolean(true), {}}};
    std::ostringstream theirs;
    makeJsonLog(theirs, {.hostView = true})->event(record);
    Event event(HostEvent::Info, {Value::ofText(u"hello")});
    EXPECT_EQ(theirs.str(), logged(event, succeed, true, {.hostView = true}));
}

TEST(EventLog, ShowsDialogs) {
    std::ostringstream text;
    makeTextLog(text, {})->dialog({"input", u"How many?", Value::ofSingle(2.5F), "accepted"});
    EXPECT_EQ(text.str(), "               input \"How many?\" -> 2.5 (accepted)\n");
    std::ostringstream json;
    const std::unique_ptr<EventLog> log = makeJsonLog(json, {});
    log->dialog({"input", u"How many?", Value::ofText(u"two"), "accepted"});
    log->dialog({"message", u"Sure?", {}, "nobody there"});
    EXPECT_EQ(json.str(),
              "{\"dialog\":\"input\",\"text\":\"How many?\",\"ending\":\"accepted\",\"answer\":\"two\"}\n"
              "{\"dialog\":\"message\",\"text\":\"Sure?\",\"ending\":\"nobody there\"}\n");
}

TEST(EventLog, ShowsTraceLinesWithTheirQuotes) {
    std::ostringstream text;
    makeTextLog(text, {.hostView = true})->trace(doParsing, u"File Line: 0:   Script Text: 'VAR X = \"\x1\"'");
    EXPECT_EQ(text.str(), "trace parsing: File Line: 0:   Script Text: 'VAR X = \"\\u0001\"'\n");
    std::ostringstream json;
    makeJsonLog(json, {})->trace(doRuntimeResults, u"x");
    makeJsonLog(json, {})->trace(doTables, u"y");
    EXPECT_EQ(json.str(), "{\"trace\":\"run\",\"text\":\"x\"}\n{\"trace\":\"tables\",\"text\":\"y\"}\n");
}

TEST(EventLog, EndsWithTheOutcome) {
    RunOutcome outcome;
    outcome.ending = RunOutcome::Ending::Failed;
    outcome.statements = 5;
    outcome.address = 4;
    outcome.line = 9;
    outcome.event = "Park";
    outcome.reason = "the host did not answer Park";
    outcome.simulatedSeconds = 61.23;
    std::ostringstream text;
    makeTextLog(text, {})->end(outcome);
    EXPECT_EQ(text.str(),
              "\nstatement 5 on line 10 failed: the host did not answer Park\nsimulated duration 1 min 1 s\n");
    std::ostringstream json;
    makeJsonLog(json, {})->end(outcome);
    EXPECT_EQ(
        json.str(),
        "{\"outcome\":\"failed\",\"statements\":5,\"address\":4,\"line\":10,\"event\":\"Park\","
        "\"reason\":\"the host did not answer Park\",\"message\":\"statement 5 on line 10 failed: the host did not "
        "answer Park\",\"simulatedSeconds\":61.2}\n");
}

TEST(DurationText, CountsHoursMinutesAndSeconds) {
    struct Row {
        double given;
        const char* expected;
    };
    constexpr Row rows[] = {{0, "0 s"},           {59.4, "59 s"},          {59.6, "1 min 0 s"},
                            {754, "12 min 34 s"}, {3600, "1 h 0 min 0 s"}, {7384.2, "2 h 3 min 4 s"}};
    for (const Row& row : rows) EXPECT_EQ(durationText(row.given), row.expected);
}

}  // namespace
}  // namespace corvane
