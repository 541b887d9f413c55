#include <limits>
#include <new>
#include <stdexcept>

#include "tests/allocation_counter.h"
#include "tests/support/engine_fixture.h"

namespace corvane {

/// The way to a member function that is private: naming it in an explicit instantiation is allowed anywhere.
template <auto Member>
struct PrivateMember {
    friend auto applyCommandResultOf(clsCommandList&) { return Member; }
};
auto applyCommandResultOf(clsCommandList&);
template struct PrivateMember<&clsCommandList::ApplyCommandResult>;

namespace {

using testing::errorOf;
using testing::show;
using Lines = std::vector<std::string>;

constexpr std::int32_t largest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t smallest = std::numeric_limits<std::int32_t>::min();

/// Writes an engine's notifications and trace lines into a list that others write to as well.
class SharedLog final : public EngineListener, public TraceSink {
public:
    explicit SharedLog(Lines& lines) : lines_(lines) {}
    bool traces = true;
    std::function<void(std::int32_t)> onStart;
    std::function<void()> onEnd;

    void CommandStart(std::int32_t address) override {
        lines_.push_back("listener: CommandStart(" + std::to_string(address) + ")");
        if (onStart) onStart(address);
    }
    void CommandComplete(std::int32_t next, std::int32_t result) override {
        lines_.push_back("listener: CommandComplete(" + std::to_string(next) + ", " + std::to_string(result) + ")");
    }
    void CommandError(std::int32_t address, std::int32_t result) override {
        lines_.push_back("listener: CommandError(" + std::to_string(address) + ", " + std::to_string(result) + ")");
    }
    void ScriptComplete(bool result) override {
        lines_.push_back(std::string("listener: ScriptComplete(") + (result ? "True)" : "False)"));
        if (onEnd) onEnd();
    }
    void trace(enumDebugOptions category, std::u16string_view line) override {
        if (traces && category == doRuntimeResults) lines_.push_back("4 " + toUtf8(line));
    }

private:
    Lines& lines_;
};

class RunLoop : public testing::EngineTest {
protected:
    SharedLog log{owner.lines};

    void watch(bool withTrace = true) {
        owner.recordSteps = true;
        log.traces = withTrace;
        engine.setListener(&log);
        engine.setTraceSink(&log);
    }
    /// Ends a run that would otherwise go on for ever, as a failure of the test.
    void limitSteps(int limit) {
        owner.onStep = [this, left = limit](std::int32_t, std::int32_t) mutable {
            if (left-- > 0) return;
            ADD_FAILURE() << "the run does not end";
            engine.setStopExecution(true);
        };
    }
    void failAt(HostEvent failing) {
        owner.onEvent = [failing](Event& event) {
            if (event.id() == failing) event.succeed(false);
        };
    }
    /// What EditDataVariable does to an item.
    void edit(std::u16string_view name, Value value) {
        clsData edited = item(name);
        edited.setInitialValue(value);
        edited.setCurrentValue(value);
    }
    /// Runs, and answers the events of the run without what the load raised.
    Lines eventsOfRun(std::u16string_view script) {
        EXPECT_TRUE(load(script));
        owner.lines.clear();
        engine.ExecuteList();
        return owner.lines;
    }
};

// One statement after the other

TEST_F(RunLoop, TellsOfEachStepInOrder) {
    watch();
    EXPECT_EQ(eventsOfRun(u"Info(\"a\")\nGoto(End)\nPark()\nEnd:\nPark()"),
              Lines({"4 Running Command: 0 - Info", "listener: CommandStart(0)", "Info(\"a\")", "CommandComplete(1, 0)",
                     "listener: CommandComplete(1, 0)", "4 Running Command: 1 - Goto", "listener: CommandStart(1)",
                     "CommandComplete(3, 2)", "listener: CommandComplete(3, 2)", "4 Running Command: 3 - Park",
                     "listener: CommandStart(3)", "Park()", "CommandComplete(4, 0)", "listener: CommandComplete(4, 0)",
                     "4 ExecuteList Result: True", "listener: ScriptComplete(True)"}));
}

TEST_F(RunLoop, AFailedStatementIsReportedAndEndsTheRunWithTrue) {
    watch();
    failAt(HostEvent::Park);
    const std::u16string_view script =
        u"Info(\"0\")\nInfo(\"1\")\nInfo(\"2\")\nInfo(\"3\")\nInfo(\"4\")\nPark()\nInfo(\"6\")";
    const Lines lines = eventsOfRun(script);
    ASSERT_GE(lines.size(), 9u);
    EXPECT_EQ(Lines(lines.end() - 9, lines.end()),
              Lines({"4 Running Command: 5 - Park", "listener: CommandStart(5)", "Park()",
                     "4 ERROR (ExecuteList) - Command Failed: Address 5 - Park", "listener: CommandError(5, 1)",
                     "CommandComplete(6, 1)", "listener: CommandComplete(6, 1)", "4 ExecuteList Result: True",
                     "listener: ScriptComplete(True)"}));
    EXPECT_TRUE(engine.ExecuteList());
    EXPECT_EQ(engine.programCounter(), 6);
}

TEST_F(RunLoop, RunsEachKindUnderItsDisplayNameInTheTrace) {
    testing::RecordingTrace trace;
    ASSERT_TRUE(load(u"BlockStart(\"b\")\nAerationControl(1, 2, 0, 0, 0, 0, 0)\nReturn"));
    engine.setTraceSink(&trace);
    EXPECT_TRUE(engine.ExecuteList());
    EXPECT_EQ(trace.lines, Lines({"4 Running Command: 0 - BlockStart", "4 Running Command: 1 - AerationControl",
                                  "4 Running Command: 2 - Return", "4 ExecuteList Result: True"}));
}

TEST_F(RunLoop, TracesTheRunWhateverTheDebugOptions) {
    testing::RecordingTrace trace;
    ASSERT_TRUE(load(u"Park()"));
    engine.setTraceSink(&trace);
    for (const std::int32_t options : {0, 4, 7}) {
        trace.lines.clear();
        setDebugOptions(options);
        engine.ExecuteList();
        EXPECT_EQ(trace.lines, Lines({"4 Running Command: 0 - Park", "4 ExecuteList Result: True"}));
    }
}

TEST_F(RunLoop, RunsWithoutListenerAndTraceSink) {
    failAt(HostEvent::Park);
    EXPECT_TRUE(run(u"Info(\"a\")\nPark()"));
    EXPECT_EQ(owner.lines, Lines({"Info(\"a\")", "Park()"}));
}

TEST_F(RunLoop, AListenerMayLeaveEverythingToItself) {
    EngineListener nothing;
    engine.setListener(&nothing);
    failAt(HostEvent::Park);
    EXPECT_TRUE(run(u"VAR X = 1\nIncrement(X)\nPark()\nInfo(\"not reached\")"));
    EXPECT_EQ(current(u"X"), "s2");
    EXPECT_EQ(owner.lines, Lines({"VariableAdded(\"X\", \"1\")", "Park()"}));
}

TEST_F(RunLoop, AsksTheHostAboutEachStatementFirst) {
    owner.recordFunctionCalled = true;
    EXPECT_EQ(eventsOfRun(u"Park()\nReturn"),
              Lines({"FunctionCalled(l37, bTrue)", "Park()", "FunctionCalled(l6, bTrue)"}));
}

TEST_F(RunLoop, YieldsOnceAfterEachStatementIsComplete) {
    owner.recordSteps = true;
    pump.onYield = [&] { owner.lines.emplace_back("yield"); };
    EXPECT_EQ(eventsOfRun(u"Park()\nReturn"),
              Lines({"Park()", "CommandComplete(1, 0)", "yield", "CommandComplete(1, 4)", "yield"}));
    EXPECT_EQ(pump.yields, 2);
}

TEST_F(RunLoop, StepsToTheAddressOfTheNextStatementBeforeItTellsOfCompletion) {
    std::vector<std::int32_t> counters;
    owner.onStep = [&](std::int32_t next, std::int32_t) {
        EXPECT_EQ(engine.programCounter(), next);
        counters.push_back(next);
    };
    run(u"Goto(B)\nA:\nGoto(C)\nB:\nGoto(A)\nC:");
    EXPECT_EQ(counters, std::vector<std::int32_t>({2, 1, 3}));
    EXPECT_EQ(engine.programCounter(), 3);  // it stays after the run
}

TEST_F(RunLoop, ResetsTheDataMemoryAtTheStartOfEachRun) {
    ASSERT_TRUE(load(u"VAR X = 1\nENV E = e\nIncrement(X)\nIncrement(X)"));
    for (int i = 0; i < 2; ++i) {
        EXPECT_TRUE(engine.ExecuteList());
        EXPECT_EQ(current(u"X"), "s3");
        EXPECT_EQ(current(u"E"), "\"e\"");
    }
    edit(u"X", Value::ofSingle(10));
    EXPECT_TRUE(engine.ExecuteList());
    EXPECT_EQ(current(u"X"), "s12");  // an edit by the host survives the reset
}

TEST_F(RunLoop, ResetsTheFinishLoopFlagAtTheStartOfARun) {
    ASSERT_TRUE(load(u"Park()"));
    engine.setEnvFinishLoopFlag(true);
    owner.onEvent = [&](Event&) { EXPECT_FALSE(engine.EnvFinishLoopFlag()); };
    EXPECT_TRUE(engine.ExecuteList());
}

TEST_F(RunLoop, AnEmptyListFailsOnTheFetchOfItsFirstStatement) {
    watch();
    for (const std::u16string_view script : {u"", u"VAR X = 1\nL:\n; nothing"}) {
        ASSERT_TRUE(load(script));
        owner.lines.clear();
        EXPECT_EQ(errorOf([&] { engine.ExecuteList(); }), 9);
        EXPECT_EQ(owner.lines, Lines());
        EXPECT_EQ(pump.yields, 0);
        EXPECT_FALSE(engine.isRunning());
    }
}

TEST_F(RunLoop, BeforeAnyLoadThereIsNothingToRun) {
    EXPECT_EQ(errorOf([&] { engine.ExecuteList(); }), 9);
}

TEST_F(RunLoop, RunsWhatARejectedLoadLeft) {
    EXPECT_FALSE(load(u"Park()\nGoto(Nowhere)"));
    EXPECT_EQ(errorOf([&] { engine.ExecuteList(); }), 9);  // an undefined label is the address -1
    EXPECT_EQ(owner.lines, Lines({"Park()"}));
}

class UninitialisedEngine final : public clsCommandList {
public:
    using clsCommandList::clsCommandList;

protected:
    bool initialiseData() override { return false; }
};

TEST_F(RunLoop, RunsNoStatementWhenTheDataMemoryCannotBeReset) {
    UninitialisedEngine other(owner, services);
    ASSERT_TRUE(other.CreateCommandList(u"Park()"));
    other.setListener(&log);
    other.setTraceSink(&log);
    EXPECT_TRUE(other.ExecuteList());
    EXPECT_EQ(owner.lines, Lines({"4 ExecuteList Result: True", "listener: ScriptComplete(True)"}));
    EXPECT_EQ(pump.yields, 0);
    ASSERT_TRUE(other.CreateCommandList(u""));
    EXPECT_TRUE(other.ExecuteList());  // not even the fetch from an empty list
}

// Stopping

TEST_F(RunLoop, ALoopGoesOnUntilItIsStoppedAndTheRunIsFalse) {
    int steps = 0;
    owner.onStep = [&](std::int32_t, std::int32_t) {
        if (++steps == 1000) engine.setStopExecution(true);
    };
    EXPECT_FALSE(run(u"VAR X\nAgain:\nIncrement(X)\nGoto(Again)"));
    EXPECT_EQ(steps, 1000);
    EXPECT_EQ(current(u"X"), "i500");
}

TEST_F(RunLoop, StopsFromAnywhereInAStepAfterTheStatementIsDone) {
    const std::u16string_view script = u"Park()\nInfo(\"never\")";
    const Lines expected = {"listener: CommandStart(0)", "Park()", "CommandComplete(1, 0)",
                            "listener: CommandComplete(1, 0)", "listener: ScriptComplete(False)"};
    const auto stop = [&] { engine.setStopExecution(true); };
    watch(false);

    owner.onEvent = [&](Event&) { stop(); };
    EXPECT_EQ(eventsOfRun(script), expected) << "in an event";
    owner.onEvent = nullptr;
    owner.onStep = [&](std::int32_t, std::int32_t) { stop(); };
    EXPECT_EQ(eventsOfRun(script), expected) << "when the statement is complete";
    owner.onStep = nullptr;
    pump.onYield = stop;
    EXPECT_EQ(eventsOfRun(script), expected) << "while messages are handled";
    pump.onYield = nullptr;
    log.onStart = [&](std::int32_t) { stop(); };
    EXPECT_EQ(eventsOfRun(script), expected) << "before the statement";
}

TEST_F(RunLoop, ARunStoppedOnItsLastStatementIsFalse) {
    owner.onStep = [&](std::int32_t, std::int32_t) { engine.setStopExecution(true); };
    EXPECT_FALSE(run(u"Park()"));
}

TEST_F(RunLoop, ARunStoppedOnAFailedStatementIsFalse) {
    failAt(HostEvent::Park);
    owner.onStep = [&](std::int32_t, std::int32_t) { engine.setStopExecution(true); };
    EXPECT_FALSE(run(u"Park()"));
}

TEST_F(RunLoop, AStopMayBeTakenBackBeforeItIsTested) {
    owner.onEvent = [&](Event&) { engine.setStopExecution(true); };
    owner.onStep = [&](std::int32_t, std::int32_t) { engine.setStopExecution(false); };
    EXPECT_TRUE(run(u"Park()\nPark()"));
    EXPECT_EQ(owner.lines, Lines({"Park()", "Park()"}));
}

TEST_F(RunLoop, EachRunClearsTheStopFlag) {
    ASSERT_TRUE(load(u"Park()\nPark()"));
    engine.setStopExecution(true);
    EXPECT_TRUE(engine.ExecuteList());
    EXPECT_EQ(owner.lines, Lines({"Park()", "Park()"}));
}

TEST_F(RunLoop, TracesAStoppedRunAsFalse) {
    watch();
    owner.onStep = [&](std::int32_t, std::int32_t) { engine.setStopExecution(true); };
    const Lines lines = eventsOfRun(u"Park()\nPark()");
    ASSERT_GE(lines.size(), 2u);
    EXPECT_EQ(Lines(lines.end() - 2, lines.end()),
              Lines({"4 ExecuteList Result: False", "listener: ScriptComplete(False)"}));
}

// Calls

TEST_F(RunLoop, ReturnGoesOnBehindTheCall) {
    watch(false);
    EXPECT_EQ(eventsOfRun(u"Call(Sub)\nInfo(\"after\")\nGoto(End)\nSub:\nInfo(\"in\")\nReturn\nEnd:"),
              Lines({"listener: CommandStart(0)", "CommandComplete(3, 3)", "listener: CommandComplete(3, 3)",
                     "listener: CommandStart(3)", "Info(\"in\")", "CommandComplete(4, 0)",
                     "listener: CommandComplete(4, 0)", "listener: CommandStart(4)", "CommandComplete(1, 4)",
                     "listener: CommandComplete(1, 4)", "listener: CommandStart(1)", "Info(\"after\")",
                     "CommandComplete(2, 0)", "listener: CommandComplete(2, 0)", "listener: CommandStart(2)",
                     "CommandComplete(5, 2)", "listener: CommandComplete(5, 2)", "listener: ScriptComplete(True)"}));
}

TEST_F(RunLoop, ReturnsInTheOppositeOrderOfCalls) {
    EXPECT_EQ(
        eventsOfRun(
            u"Call(A)\nInfo(\"end\")\nGoto(End)\nA:\nCall(B)\nInfo(\"a\")\nReturn\nB:\nInfo(\"b\")\nReturn\nEnd:"),
        Lines({"Info(\"b\")", "Info(\"a\")", "Info(\"end\")"}));
}

TEST_F(RunLoop, TheCallStackHasNoFixedDepth) {
    limitSteps(400100);
    EXPECT_TRUE(
        run(u"VAR N = 100000\nCall(Down)\nGoto(End)\nDown:\nDecrement(N)\nIfEqual(N, 0, Up)\nCall(Down)\nUp:\nReturn\n"
            u"End:"));
    EXPECT_EQ(engine.programCounter(), 6);
    EXPECT_EQ(current(u"N"), "s0");
}

TEST_F(RunLoop, AReturnWithoutCallEndsTheRunQuietly) {
    watch();
    EXPECT_EQ(eventsOfRun(u"Return\nPark()"), Lines({"4 Running Command: 0 - Return", "listener: CommandStart(0)",
                                                     "CommandComplete(0, 4)", "listener: CommandComplete(0, 4)",
                                                     "4 ExecuteList Result: True", "listener: ScriptComplete(True)"}));
    EXPECT_EQ(engine.programCounter(), 0);
}

TEST_F(RunLoop, ASecondReturnForOneCallEndsTheRun) {
    EXPECT_EQ(eventsOfRun(u"Call(Sub)\nInfo(\"after\")\nSub:\nInfo(\"sub\")\nReturn"),
              Lines({"Info(\"sub\")", "Info(\"after\")", "Info(\"sub\")"}));
    EXPECT_EQ(engine.programCounter(), 3);
}

TEST_F(RunLoop, AnAddressLeftByARunServesTheNextRun) {
    const std::u16string_view script =
        u"Goto(Main)\nInfo(\"stale\")\nGoto(End)\nMain:\nCall(Sub)\nInfo(\"after\")\nSub:\nPark()\nReturn\nEnd:";
    limitSteps(50);
    failAt(HostEvent::Park);
    ASSERT_TRUE(load(script));
    EXPECT_TRUE(engine.ExecuteList());  // ends inside the subroutine: 4 stays on the stack
    owner.onEvent = nullptr;
    owner.lines.clear();
    EXPECT_TRUE(engine.ExecuteList());
    // Two returns for one call each: the second takes the stale address, then once more the end comes.
    EXPECT_EQ(owner.lines, Lines({"Park()", "Info(\"after\")", "Park()", "Info(\"after\")", "Park()"}));
}

TEST_F(RunLoop, AStaleAddressOutlivesALoad) {
    failAt(HostEvent::Park);
    EXPECT_TRUE(run(u"Info(\"a\")\nCall(Sub)\nSub:\nPark()"));
    owner.onEvent = nullptr;
    owner.lines.clear();
    EXPECT_TRUE(run(u"Return\nInfo(\"never\")\nInfo(\"stale\")"));
    EXPECT_EQ(owner.lines, Lines({"Info(\"stale\")"}));
    owner.lines.clear();
    EXPECT_TRUE(engine.ExecuteList());  // now the stack is empty
    EXPECT_EQ(owner.lines, Lines());
}

TEST_F(RunLoop, AStaleAddressBeyondTheListEndsTheRun) {
    failAt(HostEvent::Park);
    EXPECT_TRUE(run(u"Info(\"a\")\nInfo(\"b\")\nCall(Sub)\nSub:\nPark()"));
    std::int32_t next = 0;
    owner.onStep = [&](std::int32_t address, std::int32_t) { next = address; };
    EXPECT_TRUE(run(u"Return"));
    EXPECT_EQ(next, 3);
}

TEST_F(RunLoop, ARunTimeErrorLeavesTheCallStackAsItIs) {
    EXPECT_EQ(
        errorOf([&] { run(u"Call(Sub)\nInfo(\"back\")\nGoto(End)\nSub:\nIfNotFinishLoopFlag(\"a\", Sub)\nEnd:"); }),
        438);
    EXPECT_EQ(engine.programCounter(), 3);
    owner.lines.clear();
    EXPECT_TRUE(run(u"Return\nInfo(\"second\")"));
    EXPECT_EQ(owner.lines, Lines({"Info(\"second\")"}));
}

// Jumps

TEST_F(RunLoop, AJumpToTheEndEndsTheRunAndReportsTheEnd) {
    watch(false);
    EXPECT_EQ(eventsOfRun(u"Goto(End)\nPark()\nEnd:"),
              Lines({"listener: CommandStart(0)", "CommandComplete(2, 2)", "listener: CommandComplete(2, 2)",
                     "listener: ScriptComplete(True)"}));
}

TEST_F(RunLoop, AJumpBeyondTheEndEndsTheRun) {
    ASSERT_TRUE(load(u"Goto(L)\nPark()\nL:"));
    for (const std::int32_t target : {2, 3, 1000, largest}) {
        edit(u"L", Value::ofLong(target));
        std::int32_t next = 0;
        owner.onStep = [&](std::int32_t address, std::int32_t) { next = address; };
        EXPECT_TRUE(engine.ExecuteList());
        EXPECT_EQ(next, target);
        EXPECT_EQ(engine.programCounter(), target);
    }
    EXPECT_EQ(owner.lines, Lines());
}

TEST_F(RunLoop, AJumpInFrontOfTheListFailsOnTheNextFetch) {
    ASSERT_TRUE(load(u"Goto(L)\nPark()\nL:"));
    for (const std::int32_t target : {-1, -2, -1000, smallest + 1}) {
        edit(u"L", Value::ofLong(target));
        std::int32_t next = 0;
        owner.onStep = [&](std::int32_t address, std::int32_t) { next = address; };
        EXPECT_EQ(errorOf([&] { engine.ExecuteList(); }), 9) << target;
        EXPECT_EQ(next, target);
        EXPECT_EQ(engine.programCounter(), target);
        EXPECT_FALSE(engine.isRunning());
    }
}

TEST_F(RunLoop, AddressArithmeticIsChecked) {
    watch();
    for (const std::u16string_view script : {u"Goto(L)\nL:", u"Call(L)\nL:"}) {
        ASSERT_TRUE(load(script));
        edit(u"L", Value::ofLong(smallest));
        owner.lines.clear();
        EXPECT_EQ(errorOf([&] { engine.ExecuteList(); }), 6);
        // Nothing tells of the step that an error ended.
        EXPECT_EQ(owner.lines.back(), "listener: CommandStart(0)");
        EXPECT_EQ(engine.programCounter(), 0);
    }
}

TEST_F(RunLoop, ATargetIsConvertedToALong) {
    struct Case {
        Value target;
        std::int32_t address;
    };
    const Case cases[] = {
        {Value::ofSingle(1.5F), 2},  {Value::ofSingle(2.5F), 2}, {Value::ofSingle(1.4F), 1},
        {Value::ofSingle(-0.5F), 0}, {Value::ofInteger(3), 3},   {Value::ofText(u"2"), 2},
        {Value::ofText(u"2.5"), 2},  {Value::ofDouble(3.5), 4},  {Value::ofBoolean(true), -1},
        {Value::ofSingle(-3), -3},
    };
    ASSERT_TRUE(load(u"Goto(L)\nPark()\nPark()\nPark()\nL:"));
    for (const Case& c : cases) {
        edit(u"L", c.target);
        std::int32_t address = 0;
        EXPECT_EQ(engine.ExecuteCommand(engine.Command(1), address), crJump) << show(c.target);
        EXPECT_EQ(address, c.address) << show(c.target);
    }
    for (const auto& [target, error] : {std::pair(Value::ofText(u"two"), 13), std::pair(Value::ofText(u""), 13),
                                        std::pair(Value::ofSingle(3E9F), 6), std::pair(Value::ofText(u"3E9"), 6)}) {
        edit(u"L", target);
        EXPECT_EQ(errorOf([&] { engine.ExecuteList(); }), error) << show(target);
    }
}

TEST_F(RunLoop, AFractionalTargetOfALabelEditedByTheHostIsRounded) {
    ASSERT_TRUE(load(u"Goto(L)\nInfo(\"1\")\nL:\nInfo(\"2\")"));
    edit(u"L", Value::ofSingle(0.6F));
    EXPECT_TRUE(engine.ExecuteList());
    EXPECT_EQ(owner.lines, Lines({"Info(\"1\")", "Info(\"2\")"}));
}

// Result codes

TEST_F(RunLoop, AnEngineWithoutALocaleWritesNumbersAsTheUserDoes) {
    const EngineServices usersServices{dialogs, pump};
    clsCommandList usersEngine(owner, usersServices);
    const std::u16string half(toText(Value::ofSingle(0.5F), NumberLocale::user()).view());
    for (const std::u16string_view script : {u"VAR Half = 0.5", u"Park()\nVAR Half = 0.5"}) {
        EXPECT_EQ(usersEngine.locale().decimalMark, NumberLocale::user().decimalMark);
        ASSERT_TRUE(usersEngine.CreateCommandList(script));
        EXPECT_EQ(owner.lines.back(), "VariableAdded(\"Half\", \"" + toUtf8(half) + "\")");
    }
}

TEST_F(RunLoop, ExecuteCommandAnswersTheResultCodeAndTheTarget) {
    ASSERT_TRUE(load(u"Goto(L)\nCall(L)\nReturn\nPark()\nIfEqual(1, 1, L)\nIfEqual(1, 2, L)\nL:"));
    engine.DataMemory().InitialiseData();
    struct Case {
        std::int32_t position;
        std::int32_t result;
        std::int32_t address;
    };
    for (const Case& c : {Case{1, crJump, 6}, Case{2, crCall, 6}, Case{3, crReturn, 77}, Case{4, crNext, 77},
                          Case{5, crJump, 6}, Case{6, crNext, 77}}) {
        std::int32_t address = 77;
        EXPECT_EQ(engine.ExecuteCommand(engine.Command(c.position), address), c.result) << c.position;
        EXPECT_EQ(address, c.address) << c.position;
    }
    failAt(HostEvent::Park);
    std::int32_t address = 77;
    EXPECT_EQ(engine.ExecuteCommand(engine.Command(4), address), crFailed);
    EXPECT_EQ(address, 77);
    EXPECT_FALSE(engine.isRunning());
    EXPECT_EQ(pump.yields, 0);
}

TEST_F(RunLoop, AStatementExecutedAloneMayBeABlockStartOrOfNoKindAtAll) {
    ASSERT_TRUE(load(u"BlockStart(\"Preparation\")"));
    engine.DataMemory().InitialiseData();
    owner.recordFunctionCalled = true;
    std::int32_t address = 77;
    EXPECT_EQ(engine.ExecuteCommand(engine.Command(1), address), crNext);
    EXPECT_EQ(owner.lines, Lines({"FunctionCalled(l19, bTrue)", "Info(\"Preparation\")"}));
    const clsCommand unknown(engine);
    EXPECT_EQ(errorOf([&] { engine.ExecuteCommand(unknown, address); }), 438);
    EXPECT_EQ(address, 77);
}

TEST_F(RunLoop, AResultCodeThatNobodyKnowsIsReportedLikeAFailure) {
    ASSERT_TRUE(load(u"Park()\nPark()"));
    watch();
    owner.lines.clear();
    for (const std::int32_t code : {5, -1, 100}) {
        std::int32_t programCounter = 0;
        bool keepRunning = true;
        EXPECT_FALSE((engine.*applyCommandResultOf(engine))(code, 0, engine.Command(1), programCounter, keepRunning));
        EXPECT_FALSE(keepRunning);
        EXPECT_EQ(programCounter, 1);
        EXPECT_EQ(owner.lines, Lines({"4 ERROR (ExecuteList) - Unhandled ExecuteCommand Return:  Address 0 - Park",
                                      "listener: CommandError(0, " + std::to_string(code) + ")"}));
        owner.lines.clear();
    }
}

TEST_F(RunLoop, ApplyingAResultNeverAnswersTrue) {
    ASSERT_TRUE(load(u"Park()\nPark()\nPark()"));
    const auto apply = applyCommandResultOf(engine);
    struct Case {
        std::int32_t result;
        std::int32_t target;
        std::int32_t next;
        bool goesOn;
    };
    // In this order: the return takes what the call has put on the stack.
    for (const Case& c :
         {Case{crNext, 2, 1, true}, Case{crFailed, 2, 1, false}, Case{crJump, 2, 2, true}, Case{crJump, 3, 3, false},
          Case{crCall, 2, 2, true}, Case{crReturn, 2, 1, true}, Case{crReturn, 2, 2, false}}) {
        std::int32_t programCounter = 0;
        bool keepRunning = true;
        EXPECT_FALSE((engine.*apply)(c.result, c.target, engine.Command(1), programCounter, keepRunning));
        EXPECT_EQ(programCounter, c.next) << c.result;
        EXPECT_EQ(keepRunning, c.goesOn) << c.result;
    }
    std::int32_t programCounter = largest;
    bool keepRunning = true;
    for (const std::int32_t code : {crNext, crFailed, crCall})
        EXPECT_EQ(errorOf([&] { (engine.*apply)(code, 0, engine.Command(1), programCounter, keepRunning); }), 6)
            << code;
}

// Errors

TEST_F(RunLoop, ARunTimeErrorLeavesTheRunAtOnce) {
    watch();
    ASSERT_TRUE(load(u"Park()\nIfNotFinishLoopFlag(\"a\", L)\nL:\nPark()"));
    owner.lines.clear();
    EXPECT_EQ(errorOf([&] { engine.ExecuteList(); }), 438);
    EXPECT_EQ(owner.lines, Lines({"4 Running Command: 0 - Park", "listener: CommandStart(0)", "Park()",
                                  "CommandComplete(1, 0)", "listener: CommandComplete(1, 0)",
                                  "4 Running Command: 1 - IfNotFinishLoopFlag", "listener: CommandStart(1)"}));
    EXPECT_EQ(pump.yields, 1);
    EXPECT_EQ(engine.programCounter(), 1);
    EXPECT_FALSE(engine.isRunning());
}

TEST_F(RunLoop, ExceptionsOfASinkPassAndLeaveTheEngineUsable) {
    ASSERT_TRUE(load(u"VAR X = 1\nIncrement(X)\nPark()\nIncrement(X)"));
    watch();
    const auto expectUsable = [&] {
        EXPECT_FALSE(engine.isRunning());
        owner.onEvent = nullptr;
        owner.onStep = nullptr;
        pump.onYield = nullptr;
        log.onStart = nullptr;
        log.onEnd = nullptr;
        EXPECT_TRUE(engine.ExecuteList());
        EXPECT_EQ(current(u"X"), "s3");
        owner.lines.clear();
    };
    owner.onEvent = [](Event&) { throw std::runtime_error("the host's own"); };
    EXPECT_THROW(engine.ExecuteList(), std::runtime_error);
    EXPECT_EQ(owner.lines.back(), "listener: CommandStart(0)");
    expectUsable();
    owner.onEvent = [](Event& event) {
        if (event.id() == HostEvent::Park) throw automation_error(ErrorNumber::TypeMismatch);
    };
    EXPECT_EQ(errorOf([&] { engine.ExecuteList(); }), 13);
    EXPECT_EQ(owner.lines.back(), "Park()");
    expectUsable();
    owner.onStep = [](std::int32_t, std::int32_t) { throw std::bad_alloc(); };
    EXPECT_THROW(engine.ExecuteList(), std::bad_alloc);
    EXPECT_EQ(owner.lines.back(), "CommandComplete(1, 0)");
    expectUsable();
    pump.onYield = [] { throw std::runtime_error("a message handler's own"); };
    EXPECT_THROW(engine.ExecuteList(), std::runtime_error);
    expectUsable();
    log.onStart = [](std::int32_t) { throw std::runtime_error("the listener's own"); };
    EXPECT_THROW(engine.ExecuteList(), std::runtime_error);
    expectUsable();
    log.onEnd = [] { throw std::runtime_error("the listener's own"); };
    EXPECT_THROW(engine.ExecuteList(), std::runtime_error);
    expectUsable();
}

// A run within a run

TEST_F(RunLoop, RefusesARunInsideARun) {
    std::string refusals;
    const auto tryToRun = [&](const char* where) {
        try {
            engine.ExecuteList();
            ADD_FAILURE() << where;
        } catch (const automation_error& error) {
            EXPECT_EQ(error.number(), ErrorNumber::InvalidProcedureCall) << where;
            EXPECT_STREQ(error.what(), "The script is running; another run cannot begin") << where;
            refusals += where;
        }
        EXPECT_TRUE(engine.isRunning());
    };
    engine.setListener(&log);
    owner.onEvent = [&](Event& event) { tryToRun(event.id() == HostEvent::Park ? "event " : "called "); };
    owner.onStep = [&](std::int32_t, std::int32_t) { tryToRun("step "); };
    pump.onYield = [&] { tryToRun("yield "); };
    log.onStart = [&](std::int32_t) { tryToRun("start "); };
    log.onEnd = [&] { tryToRun("end "); };
    EXPECT_TRUE(run(u"Park()"));
    EXPECT_EQ(refusals, "start called event step yield end ");
    EXPECT_FALSE(engine.isRunning());

    owner.onEvent = nullptr;
    owner.onStep = nullptr;
    pump.onYield = nullptr;
    log.onStart = nullptr;
    log.onEnd = nullptr;
    owner.lines.clear();
    EXPECT_TRUE(run(u"Info(\"again\")"));
}

TEST_F(RunLoop, ARefusedRunChangesNothingOfTheRunInProgress) {
    owner.onEvent = [&](Event& event) {
        if (event.id() != HostEvent::Park) return;
        engine.setStopExecution(true);
        EXPECT_EQ(errorOf([&] { engine.ExecuteList(); }), 5);
        EXPECT_EQ(engine.programCounter(), 1);
        EXPECT_EQ(current(u"X"), "s2");  // not reset
    };
    EXPECT_FALSE(run(u"VAR X = 1\nIncrement(X)\nPark()\nPark()"));  // and the stop still holds
    EXPECT_EQ(owner.lines.size(), 2u);
}

TEST_F(RunLoop, ARunInsideARunThatTheHostDoesNotCatchEndsTheOuterRun) {
    owner.onEvent = [&](Event& event) {
        if (event.id() == HostEvent::Park) engine.ExecuteList();
    };
    EXPECT_EQ(errorOf([&] { run(u"Park()\nInfo(\"never\")"); }), 5);
    EXPECT_FALSE(engine.isRunning());
    owner.onEvent = nullptr;
    EXPECT_TRUE(engine.ExecuteList());
}

TEST_F(RunLoop, OneEngineMayRunInsideARunOfAnother) {
    clsCommandList inner(owner, services);
    ASSERT_TRUE(inner.CreateCommandList(u"Info(\"inner\")"));
    owner.onEvent = [&](Event& event) {
        if (event.id() != HostEvent::Park) return;
        EXPECT_TRUE(inner.ExecuteList());
    };
    EXPECT_TRUE(run(u"Park()\nInfo(\"outer\")"));
    EXPECT_EQ(owner.lines, Lines({"Park()", "Info(\"inner\")", "Info(\"outer\")"}));
}

TEST_F(RunLoop, EachStatementIsAskedAboutUnanswered) {
    class AnsweringOwner final : public EngineOwner {
    public:
        std::vector<bool> answeredBefore;
        void raise(Event& event) override {
            if (event.id() == HostEvent::FunctionCalled) answeredBefore.push_back(event.succeeded());
            event.succeed();
        }
        void CommandComplete(std::int32_t, std::int32_t) override {}
    } answering;
    clsCommandList asking(answering, services);
    ASSERT_TRUE(asking.CreateCommandList(u"Park()\nPark()\nPark()"));
    EXPECT_TRUE(asking.ExecuteList());
    EXPECT_EQ(answering.answeredBefore, (std::vector<bool>{false, false, false}));
}

// A load within a run

class LoadDuringRun : public RunLoop {
protected:
    std::u16string next;
    bool loaded = false;

    void loadOnce() {
        if (loaded) return;
        loaded = true;
        EXPECT_TRUE(load(next));
    }
    Lines runAndLoad(std::u16string_view first, std::u16string_view second) {
        next = second;
        loaded = false;
        limitSteps(20);
        return eventsOfRun(first);
    }
};

TEST_F(LoadDuringRun, TheStatementEndsOnTheOldScriptAndTheRunGoesOnByPositionInTheNew) {
    owner.onEvent = [&](Event& event) {
        if (event.id() == HostEvent::Park) loadOnce();
    };
    const std::u16string_view old = u"Info(\"old 0\")\nPark()\nInfo(\"old 2\")";
    EXPECT_EQ(runAndLoad(old, u"TareWeight()\nTareWeight()\nSaveData()\nEndTest()"),
              Lines({"Info(\"old 0\")", "Park()", "SaveData()", "EndTest()"}));
    EXPECT_EQ(engine.commandCount(), 4);
}

TEST_F(LoadDuringRun, IsSafeFromEveryPlaceOfAStep) {
    const std::u16string_view old = u"Park()\nInfo(\"old\")";
    const std::u16string_view fresh = u"TareWeight()\nSaveData()\nEndTest()";
    const Lines expected = {"Park()", "SaveData()", "EndTest()"};

    owner.onEvent = [&](Event&) { loadOnce(); };  // when the host is asked about the statement
    EXPECT_EQ(runAndLoad(old, fresh), expected);
    owner.onEvent = nullptr;

    pump.onYield = [&] { loadOnce(); };
    EXPECT_EQ(runAndLoad(old, fresh), expected);
    pump.onYield = nullptr;

    log.onStart = [&](std::int32_t) { loadOnce(); };
    log.traces = false;
    engine.setListener(&log);
    Lines lines = runAndLoad(old, fresh);
    std::erase_if(lines, [](const std::string& line) { return line.starts_with("listener"); });
    EXPECT_EQ(lines, expected);
    engine.setListener(nullptr);

    next = fresh;
    loaded = false;
    ASSERT_TRUE(load(old));
    owner.lines.clear();
    owner.onStep = [&](std::int32_t, std::int32_t) { loadOnce(); };
    EXPECT_TRUE(engine.ExecuteList());
    EXPECT_EQ(owner.lines, expected);
}

TEST_F(LoadDuringRun, ALoadInTheTraceSinkIsSafe) {
    class LoadingSink final : public TraceSink {
    public:
        std::function<void()> onRunning;
        void trace(enumDebugOptions category, std::u16string_view) override {
            if (category == doRuntimeResults && onRunning) onRunning();
        }
    } sink;
    sink.onRunning = [&] { loadOnce(); };
    engine.setTraceSink(&sink);
    EXPECT_EQ(runAndLoad(u"Park()\nInfo(\"old\")", u"TareWeight()\nSaveData()"), Lines({"Park()", "SaveData()"}));
}

TEST_F(LoadDuringRun, InAnEventAShorterScriptEndsTheRun) {
    owner.recordSteps = true;
    owner.onEvent = [&](Event& event) {
        if (event.id() == HostEvent::Park) loadOnce();
    };
    const std::u16string_view old = u"Info(\"a\")\nInfo(\"b\")\nPark()\nInfo(\"c\")";
    const Lines expected = {"Info(\"a\")", "CommandComplete(1, 0)", "Info(\"b\")", "CommandComplete(2, 0)",
                            "Park()",      "CommandComplete(3, 0)"};
    for (const std::u16string_view fresh : {u"", u"SaveData()", u"SaveData()\nSaveData()\nSaveData()"}) {
        EXPECT_EQ(runAndLoad(old, fresh), expected) << toUtf8(fresh);
        EXPECT_EQ(engine.programCounter(), 3);
        EXPECT_FALSE(engine.isRunning());
    }
}

TEST_F(LoadDuringRun, BehindTheEndTestAShorterScriptFailsOnTheFetch) {
    for (const std::u16string_view fresh : {u"", u"SaveData()"}) {
        for (const bool inYield : {false, true}) {
            next = fresh;
            loaded = false;
            ASSERT_TRUE(load(u"Park()\nInfo(\"old\")"));
            owner.onStep = nullptr;
            pump.onYield = nullptr;
            if (inYield)
                pump.onYield = [&] { loadOnce(); };
            else
                owner.onStep = [&](std::int32_t, std::int32_t) { loadOnce(); };
            EXPECT_EQ(errorOf([&] { engine.ExecuteList(); }), 9);
            EXPECT_FALSE(engine.isRunning());
        }
    }
}

TEST_F(LoadDuringRun, AFailedStatementIsStillNamedByTheOldScript) {
    watch();
    owner.onEvent = [&](Event& event) {
        if (event.id() != HostEvent::Park) return;
        loadOnce();
        event.succeed(false);
    };
    next = u"SaveData()\nSaveData()";
    ASSERT_TRUE(load(u"Park()\nPark()"));
    owner.lines.clear();
    EXPECT_TRUE(engine.ExecuteList());
    EXPECT_EQ(owner.lines,
              Lines({"4 Running Command: 0 - Park", "listener: CommandStart(0)", "Park()",
                     "4 ERROR (ExecuteList) - Command Failed: Address 0 - Park", "listener: CommandError(0, 1)",
                     "CommandComplete(1, 1)", "listener: CommandComplete(1, 1)", "4 ExecuteList Result: True",
                     "listener: ScriptComplete(True)"}));
}

TEST_F(LoadDuringRun, AfterTheLastStatementDoesNotProlongTheRun) {
    pump.onYield = [&] { loadOnce(); };
    EXPECT_EQ(runAndLoad(u"Park()", u"SaveData()\nSaveData()"), Lines({"Park()"}));
}

TEST_F(LoadDuringRun, InTheLastStatementALongerScriptGoesOn) {
    owner.onEvent = [&](Event& event) {
        if (event.id() == HostEvent::Park) loadOnce();
    };
    EXPECT_EQ(runAndLoad(u"Park()", u"TareWeight()\nSaveData()"), Lines({"Park()", "SaveData()"}));
}

TEST_F(LoadDuringRun, AJumpOfTheOldScriptLandsInTheNew) {
    owner.onEvent = [&](Event&) { loadOnce(); };
    EXPECT_EQ(runAndLoad(u"Goto(L)\nInfo(\"old\")\nL:\nInfo(\"old\")", u"TareWeight()\nPark()\nSaveData()"),
              Lines({"SaveData()"}));
    EXPECT_EQ(runAndLoad(u"Call(L)\nInfo(\"old\")\nL:\nInfo(\"old\")", u"TareWeight()\nPark()\nReturn"),
              Lines({"Park()"}));
}

TEST_F(LoadDuringRun, AFailedLoadLeavesWhatItHasBuilt) {
    owner.onEvent = [&](Event& event) {
        if (event.id() != HostEvent::Park || loaded) return;
        loaded = true;
        EXPECT_FALSE(load(u"TareWeight()\nSaveData()\nnonsense\nEndTest()"));
    };
    EXPECT_EQ(runAndLoad(u"Park()\nInfo(\"old\")", u""), Lines({"Park()", "SaveData()"}));
}

TEST_F(LoadDuringRun, TheItemsOfTheNewScriptAreNotResetBeforeTheNextRun) {
    owner.onEvent = [&](Event& event) {
        if (event.id() == HostEvent::Park) loadOnce();
    };
    const std::u16string_view fresh = u"VAR X = 5\nTareWeight()\nIncrement(X)\nInfo(\"text\")";
    EXPECT_EQ(runAndLoad(u"Park()", fresh), Lines({"Park()", "VariableAdded(\"X\", \"5\")", "Info(\"0\")"}));
    EXPECT_EQ(current(u"X"), "i1");
    owner.onEvent = nullptr;
    owner.lines.clear();
    EXPECT_TRUE(engine.ExecuteList());
    EXPECT_EQ(owner.lines, Lines({"TareWeight()", "Info(\"text\")"}));
    EXPECT_EQ(current(u"X"), "s6");
}

TEST_F(LoadDuringRun, AnAnswerIsStoredInTheOldScriptsItem) {
    testing::RecordingListener listener;
    engine.setListener(&listener);
    owner.onEvent = [&](Event& event) {
        if (event.id() != HostEvent::MathsFunction) return;
        loadOnce();
        event.answer("tReturn", Value::ofSingle(42));
    };
    runAndLoad(u"VAR Old\nMathsFunction(\"a long name of a function\", Old, 1, 2, 3, 4)", u"VAR Fresh = 1");
    EXPECT_EQ(listener.lines, Lines({"CommandStart(0)", "CurrentValueChanged(Old, s42)", "CommandComplete(1, 0)",
                                     "ScriptComplete(True)"}));
    EXPECT_EQ(current(u"Fresh"), "i0");
    std::int32_t position = 0;
    EXPECT_FALSE(engine.DataMemory().FindItem(u"Old", position));
}

TEST_F(LoadDuringRun, OldTextsLiveUntilTheStatementEnds) {
    owner.onEvent = [&](Event& event) {
        if (event.id() == HostEvent::InputString) {
            loadOnce();
            event.answer("tDLLExecute", Value::ofBoolean(true));
        }
    };
    dialogs.inputAnswers = {
        {Value::ofText(u"an answer that is longer than any short text"), InputAnswer::Ending::Accepted}};
    runAndLoad(
        u"VAR S = \"a text that is longer than any short text\"\nInputString(\"a question, long enough\", S, 100)",
        u"Park()\nPark()");
    ASSERT_EQ(dialogs.inputs.size(), 1u);
    EXPECT_EQ(dialogs.inputs[0].question, "a question, long enough");
    EXPECT_EQ(dialogs.inputs[0].initialValue, "\"a text that is longer than any short text\"");
}

TEST_F(LoadDuringRun, MayHappenSeveralTimesInOneStatement) {
    int loads = 0;
    owner.onEvent = [&](Event& event) {
        if (event.id() != HostEvent::Info) return;
        for (int i = 0; i < 5; ++i)
            EXPECT_TRUE(load(u"Info(\"again\")\nInfo(\"a text that is longer than any short text\")"));
        loads += 5;
    };
    EXPECT_TRUE(run(u"Info(\"first\")\nInfo(\"never\")"));
    EXPECT_EQ(loads, 10);
    EXPECT_EQ(owner.lines, Lines({"Info(\"first\")", "Info(\"0\")"}));
}

TEST_F(LoadDuringRun, IsSafeInAStatementExecutedAlone) {
    ASSERT_TRUE(load(u"Goto(L)\nInfo(\"a\")\nL:"));
    engine.DataMemory().InitialiseData();
    next = u"Park()";
    owner.onEvent = [&](Event&) { loadOnce(); };
    std::int32_t address = 0;
    EXPECT_EQ(engine.ExecuteCommand(engine.Command(1), address), crJump);
    EXPECT_EQ(address, 2);
    EXPECT_EQ(engine.commandCount(), 1);
}

TEST_F(LoadDuringRun, AStatementMayExecuteAnotherAndLoadInBetween) {
    ASSERT_TRUE(load(u"Park()\nInfo(\"a text that is longer than any short text\")"));
    owner.onEvent = [&](Event& event) {
        if (event.id() == HostEvent::Park) {
            std::int32_t address = 0;
            EXPECT_EQ(engine.ExecuteCommand(engine.Command(2), address), crNext);
        } else if (event.id() == HostEvent::Info && !loaded) {
            loaded = true;
            EXPECT_TRUE(load(u"TareWeight()\nSaveData()"));
        }
    };
    EXPECT_TRUE(engine.ExecuteList());
    EXPECT_EQ(owner.lines, Lines({"Park()", "Info(\"a text that is longer than any short text\")", "SaveData()"}));
}

TEST_F(LoadDuringRun, AStatementThatExecutedAnotherIsStillNamedByItsScript) {
    testing::RecordingTrace running;
    engine.setTraceSink(&running);
    ASSERT_TRUE(load(u"Park()\nInfo(\"a\")"));
    next = u"TareWeight()\nSaveData()";
    owner.onEvent = [&](Event& event) {
        if (event.id() == HostEvent::Info) loadOnce();
        if (event.id() != HostEvent::Park) return;
        std::int32_t address = 0;
        EXPECT_EQ(engine.ExecuteCommand(engine.Command(2), address), crNext);
        event.succeed(false);
    };
    EXPECT_TRUE(engine.ExecuteList());
    EXPECT_TRUE(std::count(running.lines.begin(), running.lines.end(),
                           "4 ERROR (ExecuteList) - Command Failed: Address 0 - Park") == 1);
}

TEST_F(LoadDuringRun, LeavesNothingOfTheOldScriptsBehind) {
    owner.onEvent = [&](Event& event) {
        if (event.id() == HostEvent::Park) loadOnce();
    };
    const auto livingAfterARun = [&] {
        runAndLoad(u"Park()\nPark()", u"SaveData()\nSaveData()");
        owner.lines = Lines();
        return test::livingAllocations();
    };
    const std::size_t living = livingAfterARun();
    EXPECT_EQ(livingAfterARun(), living);
    EXPECT_EQ(livingAfterARun(), living);
}

TEST_F(LoadDuringRun, AnExceptionBehindTheLoadLeavesTheNewScript) {
    owner.onEvent = [&](Event& event) {
        if (event.id() != HostEvent::Park) return;
        loadOnce();
        throw std::runtime_error("the host's own");
    };
    next = u"SaveData()";
    ASSERT_TRUE(load(u"Park()\nPark()"));
    EXPECT_THROW(engine.ExecuteList(), std::runtime_error);
    EXPECT_EQ(engine.commandCount(), 1);
    owner.lines.clear();
    EXPECT_TRUE(engine.ExecuteList());
    EXPECT_EQ(owner.lines, Lines({"SaveData()"}));
}

TEST_F(LoadDuringRun, AfterTheRunHasEndedIsAnOrdinaryLoad) {
    engine.setListener(&log);
    log.onEnd = [&] { loadOnce(); };
    runAndLoad(u"Park()", u"SaveData()\nSaveData()");
    EXPECT_EQ(engine.commandCount(), 2);
}

}  // namespace
}  // namespace corvane
