#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "cli/window_dialogs.h"
#include "engine/trace.h"
#include "tests/cli/ran.h"
#include "tests/platform/temporary_folder.h"

namespace corvane {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// Runs a script that is written to a file for it, with an answers file if there is any.
class Run : public testing::Test {
protected:
    Ran run(const std::string& script, std::vector<std::string> options = {"--unattended"},
            const std::string& typed = {}, const std::function<bool()>& interrupted = {}) {
        std::vector<std::string> arguments = {"run", folder_.write("a.script", script).string()};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return ran(arguments, typed, interrupted);
    }
    Ran runAnswered(const std::string& script, const std::string& answers) {
        return run(script, {"--answers", answersFile(answers), "--unattended"});
    }
    std::string answersFile(const std::string& answers) { return folder_.write("a.json", answers).string(); }
    /// The last object of the log for programs.
    nlohmann::json outcome(const std::string& script, std::vector<std::string> options = {}) {
        options.insert(options.end(), {"--unattended", "--log", "jsonl"});
        const std::string output = run(script, options).output;
        const std::size_t start = output.rfind('\n', output.size() - 2);
        return nlohmann::json::parse(output.substr(start == output.npos ? 0 : start + 1));
    }

    TemporaryFolder folder_;
};

// ------------------------------------------------------------------------------------------------------------ outcomes

TEST_F(Run, EndsAfterItsLastStatement) {
    const Ran result = run("Park()\nWaitTime(90, \"\")\n");
    EXPECT_EQ(result.code, ExitCode::Success);
    EXPECT_EQ(result.output,
              "stmt   line  event\n"
              "   1      1  Park() -> tSucess=True\n"
              "   2      2  WaitTime(tDuration=90, tMessage=\"\") -> tSucess=True\n"
              "\nended after 2 statements\nsimulated duration 1 min 30 s\n");
    EXPECT_THAT(result.errors, IsEmpty());
    EXPECT_EQ(outcome("Park()"), nlohmann::json::parse(R"({"outcome": "ended", "statements": 1,
        "message": "ended after 1 statement", "simulatedSeconds": 0})"));
}

TEST_F(Run, EndsAtAReturnWithoutACall) {
    const Ran result = run("Park()\nReturn()\nPark()");
    EXPECT_EQ(result.code, ExitCode::Success);
    EXPECT_THAT(result.output, HasSubstr("\nended after 2 statements by a Return without a Call\n"));
}

TEST_F(Run, FailsWithAStatementThatTheHostDoesNotAnswer) {
    const Ran result = run("; a comment\nPark()\nMoveToHeight(300, 0, 0, 0)\nPark()");
    EXPECT_EQ(result.code, ExitCode::RunFailed);
    EXPECT_THAT(result.output, HasSubstr("\nstatement 2 on line 3 failed: the host did not answer MoveToHeight: the "
                                         "height, 300 mm, is outside -5 to 250 mm\n"));
    EXPECT_EQ(outcome("Park()\nMoveToHeight(300, 0, 0, 0)"), nlohmann::json::parse(R"({"outcome": "failed",
        "statements": 2, "address": 1, "line": 2, "event": "MoveToHeight",
        "reason": "the host did not answer MoveToHeight: the height, 300 mm, is outside -5 to 250 mm",
        "message": "statement 2 on line 2 failed: the host did not answer MoveToHeight: the height, 300 mm, is outside -5 to 250 mm",
        "simulatedSeconds": 0})"));
}

TEST_F(Run, FailsOnItsLastStatementAsWell) { EXPECT_EQ(run("MoveToHeight(300, 0, 0, 0)").code, ExitCode::RunFailed); }

TEST_F(Run, EndsWithAnAutomationError) {
    const Ran result =
        run("VAR N = 0\nPark()\nMathsFunction(\"Add\", N, 2000000000, 2000000000, 0, 0)\nGoto(Next)\n"
            "Next:\nShakeBlade(N)");
    EXPECT_EQ(result.code, ExitCode::RunFailed);
    EXPECT_THAT(result.output, HasSubstr("\nautomation error 6 (Overflow) in statement 4 on line 6\n"));
    const auto json = outcome("VAR N = 4E9\nShakeBlade(N)");
    EXPECT_EQ(json["outcome"], "automation error");
    EXPECT_EQ(json["error"], 6);
    EXPECT_EQ(json["reason"], "Overflow");
    EXPECT_EQ(json["line"], 2);
}

TEST_F(Run, OfNoStatementsIsAnAutomationErrorOfNoStatement) {
    const Ran result = run("; nothing\n");
    EXPECT_EQ(result.code, ExitCode::RunFailed);
    EXPECT_EQ(result.output, "\nautomation error 9 (Subscript out of range)\nsimulated duration 0 s\n");
}

TEST_F(Run, StopsAtTheStatementLimit) {
    const Ran result = run("Again:\nPark()\nGoto(Again)", {"--max-statements", "5", "--unattended"});
    EXPECT_EQ(result.code, ExitCode::RunFailed);
    EXPECT_THAT(result.output, EndsWith("   1      2  Park() -> tSucess=True\n"
                                        "   1      2  KeepGoing() -> tSucess=False\n"
                                        "\nstatement limit reached after 5 statements\nsimulated duration 0 s\n"));
}

TEST_F(Run, ThatJustFitsTheStatementLimitEnds) {
    const std::vector<std::string> two = {"--max-statements", "2", "--unattended"};
    EXPECT_EQ(run("Park()\nPark()", two).code, ExitCode::Success);
    EXPECT_EQ(run("Park()\nReturn()\nPark()", two).code, ExitCode::Success);
    EXPECT_THAT(run("Park()\nMoveToHeight(300,0,0,0)\nPark()", two).output, HasSubstr("statement 2 on line 2 failed"));
    EXPECT_EQ(run("Park()\nPark()\nPark()", two).code, ExitCode::RunFailed);
}

TEST_F(Run, StopsAtTheStatementLimitOnAReturnThatGoesBackToItself) {
    const std::string script = "Call(B)\nB:\nReturn()\n";
    EXPECT_THAT(run(script, {"--max-statements", "2", "--unattended"}).output,
                HasSubstr("\nstatement limit reached after 2 statements\n"));
    EXPECT_THAT(run(script, {"--max-statements", "3", "--unattended"}).output,
                HasSubstr("\nended after 3 statements by a Return without a Call\n"));
}

TEST_F(Run, StopsWhenKeepGoingIsAnsweredWithNo) {
    const Ran result = runAnswered("Park()\nPark()\nPark()",
                                   R"({"events": {"KeepGoing": [{"occurrence": 2, "answer": {"tSucess": false}}]}})");
    EXPECT_EQ(result.code, ExitCode::RunFailed);
    EXPECT_THAT(result.output, HasSubstr("\nstopped after 2 statements: by the answers file\n"));
}

TEST_F(Run, StopsWhenInterrupted) {
    int asked = 0;
    const Ran result = run("Again:\nGoto(Again)", {"--unattended"}, {}, [&] { return ++asked == 4; });
    EXPECT_EQ(result.code, ExitCode::RunFailed);
    EXPECT_THAT(result.output, HasSubstr("\nstopped after 4 statements: interrupted\n"));
}

TEST_F(Run, LogsNothingOfARejectedScript) {
    const Ran result = run("VAR X = 1\nFrob()");
    EXPECT_EQ(result.code, ExitCode::ScriptRejected);
    EXPECT_THAT(result.output, IsEmpty());
    EXPECT_THAT(result.errors, HasSubstr(":2:1: error: Invalid input: 'Frob()'"));
}

TEST_F(Run, WarnsOfADuplicateLabelAndGoesOn) {
    const Ran result = run("A:\nPark()\nA:\n");
    EXPECT_EQ(result.code, ExitCode::Success);
    EXPECT_THAT(result.errors, HasSubstr(":3:1: warning: Duplicate Lable Defined: A\n"));
}

// ------------------------------------------------------------------------------------------------------------- answers

TEST_F(Run, IsAnsweredByFileByNameAndOccurrence) {
    const Ran result =
        runAnswered("VAR N = 0\nVAR L = 3\nAgain:\nMathsFunction(\"Secret\", N, N, 0, 0, 0)\nIfLessThan(N, L, Again)",
                    R"({"events": {"MathsFunction": [{"occurrence": 2, "answer": {"tReturn": 3.5, "tSucess": true}},
                                                     {"answer": {"tReturn": 1, "tSucess": true}}]}})");
    EXPECT_EQ(result.code, ExitCode::Success);
    EXPECT_THAT(result.output,
                HasSubstr("tParam0=0, tParam1=0, tParam2=0, tParam3=0, tReturn=0) -> tReturn=1, tSucess="));
    EXPECT_THAT(result.output,
                HasSubstr("tParam0=1, tParam1=0, tParam2=0, tParam3=0, tReturn=0) -> tReturn=3.5, tSuc"));
    EXPECT_THAT(result.output, HasSubstr("ended after 4 statements"));
}

TEST_F(Run, DoesNotDoWhatTheFileRefuses) {
    const Ran result =
        runAnswered("WaitTime(60, \"\")\n", R"({"events": {"WaitTime": [{"answer": {"tSucess": false}}]}})");
    EXPECT_EQ(result.code, ExitCode::RunFailed);
    EXPECT_THAT(result.output,
                HasSubstr("the host did not answer WaitTime: by the answers file\nsimulated duration 0 s"));
}

TEST_F(Run, DoesWhatTheFileAnswersInPart) {
    const Ran result =
        runAnswered("WaitTime(60, \"\")\n", R"({"events": {"WaitTime": [{"answer": {"tMessage": "changed"}}]}})");
    EXPECT_EQ(result.code, ExitCode::Success);
    EXPECT_THAT(result.output, HasSubstr("-> tMessage=\"changed\", tSucess=True\n"));
    EXPECT_THAT(result.output, HasSubstr("simulated duration 1 min 0 s"));
}

TEST_F(Run, GoesOnWhereTheFileOverrulesTheInstrument) {
    const Ran result =
        runAnswered("WaitTime(-1, \"\")\nPark()", R"({"events": {"WaitTime": [{"answer": {"tSucess": true}}]}})");
    EXPECT_EQ(result.code, ExitCode::Success);
    EXPECT_THAT(result.output, Not(HasSubstr("refused")));
}

TEST_F(Run, AnswersEventsOfTheLoadToo) {
    const Ran result =
        runAnswered("VAR X = 1\nPark()", R"({"events": {"VariableAdded": [{"answer": {"tSucess": false}}]}})");
    EXPECT_THAT(result.output,
                HasSubstr("   -      1  VariableAdded(tIdentifier=\"X\", tValue=\"1\") -> tSucess=False"));
    EXPECT_EQ(result.code, ExitCode::Success);
}

TEST_F(Run, RefusesABadAnswersFileBeforeAnythingRuns) {
    const std::string name = folder_.path("a.json").string();
    const Ran form = runAnswered("Park()", "{\n\"events\" }");
    EXPECT_EQ(form.code, ExitCode::BadAnswers);
    EXPECT_THAT(form.errors, testing::StartsWith(name + ":2:10: "));
    EXPECT_THAT(form.output, IsEmpty());
    const Ran content = runAnswered("Park()", R"({"events": {"Frob": []}})");
    EXPECT_EQ(content.code, ExitCode::BadAnswers);
    EXPECT_EQ(content.errors, name + ": /events/Frob: there is no such event\n");
    EXPECT_THAT(content.output, IsEmpty());
    EXPECT_THAT(runAnswered("Park()", R"({"finishLoopAfter": 1e400})").errors,
                testing::StartsWith(name + ": /finishLoopAfter: "));
    EXPECT_EQ(run("Park()", {"--answers", folder_.path("").string()}).code, ExitCode::NoInput);
}

// ------------------------------------------------------------------------------------------------------------- dialogs

constexpr const char* question = "MsgAsk(\"Sure?\", Yes)\nInfo(\"no\")\nYes:\nPark()\n";

TEST_F(Run, AsksInTheTerminal) {
    const Ran yes = run(question, {}, "y\n");
    EXPECT_EQ(yes.code, ExitCode::Success);
    EXPECT_THAT(yes.output, testing::AllOf(HasSubstr("Sure?\n[Yes / No]"), Not(HasSubstr("Info("))));
    EXPECT_THAT(run(question, {}, "n\n").output, HasSubstr("Info("));
}

TEST_F(Run, KeepsQuestionsOutOfALogForPrograms) {
    const Ran result = run(question, {"--log", "jsonl"}, "y\n");
    EXPECT_THAT(result.errors, HasSubstr("[Yes / No]"));
    EXPECT_THAT(result.output, Not(HasSubstr("[Yes")));
}

TEST_F(Run, WritesAnswersBehindTheirQuestionsWhereNoTerminalShowsThem) {
    const std::string script = folder_.write("a.script", question).string();
    for (const bool isTerminal : {true, false}) {
        std::istringstream input("y\n");
        std::ostringstream output;
        std::ostringstream errors;
        runCommandLine({"run", script}, {input, output, errors, {}, isTerminal});
        EXPECT_THAT(output.str(), HasSubstr(isTerminal ? "Enter = Yes >    3" : "Enter = Yes > y\n   3"));
    }
}

TEST_F(Run, CutsAnAnsweredTextAsTheInputBoxDoes) {
    EXPECT_THAT(
        runAnswered("VAR S = \"\"\nInputString(\"Name\", S, 5)\n", R"({"dialogs": {"inputs": ["abcdefghij"]}})").output,
        HasSubstr("input \"Name\" -> \"abcde\" (accepted)"));
}

TEST_F(Run, AsksNobodyWhenUnattended) {
    const Ran result = run(question, {"--unattended"}, "y\n");
    EXPECT_THAT(result.output, HasSubstr("message \"Sure?\" -> (nobody there)\n"));
    EXPECT_THAT(result.output, HasSubstr("Info("));
}

TEST_F(Run, IsAnsweredByFileEvenAtATerminal) {
    const Ran result = run(question, {"--answers", answersFile(R"({"dialogs": {"messages": ["yes"]}})")}, "n\n");
    EXPECT_THAT(result.output, testing::AllOf(HasSubstr("message \"Sure?\" -> (yes)\n"), Not(HasSubstr("Info("))));
}

TEST_F(Run, FailsWhenTheOperatorCancels) {
    const std::string script = "VAR N = 1\nInputNumber(\"How many?\", N, 0, 10)\n";
    const Ran cancelled = runAnswered(script, R"({"dialogs": {"inputs": [{"cancel": true}], "messages": ["yes"]}})");
    EXPECT_EQ(cancelled.code, ExitCode::RunFailed);
    EXPECT_THAT(cancelled.output, HasSubstr("\nstatement 1 on line 2 failed: the operator cancelled InputNumber\n"));
    const Ran changedHisMind =
        runAnswered(script, R"({"dialogs": {"inputs": [{"cancel": true}, 5], "messages": ["no"]}})");
    EXPECT_EQ(changedHisMind.code, ExitCode::Success);
    const Ran gone = runAnswered(script, R"({"dialogs": {}})");
    EXPECT_EQ(gone.code, ExitCode::RunFailed);
    EXPECT_THAT(gone.output, HasSubstr("failed: there was no operator to answer InputNumber\n"));
    EXPECT_EQ(run(script, {}, "7\n").code, ExitCode::Success);
}

// ------------------------------------------------------------------------------------------------------------- options

TEST_F(Run, ShowsTraceLinesAndLeavesTheDebugOptionsAsTheyWere) {
    const std::int32_t before = debugOptions();
    const Ran result = run("VAR X = 1\nWaitTime(X, \"\")", {"--trace", "--unattended"});
    EXPECT_THAT(result.output, HasSubstr("trace parsing: File Line: 1:   Script Text: 'WaitTime(X, \"\")'\n"));
    EXPECT_THAT(result.output, HasSubstr("trace tables: "));
    EXPECT_THAT(result.output, HasSubstr("trace run: Running Command: 0 - WaitTime\n"));
    EXPECT_THAT(result.output, HasSubstr("trace run: ExecuteList Result: True\n"));
    EXPECT_EQ(debugOptions(), before);
    EXPECT_THAT(run("Park()").output, Not(HasSubstr("trace")));
}

constexpr const char* loop = "Loop:\nPark()\nIfNotFinishLoopFlag(\"On?\", Loop)\n";

TEST_F(Run, RaisesError438AtTheFinishLoopFlag) {
    for (const std::vector<std::string>& options :
         {std::vector<std::string>{"--unattended"},
          std::vector<std::string>{"--finish-loop=faithful", "--unattended"}}) {
        const Ran result = run(loop, options);
        EXPECT_EQ(result.code, ExitCode::RunFailed);
        EXPECT_THAT(result.output,
                    HasSubstr("\nautomation error 438 (Object doesn't support this property or method) in "
                              "statement 2 on line 3\n"));
    }
}

TEST_F(Run, FinishesALoopWhenTheFlagIsReadAndSet) {
    const Ran result = run(loop, {"--finish-loop=designed", "--unattended"});
    EXPECT_EQ(result.code, ExitCode::Success);
    EXPECT_THAT(result.output, HasSubstr("ended after 8 statements")) << "asked three times, set at the third";
    const Ran once = run(loop, {"--finish-loop=designed", "--answers", answersFile(R"({"finishLoopAfter": 1})")});
    EXPECT_THAT(once.output, HasSubstr("ended after 4 statements"));
}

TEST_F(Run, ShowsOnlyEventsInAHostsView) {
    const Ran text = run(question, {"--host-view", "--unattended"});
    EXPECT_EQ(text.output,
              "MsgAsk(tQuest=\"Sure?\", tResult=0, tDLLExecute=True) -> tSucess=True\n"
              "Info(tInfoStr=\"no\") -> tSucess=True\n"
              "Park() -> tSucess=True\n");
    EXPECT_EQ(text.errors, "ended after 3 statements\n");
    std::istringstream lines(run(question, {"--host-view", "--log", "jsonl", "--unattended"}).output);
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        const auto json = nlohmann::json::parse(line);
        EXPECT_TRUE(json.contains("event") && !json.contains("line") && !json.contains("address")) << line;
    }
    EXPECT_EQ(count, 9);
}

TEST_F(Run, ShowsEveryEventWhenTold) {
    EXPECT_EQ(run("Park()", {"--log-all", "--host-view"}).output,
              "FunctionCalled(tType=37, tDoExecuteCommand=True) -> tSucess=True\n"
              "Park() -> tSucess=True\n"
              "KeepGoing() -> tSucess=True\n");
}

TEST_F(Run, LogsNumbersWithAPointUnderEveryLocale) {
    const std::string script = "VAR X = 2.5\nWaitTime(X, \"\")\n";
    EXPECT_THAT(run(script, {"--decimal-mark", "comma"}).output,
                testing::AllOf(HasSubstr("tValue=\"2,5\""), HasSubstr("tDuration=2.5,")));
    EXPECT_THAT(run(script, {"--decimal-mark", "point"}).output, HasSubstr("tDuration=2.5,"));
}

TEST_F(Run, IsTheSameEachTime) {
    const std::string script = "VAR X = 1\nAgain:\nShakeBlade(X)\nIncrement(X)\nIfLessThan(X, 9, Again)";
    EXPECT_EQ(run(script).output, run(script).output);
}

TEST_F(Run, OffersWindowsWhereTheSystemHasThem) {
    const Ran both = run("Park()", {"--windows", "--unattended"});
    EXPECT_EQ(both.code, ExitCode::WrongUsage);
    EXPECT_THAT(both.errors, HasSubstr(hasWindowDialogs() ? "excludes" : "not expected"));
    EXPECT_EQ(run("Park()", {"--windows"}).code, hasWindowDialogs() ? ExitCode::Success : ExitCode::WrongUsage);
}

}  // namespace
}  // namespace corvane
