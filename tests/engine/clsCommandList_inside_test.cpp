// The statements that the engine carries out itself, and the frame that every statement runs in.

#include <algorithm>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "engine/clsCommand.h"
#include "engine/modCommand.h"
#include "tests/support/engine_fixture.h"

namespace corvane::testing {
namespace {

using Lines = std::vector<std::string>;

/// A message box as one line: text [caption] style (help file).
std::string box(const ScriptedDialogs::Message& message) {
    return message.text + " [" + message.caption.value_or("none") + "] " + std::to_string(message.style) + " (" +
           message.helpFile + ")";
}

Lines boxes(const std::vector<ScriptedDialogs::Message>& messages) {
    Lines lines;
    for (const ScriptedDialogs::Message& message : messages) lines.push_back(box(message));
    return lines;
}

InputAnswer accepted(Value value) { return {std::move(value), InputAnswer::Ending::Accepted}; }
InputAnswer cancelled() { return {Value(), InputAnswer::Ending::Cancelled}; }

constexpr const char* confirmation = "Are you sure you want to cancel the Script? [none] 36 ()";

class BuiltInStatement : public EngineTest {
protected:
    RecordingListener steps;

    void SetUp() override {
        engine.setListener(&steps);
        stopEndlessRunsOf(engine);
    }

    /// A fault of the engine must not keep a test from ending.
    void stopEndlessRunsOf(clsCommandList& runner) {
        owner.onStep = [&runner, stepsLeft = 200000](std::int32_t, std::int32_t) mutable {
            if (--stepsLeft < 0) runner.setStopExecution(true);
        };
    }

    std::string lastLine() const { return owner.lines.empty() ? "none" : owner.lines.back(); }
    std::string lastStep() const { return steps.lines.empty() ? "none" : steps.lines.back(); }

    /// Clears `tDLLExecute` of the event `name` each time it is raised, as a host does that asks the operator itself.
    void hostAsksIn(std::string_view name) {
        owner.onEvent = [name](Event& event) {
            if (event.row().name == name) event.answer("tDLLExecute", Value::ofBoolean(false));
        };
    }
    void hostAnswersFunctionCalledWith(bool doExecute) {
        owner.onEvent = [doExecute](Event& event) {
            if (event.id() == HostEvent::FunctionCalled) event.answer("tDoExecuteCommand", Value::ofBoolean(doExecute));
        };
    }
    void hostFails(HostEvent id) {
        owner.onEvent = [id](Event& event) {
            if (event.id() == id) event.succeed(false);
        };
    }

    /// Loads, runs, and gives the number of the error that ended the run; 0 when none did.
    int errorOfRun(std::u16string_view script) {
        EXPECT_TRUE(load(script));
        return errorOf([&] { engine.ExecuteList(); });
    }

    bool toldOf(const std::string& line) const {
        return std::find(steps.lines.begin(), steps.lines.end(), line) != steps.lines.end();
    }
    /// What the listener was told of assignments to the item of that name.
    Lines assignmentsOf(const std::string& name) const {
        const std::string start = "CurrentValueChanged(" + name + ", ";
        Lines values;
        for (const std::string& line : steps.lines)
            if (line.starts_with(start)) values.push_back(line.substr(start.size(), line.size() - start.size() - 1));
        return values;
    }
};

// The frame

using ExecuteCommandFrame = BuiltInStatement;

TEST_F(ExecuteCommandFrame, RaisesFunctionCalledWithTheKindBeforeTheStatementsOwnEvent) {
    owner.recordFunctionCalled = true;
    EXPECT_TRUE(run(u"Park()\nInfo(\"x\")\nReturn()"));
    EXPECT_EQ(owner.lines, (Lines{"FunctionCalled(l37, bTrue)", "Park()", "FunctionCalled(l19, bTrue)", "Info(\"x\")",
                                  "FunctionCalled(l6, bTrue)"}));
}

TEST_F(ExecuteCommandFrame, RunsABlockStartAsAnInfoInTheFunctionCalledEventToo) {
    owner.recordFunctionCalled = true;
    EXPECT_TRUE(run(u"BlockStart(\"Conditioning\")"));
    EXPECT_EQ(owner.lines, (Lines{"FunctionCalled(l19, bTrue)", "Info(\"Conditioning\")"}));
    EXPECT_EQ(engine.Command(1).CommandType(), ctBlockStart) << "the statement itself keeps its kind";
}

TEST_F(ExecuteCommandFrame, AnswersOfFunctionCalledDoNotStopAnOrdinaryStatement) {
    hostAnswersFunctionCalledWith(false);
    EXPECT_TRUE(run(u"VAR N = 1\nPark()\nIncrement(N)\nInfo(\"x\")\nGoto(End)\nEndTest()\nEnd:\nSaveData()"));
    EXPECT_EQ(owner.lines, (Lines{"VariableAdded(\"N\", \"1\")", "Park()", "Info(\"x\")", "SaveData()"}));
    EXPECT_EQ(current(u"N"), "s2");
}

TEST_F(ExecuteCommandFrame, AKindThatTheHostWritesIntoFunctionCalledHasNoEffect) {
    for (const std::int32_t written : {std::int32_t{ctEndTest}, std::int32_t{ctUnknown}, 99}) {
        owner.lines.clear();
        owner.recordFunctionCalled = true;
        owner.onEvent = [&](Event& event) {
            if (event.id() == HostEvent::FunctionCalled) event.answer("tType", Value::ofLong(written));
        };
        EXPECT_EQ(errorOfRun(u"CONST N = 1\nPark()\nInfo(\"x\")"), 0);
        EXPECT_EQ(owner.lines, (Lines{"ConstantAdded(\"N\", \"1\")", "FunctionCalled(l37, bTrue)", "Park()",
                                      "FunctionCalled(l19, bTrue)", "Info(\"x\")"}));
    }
}

TEST_F(ExecuteCommandFrame, SuccessOfFunctionCalledIsNotThatOfTheStatement) {
    owner.onEvent = [](Event& event) { event.succeed(event.id() == HostEvent::FunctionCalled); };
    EXPECT_TRUE(run(u"Park()\nEndTest()"));
    EXPECT_EQ(owner.lines, Lines{"Park()"});
    EXPECT_TRUE(toldOf("CommandError(0, 1)"));
}

TEST_F(ExecuteCommandFrame, FailureOfFunctionCalledDoesNotFailTheStatement) {
    hostFails(HostEvent::FunctionCalled);
    EXPECT_TRUE(run(u"Park()\nEndTest()"));
    EXPECT_EQ(owner.lines, (Lines{"Park()", "EndTest()"}));
}

TEST_F(ExecuteCommandFrame, StartsEachStatementWithAFreshExecuteFlag) {
    int called = 0;
    owner.onEvent = [&](Event& event) {
        if (event.id() == HostEvent::FunctionCalled) event.answer("tDoExecuteCommand", Value::ofBoolean(++called != 1));
        if (event.id() == HostEvent::MsgInfo) event.answer("tDLLExecute", Value::ofBoolean(false));
    };
    owner.recordFunctionCalled = true;
    EXPECT_TRUE(run(u"MsgInfo(\"a\")\nMsgInfo(\"b\")\nMsgInfo(\"c\")"));
    EXPECT_EQ(owner.lines, (Lines{"FunctionCalled(l21, bTrue)", "FunctionCalled(l21, bTrue)", "MsgInfo(\"b\", bTrue)",
                                  "FunctionCalled(l21, bTrue)", "MsgInfo(\"c\", bTrue)"}));
}

/// Kinds that have a keyword and are no statement: somebody wrote to the catalogue.
class UnknownKind : public BuiltInStatement {
protected:
    clsCommandList designed{owner, services, {.designedMemberAccess = true}};
    void TearDown() override {
        BuildFunctionCatalogue();
        BuiltInStatement::TearDown();
    }
};

TEST_F(UnknownKind, EndsTheRunWithError438) {
    for (const std::int32_t kind : {1, 2, 3, 53, 60, 99}) {
        BuildFunctionCatalogue();
        SetFunctionDefinition(kind, u"Homemade", 0, u"");
        owner.lines.clear();
        steps.lines.clear();
        owner.recordFunctionCalled = true;
        EXPECT_EQ(errorOfRun(u"Homemade()\nPark()"), 438) << kind;
        EXPECT_EQ(owner.lines, Lines{"FunctionCalled(l" + std::to_string(kind) + ", bTrue)"});
        EXPECT_EQ(steps.lines, Lines{"CommandStart(0)"}) << "neither a result nor a completion";
        EXPECT_TRUE(dialogs.messages.empty());
    }
}

TEST_F(UnknownKind, IsReportedAndFailsInTheDesignedForm) {
    SetFunctionDefinition(60, u"Homemade", 0, u"");
    RecordingListener told;
    designed.setListener(&told);
    ASSERT_TRUE(designed.CreateCommandList(u"Homemade()\nPark()"));
    EXPECT_TRUE(designed.ExecuteList());
    EXPECT_EQ(boxes(dialogs.messages), Lines{"Command Number: 60 not found. [Syntax Error on Line 2] 48 ()"});
    EXPECT_EQ(told.lines,
              (Lines{"CommandStart(0)", "CommandError(0, 1)", "CommandComplete(1, 1)", "ScriptComplete(True)"}));
    EXPECT_TRUE(owner.lines.empty());
}

TEST_F(UnknownKind, OfAStatementThatWasNeverBoundIsZero) {
    ASSERT_TRUE(load(u"Park()"));
    ASSERT_TRUE(designed.CreateCommandList(u"Park()"));
    std::int32_t address = 0;
    EXPECT_EQ(errorOf([&] { engine.ExecuteCommand(clsCommand(engine), address); }), 438);
    EXPECT_EQ(designed.ExecuteCommand(clsCommand(designed), address), crFailed);
    EXPECT_EQ(boxes(dialogs.messages), Lines{"Command Number: 0 not found. [Syntax Error on Line 1] 48 ()"});
}

// Flow control

using FlowControl = BuiltInStatement;

TEST_F(FlowControl, GotoWritesTheLabelsAddressAndJumps) {
    EXPECT_TRUE(run(u"Goto(There)\nPark()\nThere:\nEndTest()"));
    EXPECT_EQ(owner.lines, Lines{"EndTest()"});
    EXPECT_TRUE(toldOf("CommandComplete(2, 2)"));
}

TEST_F(FlowControl, GotoJumpsBackToALabelAboveIt) {
    EXPECT_TRUE(run(u"VAR N = 0\nAgain:\nIncrement(N)\nIfEqual(N, 2, Done)\nGoto(Again)\nDone:\nPark()"));
    EXPECT_EQ(current(u"N"), "s2");
    EXPECT_EQ(lastLine(), "Park()");
}

TEST_F(FlowControl, CallAndReturnComeBackToTheStatementAfterTheCall) {
    EXPECT_TRUE(run(u"Call(Sub)\nEndTest()\nGoto(End)\nSub:\nPark()\nReturn()\nEnd:"));
    EXPECT_EQ(owner.lines, (Lines{"Park()", "EndTest()"}));
    EXPECT_TRUE(toldOf("CommandComplete(3, 3)"));
    EXPECT_TRUE(toldOf("CommandComplete(1, 4)"));
}

TEST_F(FlowControl, ResultCodesAndAddressesOfASingleStatement) {
    ASSERT_TRUE(load(u"Goto(There)\nCall(There)\nReturn()\nPark()\nThere:\nEndTest()"));
    engine.DataMemory().InitialiseData();
    struct Row {
        std::int32_t position;
        std::int32_t result;
        std::int32_t address;
    };
    for (const Row& row : {Row{1, crJump, 4}, Row{2, crCall, 4}, Row{3, crReturn, 77}, Row{4, crNext, 77}}) {
        std::int32_t address = 77;
        EXPECT_EQ(engine.ExecuteCommand(engine.Command(row.position), address), row.result) << row.position;
        EXPECT_EQ(address, row.address) << row.position;
    }
}

TEST_F(FlowControl, AFailedStatementLeavesTheAddressAsItWas) {
    hostFails(HostEvent::Park);
    ASSERT_TRUE(load(u"Park()"));
    std::int32_t address = 77;
    EXPECT_EQ(engine.ExecuteCommand(engine.Command(1), address), crFailed);
    EXPECT_EQ(address, 77);
}

// The finish-loop flag

class FinishLoop : public BuiltInStatement {
protected:
    clsCommandList designed{owner, services, {.designedMemberAccess = true}};
    RecordingListener told;
    void SetUp() override {
        BuiltInStatement::SetUp();
        designed.setListener(&told);
    }
    static constexpr std::u16string_view script =
        u"Again:\nTareWeight()\nIfNotFinishLoopFlag(\"Press to finish\", Again)\nPark()";
};

TEST_F(FinishLoop, FlagBeforeALoadIsError91) {
    EXPECT_EQ(errorOf([&] { engine.EnvFinishLoopFlag(); }), 91);
    EXPECT_EQ(errorOf([&] { engine.setEnvFinishLoopFlag(true); }), 91);
}

TEST_F(FinishLoop, FlagIsFalseAfterALoadAndHoldsWhatIsWritten) {
    ASSERT_TRUE(load(u""));
    EXPECT_FALSE(engine.EnvFinishLoopFlag());
    EXPECT_EQ(current(u"FINISH_LOOP_FLAG"), "i0");
    engine.setEnvFinishLoopFlag(true);
    EXPECT_TRUE(engine.EnvFinishLoopFlag());
    EXPECT_EQ(current(u"FINISH_LOOP_FLAG"), "bTrue");
    EXPECT_EQ(initial(u"FINISH_LOOP_FLAG"), "i0") << "only the current value is written";
    engine.setEnvFinishLoopFlag(false);
    EXPECT_EQ(current(u"FINISH_LOOP_FLAG"), "bFalse");
}

TEST_F(FinishLoop, FlagTakesTheValueThatAScriptGivesIt) {
    struct Row {
        const char16_t* script;
        bool flag;
    };
    for (const Row& row : {Row{u"ENV FINISH_LOOP_FLAG = 1", true}, Row{u"ENV finish_loop_flag = 0", false},
                           Row{u"ENV FINISH_LOOP_FLAG = True", true}, Row{u"ENV FINISH_LOOP_FLAG = false", false}}) {
        ASSERT_TRUE(load(row.script));
        engine.DataMemory().InitialiseData();
        EXPECT_EQ(engine.EnvFinishLoopFlag(), row.flag);
    }
    ASSERT_TRUE(load(u"ENV FINISH_LOOP_FLAG = soon"));
    engine.DataMemory().InitialiseData();
    EXPECT_EQ(errorOf([&] { engine.EnvFinishLoopFlag(); }), 13);
}

TEST_F(FinishLoop, FlagIsResetByTheStartOfARun) {
    ASSERT_TRUE(load(u"Park()"));
    engine.setEnvFinishLoopFlag(true);
    engine.ExecuteList();
    EXPECT_FALSE(engine.EnvFinishLoopFlag());
}

TEST_F(FinishLoop, TestEndsTheRunWithError438) {
    EXPECT_EQ(errorOfRun(script), 438);
    EXPECT_EQ(owner.lines, Lines{"TareWeight()"}) << "RequiredFinishLoopFlag is not raised";
    EXPECT_EQ(steps.lines, (Lines{"CommandStart(0)", "CommandComplete(1, 0)", "CommandStart(1)"}));
}

TEST_F(FinishLoop, TestFailsWithError438WhenTheFlagIsSetAsWell) {
    ASSERT_TRUE(load(script));
    owner.onEvent = [&](Event& event) {
        if (event.id() == HostEvent::TareWeight) engine.setEnvFinishLoopFlag(true);
    };
    EXPECT_EQ(errorOf([&] { engine.ExecuteList(); }), 438);
    EXPECT_TRUE(engine.EnvFinishLoopFlag()) << "it is not reset";
}

TEST_F(FinishLoop, DesignedTestLoopsUntilTheFlagIsSetAndResetsIt) {
    int rounds = 0;
    owner.onEvent = [&](Event& event) {
        if (event.id() == HostEvent::TareWeight && ++rounds == 3) designed.setEnvFinishLoopFlag(true);
    };
    ASSERT_TRUE(designed.CreateCommandList(script));
    stopEndlessRunsOf(designed);
    EXPECT_TRUE(designed.ExecuteList());
    const std::string asked = "RequiredFinishLoopFlag(\"Press to finish\")";
    EXPECT_EQ(owner.lines, (Lines{"TareWeight()", asked, "TareWeight()", asked, "TareWeight()", "Park()"}));
    EXPECT_FALSE(designed.EnvFinishLoopFlag());
    EXPECT_EQ(show(designed.DataMemory().Item(0).CurrentValue()), "bFalse");
}

TEST_F(FinishLoop, DesignedTestFailsWhenTheHostDoesNotSucceed) {
    hostFails(HostEvent::RequiredFinishLoopFlag);
    ASSERT_TRUE(designed.CreateCommandList(script));
    stopEndlessRunsOf(designed);
    EXPECT_TRUE(designed.ExecuteList());
    EXPECT_EQ(owner.lines, (Lines{"TareWeight()", "RequiredFinishLoopFlag(\"Press to finish\")"}));
    EXPECT_EQ(told.lines, (Lines{"CommandStart(0)", "CommandComplete(1, 0)", "CommandStart(1)", "CommandError(1, 1)",
                                 "CommandComplete(2, 1)", "ScriptComplete(True)"}));
}

TEST_F(FinishLoop, DesignedTestSetsTheAddressWhetherOrNotTheHostSucceeds) {
    ASSERT_TRUE(designed.CreateCommandList(u"Park()\nPark()\nThere:\nIfNotFinishLoopFlag(\"?\", There)"));
    designed.DataMemory().InitialiseData();
    for (const bool succeeds : {true, false}) {
        owner.onEvent = [&](Event& event) { event.succeed(succeeds); };
        std::int32_t address = 77;
        EXPECT_EQ(designed.ExecuteCommand(designed.Command(3), address), succeeds ? crJump : crFailed);
        EXPECT_EQ(address, 2);
    }
}

TEST_F(FinishLoop, DesignedTestOfAFlagThatIsNoTruthValueIsError13) {
    ASSERT_TRUE(designed.CreateCommandList(u"ENV FINISH_LOOP_FLAG = soon\nEnd:\nIfNotFinishLoopFlag(\"?\", End)"));
    EXPECT_EQ(errorOf([&] { designed.ExecuteList(); }), 13);
}

// Comparisons

struct Comparison {
    const char* name;
    Value left;
    Value right;
    int order;  ///< -1 less, 0 equal, 1 greater
};

std::vector<Comparison> comparisons() {
    const auto text = [](std::u16string_view characters) { return Value::ofText(characters); };
    return {
        {"singles in order", Value::ofSingle(1.5F), Value::ofSingle(2), -1},
        {"singles out of order", Value::ofSingle(2), Value::ofSingle(1.5F), 1},
        {"equal singles", Value::ofSingle(2.5F), Value::ofSingle(2.5F), 0},
        {"negative below positive", Value::ofSingle(-3), Value::ofSingle(2), -1},
        {"numbers of different types", Value::ofInteger(2), Value::ofSingle(2), 0},
        {"long and single", Value::ofLong(32768), Value::ofSingle(32767), 1},
        {"double and 16-bit integer", Value::ofDouble(1.25), Value::ofInteger(2), -1},
        {"texts in order", text(u"apple"), text(u"pear"), -1},
        {"equal texts", text(u"apple"), text(u"apple"), 0},
        {"case counts: capitals come first", text(u"Zebra"), text(u"apple"), -1},
        {"case counts: never equal", text(u"Apple"), text(u"apple"), -1},
        {"a longer text is greater", text(u"apples"), text(u"apple"), 1},
        {"digits compare as text", text(u"10"), text(u"9"), -1},
        {"blanks count", text(u"a "), text(u"a"), 1},
        {"an accented letter stands after all plain ones", text(u"\u00E9"), text(u"z"), 1},
        {"code units, not characters", text(u"\xD83D\xDE00"), text(u"\xFF21"), -1},
        {"any number is less than any text", Value::ofSingle(1e30F), text(u"0"), -1},
        {"any number is less than the empty text", Value::ofSingle(1), text(u""), -1},
        {"a text is greater than a number, equal digits or not", text(u"5"), Value::ofSingle(5), 1},
        {"an integer is less than a text", Value::ofInteger(0), text(u"-1"), -1},
    };
}

TEST_F(BuiltInStatement, EachComparisonJumpsExactlyWhenItHolds) {
    struct Kind {
        const char16_t* statement;
        bool (*holds)(int order);
    };
    const Kind kinds[] = {
        {u"IfGreaterThan", [](int order) { return order > 0; }},
        {u"IfLessThan", [](int order) { return order < 0; }},
        {u"IfNotEqual", [](int order) { return order != 0; }},
        {u"IfEqual", [](int order) { return order == 0; }},
    };
    for (const Kind& kind : kinds) {
        const std::u16string script =
            u"VAR A\nVAR B\n" + std::u16string(kind.statement) + u"(A, B, Holds)\nPark()\nHolds:\nEndTest()";
        ASSERT_TRUE(load(script));
        for (const Comparison& row : comparisons()) {
            item(u"A").setInitialValue(row.left);
            item(u"B").setInitialValue(row.right);
            owner.lines.clear();
            steps.lines.clear();
            EXPECT_TRUE(engine.ExecuteList());
            const bool holds = kind.holds(row.order);
            EXPECT_EQ(owner.lines, holds ? Lines{"EndTest()"} : (Lines{"Park()", "EndTest()"}))
                << toUtf8(kind.statement) << ": " << row.name;
            EXPECT_TRUE(toldOf(holds ? "CommandComplete(2, 2)" : "CommandComplete(1, 0)"));
        }
    }
}

TEST_F(BuiltInStatement, ComparisonsSeeATextThatSetPutIntoANumericVariable) {
    EXPECT_TRUE(
        run(u"VAR A = 5\nVAR B = 5\nSet(A, \"5\")\nIfEqual(A, B, Equal)\nIfGreaterThan(A, B, Greater)\n"
            u"Equal:\nPark()\nGreater:\nEndTest()"));
    EXPECT_EQ(lastLine(), "EndTest()");
    EXPECT_EQ(std::count(owner.lines.begin(), owner.lines.end(), "Park()"), 0);
}

TEST_F(BuiltInStatement, AComparisonDoesNotLookAtTheLabelThatAHostEdited) {
    ASSERT_TRUE(load(u"IfEqual(2, 1, End)\nPark()\nEnd:\nEndTest()"));
    item(u"End").setInitialValue(Value::ofSingle(2));
    EXPECT_TRUE(engine.ExecuteList());
    EXPECT_EQ(owner.lines, (Lines{"Park()", "EndTest()"}));
}

TEST_F(BuiltInStatement, ComparisonsChangeNoOperand) {
    EXPECT_TRUE(run(u"VAR A = 1\nVAR B\nIfLessThan(A, B, End)\nEnd:"));
    EXPECT_EQ(current(u"A"), "s1");
    EXPECT_EQ(current(u"B"), "i0");
}

// Assignment and arithmetic

using Values = BuiltInStatement;

TEST_F(Values, SetStoresTheValueWithItsType) {
    EXPECT_TRUE(
        run(u"VAR N = 1\nVAR S = \"s\"\nVAR Empty\nCONST Limit = 2.5\nCONST Word = \"w|x\"\n"
            u"VAR A\nVAR B\nVAR C\nVAR D\nVAR E\n"
            u"Set(A, Limit)\nSet(B, Word)\nSet(C, S)\nSet(D, Empty)\nSet(E, 7)\nSet(S, N)"));
    EXPECT_EQ(current(u"A"), "s2.5");
    EXPECT_EQ(current(u"B"), "\"w\r\nx\"");
    EXPECT_EQ(current(u"C"), "\"s\"");
    EXPECT_EQ(current(u"D"), "i0");
    EXPECT_EQ(current(u"E"), "s7");
    EXPECT_EQ(current(u"S"), "s1") << "a string variable takes a number as it is";
}

TEST_F(Values, SetPutsATextIntoANumericVariable) {
    EXPECT_TRUE(run(u"VAR N = 1\nSet(N, \"text\")"));
    EXPECT_EQ(current(u"N"), "\"text\"");
    EXPECT_EQ(item(u"N").ParameterType(), ptNumber) << "the declared type stays";
    EXPECT_EQ(initial(u"N"), "s1");
}

TEST_F(Values, SetCopiesTheValueAndDoesNotTieTheVariables) {
    EXPECT_TRUE(run(u"VAR A = 1\nVAR B = 5\nSet(A, B)\nIncrement(B)"));
    EXPECT_EQ(current(u"A"), "s5");
    EXPECT_EQ(current(u"B"), "s6");
}

TEST_F(Values, SetOfAVariableToItselfKeepsIt) {
    EXPECT_TRUE(run(u"VAR S = \"same\"\nSet(S, S)"));
    EXPECT_EQ(current(u"S"), "\"same\"");
    EXPECT_EQ(assignmentsOf("S"), Lines{"\"same\""});
}

TEST_F(Values, SetIsSeenByEveryStatementThatNamesTheVariable) {
    EXPECT_TRUE(run(u"VAR N = 1\nMoveIntoVessel(N)\nSet(N, 2)\nMoveIntoVessel(n)"));
    EXPECT_EQ(owner.lines, (Lines{"VariableAdded(\"N\", \"1\")", "MoveIntoVessel(s1)", "MoveIntoVessel(s2)"}));
}

struct Step {
    const char* name;
    Value before;
    std::string incremented;
    std::string decremented;
};

TEST_F(Values, IncrementAndDecrementFollowTheTypeOfTheValue) {
    const auto text = [](std::u16string_view characters) { return Value::ofText(characters); };
    const Step rows[] = {
        {"a variable declared without a value", Value::ofInteger(0), "i1", "i-1"},
        {"a number literal", Value::ofSingle(1.5F), "s2.5", "s0.5"},
        {"the greatest 16-bit integer", Value::ofInteger(32767), "l32768", "i32766"},
        {"the least 16-bit integer", Value::ofInteger(-32768), "i-32767", "l-32769"},
        {"a long stays one", Value::ofLong(40000), "l40001", "l39999"},
        {"the greatest long", Value::ofLong(std::numeric_limits<std::int32_t>::max()), "d2147483648", "l2147483646"},
        {"the least long", Value::ofLong(std::numeric_limits<std::int32_t>::min()), "l-2147483647", "d-2147483649"},
        {"a single beyond its precision", Value::ofSingle(16777216), "s1.677722E+07", "s1.677722E+07"},
        {"a double", Value::ofDouble(0.5), "d1.5", "d-0.5"},
        {"a text that is a number", text(u"41"), "d42", "d40"},
        {"a text with a fraction", text(u"1.5"), "d2.5", "d0.5"},
        {"a text with blanks around", text(u" 7 "), "d8", "d6"},
        {"a Boolean counts as -1 or 0", Value::ofBoolean(true), "i0", "i-2"},
    };
    ASSERT_TRUE(load(u"VAR Up\nVAR Down\nIncrement(Up)\nDecrement(Down)"));
    for (const Step& row : rows) {
        item(u"Up").setInitialValue(row.before);
        item(u"Down").setInitialValue(row.before);
        EXPECT_TRUE(engine.ExecuteList());
        EXPECT_EQ(current(u"Up"), row.incremented) << row.name;
        EXPECT_EQ(current(u"Down"), row.decremented) << row.name;
    }
}

TEST_F(Values, AVariableDeclaredWithoutAValueCountsPast16Bits) {
    EXPECT_TRUE(run(u"VAR X =\nAgain:\nIncrement(X)\nIfLessThan(X, 32767, Again)"));
    EXPECT_EQ(current(u"X"), "i32767");
    EXPECT_TRUE(run(u"VAR X\nAgain:\nIncrement(X)\nIfLessThan(X, 32769, Again)"));
    EXPECT_EQ(current(u"X"), "l32769");
}

TEST_F(Values, IncrementOfATextThatIsNoNumberIsError13) {
    for (const std::u16string statement : {u"Increment(N)", u"Decrement(N)"}) {
        steps.lines.clear();
        EXPECT_EQ(errorOfRun(u"VAR N = 1\nSet(N, \"many\")\n" + statement + u"\nPark()"), 13);
        EXPECT_EQ(current(u"N"), "\"many\"");
        EXPECT_EQ(lastStep(), "CommandStart(1)") << "no completion, no end of script";
    }
    EXPECT_EQ(errorOfRun(u"VAR N = 1\nSet(N, \"\")\nIncrement(N)"), 13) << "the empty text is no number";
}

TEST_F(Values, ARunStartsFromTheDeclaredValuesAgain) {
    EXPECT_TRUE(run(u"VAR N = 1\nIncrement(N)\nSet(N, \"text\")"));
    EXPECT_TRUE(engine.ExecuteList());
    EXPECT_EQ(assignmentsOf("N"), (Lines{"s2", "\"text\"", "s2", "\"text\""}));
}

TEST_F(Values, NumericTextsFollowTheLocale) {
    numbers = NumberLocale::commaDecimal();
    EXPECT_TRUE(run(u"VAR N = 0.5\nVAR M = 1,5\nVAR T = 1\nSet(T, \"2,5\")\nIncrement(T)\nIncrement(N)\nDecrement(M)"));
    EXPECT_EQ(current(u"T"), "d3.5");
    EXPECT_EQ(current(u"N"), "s1.5");
    EXPECT_EQ(current(u"M"), "s0.5");
}

// Joining

TEST_F(BuiltInStatement, ConCatStringJoinsTheTextsOfBothOperands) {
    struct Row {
        const char16_t* operands;
        const char* joined;
    };
    const Row rows[] = {
        {u"\"left\", \"right\"", "\"leftright\""},
        {u"\"a \", \" b\"", "\"a  b\""},
        {u"1.5, \"mm\"", "\"1.5mm\""},
        {u"\"n = \", N", "\"n = 3\""},
        {u"Empty, 0.5", "\"00.5\""},
        {u"\"\", \"\"", "\"\""},
        {u"Word, Limit", "\"w10\""},
        {u"\"a|\", \"b\"", "\"a\r\nb\""},
        {u"1e20, -0.25", "\"1E+20-0.25\""},
    };
    for (const Row& row : rows) {
        EXPECT_TRUE(
            run(u"VAR S = \"old\"\nVAR N = 3\nVAR Empty\nCONST Word = \"w\"\nCONST Limit = 10\n"
                u"ConCatString(S, " +
                std::u16string(row.operands) + u")"));
        EXPECT_EQ(current(u"S"), row.joined) << toUtf8(row.operands);
    }
}

TEST_F(BuiltInStatement, ConCatStringMayReadTheVariableThatItSets) {
    EXPECT_TRUE(run(u"VAR S = \"ab\"\nConCatString(S, S, S)\nConCatString(S, \"-\", S)"));
    EXPECT_EQ(current(u"S"), "\"-abab\"");
}

TEST_F(BuiltInStatement, ConCatStringMakesATextOfTwoNumbers) {
    EXPECT_TRUE(run(u"VAR S = \"old\"\nConCatString(S, 1, 2)"));
    EXPECT_EQ(current(u"S"), "\"12\"");
}

TEST_F(BuiltInStatement, ConCatStringWritesNumbersInTheUsersForm) {
    numbers = NumberLocale::commaDecimal();
    EXPECT_TRUE(run(u"VAR S = \"old\"\nConCatString(S, 1.5, \" mm\")"));
    EXPECT_EQ(current(u"S"), "\"1,5 mm\"");
}

// Calculations of the host

using MathsFunction = BuiltInStatement;

TEST_F(MathsFunction, HandsFourNumbersToTheHostAndStoresItsAnswer) {
    owner.onEvent = [](Event& event) {
        if (event.id() == HostEvent::MathsFunction) event.answer("tReturn", Value::ofSingle(6.25F));
    };
    EXPECT_TRUE(run(u"VAR R = 9\nMathsFunction(\"Square\", R, 2.5, 1, 2, R)"));
    EXPECT_EQ(owner.lines.at(1), "MathsFunction(\"Square\", s2.5, s1, s2, s9, s0)") << "the answer starts at 0";
    EXPECT_EQ(current(u"R"), "s6.25");
    EXPECT_TRUE(toldOf("CommandComplete(1, 0)"));
}

TEST_F(MathsFunction, StoresTheStartingAnswerWhenTheHostWritesNone) {
    EXPECT_TRUE(run(u"VAR R = 9\nMathsFunction(\"Square\", R, 1, 1, 1, 1)"));
    EXPECT_EQ(current(u"R"), "s0");
}

TEST_F(MathsFunction, FailsAndStoresNothingWhenTheHostDoesNotSucceed) {
    owner.onEvent = [](Event& event) {
        if (event.id() != HostEvent::MathsFunction) return;
        event.answer("tReturn", Value::ofSingle(1));
        event.succeed(false);
    };
    EXPECT_TRUE(run(u"VAR R = 9\nMathsFunction(\"Square\", R, 1, 1, 1, 1)\nPark()"));
    EXPECT_EQ(current(u"R"), "s9");
    EXPECT_TRUE(toldOf("CommandError(0, 1)"));
    EXPECT_EQ(owner.lines.size(), 2U);
}

TEST_F(MathsFunction, AnArgumentThatIsNoNumberIsError13BeforeTheEvent) {
    EXPECT_EQ(errorOfRun(u"VAR R = 9\nVAR A\nSet(A, \"x\")\nMathsFunction(\"f\", R, 1, A, 1, 1)"), 13);
    EXPECT_EQ(owner.lines, (Lines{"VariableAdded(\"R\", \"9\")", "VariableAdded(\"A\", \"0\")"}));
}

// Information

TEST_F(BuiltInStatement, InfoSucceedsOrFailsWithTheHost) {
    EXPECT_TRUE(run(u"Info(\"a\")\nBlockStart(\"b\")"));
    EXPECT_EQ(owner.lines, (Lines{"Info(\"a\")", "Info(\"b\")"}));
    for (const char16_t* script : {u"Info(\"a\")\nPark()", u"BlockStart(\"a\")\nPark()"}) {
        owner.lines.clear();
        hostFails(HostEvent::Info);
        EXPECT_TRUE(run(script));
        EXPECT_EQ(owner.lines, Lines{"Info(\"a\")"});
    }
    EXPECT_TRUE(dialogs.messages.empty()) << "the component shows no box for it";
}

// InputNumber

using InputNumber = BuiltInStatement;

constexpr std::u16string_view inputNumberScript = u"VAR N = 5\nInputNumber(\"How many?\", N, 1, 9.5)\nPark()";

TEST_F(InputNumber, RaisesTheEventWithLimitsAndPresentValue) {
    hostAsksIn("InputNumber");
    EXPECT_TRUE(run(inputNumberScript));
    EXPECT_EQ(owner.lines,
              (Lines{"VariableAdded(\"N\", \"5\")", "InputNumber(\"How many?\", s1, s9.5, s5, bTrue)", "Park()"}));
}

TEST_F(InputNumber, DropsTheValueOfAHostThatAsked) {
    owner.onEvent = [](Event& event) {
        if (event.id() != HostEvent::InputNumber) return;
        event.answer("tValue", Value::ofSingle(8));
        event.answer("tDLLExecute", Value::ofBoolean(false));
    };
    EXPECT_TRUE(run(inputNumberScript));
    EXPECT_EQ(current(u"N"), "s5");
    EXPECT_TRUE(assignmentsOf("N").empty());
    EXPECT_TRUE(dialogs.inputs.empty());
}

TEST_F(InputNumber, FailsWithAHostThatAskedWithoutSuccess) {
    owner.onEvent = [](Event& event) {
        if (event.id() != HostEvent::InputNumber) return;
        event.answer("tDLLExecute", Value::ofBoolean(false));
        event.succeed(false);
    };
    EXPECT_TRUE(run(inputNumberScript));
    EXPECT_TRUE(toldOf("CommandError(0, 1)"));
    EXPECT_EQ(owner.lines.size(), 2U);
}

TEST_F(InputNumber, StartsFromTheAnswerToFunctionCalled) {
    hostAnswersFunctionCalledWith(false);
    EXPECT_TRUE(run(inputNumberScript));
    EXPECT_EQ(owner.lines.at(1), "InputNumber(\"How many?\", s1, s9.5, s5, bFalse)");
    EXPECT_TRUE(dialogs.inputs.empty());
}

TEST_F(InputNumber, AHostMayHandTheQuestionBackToTheComponent) {
    owner.onEvent = [](Event& event) {
        if (event.id() == HostEvent::FunctionCalled) event.answer("tDoExecuteCommand", Value::ofBoolean(false));
        if (event.id() == HostEvent::InputNumber) event.answer("tDLLExecute", Value::ofBoolean(true));
    };
    dialogs.inputAnswers = {accepted(Value::ofSingle(3))};
    EXPECT_TRUE(run(inputNumberScript));
    EXPECT_EQ(current(u"N"), "s3");
}

TEST_F(InputNumber, AsksTheOperatorWithTheSingleDialogAndStoresTheAnswer) {
    dialogs.inputAnswers = {accepted(Value::ofSingle(7.25F))};
    EXPECT_TRUE(run(inputNumberScript));
    EXPECT_EQ(dialogs.inputs.size(), 1U);
    const ScriptedDialogs::Input& asked = dialogs.inputs.at(0);
    EXPECT_EQ(asked.title, "Enter Number");
    EXPECT_EQ(asked.question, "How many?");
    EXPECT_EQ(asked.initialValue, "s5");
    EXPECT_EQ(asked.kind, InputKind::SingleNumber);
    EXPECT_EQ(asked.minimum, 1.0F);
    EXPECT_EQ(asked.maximum, 9.5F);
    EXPECT_TRUE(asked.allowZero);
    EXPECT_EQ(current(u"N"), "s7.25");
    EXPECT_EQ(lastLine(), "Park()");
    EXPECT_TRUE(dialogs.messages.empty());
}

TEST_F(InputNumber, ConsidersTheDialogsEndNotTheHostsSuccess) {
    hostFails(HostEvent::InputNumber);
    dialogs.inputAnswers = {accepted(Value::ofSingle(7))};
    EXPECT_TRUE(run(inputNumberScript));
    EXPECT_EQ(lastLine(), "Park()");
}

TEST_F(InputNumber, CancelAndYesFailTheStatement) {
    dialogs.inputAnswers = {cancelled()};
    dialogs.messageAnswers = {yesAnswer};
    EXPECT_TRUE(run(inputNumberScript));
    EXPECT_EQ(boxes(dialogs.messages), Lines{confirmation});
    EXPECT_TRUE(toldOf("CommandError(0, 1)"));
    EXPECT_EQ(owner.lines.size(), 2U);
}

TEST_F(InputNumber, CancelAndNoShowTheBoxAgain) {
    dialogs.inputAnswers = {cancelled(), cancelled(), accepted(Value::ofSingle(2))};
    dialogs.messageAnswers = {noAnswer, noAnswer};
    EXPECT_TRUE(run(inputNumberScript));
    EXPECT_EQ(dialogs.inputs.size(), 3U);
    EXPECT_EQ(boxes(dialogs.messages), (Lines{confirmation, confirmation}));
    EXPECT_EQ(current(u"N"), "s2");
    EXPECT_EQ(lastLine(), "Park()");
    EXPECT_EQ(owner.lines.size(), 3U) << "the event is raised once";
}

TEST_F(InputNumber, AnyAnswerButYesIsNo) {
    dialogs.inputAnswers = {cancelled(), cancelled(), accepted(Value::ofSingle(2))};
    dialogs.messageAnswers = {cancelAnswer, okAnswer};
    EXPECT_TRUE(run(inputNumberScript));
    EXPECT_EQ(current(u"N"), "s2");
}

TEST_F(InputNumber, StoresTheValueOnEveryEndOfTheBox) {
    dialogs.inputAnswers = {cancelled(), accepted(Value::ofSingle(2))};
    dialogs.messageAnswers = {noAnswer};
    EXPECT_TRUE(run(inputNumberScript));
    EXPECT_EQ(assignmentsOf("N"), (Lines{"s5", "s2"}));
}

TEST_F(InputNumber, WhereNobodyCanBeAskedFailsWithoutAConfirmation) {
    EXPECT_TRUE(run(inputNumberScript));
    EXPECT_EQ(dialogs.inputs.size(), 1U);
    EXPECT_TRUE(dialogs.messages.empty());
    EXPECT_EQ(assignmentsOf("N"), Lines{"s5"});
    EXPECT_TRUE(toldOf("CommandError(0, 1)"));
}

TEST_F(InputNumber, ACancelThatNobodyCanConfirmStands) {
    dialogs.inputAnswers = {cancelled()};
    EXPECT_TRUE(run(inputNumberScript));
    EXPECT_EQ(dialogs.inputs.size(), 1U);
    EXPECT_EQ(boxes(dialogs.messages), Lines{confirmation});
    EXPECT_TRUE(toldOf("CommandError(0, 1)"));
}

TEST_F(InputNumber, NoOperatorNeverLoops) {
    NoOperator nobody;
    clsCommandList unattended(owner, {nobody, pump, &numbers});
    ASSERT_TRUE(
        unattended.CreateCommandList(u"VAR N = 5\nVAR S = \"s\"\nMsgInfo(\"a\")\nMsgInfoEx(\"b\", \"1\")\n"
                                     u"MsgAsk(\"c\", End)\nInputString(\"d\", S, 5)\nEnd:\nPark()"));
    EXPECT_TRUE(unattended.ExecuteList());
    EXPECT_EQ(unattended.programCounter(), 4) << "the question is answered No, the input fails";
    EXPECT_EQ(nobody.askInput({}).ending, InputAnswer::Ending::Unavailable);
}

/// Dialogs that hand out another value on cancel and let the test act while a box is open.
class ActingDialogs final : public OperatorDialogs {
public:
    Value valueOnCancel;
    std::function<void()> whileConfirming;
    Lines asked;

    std::optional<std::int32_t> showMessage(const OperatorMessage&) override {
        if (whileConfirming) whileConfirming();
        return noAnswer;
    }
    InputAnswer askInput(const InputRequest& request) override {
        asked.push_back(toUtf8(request.question) + " " + show(request.initialValue) + " " +
                        std::to_string(request.maximum));
        if (asked.size() == 1) return {valueOnCancel, InputAnswer::Ending::Cancelled};
        return {request.initialValue, InputAnswer::Ending::Accepted};
    }
};

TEST_F(InputNumber, ShowsTheBoxAgainFromTheValueThatTheCancelStored) {
    ActingDialogs acting;
    acting.valueOnCancel = Value::ofSingle(4);
    clsCommandList other(owner, {acting, pump, &numbers});
    ASSERT_TRUE(other.CreateCommandList(inputNumberScript));
    EXPECT_TRUE(other.ExecuteList());
    EXPECT_EQ(acting.asked, (Lines{"How many? s5 9.500000", "How many? s4 9.500000"}));
}

TEST_F(InputNumber, ReadsTheParametersAgainBeforeTheBoxIsShownAgain) {
    ActingDialogs acting;
    clsCommandList other(owner, {acting, pump, &numbers});
    ASSERT_TRUE(other.CreateCommandList(u"VAR N = 5\nVAR Max = 9\nInputNumber(\"How many?\", N, 1, Max)"));
    acting.whileConfirming = [&] { other.DataMemory().Item(2).setCurrentValue(Value::ofSingle(12)); };
    EXPECT_TRUE(other.ExecuteList());
    EXPECT_EQ(acting.asked, (Lines{"How many? s5 9.000000", "How many? i0 12.000000"}));
}

TEST_F(InputNumber, LimitsMayBeVariables) {
    dialogs.inputAnswers = {accepted(Value::ofSingle(1))};
    EXPECT_TRUE(run(u"VAR N\nVAR Low = -2\nCONST High = 3\nInputNumber(\"?\", N, Low, High)"));
    EXPECT_EQ(dialogs.inputs.at(0).minimum, -2.0F);
    EXPECT_EQ(dialogs.inputs.at(0).maximum, 3.0F);
    EXPECT_EQ(dialogs.inputs.at(0).initialValue, "i0");
}

TEST_F(InputNumber, AVariableThatHoldsNoNumberIsError13) {
    EXPECT_EQ(errorOfRun(u"VAR N\nSet(N, \"x\")\nInputNumber(\"?\", N, 1, 2)"), 13);
    EXPECT_TRUE(dialogs.inputs.empty());
}

TEST_F(InputNumber, TheLimitsAreReadBeforeTheVariable) {
    struct Row {
        const char16_t* n;
        const char16_t* low;
        const char16_t* high;
        int error;
    };
    const Row rows[] = {
        {u"x", u"1E39", u"9", 6}, {u"x", u"1", u"1E39", 6}, {u"1", u"x", u"1E39", 13}, {u"1", u"1E39", u"x", 6}};
    ASSERT_TRUE(load(u"VAR N\nVAR Low\nVAR High\nInputNumber(\"?\", N, Low, High)"));
    for (const Row& row : rows) {
        item(u"N").setInitialValue(Value::ofText(row.n));
        item(u"Low").setInitialValue(Value::ofText(row.low));
        item(u"High").setInitialValue(Value::ofText(row.high));
        EXPECT_EQ(errorOf([&] { engine.ExecuteList(); }), row.error) << &row - rows;
    }
    EXPECT_EQ(owner.lines.size(), 3U) << "but for the declarations there is no event";
}

// InputString

using InputString = BuiltInStatement;

constexpr std::u16string_view inputStringScript = u"VAR S = \"old\"\nInputString(\"Name?\", S, 20)\nPark()";
const std::string inputStringEvent = "InputString(\"Name?\", l20, \"old\", bTrue)";

TEST_F(InputString, DropsTheValueOfAHostThatTakesOverAtTheFirstEvent) {
    owner.onEvent = [](Event& event) {
        if (event.id() != HostEvent::InputString) return;
        event.answer("tValue", Value::ofText(u"new"));
        event.answer("tDLLExecute", Value::ofBoolean(false));
        event.succeed(false);
    };
    EXPECT_TRUE(run(inputStringScript));
    EXPECT_EQ(owner.lines, (Lines{"VariableAdded(\"S\", \"old\")", inputStringEvent, "Park()"}))
        << "raised once, and the host's success is not looked at";
    EXPECT_EQ(current(u"S"), "\"old\"");
    EXPECT_TRUE(assignmentsOf("S").empty());
}

TEST_F(InputString, StoresTheValueOfAHostThatTakesOverAtTheSecondEvent) {
    int raised = 0;
    owner.onEvent = [&](Event& event) {
        if (event.id() != HostEvent::InputString) return;
        event.answer("tValue", Value::ofText(++raised == 1 ? u"first" : u"second"));
        event.answer("tDLLExecute", Value::ofBoolean(raised == 1));
        event.succeed(false);
    };
    EXPECT_TRUE(run(inputStringScript));
    EXPECT_EQ(owner.lines, (Lines{"VariableAdded(\"S\", \"old\")", inputStringEvent, inputStringEvent, "Park()"}))
        << "the second event has freshly read arguments";
    EXPECT_EQ(current(u"S"), "\"second\"");
    EXPECT_TRUE(dialogs.inputs.empty());
}

TEST_F(InputString, AsksTheOperatorAfterTwoEventsThatNobodyTookOver) {
    dialogs.inputAnswers = {accepted(Value::ofText(u"Ann"))};
    EXPECT_TRUE(run(inputStringScript));
    EXPECT_EQ(owner.lines, (Lines{"VariableAdded(\"S\", \"old\")", inputStringEvent, inputStringEvent, "Park()"}));
    EXPECT_EQ(dialogs.inputs.size(), 1U);
    const ScriptedDialogs::Input& asked = dialogs.inputs.at(0);
    EXPECT_EQ(asked.title, "Enter String");
    EXPECT_EQ(asked.question, "Name?");
    EXPECT_EQ(asked.initialValue, "\"old\"");
    EXPECT_EQ(asked.kind, InputKind::String);
    EXPECT_EQ(asked.minimum, unlimitedMinimum);
    EXPECT_EQ(asked.maximum, 20.0F);
    EXPECT_TRUE(asked.allowZero);
    EXPECT_EQ(current(u"S"), "\"Ann\"");
}

TEST_F(InputString, MayBeAnsweredWithAnEmptyText) {
    dialogs.inputAnswers = {accepted(Value::ofText(u""))};
    EXPECT_TRUE(run(inputStringScript));
    EXPECT_EQ(current(u"S"), "\"\"");
}

TEST_F(InputString, FunctionCalledAnsweredFalseEndsItAfterOneEvent) {
    hostAnswersFunctionCalledWith(false);
    EXPECT_TRUE(run(inputStringScript));
    EXPECT_EQ(owner.lines,
              (Lines{"VariableAdded(\"S\", \"old\")", "InputString(\"Name?\", l20, \"old\", bFalse)", "Park()"}));
    EXPECT_EQ(current(u"S"), "\"old\"");
}

TEST_F(InputString, CancelAndYesFailTheStatement) {
    dialogs.inputAnswers = {cancelled()};
    dialogs.messageAnswers = {yesAnswer};
    EXPECT_TRUE(run(inputStringScript));
    EXPECT_EQ(boxes(dialogs.messages), Lines{confirmation});
    EXPECT_EQ(assignmentsOf("S"), Lines{"\"old\""}) << "the value is stored on cancel as well";
    EXPECT_TRUE(toldOf("CommandError(0, 1)"));
}

TEST_F(InputString, CancelAndNoShowTheBoxAgainWithoutAnotherEvent) {
    dialogs.inputAnswers = {cancelled(), accepted(Value::ofText(u"Ann"))};
    dialogs.messageAnswers = {noAnswer};
    EXPECT_TRUE(run(inputStringScript));
    EXPECT_EQ(dialogs.inputs.size(), 2U);
    EXPECT_EQ(owner.lines.size(), 4U);
    EXPECT_EQ(current(u"S"), "\"Ann\"");
}

TEST_F(InputString, WhereNobodyCanBeAskedFails) {
    EXPECT_TRUE(run(inputStringScript));
    EXPECT_EQ(dialogs.inputs.size(), 1U);
    EXPECT_TRUE(dialogs.messages.empty());
    EXPECT_TRUE(toldOf("CommandError(0, 1)"));
}

TEST_F(InputString, RoundsTheLengthOfTheEventHalfToEvenAndHandsTheDialogTheNumberItself) {
    EXPECT_TRUE(run(u"VAR S = \"s\"\nInputString(\"?\", S, 2.5)"));
    EXPECT_EQ(owner.lines.at(1), "InputString(\"?\", l2, \"s\", bTrue)");
    EXPECT_EQ(dialogs.inputs.at(0).maximum, 2.5F);
}

TEST_F(InputString, ShowsTheHostANumberThatTheVariableHoldsAsText) {
    hostAsksIn("InputString");
    EXPECT_TRUE(run(u"VAR S = \"s\"\nSet(S, 1.5)\nInputString(\"?\", S, 9)"));
    EXPECT_EQ(owner.lines.at(1), "InputString(\"?\", l9, \"1.5\", bTrue)");
}

// MsgAsk

using MsgAsk = BuiltInStatement;

constexpr std::u16string_view askScript = u"MsgAsk(\"Go on?\", There)\nPark()\nThere:\nEndTest()";

TEST_F(MsgAsk, YesJumpsAndEverythingElseGoesOn) {
    struct Row {
        std::optional<std::int32_t> answer;
        bool jumps;
    };
    for (const Row& row : {Row{yesAnswer, true}, Row{noAnswer, false}, Row{okAnswer, false}, Row{cancelAnswer, false},
                           Row{std::nullopt, false}}) {
        owner.lines.clear();
        dialogs.messages.clear();
        if (row.answer) dialogs.messageAnswers = {*row.answer};
        EXPECT_TRUE(run(askScript));
        const std::string asked = "MsgAsk(\"Go on?\", l0, bTrue)";
        EXPECT_EQ(owner.lines, row.jumps ? (Lines{asked, "EndTest()"}) : (Lines{asked, "Park()", "EndTest()"}));
        EXPECT_EQ(boxes(dialogs.messages), Lines{"Go on? [Corvane] 36 ()"});
    }
}

TEST_F(MsgAsk, AHostThatAskedCannotMakeTheScriptJump) {
    owner.onEvent = [](Event& event) {
        if (event.id() != HostEvent::MsgAsk) return;
        event.answer("tResult", Value::ofLong(yesAnswer));
        event.answer("tDLLExecute", Value::ofBoolean(false));
    };
    EXPECT_TRUE(run(askScript));
    EXPECT_EQ(owner.lines, (Lines{"MsgAsk(\"Go on?\", l0, bTrue)", "Park()", "EndTest()"}));
    EXPECT_TRUE(dialogs.messages.empty());
}

TEST_F(MsgAsk, SuccessIsNotLookedAt) {
    hostFails(HostEvent::MsgAsk);
    EXPECT_TRUE(run(askScript));
    EXPECT_EQ(owner.lines.size(), 3U);
    owner.lines.clear();
    owner.onEvent = [](Event& event) {
        if (event.id() != HostEvent::MsgAsk) return;
        event.succeed(false);
        event.answer("tDLLExecute", Value::ofBoolean(false));
    };
    EXPECT_TRUE(run(askScript));
    EXPECT_EQ(owner.lines.size(), 3U);
}

TEST_F(MsgAsk, FunctionCalledAnsweredFalseLeavesTheEventAndTakesTheBox) {
    hostAnswersFunctionCalledWith(false);
    dialogs.messageAnswers = {yesAnswer};
    EXPECT_TRUE(run(askScript));
    EXPECT_EQ(owner.lines, (Lines{"MsgAsk(\"Go on?\", l0, bFalse)", "Park()", "EndTest()"}));
    EXPECT_TRUE(dialogs.messages.empty());
}

// MsgInfo and MsgInfoEx

using Messages = BuiltInStatement;

TEST_F(Messages, MsgInfoShowsABoxWithTheInformationIcon) {
    EXPECT_TRUE(run(u"MsgInfo(\"Close the door|please\")\nPark()"));
    EXPECT_EQ(owner.lines, (Lines{"MsgInfo(\"Close the door\r\nplease\", bTrue)", "Park()"}));
    EXPECT_EQ(boxes(dialogs.messages), Lines{"Close the door\r\nplease [Corvane] 64 ()"});
}

TEST_F(Messages, MsgInfoExPutsTheSoundWhereTheStyleBelongs) {
    EXPECT_TRUE(run(u"VAR Sound = \"16\"\nMsgInfoEx(\"Weigh now\", \"3\")\nMsgInfoEx(\"Again\", Sound)\nPark()"));
    EXPECT_EQ(owner.lines, (Lines{"VariableAdded(\"Sound\", \"16\")", "MsgInfoEx(\"Weigh now\", l3, bTrue)",
                                  "MsgInfoEx(\"Again\", l16, bTrue)", "Park()"}));
    EXPECT_EQ(boxes(dialogs.messages), (Lines{"Weigh now [64] 3 (Corvane)", "Again [64] 16 (Corvane)"}));
}

TEST_F(Messages, AHostThatShowsThemItselfSparesTheBox) {
    for (const char* name : {"MsgInfo", "MsgInfoEx"}) {
        hostAsksIn(name);
        EXPECT_TRUE(
            run(name == std::string("MsgInfo") ? u"MsgInfo(\"a\")\nPark()" : u"MsgInfoEx(\"a\", \"1\")\nPark()"));
        EXPECT_TRUE(dialogs.messages.empty()) << name;
        EXPECT_EQ(lastLine(), "Park()");
    }
}

TEST_F(Messages, FunctionCalledAnsweredFalseSuppressesEventAndBox) {
    hostAnswersFunctionCalledWith(false);
    EXPECT_TRUE(run(u"MsgInfo(\"a\")\nMsgInfoEx(\"b\", \"no number\")\nPark()"));
    EXPECT_EQ(owner.lines, Lines{"Park()"}) << "not even the sound is converted";
    EXPECT_TRUE(dialogs.messages.empty());
}

TEST_F(Messages, NeverFail) {
    owner.onEvent = [](Event& event) { event.succeed(event.id() == HostEvent::Park); };
    EXPECT_TRUE(run(u"MsgInfo(\"a\")\nMsgInfoEx(\"b\", \"0\")\nPark()"));
    EXPECT_EQ(lastLine(), "Park()");
    EXPECT_EQ(dialogs.messages.size(), 2U) << "the box is shown whatever the success";
}

TEST_F(Messages, ASoundThatIsNoNumberIsError13) {
    EXPECT_EQ(errorOfRun(u"MsgInfoEx(\"a\", \"loud\")"), 13);
    EXPECT_EQ(errorOfRun(u"MsgInfoEx(\"a\", \"\")"), 13);
    EXPECT_TRUE(owner.lines.empty());
    EXPECT_TRUE(dialogs.messages.empty());
}

TEST_F(Messages, ShowTheTextOfANumberThatAStringVariableHolds) {
    numbers = NumberLocale::commaDecimal();
    EXPECT_TRUE(run(u"VAR S = \"s\"\nSet(S, 2.5)\nMsgInfo(S)"));
    EXPECT_EQ(boxes(dialogs.messages), Lines{"2,5 [Corvane] 64 ()"});
}

// Re-entrance

TEST_F(BuiltInStatement, ALoadInsideTheSecondInputEventLeavesTheStatementItsOwnItems) {
    int raised = 0;
    ASSERT_TRUE(load(inputStringScript));
    owner.onEvent = [&](Event& event) {
        if (event.id() != HostEvent::InputString || ++raised != 2) return;
        EXPECT_TRUE(load(u"VAR Other = 1\nEndTest()\nSaveData()"));
        event.answer("tValue", Value::ofText(u"late"));
        event.answer("tDLLExecute", Value::ofBoolean(false));
    };
    owner.lines.clear();
    EXPECT_TRUE(engine.ExecuteList());
    EXPECT_EQ(assignmentsOf("S"), Lines{"\"late\""});
    EXPECT_EQ(lastLine(), "SaveData()") << "the run goes on by position in the new list";
    EXPECT_EQ(std::count(owner.lines.begin(), owner.lines.end(), "EndTest()"), 0);
}

}  // namespace
}  // namespace corvane::testing
