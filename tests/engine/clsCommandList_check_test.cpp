#include <new>
#include <random>
#include <stdexcept>

#include "tests/support/engine_fixture.h"

namespace corvane {
namespace {

using testing::errorOf;
using Lines = std::vector<std::string>;

/// Keeps faults as "line:column: message", warnings with "warning: " before the message.
class RecordingFaults final : public FaultListener {
public:
    Lines lines;
    std::vector<ScriptFault> places;
    std::function<void()> onFault;
    void fault(const ScriptFault& fault) override {
        lines.push_back(std::to_string(fault.line) + ":" + std::to_string(fault.column) + ": " +
                        (fault.rejects ? "" : "warning: ") + toUtf8(fault.message));
        places.push_back({fault.line, fault.column, {}, fault.rejects});
        if (onFault) onFault();
    }
};

class ScriptCheck : public testing::EngineTest {
protected:
    bool accepted = false;

    Lines check(std::u16string_view script) {
        RecordingFaults faults;
        accepted = engine.CheckCommandList(script, faults);
        return faults.lines;
    }
};

TEST_F(ScriptCheck, AcceptsAFaultlessScriptAndLoadsIt) {
    EXPECT_EQ(check(u"VAR X = 1\nAgain:\nIncrement(X)\nIfLessThan(X, 3, Again)\nGoto(End)\nEnd:"), Lines());
    EXPECT_TRUE(accepted);
    EXPECT_EQ(engine.commandCount(), 3);
    EXPECT_TRUE(engine.ExecuteList());
    EXPECT_EQ(current(u"X"), "s3");
    EXPECT_EQ(check(u""), Lines());
    EXPECT_TRUE(accepted);
}

TEST_F(ScriptCheck, ReportsEveryFaultInOnePass) {
    EXPECT_EQ(check(u"VAR X = 1\n"
                    u"  nonsense\n"
                    u"CONST C\n"
                    u"\tReturn(5)\n"
                    u"Set(5, 5)\n"
                    u"L:\n"
                    u"Increment(L)\n"
                    u"L:\n"
                    u"Park()\n"
                    u"Goto(Nowhere)"),
              Lines({"1:2: Invalid input:\r\n\r\n'nonsense'", "2:0: Invalid input:\r\n\r\n'CONST C'",
                     "3:8: Return requires 0 parameters", "4:4: Incorrect parameter type: 1",
                     "6:10: Incorrect parameter type: 1", "7:0: warning: Duplicate Lable Defined: L",
                     "9:5: Undefined Label: Nowhere"}));
    EXPECT_FALSE(accepted);
    EXPECT_TRUE(dialogs.messages.empty());
    EXPECT_EQ(engine.commandCount(), 2);
}

TEST_F(ScriptCheck, ShowsNothingToTheOperatorAndTheNextLoadDoes) {
    check(u"nonsense\nnonsense");
    EXPECT_TRUE(dialogs.messages.empty());
    EXPECT_FALSE(load(u"nonsense"));
    EXPECT_EQ(dialogs.messages.size(), 1u);
    check(u"nonsense");
    engine.SyntaxError(u"outside the check");  // counted with those of the check, so not the first
    EXPECT_EQ(dialogs.messages.size(), 1u);
}

TEST_F(ScriptCheck, PointsAtTheFaultWithinTheUntrimmedLine) {
    struct Case {
        std::u16string_view line;
        const char* fault;
    };
    const Case cases[] = {
        {u"nonsense", "0:0: Invalid input:\r\n\r\n'nonsense'"},
        {u" \t nonsense \t", "0:3: Invalid input:\r\n\r\n'nonsense'"},
        {u"  CONST X =  ", "0:2: Invalid input:\r\n\r\n'CONST X ='"},
        {u"  Goto()", "0:2: Goto requires 1 parameters"},  // nothing there to point at
        {u"  Set( A )", "0:2: Set requires 2 parameters"},
        {u"  Goto( A,  B )", "0:12: Goto requires 1 parameters"},  // the first that is too many
        {u"Goto( A, B, C, D)", "0:9: Goto requires 1 parameters"},
        {u"Set( X, 5)", "0:5: Undeclared identifier"},
        {u" Increment(5)", "0:11: Incorrect parameter type: 1"},
        {u"IfEqual(1, \"two\", Here)", "0:11: Incorrect parameter type: 2"},
        {u"IfEqual (1 ,2 , 3)", "0:16: Incorrect parameter type: 3"},
    };
    for (const Case& c : cases) {
        const Lines faults = check(c.line);
        ASSERT_FALSE(faults.empty()) << toUtf8(c.line);
        EXPECT_EQ(faults[0], c.fault) << toUtf8(c.line);
        EXPECT_FALSE(accepted) << toUtf8(c.line);
    }
}

TEST_F(ScriptCheck, PointsAtADuplicateLabelsName) {
    EXPECT_EQ(check(u"L:\n\t L: \nL:"),
              Lines({"1:2: warning: Duplicate Lable Defined: L", "2:0: warning: Duplicate Lable Defined: L"}));
    EXPECT_TRUE(accepted);
    EXPECT_EQ(initial(u"L"), "l0");
}

TEST_F(ScriptCheck, AFaultThatTheHostReportsInsideTheCheckStandsWithTheLineBeingRead) {
    const std::u16string text = u"another text\n  VAR X = 1\nelsewhere";
    const std::u16string_view whole = text;
    const std::u16string_view places[] = {whole.substr(0, 7), whole.substr(19, 1), whole.substr(25), {}};
    owner.onEvent = [&](Event&) {
        for (const std::u16string_view place : places) engine.SyntaxError(u"not here", place);
    };
    EXPECT_EQ(check(whole.substr(13, 11)), Lines({"0:2: not here", "0:6: not here", "0:2: not here", "0:2: not here"}));
    EXPECT_FALSE(accepted);
}

TEST_F(ScriptCheck, CountsLinesAsALoadDoes) {
    EXPECT_EQ(check(u"a\r\nb\rc\nd\n\re"), Lines({"0:0: Invalid input:\r\n\r\n'a'", "1:0: Invalid input:\r\n\r\n'b'",
                                                  "2:0: Invalid input:\r\n\r\n'c'", "3:0: Invalid input:\r\n\r\n'd'",
                                                  "5:0: Invalid input:\r\n\r\n'e'"}));
    EXPECT_EQ(engine.currentLine(), 6);
}

TEST_F(ScriptCheck, ReportsAnUndefinedLabelAtItsFirstUse) {
    EXPECT_EQ(check(u"Goto(Defined)\n  IfEqual(1, 2,  First)\nCall(Second)\nGoto(FIRST)\nDefined:\nGoto(Defined)"),
              Lines({"1:17: Undefined Label: First", "2:5: Undefined Label: Second"}));
    EXPECT_FALSE(accepted);
}

TEST_F(ScriptCheck, ReportsAnUndeclaredNameOnceAndNotAsAnUndefinedLabelToo) {
    EXPECT_EQ(check(u"  Set(Missing, 5)\nIfEqual(Absent, 1, Here)\nHere:"),
              Lines({"0:6: Undeclared identifier", "1:8: Undeclared identifier"}));
    // Used as a label as well, it is undefined there.
    EXPECT_EQ(check(u"Set(Missing, 5)\nGoto(Missing)\nGoto(Missing)"),
              Lines({"0:4: Undeclared identifier", "1:5: Undefined Label: Missing"}));
}

TEST_F(ScriptCheck, ALabelDefinedLaterIsNoFaultEvenBehindABadLine) {
    EXPECT_EQ(check(u"Goto(End)\nnonsense\nEnd:"), Lines({"1:0: Invalid input:\r\n\r\n'nonsense'"}));
    EXPECT_EQ(initial(u"End"), "l1");
}

TEST_F(ScriptCheck, ReportsTrappedFailuresWithTheirLineAndGoesOn) {
    const std::u16string twentySix = u"SCTestFull(0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0)";
    EXPECT_EQ(
        check(u"Park()\n  VAR X = 1e39\n" + twentySix + u"\nVAR Y = 2\nWaitTime(1e39, \"a\")\nnonsense"),
        Lines({"1:2: " + std::string(errorText(ErrorNumber::Overflow)),
               "2:0: " + std::string(errorText(ErrorNumber::SubscriptOutOfRange)),
               "4:0: " + std::string(errorText(ErrorNumber::Overflow)), "5:0: Invalid input:\r\n\r\n'nonsense'"}));
    EXPECT_FALSE(accepted);
    EXPECT_EQ(initial(u"Y"), "s2");
    EXPECT_TRUE(dialogs.messages.empty());
}

TEST_F(ScriptCheck, ATrappedFailureAloneRejectsTheScript) {
    EXPECT_EQ(check(u"VAR X = 1e39").size(), 1u);
    EXPECT_FALSE(accepted);
}

TEST_F(ScriptCheck, LackOfMemoryPassesToTheCaller) {
    owner.onEvent = [](Event&) { throw std::bad_alloc(); };
    EXPECT_THROW(check(u"VAR X = 1\nnonsense"), std::bad_alloc);
    owner.onEvent = nullptr;
    EXPECT_EQ(check(u"Park"), Lines());
    EXPECT_TRUE(accepted);
}

TEST_F(ScriptCheck, ReportsEveryParameterOfAStatement) {
    EXPECT_EQ(
        check(u"IfEqual(Bad, \"text\", Nowhere)\nGoto(Nowhere)"),
        Lines({"0:8: Undeclared identifier", "0:13: Incorrect parameter type: 2", "0:21: Undefined Label: Nowhere"}));
}

TEST_F(ScriptCheck, TakesAConstantWithoutAValueForAConstant) {
    EXPECT_EQ(check(u"CONST C\nVAR X\nSet(X, C)\nSet(C, X)"),
              Lines({"0:0: Invalid input:\r\n\r\n'CONST C'", "3:4: Incorrect parameter type: 1"}));
}

TEST_F(ScriptCheck, CountsAsManySyntaxErrorsAsFaults) {
    const Lines faults = check(u"nonsense\nVAR X = 1e39\nGoto(Nowhere)\nL:\nL:");
    EXPECT_EQ(faults.size(), 4u);
    EXPECT_EQ(engine.syntaxErrorCount(), 4);
}

TEST_F(ScriptCheck, RaisesTheDeclarationsAsALoadDoes) {
    check(u"VAR X = 1\nnonsense\nCONST C\nENV E = e");
    EXPECT_EQ(owner.lines, Lines({"VariableAdded(\"X\", \"1\")", "ConstantAdded(\"C\", \"0\")",
                                  "EnvironmentVariableAdded(\"E\", \"e\")"}));
}

TEST_F(ScriptCheck, TracesLinesAsALoadDoes) {
    testing::RecordingTrace trace;
    engine.setTraceSink(&trace);
    check(u"nonsense\n\nPark()");
    const Lines checked = {"1 Creating command list from 3 lines",
                           "1 File Line: 0:   Script Text: 'nonsense'",
                           "1    o Line is a Keyword",
                           "1 File Line: 1:   Blank",
                           "1 File Line: 2:   Script Text: 'Park()'",
                           "1    o Line is a Keyword"};
    EXPECT_EQ(trace.lines, checked);
}

TEST_F(ScriptCheck, RefusesALoadInsideACheck) {
    RecordingFaults faults;
    std::vector<int> errors;
    faults.onFault = [&] {
        errors.push_back(errorOf([&] { load(u"Park()"); }));
        errors.push_back(errorOf([&] { engine.CheckCommandList(u"Park()", faults); }));
    };
    EXPECT_FALSE(engine.CheckCommandList(u"nonsense\nPark()", faults));
    EXPECT_EQ(errors, std::vector<int>({5, 5}));
    EXPECT_EQ(engine.commandCount(), 1);
    EXPECT_TRUE(load(u"Park()\nPark()"));
    EXPECT_EQ(engine.commandCount(), 2);
}

TEST_F(ScriptCheck, AnExceptionOfTheListenerPassesAndLeavesTheEngineUsable) {
    RecordingFaults faults;
    faults.onFault = [] { throw std::runtime_error("the listener's own"); };
    EXPECT_THROW(engine.CheckCommandList(u"nonsense", faults), std::runtime_error);
    EXPECT_FALSE(load(u"nonsense"));
    EXPECT_EQ(dialogs.messages.size(), 1u);  // an ordinary load again
    EXPECT_TRUE(run(u"Park()"));
}

TEST_F(ScriptCheck, ACheckDuringARunIsSafeAsALoadIs) {
    owner.onEvent = [&](Event& event) {
        if (event.id() != HostEvent::Park) return;
        EXPECT_EQ(check(u"Info(\"a\")\nInfo(\"b\")\nnonsense").size(), 1u);
    };
    EXPECT_TRUE(run(u"Park()\nPark()\nPark()"));
    EXPECT_EQ(owner.lines, Lines({"Park()", "Info(\"0\")"}));  // the second statement of the script checked
}

/// Of any text a check and a load have the same opinion, and the check's first fault is what the load shows.
TEST_F(ScriptCheck, AgreesWithALoadAboutAnyText) {
    static constexpr std::u16string_view lines[] = {
        u"VAR X = 1",
        u"VAR S = \"s\"",
        u"CONST C = 2",
        u"CONST D",
        u"ENV E = e",
        u"L:",
        u"M:",
        u"Goto(L)",
        u"Goto(M)",
        u"Call(N)",
        u"Increment(X)",
        u"Increment(Y)",
        u"Set(S, X)",
        u"Set(C, 1)",
        u"Return",
        u"Return(1)",
        u"nonsense",
        u"",
        u"; comment",
        u"IfEqual(X,1,L)",
        u"IfEqual(X,1,M)",
        u"VAR Z = 1e39",
        u"Info(S)",
        u"Info(\"a\", 2)",
        u"Goto(,)",
        u"Goto(L,)",
        u"Info(\")",
        u"Park(",
        u":",
        u"=",
    };
    std::mt19937 random(7);
    for (int i = 0; i < 3000; ++i) {
        std::u16string script;
        for (std::size_t count = random() % 8; count > 0; --count) {
            script.append(random() % 4, u' ').append(lines[random() % std::size(lines)]);
            script.append(random() % 2 == 0 ? u"\n" : u"\r\n");
        }
        if (!script.empty() && random() % 4 == 0)
            script[random() % script.size()] = static_cast<char16_t>(random() % 128);
        dialogs.messages.clear();
        const bool loaded = load(script);
        const std::vector<testing::ScriptedDialogs::Message> shown = dialogs.messages;
        RecordingFaults faults;
        EXPECT_EQ(engine.CheckCommandList(script, faults), loaded) << toUtf8(script);
        bool rejects = false;
        for (const ScriptFault& fault : faults.places) {
            rejects = rejects || fault.rejects;
            EXPECT_GE(fault.line, 0);
            EXPECT_LT(fault.line, engine.currentLine()) << toUtf8(script);
            EXPECT_GE(fault.column, 0);
        }
        EXPECT_EQ(rejects, !loaded) << toUtf8(script);
        if (shown.empty()) continue;
        ASSERT_FALSE(faults.lines.empty()) << toUtf8(script);
        const std::string& first = faults.lines.front();
        EXPECT_TRUE(first.ends_with(": " + shown.front().text)) << toUtf8(script) << first;
        if (shown.front().text.starts_with("Undefined Label")) continue;
        EXPECT_EQ(shown.front().caption, "Syntax Error on Line " + std::to_string(faults.places.front().line));
    }
}

}  // namespace
}  // namespace corvane
