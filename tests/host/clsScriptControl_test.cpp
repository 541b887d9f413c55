#include "host/clsScriptControl.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "engine/trace.h"
#include "tests/platform/expect_automation_error.h"
#include "tests/platform/temporary_folder.h"
#include "tests/support/engine_fixture.h"

namespace corvane::testing {
namespace {

using Lines = std::vector<std::string>;

class ScriptControl : public ::testing::Test {
protected:
    NumberLocale numbers = NumberLocale::pointDecimal();
    RecordingOwner host;
    ScriptedDialogs dialogs;
    CountingPump pump;
    EngineServices services{dialogs, pump, &numbers};
    clsScriptControl control{services};

    void SetUp() override { control.setEventSink(&host); }
    void TearDown() override {
        BuildFunctionCatalogue();
        setDebugOptions(0);
    }

    bool load(std::u16string_view script) { return control.LoadScript_FromScript(script, u"name", 1, 1); }
    bool run(std::u16string_view script) {
        EXPECT_TRUE(load(script));
        host.lines.clear();
        return control.RunScript();
    }
    clsData item(std::int32_t position) { return control.engine().DataMemory().Item(position); }

    /// The side of a facade that its engine sees.
    static EngineOwner& engineSide(clsScriptControl& facade) { return (EngineOwner&)facade; }
};

// Creation and loading

TEST_F(ScriptControl, BeforeAnyLoadNothingIsNamed) {
    EXPECT_EQ(control.ScriptFrom(), ssFromDataBase);
    EXPECT_EQ(control.ScriptFile(), u"");
    EXPECT_EQ(control.ScriptDB_UID(), 0);
    EXPECT_EQ(control.ScriptDB_Version(), 0);
    EXPECT_EQ(control.GetEnvironmentVariable(u"FINISH_LOOP_FLAG"), u"");
    EXPECT_EQ(control.GetConstant(u"x"), u"");
    EXPECT_EQ(show(control.GetMemoryValue(u"x")), "\"\"");
}

TEST_F(ScriptControl, BeforeAnyLoadARunAndTheFinishLoopFlagFail) {
    EXPECT_EQ(errorOf([&] { control.RunScript(); }), 9);
    EXPECT_EQ(errorOf([&] { control.FinishLoopFlag(); }), 91);
    EXPECT_EQ(errorOf([&] { control.EditDataVariable(0, 1); }), 5);
}

TEST_F(ScriptControl, EveryCreationBuildsTheCatalogueAnew) {
    SetFunctionDefinition(ctPark, u"Stop", 3, u"");
    EXPECT_EQ(FunctionTypeFromName(u"Park"), 0);
    const clsScriptControl another(services);
    EXPECT_EQ(FunctionTypeFromName(u"Park"), ctPark);
    EXPECT_EQ(functionDefinition(ctPark).ParamCount, 0);
}

TEST_F(ScriptControl, TheCatalogueMayBeBuiltAnewWhileAFaultIsTold) {
    struct Maker final : OperatorDialogs, FaultListener {
        explicit Maker(MessagePump& pump) : services{*this, pump} {}
        EngineServices services;
        int faults = 0;
        void makeAnother() {
            ++faults;
            const clsScriptControl another(services);
        }
        std::optional<std::int32_t> showMessage(const OperatorMessage&) override {
            makeAnother();
            return std::nullopt;
        }
        InputAnswer askInput(const InputRequest& request) override {
            return {request.initialValue, InputAnswer::Ending::Unavailable};
        }
        void fault(const ScriptFault&) override { makeAnother(); }
    } maker(pump);
    clsScriptControl made(maker.services);
    SetFunctionDefinition(ctPark, u"Stop", 0, u"");
    EXPECT_FALSE(made.LoadScript_FromScript(u"Set(\"text\", nowhere)", u"name", 1, 1));
    EXPECT_EQ(maker.faults, 1);
    SetFunctionDefinition(ctPark, u"Stop", 0, u"");
    EXPECT_FALSE(made.engine().CheckCommandList(u"Set(\"text\", nowhere)", maker));
    EXPECT_EQ(maker.faults, 3);
}

TEST_F(ScriptControl, ScriptFromIsInvertedAgainstItsNames) {
    struct Row {
        std::int32_t uid;
        enumScriptSource from;
    };
    for (const Row& row : {Row{1, ssFromFile}, Row{7, ssFromFile}, Row{2147483647, ssFromFile}, Row{0, ssFromDataBase},
                           Row{-1, ssFromDataBase}, Row{-2147483647, ssFromDataBase}}) {
        EXPECT_TRUE(control.LoadScript_FromScript(u"Park()", u"Daily check", row.uid, row.uid == 7 ? 12 : 3));
        EXPECT_EQ(control.ScriptFrom(), row.from) << row.uid;
        EXPECT_EQ(control.ScriptDB_UID(), row.uid);
        EXPECT_EQ(control.ScriptDB_Version(), row.uid == 7 ? 12 : 3);
        EXPECT_EQ(control.ScriptFile(), u"Daily check");
    }
}

TEST_F(ScriptControl, AnswersWhetherAScriptIsAccepted) {
    EXPECT_TRUE(load(u""));
    EXPECT_TRUE(load(u"Park()"));
    EXPECT_FALSE(load(u"Park(1)"));
    EXPECT_FALSE(load(u"Goto(Nowhere)"));
    EXPECT_EQ(dialogs.messages.size(), 2U) << "the first error of each is shown";
}

TEST_F(ScriptControl, KeepsTheNamesOfALoadThatFailed) {
    EXPECT_TRUE(control.LoadScript_FromScript(u"Park()", u"good", 1, 2));
    EXPECT_FALSE(control.LoadScript_FromScript(u"nonsense", u"bad", 3, 4));
    EXPECT_EQ(control.ScriptFile(), u"bad");
    EXPECT_EQ(control.ScriptDB_UID(), 3);
    EXPECT_EQ(control.ScriptDB_Version(), 4);
}

TEST_F(ScriptControl, ANewLoadReplacesStatementsAndMemory) {
    EXPECT_TRUE(load(u"CONST Old = 1\nPark()"));
    EXPECT_TRUE(load(u"CONST New = 2\nEndTest()"));
    host.lines.clear();
    EXPECT_TRUE(control.RunScript());
    EXPECT_EQ(host.lines, (Lines{"EndTest()", "KeepGoing()"}));
    EXPECT_EQ(control.GetConstant(u"Old"), u"");
    EXPECT_EQ(control.GetConstant(u"New"), u"2");
}

TEST_F(ScriptControl, TestModeHasNoEffect) {
    control.setTestMode(true);
    EXPECT_TRUE(run(u"Park()"));
    EXPECT_EQ(host.lines, (Lines{"Park()", "KeepGoing()"}));
}

TEST_F(ScriptControl, DebugModeIsOneWordForTheThread) {
    clsScriptControl other(services);
    RecordingTrace trace;
    other.engine().setTraceSink(&trace);
    control.setDebugMode(doParsing | doTables);
    EXPECT_EQ(debugOptions(), doParsing | doTables);
    EXPECT_TRUE(other.LoadScript_FromScript(u"MoveIntoVessel(5)", u"", 0, 0));
    EXPECT_EQ(std::count(trace.lines.begin(), trace.lines.end(), "1             Data: 5"), 1);
    trace.lines.clear();
    other.setDebugMode(0);
    EXPECT_TRUE(other.LoadScript_FromScript(u"MoveIntoVessel(5)", u"", 0, 0));
    EXPECT_EQ(std::count(trace.lines.begin(), trace.lines.end(), "1             Data: 5"), 0);
}

TEST_F(ScriptControl, NamesAStatementKind) {
    struct Row {
        std::int32_t kind;
        const char16_t* name;
    };
    for (const Row& row :
         {Row{0, u"Unknown"}, Row{1, u"Declare Environment Variable"}, Row{2, u"Declare Variable"},
          Row{3, u"Declare Constant"}, Row{12, u"Set"}, Row{50, u"AerationControl"}, Row{51, u"PressureControl"},
          Row{52, u"BlockStart"}, Row{53, u"Function not recognised"}, Row{-1, u"Function not recognised"}})
        EXPECT_EQ(control.FunctionNameFromType(row.kind), row.name) << row.kind;
}

// Files

class ScriptControlFile : public ScriptControl {
protected:
    TemporaryFolder folder;
};

TEST_F(ScriptControlFile, IsLoadedWhole) {
    const auto path = folder.write("a.script", "VAR S = \" a|b\"\r\nMsgInfo(S)\nPark()\r");
    EXPECT_TRUE(control.LoadScript_FromFile(path.u16string()));
    EXPECT_EQ(control.ScriptFile(), path.u16string());
    EXPECT_EQ(control.ScriptDB_UID(), -1);
    EXPECT_EQ(control.ScriptDB_Version(), -1);
    EXPECT_EQ(control.ScriptFrom(), ssFromDataBase);
    EXPECT_EQ(show(control.GetMemoryValue(u"S")), "\" a\r\nb\"");
    EXPECT_TRUE(control.RunScript());
    EXPECT_EQ(control.engine().commandCount(), 2);
}

TEST_F(ScriptControlFile, ThatDoesNotExistIsCreatedEmptyAndAccepted) {
    const auto path = folder.path("new.script");
    EXPECT_TRUE(control.LoadScript_FromFile(path.u16string()));
    EXPECT_TRUE(std::filesystem::is_regular_file(path));
    EXPECT_EQ(std::filesystem::file_size(path), 0U);
    EXPECT_EQ(control.ScriptDB_UID(), -1);
    EXPECT_EQ(control.ScriptDB_Version(), -1);
    EXPECT_EQ(control.ScriptFrom(), ssFromDataBase);
    EXPECT_EQ(control.engine().commandCount(), 0);
    EXPECT_EQ(errorOf([&] { control.RunScript(); }), 9) << "an empty script has no first statement";
}

TEST_F(ScriptControlFile, ThatIsRejectedAnswersFalse) {
    EXPECT_FALSE(control.LoadScript_FromFile(folder.write("bad.script", "nonsense").u16string()));
    ASSERT_EQ(dialogs.messages.size(), 1U);
    EXPECT_EQ(dialogs.messages[0].caption, "Syntax Error on Line 0");
}

TEST_F(ScriptControlFile, ThatCannotBeReadIsAnErrorThatNamesItAndLeavesTheScript) {
    ASSERT_TRUE(load(u"Park()"));
    struct Row {
        std::filesystem::path path;
        ErrorNumber error;
        std::string named;
    };
    for (const Row& row : {Row{folder.path("nowhere/a.script"), ErrorNumber::PathNotFound, "a.script"},
                           Row{folder.path(""), ErrorNumber::PathFileAccess, "corvane_ScriptControlFile"},
                           Row{{}, ErrorNumber::BadFileName, "''"}}) {
        expectAutomationError([&] { control.LoadScript_FromFile(row.path.u16string()); }, row.error, row.named);
        EXPECT_EQ(control.ScriptFile(), row.path.u16string()) << "the names are those of the last call";
        EXPECT_EQ(control.ScriptDB_UID(), -1);
        EXPECT_EQ(control.ScriptDB_Version(), -1);
    }
    host.lines.clear();
    EXPECT_TRUE(control.RunScript());
    EXPECT_EQ(host.lines, (Lines{"Park()", "KeepGoing()"}));
}

// Memory

constexpr std::u16string_view memoryScript =
    u"VAR Count = 3\nCONST Limit = 10.5\nCONST Title = \"Run|Two\"\nENV Operator = \"Ann\"\nVAR Empty\n"
    u"Here:\nIncrement(Count)\nEnd:";

TEST_F(ScriptControl, GivesInitialValuesByKind) {
    ASSERT_TRUE(load(memoryScript));
    EXPECT_EQ(control.GetConstant(u"Limit"), u"10.5");
    EXPECT_EQ(control.GetConstant(u"LIMIT"), u"10.5");
    EXPECT_EQ(control.GetConstant(u"Title"), u"Run\r\nTwo");
    EXPECT_EQ(control.GetEnvironmentVariable(u"operator"), u"\"Ann\"");
    EXPECT_EQ(control.GetEnvironmentVariable(u"FINISH_LOOP_FLAG"), u"0");
    EXPECT_EQ(show(control.GetMemoryValue(u"Count")), "s3");
    EXPECT_EQ(show(control.GetMemoryValue(u"Limit")), "s10.5");
    EXPECT_EQ(show(control.GetMemoryValue(u"Title")), "\"Run\r\nTwo\"");
    EXPECT_EQ(show(control.GetMemoryValue(u"Operator")), "\"\"Ann\"\"");
    EXPECT_EQ(show(control.GetMemoryValue(u"Empty")), "i0");
    EXPECT_EQ(show(control.GetMemoryValue(u"End")), "l1");
    EXPECT_EQ(show(control.GetMemoryValue(u"FINISH_LOOP_FLAG")), "i0");
}

TEST_F(ScriptControl, LooksNoFurtherThanTheKindThatIsAskedFor) {
    ASSERT_TRUE(load(memoryScript));
    EXPECT_EQ(control.GetConstant(u"Count"), u"");
    EXPECT_EQ(control.GetConstant(u"Operator"), u"");
    EXPECT_EQ(control.GetConstant(u"Here"), u"");
    EXPECT_EQ(control.GetEnvironmentVariable(u"Limit"), u"");
    EXPECT_EQ(control.GetEnvironmentVariable(u"Count"), u"");
    EXPECT_EQ(show(control.GetMemoryValue(u"Nothing")), "\"\"");
}

TEST_F(ScriptControl, TheEmptyNameFindsTheFirstLiteral) {
    ASSERT_TRUE(load(u"VAR A = 1\nWaitTime(2.5, \"x\")\nMoveIntoVessel(7)"));
    EXPECT_EQ(control.GetConstant(u""), u"2.5");
    EXPECT_EQ(show(control.GetMemoryValue(u"")), "s2.5");
}

TEST_F(ScriptControl, GivesInitialNotCurrentValues) {
    ASSERT_TRUE(load(memoryScript));
    EXPECT_TRUE(control.RunScript());
    EXPECT_EQ(show(item(1).CurrentValue()), "s4");
    EXPECT_EQ(show(control.GetMemoryValue(u"Count")), "s3");
    control.FinishLoopFlag();
    EXPECT_EQ(control.GetEnvironmentVariable(u"FINISH_LOOP_FLAG"), u"0");
}

TEST_F(ScriptControl, WritesNumbersInTheUsersForm) {
    numbers = NumberLocale::commaDecimal();
    ASSERT_TRUE(load(memoryScript));
    EXPECT_EQ(control.GetConstant(u"Limit"), u"10,5");
    EXPECT_EQ(host.lines.at(1), "ConstantAdded(\"Limit\", \"10,5\")");
}

// Editing

TEST_F(ScriptControl, WithoutEditableItemsTheTableStaysAsItWas) {
    ASSERT_TRUE(load(memoryScript));
    StringTable table(1, 2);
    table.at(0, 1) = u"kept";
    for (const std::int32_t editable : {0, -3}) {
        control.engine().DataMemory().setEditableCount(editable);
        std::int32_t count = 77;
        control.GetEditable(table, count);
        EXPECT_EQ(count, editable);
        EXPECT_EQ(table.rows(), 1);
        EXPECT_EQ(table.columns(), 2);
        EXPECT_EQ(table.at(0, 1), u"kept");
    }
}

/// Two editable items: Count at 1 and Title at 3.
class Editing : public ScriptControl {
protected:
    StringTable table{9, 9};
    std::int32_t count = 77;

    void SetUp() override {
        ScriptControl::SetUp();
        ASSERT_TRUE(load(memoryScript));
        clsData number = item(1);
        number.setIsEditable(true);
        number.setMinVal(-0.5F);
        number.setMaxVal(1e20F);
        number.setUnits(u"mm");
        number.setPromptString(u"How high?");
        clsData title = item(3);
        title.setIsEditable(true);
        title.setUnits(u"text");
        control.engine().DataMemory().setEditableCount(2);
    }
    Lines row(std::int32_t r) const {
        Lines cells;
        for (std::int32_t c = 0; c < table.columns(); ++c) cells.push_back(toUtf8(table.at(r, c)));
        return cells;
    }
};

TEST_F(Editing, EachEditableItemIsARowOfSixFields) {
    control.GetEditable(table, count);
    EXPECT_EQ(count, 2);
    ASSERT_EQ(table.rows(), 2);
    ASSERT_EQ(table.columns(), 6);
    EXPECT_EQ(row(0), (Lines{"1", "3", "-0.5", "1E+20", "mm", "How high?"}));
    EXPECT_EQ(row(1), (Lines{"3", "Run\r\nTwo", "0", "0", "text", ""}));
}

TEST_F(Editing, NumbersOfTheRowsAreInTheUsersForm) {
    numbers = NumberLocale::commaDecimal();
    control.GetEditable(table, count);
    EXPECT_EQ(row(0)[2], "-0,5");
}

TEST_F(Editing, ACountBeyondTheEditableItemsLeavesEmptyRows) {
    control.engine().DataMemory().setEditableCount(4);
    control.GetEditable(table, count);
    EXPECT_EQ(count, 4);
    ASSERT_EQ(table.rows(), 4);
    EXPECT_EQ(row(1)[0], "3");
    EXPECT_EQ(row(2), (Lines{"", "", "", "", "", ""}));
    EXPECT_EQ(row(3), (Lines{"", "", "", "", "", ""}));
}

TEST_F(Editing, ACountBelowTheEditableItemsIsError9) {
    control.engine().DataMemory().setEditableCount(1);
    EXPECT_EQ(errorOf([&] { control.GetEditable(table, count); }), 9);
    EXPECT_EQ(count, 77);
    ASSERT_EQ(table.rows(), 1);
    EXPECT_EQ(row(0)[0], "1");
}

TEST_F(Editing, SetsInitialAndCurrentValueOfAnyItem) {
    EXPECT_TRUE(control.EditDataVariable(1, 8.5F));
    EXPECT_TRUE(control.EditDataVariable(2, 9));
    EXPECT_TRUE(control.EditDataVariable(3, 1e20F)) << "neither limits nor types are checked";
    EXPECT_TRUE(control.EditDataVariable(4, 5));
    EXPECT_EQ(show(item(1).InitialValue()), "s8.5");
    EXPECT_EQ(show(item(1).CurrentValue()), "s8.5");
    EXPECT_EQ(show(control.GetMemoryValue(u"Count")), "s8.5");
    EXPECT_EQ(control.GetConstant(u"Limit"), u"9");
    EXPECT_EQ(control.GetConstant(u"Title"), u"1E+20");
    EXPECT_EQ(control.GetEnvironmentVariable(u"Operator"), u"5");
    control.GetEditable(table, count);
    EXPECT_EQ(row(0)[1], "8.5");
    EXPECT_EQ(row(1)[1], "1E+20");
}

TEST_F(Editing, AnEditSurvivesTheResetBeforeARun) {
    EXPECT_TRUE(control.EditDataVariable(1, 8));
    EXPECT_TRUE(control.RunScript());
    EXPECT_EQ(show(item(1).CurrentValue()), "s9");
    EXPECT_TRUE(control.RunScript());
    EXPECT_EQ(show(item(1).CurrentValue()), "s9");
}

TEST_F(Editing, OutsideTheMemoryIsError5) {
    const std::int32_t end = control.engine().DataMemory().Count();
    EXPECT_EQ(errorOf([&] { control.EditDataVariable(-1, 1); }), 5);
    EXPECT_EQ(errorOf([&] { control.EditDataVariable(end, 1); }), 5);
    EXPECT_EQ(errorOf([&] { control.EditDataVariable(end - 1, 1); }), 0);
}

TEST_F(ScriptControl, AHostMayStoreTheAnswerOfAQuestionThatItAskedItself) {
    ASSERT_TRUE(load(u"VAR N = 5\nInputNumber(\"?\", N, 1, 9)\nMoveIntoVessel(N)"));
    host.onEvent = [&](Event& event) {
        if (event.id() != HostEvent::InputNumber) return;
        event.answer("tDLLExecute", Value::ofBoolean(false));
        control.EditDataVariable(1, 7);
    };
    host.lines.clear();
    EXPECT_TRUE(control.RunScript());
    EXPECT_EQ(host.lines.at(2), "MoveIntoVessel(s7)");
}

TEST(StringTable, RefusesACellOutside) {
    StringTable table(2, 3);
    table.at(1, 2) = u"last";
    EXPECT_EQ(table.at(1, 2), u"last");
    EXPECT_EQ(table.at(1, 1), u"");
    for (const auto& [row, column] : {std::pair(-1, 0), std::pair(2, 0), std::pair(0, -1), std::pair(0, 3)})
        EXPECT_EQ(errorOf([&, r = row, c = column] { table.at(r, c); }), 9) << row << ", " << column;
    EXPECT_EQ(errorOf([] { StringTable().at(0, 0); }), 9);
}

// KeepGoing

TEST_F(ScriptControl, AsksKeepGoingOnceAStatement) {
    EXPECT_TRUE(run(u"Park()\nInfo(\"a\")\nReturn()"));
    EXPECT_EQ(host.lines, (Lines{"Park()", "KeepGoing()", "Info(\"a\")", "KeepGoing()", "KeepGoing()"}));
    EXPECT_EQ(pump.yields, 3);
}

TEST_F(ScriptControl, AHostThatIgnoresKeepGoingStopsEachRunAfterItsFirstStatement) {
    host.onEvent = [](Event& event) {
        if (event.id() == HostEvent::KeepGoing) event.succeed(false);
    };
    EXPECT_FALSE(run(u"Park()\nEndTest()"));
    EXPECT_EQ(host.lines, (Lines{"Park()", "KeepGoing()"}));
    EXPECT_FALSE(control.RunScript());
    EXPECT_EQ(host.lines.size(), 4U) << "the next run begins with its first statement again";
}

TEST_F(ScriptControl, KeepGoingStartsUnanswered) {
    std::vector<bool> found;
    class Sink final : public EventSink {
    public:
        std::vector<bool>& success;
        explicit Sink(std::vector<bool>& list) : success(list) {}
        void raise(Event& event) override {
            if (event.id() == HostEvent::KeepGoing) success.push_back(event.succeeded());
            event.succeed();
        }
    } sink(found);
    control.setEventSink(&sink);
    EXPECT_TRUE(run(u"Park()\nPark()\nPark()"));
    EXPECT_EQ(found, (std::vector<bool>{false, false, false}));
}

TEST_F(ScriptControl, KeepGoingAnsweredFalseOnTheLastStatementStillCountsAsStopped) {
    int asked = 0;
    host.onEvent = [&](Event& event) {
        if (event.id() == HostEvent::KeepGoing) event.succeed(++asked != 2);
    };
    EXPECT_FALSE(run(u"Park()\nEndTest()"));
    EXPECT_EQ(host.lines, (Lines{"Park()", "KeepGoing()", "EndTest()", "KeepGoing()"}));
}

TEST_F(ScriptControl, KeepGoingIsAskedAfterAFailedStatementToo) {
    host.onEvent = [](Event& event) {
        if (event.id() == HostEvent::Park) event.succeed(false);
    };
    EXPECT_TRUE(run(u"Park()\nEndTest()")) << "a failed statement is not a false result";
    EXPECT_EQ(host.lines, (Lines{"Park()", "KeepGoing()"}));
}

TEST_F(ScriptControl, WithoutASinkLoadsWorkAndRunsStopAfterTheFirstStatement) {
    control.setEventSink(nullptr);
    EXPECT_TRUE(load(u"VAR N = 1\nIncrement(N)\nIncrement(N)"));
    EXPECT_FALSE(control.RunScript());
    EXPECT_EQ(show(item(1).CurrentValue()), "s2");
    EXPECT_TRUE(load(u"Park()"));
    EXPECT_FALSE(control.RunScript());
}

TEST_F(ScriptControl, WithoutASinkTheComponentAsksTheOperatorItself) {
    control.setEventSink(nullptr);
    dialogs.inputAnswers = {{Value::ofSingle(4), InputAnswer::Ending::Accepted}};
    EXPECT_TRUE(load(u"VAR N = 1\nInputNumber(\"?\", N, 0, 9)"));
    EXPECT_FALSE(control.RunScript());
    EXPECT_EQ(show(item(1).CurrentValue()), "s4");
}

// Calls from inside events

TEST_F(ScriptControl, ALoadInsideARunningScriptGoesOnByPositionInTheNewOne) {
    ASSERT_TRUE(load(u"VAR N = 1\nMoveIntoVessel(N)\nPark()\nSaveData()"));
    host.onEvent = [&](Event& event) {
        if (event.id() != HostEvent::MoveIntoVessel) return;
        EXPECT_TRUE(control.LoadScript_FromScript(u"EndTest()\nTareWeight()", u"other", 5, 6));
        EXPECT_EQ(show(event.argument(0)), "s1") << "the old statement's values live on";
    };
    host.lines.clear();
    EXPECT_TRUE(control.RunScript());
    EXPECT_EQ(host.lines, (Lines{"MoveIntoVessel(s1)", "KeepGoing()", "TareWeight()", "KeepGoing()"}));
    EXPECT_EQ(control.ScriptDB_UID(), 5);
}

TEST_F(ScriptControl, ALoadInsideKeepGoingAndInsideTheYieldIsSafe) {
    ASSERT_TRUE(load(u"Park()\nPark()\nPark()"));
    int asked = 0;
    host.onEvent = [&](Event& event) {
        if (event.id() != HostEvent::KeepGoing || ++asked != 1) return;
        EXPECT_TRUE(load(u"EndTest()\nSaveData()\nSaveData()"));
    };
    pump.onYield = [&] {
        if (pump.yields != 2) return;
        EXPECT_TRUE(load(u"EndTest()\nEndTest()\nTareWeight()"));
    };
    host.lines.clear();
    EXPECT_TRUE(control.RunScript());
    EXPECT_EQ(host.lines, (Lines{"Park()", "KeepGoing()", "SaveData()", "KeepGoing()", "TareWeight()", "KeepGoing()"}));
}

TEST_F(ScriptControl, ALoadOfAShorterScriptInsideARunEndsItOnTheFetch) {
    ASSERT_TRUE(load(u"Park()\nPark()\nPark()"));
    pump.onYield = [&] { EXPECT_TRUE(load(u"EndTest()")); };
    EXPECT_EQ(errorOf([&] { control.RunScript(); }), 9);
}

TEST_F(ScriptControl, ALoadInsideAnEventOfALoadIsError5) {
    int error = 0;
    host.onEvent = [&](Event& event) {
        if (event.id() == HostEvent::VariableAdded) error = errorOf([&] { load(u"Park()"); });
    };
    EXPECT_TRUE(load(u"VAR N = 1\nEndTest()"));
    EXPECT_EQ(error, 5);
    host.lines.clear();
    EXPECT_TRUE(control.RunScript());
    EXPECT_EQ(host.lines, (Lines{"EndTest()", "KeepGoing()"})) << "the outer load is untouched";
}

TEST_F(ScriptControl, ARunInsideARunIsError5AndTheOuterOneGoesOn) {
    int error = 0;
    host.onEvent = [&](Event& event) {
        if (event.id() == HostEvent::Park) error = errorOf([&] { control.RunScript(); });
    };
    EXPECT_TRUE(run(u"Park()\nEndTest()"));
    EXPECT_EQ(error, 5);
    EXPECT_EQ(host.lines, (Lines{"Park()", "KeepGoing()", "EndTest()", "KeepGoing()"}));
}

TEST_F(ScriptControl, ARunInsideARunSaysWhyItIsRefused) {
    host.onEvent = [&](Event& event) {
        if (event.id() == HostEvent::Park)
            expectAutomationError([&] { control.RunScript(); }, ErrorNumber::InvalidProcedureCall, "running");
    };
    EXPECT_TRUE(run(u"Park()"));
}

TEST_F(ScriptControl, ARunInsideAnEventOfALoadRunsWhatIsThere) {
    bool result = false;
    host.onEvent = [&](Event& event) {
        if (event.id() == HostEvent::ConstantAdded) result = control.RunScript();
    };
    EXPECT_TRUE(load(u"Park()\nCONST C = 1\nEndTest()"));
    EXPECT_TRUE(result);
    EXPECT_EQ(host.lines, (Lines{"ConstantAdded(\"C\", \"1\")", "Park()", "KeepGoing()"}));
}

TEST_F(ScriptControl, OneHostMayRunTwoControlsInsideEachOther) {
    clsScriptControl inner(services);
    RecordingOwner innerHost;
    inner.setEventSink(&innerHost);
    ASSERT_TRUE(inner.LoadScript_FromScript(u"EndTest()", u"", 0, 0));
    host.onEvent = [&](Event& event) {
        if (event.id() == HostEvent::Park) event.succeed(inner.RunScript());
    };
    EXPECT_TRUE(run(u"Park()\nSaveData()"));
    EXPECT_EQ(innerHost.lines, (Lines{"EndTest()", "KeepGoing()"}));
    EXPECT_EQ(host.lines.size(), 4U);
}

TEST_F(ScriptControl, FinishLoopFlagInsideAnEventEndsTheLoopOfTheDesignedForm) {
    clsScriptControl designed(services, {.designedMemberAccess = true});
    designed.setEventSink(&host);
    ASSERT_TRUE(designed.LoadScript_FromScript(u"Again:\nTareWeight()\nIfNotFinishLoopFlag(\"Stop?\", Again)\nPark()",
                                               u"", 0, 0));
    int rounds = 0;
    host.onEvent = [&](Event& event) {
        if (event.id() == HostEvent::TareWeight && ++rounds == 2) designed.FinishLoopFlag();
    };
    EXPECT_TRUE(designed.RunScript());
    EXPECT_EQ(std::count(host.lines.begin(), host.lines.end(), "TareWeight()"), 2);
    EXPECT_EQ(std::count(host.lines.begin(), host.lines.end(), "RequiredFinishLoopFlag(\"Stop?\")"), 1);
    EXPECT_EQ(host.lines.at(host.lines.size() - 2), "Park()");
    EXPECT_FALSE(designed.engine().EnvFinishLoopFlag());
}

TEST_F(ScriptControl, FinishLoopFlagIsSeenByReservedSlotsAndForgottenByTheNextRun) {
    ASSERT_TRUE(load(u"Park()\nVesselSplit(FINISH_LOOP_FLAG, 0, 0, 0, 0, 0)"));
    bool set = true;
    host.onEvent = [&](Event& event) {
        if (event.id() == HostEvent::Park && set) control.FinishLoopFlag();
    };
    host.lines.clear();
    EXPECT_TRUE(control.RunScript());
    EXPECT_EQ(host.lines.at(2), "VesselSplit(l-1, l0, l0, l0, l0, l0)");
    set = false;
    host.lines.clear();
    EXPECT_TRUE(control.RunScript());
    EXPECT_EQ(host.lines.at(2), "VesselSplit(l0, l0, l0, l0, l0, l0)");
}

// Errors

TEST_F(ScriptControl, RunTimeErrorsPassToTheCallerOfRunScript) {
    ASSERT_TRUE(load(u"VAR N = 1\nSet(N, \"x\")\nIncrement(N)"));
    EXPECT_EQ(errorOf([&] { control.RunScript(); }), 13);
    ASSERT_TRUE(load(u"End:\nIfNotFinishLoopFlag(\"?\", End)"));
    EXPECT_EQ(errorOf([&] { control.RunScript(); }), 438);
    EXPECT_TRUE(run(u"Park()")) << "the control serves the next script";
}

// The relay

/// Records which object it was handed and answers every by-reference argument.
class AnsweringSink final : public EventSink {
public:
    const Event* received = nullptr;
    std::string line;
    void raise(Event& event) override {
        received = &event;
        line = show(event);
        for (std::size_t i = 0; i < event.count(); ++i) {
            const EventArgument& argument = event.row().arguments[i];
            if (argument.byReference) event.answer(i, answerTo(argument.type));
        }
    }
    static Value answerTo(ValueType type) {
        switch (type) {
            case ValueType::Text: return Value::ofText(u"answer");
            case ValueType::Single: return Value::ofSingle(0.5F);
            case ValueType::Long: return Value::ofLong(77);
            default: return Value::ofBoolean(true);
        }
    }
};

/// An argument that shows its place: texts "a0", numbers 100, 101..., Booleans false.
Value placed(ValueType type, std::size_t place) {
    switch (type) {
        case ValueType::Text: return Value::ofText(u"a" + std::u16string(1, static_cast<char16_t>(u'0' + place)));
        case ValueType::Single: return Value::ofSingle(100.5F + static_cast<float>(place));
        case ValueType::Long: return Value::ofLong(static_cast<std::int32_t>(100 + place));
        case ValueType::Object: return Value::ofObject(*makeReference<clsDataSetParameters>());
        default: return Value::ofBoolean(false);
    }
}

void expectRelayed(EventSink& engineSide, Event& event, const AnsweringSink& sink) {
    const EventRow& row = event.row();
    const std::string asRaised = show(event);
    engineSide.raise(event);
    EXPECT_EQ(sink.received, &event) << row.name << " reached the host as another object";
    EXPECT_EQ(sink.line, asRaised) << row.name;
    EXPECT_TRUE(event.succeeded()) << row.name;
    for (std::size_t i = 0; i < event.count(); ++i) {
        const EventArgument& argument = row.arguments[i];
        const Value expected = argument.byReference ? AnsweringSink::answerTo(argument.type) : placed(argument.type, i);
        EXPECT_EQ(show(event.argument(i)), show(expected)) << row.name << " " << argument.name;
    }
}

template <std::size_t... Places>
void raisePlaced(EventSink& engineSide, const EventRow& row, const AnsweringSink& sink,
                 std::index_sequence<Places...>) {
    Event event(row.id, {placed(row.arguments[Places].type, Places)...});
    expectRelayed(engineSide, event, sink);
}

template <std::size_t Count>
bool raiseWith(std::size_t count, EventSink& engineSide, const EventRow& row, const AnsweringSink& sink) {
    if (count == Count) {
        raisePlaced(engineSide, row, sink, std::make_index_sequence<Count>());
        return true;
    }
    if constexpr (Count > 0)
        return raiseWith<Count - 1>(count, engineSide, row, sink);
    else
        return false;
}

TEST_F(ScriptControl, RelaysEachOfThe41EventsAsTheVerySameObject) {
    const char* const names[] = {
        "RequiredFinishLoopFlag",
        "MathsFunction",
        "InputNumber",
        "InputString",
        "Info",
        "MsgAsk",
        "MsgInfo",
        "MsgInfoEx",
        "WaitTime",
        "AddAnalysisMacro",
        "AddAnalysisMacroEx",
        "AddTestVariable",
        "AddDataSetVariable",
        "GetDataSet",
        "RotateForDuration",
        "MoveToHeight",
        "CompactToForce",
        "CompactToForceEx",
        "SCTest",
        "SCTestEx",
        "SCTestFull",
        "Park",
        "ShakeBlade",
        "ShakeBladeEx",
        "MoveIntoVessel",
        "MoveIntoVesselEx",
        "TareWeight",
        "TareWeightEx",
        "ChangeBlade",
        "ChangeVessel",
        "VesselSplit",
        "SaveData",
        "EndTest",
        "TextCommand",
        "AerationControl",
        "PressureControl",
        "KeepGoing",
        "EnvironmentVariableAdded",
        "ConstantAdded",
        "VariableAdded",
        "FunctionCalled",
    };
    ASSERT_EQ(std::size(names), 41U);
    ASSERT_EQ(eventTable.size(), 41U);
    AnsweringSink sink;
    control.setEventSink(&sink);
    for (std::size_t i = 0; i < eventTable.size(); ++i) {
        const EventRow& row = eventTable[i];
        ASSERT_EQ(row.name, names[i]);
        ASSERT_EQ(static_cast<std::size_t>(row.id), i + 1);
        sink.received = nullptr;
        if (row.id == HostEvent::KeepGoing) {
            engineSide(control).CommandComplete(3, crNext);
            EXPECT_NE(sink.received, nullptr);
            EXPECT_EQ(sink.line, "KeepGoing()") << "number and status of the statement are not passed on";
            continue;
        }
        EXPECT_TRUE(raiseWith<25>(row.argumentCount - std::size_t{1}, engineSide(control), row, sink)) << row.name;
    }
}

TEST_F(ScriptControl, AScriptOfEveryStatementRaisesAllEventsButShakeBladeEx) {
    clsScriptControl designed(services, {.designedMemberAccess = true});
    designed.setEventSink(&host);
    std::set<std::string> raised;
    host.onEvent = [&](Event& event) {
        raised.insert(std::string(event.row().name));
        for (std::size_t i = 0; i < event.count(); ++i)
            if (event.row().arguments[i].name == "tDLLExecute") event.answer(i, Value::ofBoolean(false));
    };
    ASSERT_TRUE(designed.LoadScript_FromScript(
        u"ENV E = 1\nCONST C = 1\nVAR N = 1\nVAR S = \"s\"\nMathsFunction(\"f\", N, 1, 2, 3, 4)\n"
        u"InputNumber(\"q\", N, 1, 2)\nInputString(\"q\", S, 3)\nInfo(\"i\")\nMsgAsk(\"q\", Last)\nMsgInfo(\"m\")\n"
        u"MsgInfoEx(\"m\", \"0\")\nWaitTime(1, \"w\")\nAddAnalysisMacro(\"a\")\n"
        u"AddAnalysisMacroEx(\"a\", \"b\", \"c\", \"d\")\nAddTestVariable(1, 2, 3)\nAddDataSetVariable(1, 2, 3, 4)\n"
        u"GetDataSet(1, 2, 3, 0)\nRotateForDuration(0, 1, 0, 2)\nMoveToHeight(1, 0, 2, 3)\n"
        u"CompactToForce(1, 2, 3, 4, 0)\nCompactToForceEx(1, 0, 2, 0, 3, 4, 5, 6, 0)\n"
        u"SCTest(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13)\n"
        u"SCTestEx(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 0, 0, 0, 0, 0, 0, 0, 0)\n"
        u"SCTestFull(1, 2, 3, 0, 5, 6, 1, 0, 9, 10, 11, 12, 1, 14, 0, 1, 17, \"n\", 19, 20, 0, 0, 0, 0, 0)\nPark()\n"
        u"ShakeBlade(1)\nShakeBladeEx(1, 2, 3, 0, 0, 0)\nMoveIntoVessel(1)\nMoveIntoVesselEx(1, 0, 0, 0, 0, 0)\n"
        u"TareWeight()\nTareWeightEx(1, 0, 0, 0, 0, 0)\nChangeBlade(1, 0, 0, 0, 0, 0)\n"
        u"ChangeVessel(1, 0, 0, 0, 0, 0)\nVesselSplit(1, 0, 0, 0, 0, 0)\nSaveData()\nEndTest()\n"
        u"TextCommand(\"t\", 0, 0, 0, 0, 0, 0)\nAerationControl(1, 2, 0, 0, 0, 0, 0)\n"
        u"PressureControl(1, 2, 3, 4, 5, 6, 7, 0)\nLast:\nIfNotFinishLoopFlag(\"f\", End)\nEnd:",
        u"", 0, 0));
    EXPECT_TRUE(designed.RunScript());
    EXPECT_EQ(raised.size(), 40U);
    for (const EventRow& row : eventTable)
        EXPECT_EQ(raised.contains(std::string(row.name)), row.id != HostEvent::ShakeBladeEx) << row.name;
}

TEST_F(ScriptControl, AnswersOfTheHostReachTheEngine) {
    ASSERT_TRUE(
        load(u"VAR R = 0\nVAR S = \"s\"\nMathsFunction(\"f\", R, 1, 2, 3, 4)\nInputString(\"q\", S, 9)\n"
             u"MsgInfo(\"m\")\nMsgAsk(\"q\", End)\nPark()\nEnd:\nEndTest()"));
    int inputs = 0;
    host.onEvent = [&](Event& event) {
        switch (event.id()) {
            case HostEvent::MathsFunction: event.answer("tReturn", Value::ofSingle(2.5F)); break;
            case HostEvent::InputString:
                event.answer("tValue", Value::ofText(u"typed"));
                event.answer("tDLLExecute", Value::ofBoolean(++inputs == 1));
                break;
            case HostEvent::MsgInfo: event.answer("tDLLExecute", Value::ofBoolean(false)); break;
            case HostEvent::FunctionCalled:
                event.answer("tDoExecuteCommand", Value::ofBoolean(event.argument("tType").longInteger() != ctMsgAsk));
                break;
            case HostEvent::Park: event.succeed(false); break;
            default: break;
        }
    };
    host.lines.clear();
    EXPECT_TRUE(control.RunScript());
    EXPECT_EQ(show(item(1).CurrentValue()), "s2.5");
    EXPECT_EQ(show(item(2).CurrentValue()), "\"typed\"");
    EXPECT_TRUE(dialogs.messages.empty());
    EXPECT_EQ(host.lines.at(host.lines.size() - 4), "MsgAsk(\"q\", l0, bFalse)");
    EXPECT_EQ(host.lines.at(host.lines.size() - 2), "Park()") << "a host cannot make the script jump";
}

TEST_F(ScriptControl, TheDataSetReachesTheHostAsTheEnginesOwnObject) {
    const SharedRecord* handed = nullptr;
    ASSERT_TRUE(load(u"GetDataSet(1, 2, 3, 0)"));
    const SharedRecord* own = &control.engine().DataSetParameters();
    host.onEvent = [&](Event& event) {
        if (event.id() == HostEvent::GetDataSet) handed = &event.argument("tTestParameters").object();
    };
    EXPECT_TRUE(control.RunScript());
    EXPECT_EQ(handed, own);
}

TEST_F(ScriptControl, DeclarationsAreToldDuringTheLoadInScriptOrder) {
    EXPECT_TRUE(load(u"VAR A = 1\nENV B = \"x\"\nCONST C = \"y\"\nVAR D"));
    EXPECT_EQ(host.lines, (Lines{"VariableAdded(\"A\", \"1\")", "EnvironmentVariableAdded(\"B\", \"\"x\"\")",
                                 "ConstantAdded(\"C\", \"y\")", "VariableAdded(\"D\", \"0\")"}));
}

}  // namespace
}  // namespace corvane::testing
