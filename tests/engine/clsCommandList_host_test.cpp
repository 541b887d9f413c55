// What statements hand to the host, and what every statement kind does when it is run once.

#include <string>
#include <vector>

#include "engine/clsCommand.h"
#include "engine/modCommand.h"
#include "tests/support/engine_fixture.h"

namespace corvane::testing {
namespace {

using Lines = std::vector<std::string>;

std::string number(float value) { return toUtf8(toText(Value::ofSingle(value), NumberLocale::pointDecimal()).view()); }

std::string fields(const clsDataSetParameters& set) {
    std::string line = "helix " + number(set.HelixAngle) + ", tip " + number(set.TipSpeed) + ", height " +
                       number(set.Height) + ", force " + number(set.Force) + ", delta " + number(set.SampleDelta) +
                       ", sample " + std::to_string(set.SampleType) + ", type " + std::to_string(set.DataSetType) +
                       ", direction " + std::to_string(set.Direction) + ", levelling " +
                       std::to_string(set.LevellingFrom) + " " + std::to_string(set.LevellingType) + " " +
                       number(set.LevellingTrigger) + " " + number(set.LevellingHix) + " " + number(set.LevellingTip) +
                       ", result " + std::to_string(set.TestResult);
    for (std::int32_t i = 0; i < clsDataSetParameters::variableCount; ++i)
        line += (i == 0 ? ", texts " : "/") + toUtf8(set.DataSetVariable(i));
    return line;
}

clsDataSetParameters& dataSetOf(const Event& event) {
    return static_cast<clsDataSetParameters&>(event.argument("tTestParameters").object());
}

// Every kind once

/// One statement, what it raises besides FunctionCalled, and what it tells the run loop and the memory. The statement
/// is the script's first; a Park follows, so that going on (1) and jumping to the end (2) are not the same.
struct KindRow {
    std::int32_t kind;
    const char16_t* statement;
    Lines events;
    std::int32_t result;
    std::int32_t next;
    const char* number = "s5";
    const char* text = "\"old\"";
};

const std::vector<KindRow>& kindRows() {
    static const std::vector<KindRow> rows = {
        {4, u"Goto(End)", {}, 2, 2},
        {5, u"Call(End)", {}, 3, 2},
        {6, u"Return()", {}, 4, 0},
        {7, u"IfNotFinishLoopFlag(\"Done?\", End)", {"RequiredFinishLoopFlag(\"Done?\")"}, 2, 2},
        {8, u"IfGreaterThan(12, 11, End)", {}, 2, 2},
        {9, u"IfLessThan(11, 12, End)", {}, 2, 2},
        {10, u"IfNotEqual(11, 12, End)", {}, 2, 2},
        {11, u"IfEqual(11, 11, End)", {}, 2, 2},
        {12, u"Set(Number, 11)", {}, 0, 1, "s11"},
        {13, u"Decrement(Number)", {}, 0, 1, "s4"},
        {14, u"Increment(Number)", {}, 0, 1, "s6"},
        {15,
         u"MathsFunction(\"Power\", Number, 11, 12.5, 13, 14)",
         {"MathsFunction(\"Power\", s11, s12.5, s13, s14, s0)"},
         0,
         1,
         "s0.75"},
        {16, u"ConCatString(Text, \"left\", \"right\")", {}, 0, 1, "s5", "\"leftright\""},
        {17, u"InputNumber(\"How many?\", Number, 11, 12)", {"InputNumber(\"How many?\", s11, s12, s5, bTrue)"}, 0, 1},
        {18, u"InputString(\"Who?\", Text, 11)", {"InputString(\"Who?\", l11, \"old\", bTrue)"}, 0, 1},
        {19, u"Info(\"fact\")", {"Info(\"fact\")"}, 0, 1},
        {20, u"MsgAsk(\"Sure?\", End)", {"MsgAsk(\"Sure?\", l0, bTrue)"}, 0, 1},
        {21, u"MsgInfo(\"note\")", {"MsgInfo(\"note\", bTrue)"}, 0, 1},
        {22, u"MsgInfoEx(\"beep\", \"11\")", {"MsgInfoEx(\"beep\", l11, bTrue)"}, 0, 1},
        {23, u"WaitTime(11.5, \"settling\")", {"WaitTime(s11.5, \"settling\")"}, 0, 1},
        {24, u"AddAnalysisMacro(\"m\")", {"AddAnalysisMacro(\"m\")"}, 0, 1},
        {25,
         u"AddAnalysisMacroEx(\"name\", \"unit\", \"format\", \"macro\")",
         {"AddAnalysisMacroEx(\"name\", \"unit\", \"format\", \"macro\")"},
         0,
         1},
        {26, u"AddTestVariable(\"name\", 11.5, \"unit\")", {"AddTestVariable(\"name\", \"11.5\", \"unit\", l0)"}, 0, 1},
        {27,
         u"AddDataSetVariable(\"name\", 11.5, \"unit\", 3)",
         {"AddDataSetVariable(\"name\", \"11.5\", \"unit\", l3)"},
         0,
         1},
        {28,
         u"GetDataSet(11, 12, 13.5, 4)",
         {"GetDataSet(<object>)",
          "helix 11, tip 12, height 13.5, force 0, delta 0, sample 0, type 4, direction 3, levelling 0 0 0 0 0, "
          "result 0, texts ///////"},
         0,
         1},
        {29,
         u"GetDataSetEx(11, 12, 13.5, 4, 2, 3, 14.5, 15, 16)",
         {"GetDataSet(<object>)",
          "helix 11, tip 12, height 13.5, force 0, delta 0, sample 0, type 4, direction 3, levelling 2 3 14.5 15 16, "
          "result 0, texts ///////"},
         0,
         1},
        {30, u"RotateForDuration(11, 12.5, 13, 14.5)", {"RotateForDuration(l11, s12.5, l13, s14.5)"}, 0, 1},
        {31, u"MoveToHeight(11.5, 12, 13.5, 14.5)", {"MoveToHeight(s11.5, l12, s13.5, s14.5)"}, 0, 1},
        {32, u"CompactToForce(11.5, 12.5, 13.5, 14.5, 15)", {"CompactToForce(s11.5, s12.5, s13.5, s14.5, l15)"}, 0, 1},
        {33,
         u"CompactToForceEx(11.5, 12, 13.5, 14, 15.5, 16.5, 17.5, 18.5, 19)",
         {"CompactToForceEx(s11.5, l12, s13.5, l14, s15.5, s16.5, s17.5, s18.5, l19)"},
         0,
         1},
        {34,
         u"SCTest(11.5, 12.5, 13, 14.5, 15.5, 16.5, 17, 18.5, 19.5, 20.5, 21, 22, 23.5)",
         {"SCTest(s11.5, s12.5, l13, s14.5, s15.5, s16.5, l17, s18.5, s19.5, s20.5, l21, l22, s23.5)"},
         0,
         1},
        {35,
         u"SCTestEx(11.5, 12.5, 13.5, 14.5, 15.5, 16.5, 17, 18.5, 19.5, 20.5, 21.5, 22.5, \"a\", \"b\", \"c\", \"d\", "
         u"27.5, \"f\", \"g\", \"h\")",
         {"SCTestEx(s11.5, s12.5, s13.5, s14.5, s15.5, s16.5, l17, s18.5, s19.5, s20.5, s21.5, s22.5, \"a\", \"b\", "
          "\"c\", \"d\", s27.5, \"f\", \"g\", \"h\")"},
         0,
         1},
        {36,
         u"SCTestFull(1, 12.5, 13.5, 0, 15.5, 16.5, 1, 0, 19.5, 20.5, 21, 22.5, 1, 24.5, 0, 1, 27.5, \"3,6,9\", 29.5, "
         u"30.5, 0, \"a\", \"b\", \"c\", \"d\")",
         {"SCTestFull(bTrue, s12.5, s13.5, bFalse, s15.5, s16.5, bTrue, bFalse, s19.5, s20.5, l21, s22.5, bTrue, "
          "s24.5, bFalse, bTrue, s27.5, \"3,6,9\", s29.5, s30.5, bFalse, \"a\", \"b\", \"c\", \"d\")"},
         0,
         1},
        {37, u"Park()", {"Park()"}, 0, 1},
        {38, u"ShakeBlade(11)", {"ShakeBlade(l11, s-1, s-1)"}, 0, 1},
        {39, u"ShakeBladeEx(11, 12.5, 13.5, 14, 15, 16)", {"ShakeBlade(l11, s12.5, s13.5)"}, 0, 1},
        {40, u"MoveIntoVessel(11.5)", {"MoveIntoVessel(s11.5)"}, 0, 1},
        {41, u"MoveIntoVesselEx(11.5, 12, 13, 14, 15, 16)", {"MoveIntoVesselEx(s11.5, l12, l13, l0, l0, l0)"}, 0, 1},
        {42, u"TareWeight()", {"TareWeight()"}, 0, 1},
        {43, u"TareWeightEx(11, 12, 13, 14, 15, 16)", {"TareWeightEx(l11, l0, l0, l0, l0, l0)"}, 0, 1},
        {44, u"ChangeBlade(11, 12, 13, 14, 15, 16)", {"ChangeBlade(l11, l0, l0, l0, l0, l0)"}, 0, 1},
        {45, u"ChangeVessel(11, 12, 13, 14, 15, 16)", {"ChangeVessel(l11, l0, l0, l0, l0, l0)"}, 0, 1},
        {46, u"VesselSplit(11, 12, 13, 14, 15, 16)", {"VesselSplit(l11, l0, l0, l0, l0, l0)"}, 0, 1},
        {47, u"EndTest()", {"EndTest()"}, 0, 1},
        {48, u"SaveData()", {"SaveData()"}, 0, 1},
        {49,
         u"TextCommand(\"cmd\", \"a\", \"b\", \"c\", \"d\", \"e\", \"f\")",
         {"TextCommand(\"cmd\", \"a\", \"b\", \"c\", \"d\", \"e\", \"f\")"},
         0,
         1},
        {50,
         u"AerationControl(11, 12.5, \"a\", \"b\", \"c\", \"d\", \"e\")",
         {"AerationControl(l11, s12.5, \"a\", \"b\", \"c\", \"d\", \"e\")"},
         0,
         1},
        {51,
         u"PressureControl(11, 12.5, 13.5, 14.5, 15.5, 16.5, 17, \"a\")",
         {"PressureControl(l11, s12.5, s13.5, s14.5, s15.5, s16.5, l17, \"a\")"},
         0,
         1},
        {52, u"BlockStart(\"block\")", {"Info(\"block\")"}, 0, 1},
    };
    return rows;
}

std::u16string scriptOf(const KindRow& row) {
    return u"VAR Number = 5\nVAR Text = \"old\"\n" + std::u16string(row.statement) + u"\nPark()\nEnd:";
}

class HostStatement : public EngineTest {
protected:
    static constexpr EngineOptions designedOptions{.designedMemberAccess = true};

    /// Loads and runs the first statement only; gives the lines of the events and of the completion.
    Lines runFirstStatement(clsCommandList& fresh, const KindRow& row) {
        EXPECT_TRUE(fresh.CreateCommandList(scriptOf(row))) << toUtf8(row.statement);
        owner.lines.clear();
        owner.recordFunctionCalled = true;
        owner.recordSteps = true;
        owner.onStep = [&](std::int32_t, std::int32_t) { fresh.setStopExecution(true); };
        EXPECT_FALSE(fresh.ExecuteList());
        return owner.lines;
    }

    std::string lastLine() const { return owner.lines.empty() ? "none" : owner.lines.back(); }

    int errorOfRun(std::u16string_view script) {
        EXPECT_TRUE(load(script));
        return errorOf([&] { engine.ExecuteList(); });
    }
    /// Runs a script of one statement after declarations and gives the last event's line.
    std::string eventOf(std::u16string_view script) {
        owner.lines.clear();
        EXPECT_TRUE(run(script));
        return lastLine();
    }
};

TEST_F(HostStatement, EveryKindOfTheCatalogueRunsWithItsArguments) {
    std::size_t walked = 0;
    owner.onEvent = [&](Event& event) {
        switch (event.id()) {
            case HostEvent::MathsFunction: event.answer("tReturn", Value::ofSingle(0.75F)); break;
            case HostEvent::InputNumber:
            case HostEvent::InputString:
            case HostEvent::MsgAsk:
            case HostEvent::MsgInfo:
            case HostEvent::MsgInfoEx: event.answer("tDLLExecute", Value::ofBoolean(false)); break;
            case HostEvent::GetDataSet: owner.lines.push_back(fields(dataSetOf(event))); break;
            default: break;
        }
    };
    for (std::int32_t kind = 0; kind < catalogueSize; ++kind) {
        if (kind == ctUnknown || functionDefinition(kind).Name.empty()) continue;
        ASSERT_LT(walked, kindRows().size()) << "a kind without a row: " << kind;
        const KindRow& row = kindRows()[walked++];
        ASSERT_EQ(row.kind, kind);
        const std::u16string_view statement = row.statement;
        EXPECT_EQ(statement.substr(0, statement.find(u'(')), functionDefinition(kind).Name);

        Lines expected = row.events;
        expected.insert(expected.begin(), "FunctionCalled(l" + std::to_string(kind == 52 ? 19 : kind) + ", bTrue)");
        expected.push_back("CommandComplete(" + std::to_string(row.next) + ", " + std::to_string(row.result) + ")");
        // An engine for each, since a call leaves its address on the stack; of the designed kind, so that the
        // finish-loop test can be run like the rest.
        clsCommandList designed(owner, services, designedOptions);
        EXPECT_EQ(runFirstStatement(designed, row), expected) << toUtf8(row.statement);
        EXPECT_EQ(designed.Command(1).CommandType(), kind);
        EXPECT_EQ(show(designed.DataMemory().Item(1).CurrentValue()), row.number) << toUtf8(row.statement);
        EXPECT_EQ(show(designed.DataMemory().Item(2).CurrentValue()), row.text) << toUtf8(row.statement);
    }
    EXPECT_EQ(walked, 49U);
    EXPECT_TRUE(dialogs.messages.empty());
    EXPECT_TRUE(dialogs.inputs.empty());
}

TEST_F(HostStatement, EveryInstrumentStatementFailsWithoutTheHostsSuccess) {
    owner.onEvent = [](Event& event) { event.succeed(false); };
    for (const KindRow& row : kindRows()) {
        if (row.kind < ctWaitTime || row.kind > ctAccPressureControl) continue;
        RecordingListener told;
        engine.setListener(&told);
        ASSERT_TRUE(load(scriptOf(row)));
        EXPECT_TRUE(engine.ExecuteList()) << "the result of a run with a failed statement is true";
        EXPECT_EQ(told.lines,
                  (Lines{"CommandStart(0)", "CommandError(0, 1)", "CommandComplete(1, 1)", "ScriptComplete(True)"}))
            << toUtf8(row.statement);
        engine.setListener(nullptr);
    }
}

TEST_F(HostStatement, EveryEventIsRaisedWithoutSuccess) {
    struct Unanswering final : EngineOwner {
        Lines raised;
        void raise(Event& event) override {
            EXPECT_FALSE(event.succeeded()) << event.row().name;
            raised.emplace_back(event.row().name);
            event.succeed();
        }
        void CommandComplete(std::int32_t, std::int32_t) override {}
    } host;
    for (const KindRow& row : kindRows()) {
        clsCommandList designed(host, services, designedOptions);
        ASSERT_TRUE(designed.CreateCommandList(scriptOf(row)));
        host.raised.clear();
        std::int32_t address = 0;
        designed.ExecuteCommand(designed.Command(1), address);
        designed.ExecuteCommand(designed.Command(1), address);
        EXPECT_GE(host.raised.size(), 2U) << toUtf8(row.statement);
    }
}

TEST_F(HostStatement, AParameterThatTheCatalogueLeavesOutHoldsNoObject) {
    SetFunctionDefinition(ctWaitTime, u"WaitTime", 1, u"");
    ASSERT_TRUE(load(u"WaitTime(5)"));
    EXPECT_EQ(errorOf([&] { engine.ExecuteList(); }), 91);
    EXPECT_TRUE(owner.lines.empty());
    BuildFunctionCatalogue();
}

TEST_F(HostStatement, EachBooleanOfSCTestFullComesFromItsOwnParameter) {
    const std::size_t booleans[] = {0, 3, 6, 7, 12, 14, 15, 20};
    for (const std::size_t chosen : booleans) {
        std::u16string script = u"SCTestFull(";
        for (std::size_t i = 0; i < 25; ++i) {
            if (i != 0) script += u", ";
            script += i == 17 || i > 20 ? u"\"\"" : i == chosen ? u"1" : u"0";
        }
        owner.onEvent = [&](Event& event) {
            if (event.id() != HostEvent::SCTestFull) return;
            for (const std::size_t position : booleans) {
                EXPECT_EQ(event.argument(position).type(), ValueType::Boolean) << position;
                EXPECT_EQ(event.argument(position).boolean(), position == chosen) << position;
            }
        };
        EXPECT_TRUE(run(script + u")"));
        EXPECT_EQ(owner.lines.size(), 1U);
        owner.lines.clear();
    }
}

// Conversions

TEST_F(HostStatement, LongArgumentsRoundHalfToEven) {
    struct Row {
        const char16_t* written;
        const char* argument;
    };
    const Row rows[] = {
        {u"0.5", "l0"},   {u"1.5", "l2"}, {u"2.5", "l2"}, {u"3.5", "l4"},       {u"-0.5", "l0"},
        {u"-1.5", "l-2"}, {u"2.4", "l2"}, {u"2.6", "l3"}, {u"-2.5", "l-2"},     {u"16777216", "l16777216"},
        {u"0", "l0"},     {u"-7", "l-7"}, {u"5-", "l-5"}, {u"1e3", "l1000"},    {u"2147483520", "l2147483520"},
        {u"7.", "l7"},    {u".5", "l0"},  {u"+9", "l9"},  {u"1.5000001", "l2"}, {u"-2147483648", "l-2147483648"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(eventOf(u"ChangeBlade(" + std::u16string(row.written) + u", 0, 0, 0, 0, 0)"),
                  "ChangeBlade(" + std::string(row.argument) + ", l0, l0, l0, l0, l0)")
            << toUtf8(row.written);
}

TEST_F(HostStatement, ALongArgumentBeyond32BitsIsError6AndRaisesNothing) {
    for (const std::u16string written : {u"2147483648", u"-2147483904", u"1e20", u"-1e30"}) {
        EXPECT_EQ(errorOfRun(u"ChangeBlade(" + written + u", 0, 0, 0, 0, 0)"), 6) << toUtf8(written);
        EXPECT_TRUE(owner.lines.empty());
    }
}

TEST_F(HostStatement, OfTwoArgumentsThatFailTheFirstTellsTheError) {
    ASSERT_TRUE(load(u"VAR Height\nVAR Angle\nMoveToHeight(Height, 0, Angle, 0)"));
    item(u"Height").setInitialValue(Value::ofText(u"x"));
    item(u"Angle").setInitialValue(Value::ofText(u"1E39"));
    EXPECT_EQ(errorOf([&] { engine.ExecuteList(); }), 13);
    item(u"Height").setInitialValue(Value::ofText(u"1E39"));
    item(u"Angle").setInitialValue(Value::ofText(u"x"));
    EXPECT_EQ(errorOf([&] { engine.ExecuteList(); }), 6);
    EXPECT_EQ(owner.lines.size(), 2U) << "but for the declarations there is no event";
}

TEST_F(HostStatement, NumbersOfEveryTypeFillASingleArgument) {
    struct Row {
        const char* name;
        Value value;
        const char* line;
    };
    const Row rows[] = {
        {"16-bit integer", Value::ofInteger(7), "MoveIntoVessel(s7)"},
        {"long", Value::ofLong(16777217), "MoveIntoVessel(s1.677722E+07)"},
        {"double", Value::ofDouble(0.1), "MoveIntoVessel(s0.1)"},
        {"text", Value::ofText(u" 2.5 "), "MoveIntoVessel(s2.5)"},
        {"text with an exponent", Value::ofText(u"1e-4"), "MoveIntoVessel(s0.0001)"},
        {"Boolean", Value::ofBoolean(true), "MoveIntoVessel(s-1)"},
    };
    ASSERT_TRUE(load(u"VAR N\nMoveIntoVessel(N)"));
    for (const Row& row : rows) {
        item(u"N").setInitialValue(row.value);
        EXPECT_TRUE(engine.ExecuteList());
        EXPECT_EQ(lastLine(), row.line) << row.name;
    }
}

TEST_F(HostStatement, AConversionThatFailsEndsTheRunBeforeTheEvent) {
    struct Row {
        const char16_t* statements;
        int error;
    };
    const Row rows[] = {
        {u"Set(N, \"x\")\nMoveIntoVessel(N)", 13},
        {u"Set(N, \"\")\nMoveIntoVessel(N)", 13},
        {u"Set(N, \"1e39\")\nMoveIntoVessel(N)", 6},
        {u"Set(N, \"x\")\nTareWeightEx(N, 0, 0, 0, 0, 0)", 13},
        {u"Set(N, \"99999999999\")\nTareWeightEx(N, 0, 0, 0, 0, 0)", 6},
        {u"Set(N, \"x\")\nMoveToHeight(1, 2, 3, N)", 13},
        {u"Set(N, \"x\")\nGetDataSet(1, 2, 3, N)", 13},
        {u"Set(N, \"x\")\nAddDataSetVariable(\"a\", \"b\", \"c\", N)", 13},
    };
    for (const Row& row : rows) {
        owner.lines.clear();
        EXPECT_EQ(errorOfRun(u"VAR N\n" + std::u16string(row.statements)), row.error) << toUtf8(row.statements);
        EXPECT_EQ(owner.lines, Lines{"VariableAdded(\"N\", \"0\")"}) << toUtf8(row.statements);
    }
}

TEST_F(HostStatement, BooleanArgumentsTakeNumbersAndTexts) {
    struct Row {
        Value value;
        const char* argument;
    };
    const auto text = [](std::u16string_view characters) { return Value::ofText(characters); };
    const Row rows[] = {
        {Value::ofSingle(0), "bFalse"},  {Value::ofSingle(1), "bTrue"},
        {Value::ofSingle(-1), "bTrue"},  {Value::ofSingle(0.5F), "bTrue"},
        {Value::ofInteger(0), "bFalse"}, {Value::ofInteger(2), "bTrue"},
        {Value::ofLong(65536), "bTrue"}, {text(u"True"), "bTrue"},
        {text(u"false"), "bFalse"},      {text(u"TRUE"), "bTrue"},
        {text(u"0"), "bFalse"},          {text(u"3"), "bTrue"},
        {text(u"0.25"), "bTrue"},        {Value::ofSingle(std::numeric_limits<float>::quiet_NaN()), "bTrue"},
    };
    ASSERT_TRUE(
        load(u"VAR B\nSCTestFull(B, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, \"\", 0, 0, 0, \"\", \"\", \"\", "
             u"\"\")"));
    for (const Row& row : rows) {
        item(u"B").setInitialValue(row.value);
        EXPECT_TRUE(engine.ExecuteList());
        EXPECT_TRUE(lastLine().starts_with("SCTestFull(" + std::string(row.argument) + ", s0")) << show(row.value);
    }
    for (const char16_t* neither : {u"yes", u"", u"T"}) {
        item(u"B").setInitialValue(text(neither));
        EXPECT_EQ(errorOf([&] { engine.ExecuteList(); }), 13) << toUtf8(neither);
    }
}

TEST_F(HostStatement, NumbersBecomeTextInTheUsersForm) {
    const std::u16string script =
        u"VAR N = 2.25\nCONST C = 0.1\nAddTestVariable(N, C, 16777220)\nAddDataSetVariable(1e20, -0.5, N, 1)";
    EXPECT_TRUE(run(script));
    EXPECT_EQ(owner.lines.at(2), "AddTestVariable(\"2.25\", \"0.1\", \"1.677722E+07\", l0)");
    EXPECT_EQ(owner.lines.at(3), "AddDataSetVariable(\"1E+20\", \"-0.5\", \"2.25\", l1)");
    numbers = NumberLocale::commaDecimal();
    owner.lines.clear();
    EXPECT_TRUE(run(script));
    EXPECT_EQ(owner.lines.at(2), "AddTestVariable(\"2,25\", \"0,1\", \"1,677722E+07\", l0)");
    EXPECT_EQ(owner.lines.at(3), "AddDataSetVariable(\"1E+20\", \"-0,5\", \"2,25\", l1)");
}

TEST_F(HostStatement, ReservedSlotsTakeEveryKindOfItem) {
    EXPECT_EQ(eventOf(u"VAR N = 1.5\nVAR S = \"s\"\nCONST C = 2\nENV E = \"Ann\"\nHere:\n"
                      u"TextCommand(\"t\", N, S, C, E, Here, 3)"),
              "TextCommand(\"t\", \"1.5\", \"s\", \"2\", \"\"Ann\"\", \"0\", \"3\")")
        << "an environment variable keeps its quotes, a label yields its address";
}

TEST_F(HostStatement, EnvironmentVariablesInReservedSlotsAreConvertedAsTheArgumentNeeds) {
    const std::u16string front = u"SCTestEx(0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, ";
    EXPECT_EQ(eventOf(u"ENV A = 2.5\nENV B = b\n" + front + u"A, B, FINISH_LOOP_FLAG, \"\", A, B, B, B)"),
              "SCTestEx(s0, s0, s0, s0, s0, s0, l0, s0, s0, s0, s0, s0, \"2.5\", \"b\", \"0\", \"\", s2.5, \"b\", "
              "\"b\", \"b\")");
    EXPECT_EQ(eventOf(u"ENV A = 3.5\nVesselSplit(A, 0, 0, 0, 0, 0)"), "VesselSplit(l4, l0, l0, l0, l0, l0)");
    EXPECT_EQ(eventOf(u"VesselSplit(FINISH_LOOP_FLAG, 0, 0, 0, 0, 0)"), "VesselSplit(l0, l0, l0, l0, l0, l0)");
    EXPECT_EQ(errorOfRun(u"ENV A = 2.5 mm\n" + front + u"A, A, A, A, A, A, A, A)"), 13);
    EXPECT_EQ(errorOfRun(u"ENV A =\nVesselSplit(A, 0, 0, 0, 0, 0)"), 13);
    EXPECT_EQ(errorOfRun(u"ENV A = \"7\"\nVesselSplit(A, 0, 0, 0, 0, 0)"), 13) << "its quotes are part of the text";
    EXPECT_EQ(errorOfRun(u"ENV A = 3000000000\nVesselSplit(A, 0, 0, 0, 0, 0)"), 6);
}

TEST_F(HostStatement, EnvironmentVariablesAreReadInTheUsersForm) {
    numbers = NumberLocale::commaDecimal();
    EXPECT_EQ(eventOf(u"ENV A = 2,5\nVesselSplit(A, 0, 0, 0, 0, 0)"), "VesselSplit(l2, l0, l0, l0, l0, l0)");
    EXPECT_EQ(eventOf(u"ENV A = 2.500\nVesselSplit(A, 0, 0, 0, 0, 0)"), "VesselSplit(l2500, l0, l0, l0, l0, l0)")
        << "the point groups digits there";
}

TEST_F(HostStatement, TheFinishLoopFlagInAReservedSlotShowsWhatTheHostSet) {
    ASSERT_TRUE(
        load(u"Park()\nVesselSplit(FINISH_LOOP_FLAG, 0, 0, 0, 0, 0)\n"
             u"TextCommand(\"t\", FINISH_LOOP_FLAG, \"\", \"\", \"\", \"\", \"\")"));
    owner.onEvent = [&](Event& event) {
        if (event.id() == HostEvent::Park) engine.setEnvFinishLoopFlag(true);
    };
    EXPECT_TRUE(engine.ExecuteList());
    EXPECT_EQ(owner.lines, (Lines{"Park()", "VesselSplit(l-1, l0, l0, l0, l0, l0)",
                                  "TextCommand(\"t\", \"True\", \"\", \"\", \"\", \"\", \"\")"}));
}

TEST_F(HostStatement, ReservedParametersThatAreNotPassedAreNotConvertedEither) {
    EXPECT_EQ(eventOf(u"VesselSplit(7, \"a\", \"b\", \"c\", \"d\", \"e\")"), "VesselSplit(l7, l0, l0, l0, l0, l0)");
    EXPECT_EQ(eventOf(u"ShakeBladeEx(3, 2.5, 10, \"a\", \"b\", \"c\")"), "ShakeBlade(l3, s2.5, s10)");
    EXPECT_EQ(eventOf(u"MoveIntoVesselEx(1, 2, 3, \"a\", \"b\", \"c\")"), "MoveIntoVesselEx(s1, l2, l3, l0, l0, l0)");
}

TEST_F(HostStatement, NumbersMayBeWrittenWithEitherMarkUnderACommaLocale) {
    numbers = NumberLocale::commaDecimal();
    EXPECT_EQ(eventOf(u"MoveIntoVessel(12.5)"), "MoveIntoVessel(s12.5)");
    EXPECT_EQ(eventOf(u"CONST H = 0,5\nMoveIntoVessel(H)"), "MoveIntoVessel(s0.5)");
}

TEST_F(HostStatement, ACommaGroupsDigitsUnderAPointLocale) {
    EXPECT_EQ(eventOf(u"CONST H = 1,500\nMoveIntoVessel(H)"), "MoveIntoVessel(s1500)");
    EXPECT_EQ(eventOf(u"CONST H = 0,5\nMoveIntoVessel(H)"), "MoveIntoVessel(s5)");
}

// Answers

TEST_F(HostStatement, OnlySuccessIsReadBack) {
    owner.onEvent = [](Event& event) {
        if (event.id() != HostEvent::MoveToHeight) return;
        event.answer("tHeightMM", Value::ofSingle(99));
        event.answer("tMoveType", Value::ofLong(99));
    };
    EXPECT_TRUE(run(u"VAR H = 1\nVAR T = 2\nMoveToHeight(H, T, 3, 4)\nMoveToHeight(H, T, 3, 4)"));
    EXPECT_EQ(owner.lines.at(2), owner.lines.at(3));
    EXPECT_EQ(current(u"H"), "s1");
    EXPECT_EQ(current(u"T"), "s2");
}

TEST_F(HostStatement, AnArgumentWithoutAParameterIsError91AndRaisesNothing) {
    SetFunctionDefinition(ctShakeBladeEx, u"ShakeBladeEx", 1, u"");  // its event takes three
    EXPECT_EQ(errorOfRun(u"ShakeBladeEx(1)"), 91);
    EXPECT_EQ(owner.lines, Lines());
    BuildFunctionCatalogue();
}

TEST_F(HostStatement, AHostThatLeavesParkUnansweredEndsTheRunThere) {
    owner.onEvent = [](Event& event) { event.succeed(event.id() != HostEvent::Park); };
    EXPECT_TRUE(run(u"TareWeight()\nPark()\nEndTest()"));
    EXPECT_EQ(owner.lines, (Lines{"TareWeight()", "Park()"}));
    EXPECT_EQ(engine.programCounter(), 2);
}

TEST_F(HostStatement, AnExceptionOfTheHostEndsTheRunAndPasses) {
    owner.onEvent = [](Event& event) {
        if (event.id() == HostEvent::Park) throw automation_error(ErrorNumber::DeviceIoError, "the cable is out");
    };
    EXPECT_EQ(errorOfRun(u"Park()\nEndTest()"), 57);
    EXPECT_FALSE(engine.isRunning());
    owner.onEvent = nullptr;
    EXPECT_TRUE(engine.ExecuteList()) << "the engine serves the next run";
    EXPECT_EQ(lastLine(), "EndTest()");
}

// Data sets

class DataSet : public HostStatement {
protected:
    std::vector<Reference<clsDataSetParameters>> kept;
    Lines seen;

    /// Keeps each data set as a host may, writes results into it and answers with `success`.
    void keepDataSets(bool success = true) {
        owner.onEvent = [this, success](Event& event) {
            if (event.id() != HostEvent::GetDataSet) return;
            clsDataSetParameters& set = dataSetOf(event);
            seen.push_back(fields(set));
            kept.emplace_back(&set);
            set.TestResult = trComplete;
            set.Direction = 8;
            set.Force = 1.5F;
            set.LevellingTip = 9;
            set.AddDataSetVariable(2, u"wet");
            event.succeed(success);
        };
    }
    const std::string fresh =
        "helix 1, tip 2, height 3, force 0, delta 0, sample 0, type 4, direction 3, levelling 0 0 0 0 0, result 0, "
        "texts ///////";
};

TEST_F(DataSet, EachStatementHandsOutAnObjectOfItsOwn) {
    keepDataSets();
    EXPECT_TRUE(run(u"GetDataSet(1, 2, 3, 4)\nGetDataSet(1, 2, 3, 4)\nGetDataSetEx(5, 6, 7, 1, 2, 3, 4, 5, 6)"));
    ASSERT_EQ(kept.size(), 3U);
    EXPECT_NE(kept.at(0), kept.at(1));
    EXPECT_EQ(seen.at(0), fresh);
    EXPECT_EQ(seen.at(1), fresh) << "nothing of the first is seen in the second";
    EXPECT_EQ(seen.at(2),
              "helix 5, tip 6, height 7, force 0, delta 0, sample 0, type 1, direction 3, levelling 2 3 4 5 6, "
              "result 0, texts ///////");
    EXPECT_EQ(kept.at(0)->Direction, 8) << "what the host keeps stays its own";
    EXPECT_EQ(kept.at(0)->DataSetVariable(2), u"wet");
}

TEST_F(DataSet, LevellingOfAnExtendedStatementDoesNotReachThePlainOneAfterIt) {
    keepDataSets();
    EXPECT_TRUE(run(u"GetDataSetEx(5, 6, 7, 1, 2, 3, 4, 5, 6)\nGetDataSet(1, 2, 3, 4)"));
    EXPECT_EQ(seen.at(1), fresh);
}

TEST_F(DataSet, IsReplacedAfterAFailureAsWell) {
    keepDataSets(false);
    EXPECT_TRUE(run(u"GetDataSet(1, 2, 3, 4)\nPark()"));
    EXPECT_EQ(owner.lines, Lines{"GetDataSet(<object>)"});
    EXPECT_NE(&engine.DataSetParameters(), kept.at(0).get());
    EXPECT_EQ(fields(engine.DataSetParameters()), fields(*makeReference<clsDataSetParameters>()));
}

TEST_F(DataSet, KeepsWhatWasSetOnTheEnginesObjectBeforehand) {
    keepDataSets();
    engine.DataSetParameters().Force = 2.5F;
    engine.DataSetParameters().SampleDelta = 0.5F;
    engine.DataSetParameters().SampleType = smTime;
    engine.DataSetParameters().Direction = 4;
    engine.DataSetParameters().TestResult = trFailed;
    engine.DataSetParameters().LevellingType = ltByTorque;
    EXPECT_TRUE(run(u"GetDataSet(1, 2, 3, 4)\nGetDataSet(1, 2, 3, 4)"));
    EXPECT_EQ(seen.at(0),
              "helix 1, tip 2, height 3, force 2.5, delta 0.5, sample 1, type 4, direction 4, levelling 0 0 0 0 0, "
              "result 0, texts ///////")
        << "result and levelling type are set by the statement";
    EXPECT_EQ(seen.at(1), fresh);
}

TEST_F(DataSet, TakesEnumerationsBeyondThePublishedOnes) {
    keepDataSets();
    EXPECT_TRUE(run(u"GetDataSetEx(1, 2, 3, 77, 78, 79, 0, 0, 0)"));
    EXPECT_EQ(static_cast<std::int32_t>(kept.at(0)->DataSetType), 77);
    EXPECT_EQ(static_cast<std::int32_t>(kept.at(0)->LevellingFrom), 78);
    EXPECT_EQ(static_cast<std::int32_t>(kept.at(0)->LevellingType), 79);
}

}  // namespace
}  // namespace corvane::testing
