#include "engine/statement_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "engine/clsCommandList.h"
#include "platform/text_case.h"
#include "platform/utf8.h"

namespace corvane {
namespace {

struct PublishedStatement {
    enumCommandType kind;
    std::int32_t value;
    std::string_view keyword;
    std::int32_t parameterCount;
    std::string_view description;
    std::vector<std::string_view> slots;  // display name and mask of what is accepted
};

// Letter for letter as published: "Mathamatical", "vaule", "give range", "Join two string" and "not equal than" are so.
// clang-format off
const std::vector<PublishedStatement> publishedStatements = {
    {ctGoto, 4, "Goto", 1, "Goto a given label", {"Jump Address 8"}},
    {ctCall, 5, "Call", 1, "Call a given label", {"Call Address 8"}},
    {ctReturn, 6, "Return", 0, "Return back to the caller function", {}},
    {ctIfNotFinishLoopFlag, 7, "IfNotFinishLoopFlag", 2,
     "Jump to the given address if the user has not clicked the 'finish loop' button",
     {"Question 132", "Jump Address 8"}},
    {ctIfGreaterThan, 8, "IfGreaterThan", 3, "Jump to the given label if the first number is greater than the second",
     {"Left Value 130", "Right Value 130", "Jump Address 8"}},
    {ctIfLessThan, 9, "IfLessThan", 3, "Jump to the given label if the first number is less than the second",
     {"Left Value 130", "Right Value 130", "Jump Address 8"}},
    {ctIfNotEqual, 10, "IfNotEqual", 3, "Jump to the given label if the first number is not equal than the second",
     {"Left Value 130", "Right Value 130", "Jump Address 8"}},
    {ctIfEqual, 11, "IfEqual", 3, "Jump to the given label if the first number is equal than the second",
     {"Left Value 130", "Right Value 130", "Jump Address 8"}},
    {ctSet, 12, "Set", 2, "Set the value of a variable", {"Variable 6", "Value to set to 134"}},
    {ctDecrement, 13, "Decrement", 1, "Decrement the value of a variable", {"Variable to Decrement 2"}},
    {ctIncrement, 14, "Increment", 1, "Increment the value of a variable", {"Variable to Increment 2"}},
    {ctMathsFunction, 15, "MathsFunction", 6, "Start a Script Block",
     {"Perform a Complex Mathamatical Calculation 132", "Number to be set with the vaule 2", "Parameter 0 130",
      "Parameter 1 130", "Parameter 2 130", "Parameter 3 130"}},
    {ctConCatString, 16, "ConCatString", 3, "Join two string",
     {"Variable to Set 4", "Left String 134", "Right String 134"}},
    {ctInputNumber, 17, "InputNumber", 4, "Input a number from the User within a give range",
     {"Question 132", "Variable to Set 2", "Lower Range 130", "Upper Range 130"}},
    {ctInputString, 18, "InputString", 3, "Input a string from the User within a maximum length",
     {"Question 132", "Variable to Set 4", "Maximum Length 130"}},
    {ctInfo, 19, "Info", 1, "Display a message on the screen", {"Information 132"}},
    {ctMsgAsk, 20, "MsgAsk", 2, "Jump to the given label if the user answers yes to the given question",
     {"Question Yes/No 132", "Jump Address 8"}},
    {ctMsgInfo, 21, "MsgInfo", 1, "Display a message box telling the user something", {"Information Box 132"}},
    {ctMsgInfoEx, 22, "MsgInfoEx", 2, "Display a message box telling the user something",
     {"Information Box 132", "Play Sound ID (0 = None) 132"}},
    {ctWaitTime, 23, "WaitTime", 2, "Display a message box telling the user something",
     {"Duration 130", "Message 132"}},
    {ctAddAnalysisMacro, 24, "AddAnalysisMacro", 1, "Adds an Analysis Macro to the Data File",
     {"Analysis Macro Text 132"}},
    {ctAddAnalysisMacroEx, 25, "AddAnalysisMacroEx", 4, "Adds an Analysis Macro Ex to the Data File",
     {"Name 132", "Units 132", "Format 132", "Macro String 132"}},
    {ctAddTestVariable, 26, "AddTestVariable", 3, "Add a test variable to the current traversal",
     {"Name 134", "Value 134", "Unit 134", "Input Mode 130"}},
    {ctAddDataSetVariable, 27, "AddDataSetVariable", 4, "Add a test variable to the next traversal",
     {"Name 134", "Value 134", "Unit 134", "Input Mode 130"}},
    {ctGetDataSet, 28, "GetDataSet", 4, "Move the Blade using the given parameters, recording data",
     {"Helix Angle 130", "Tip Speed 130", "Height 130", "Data Set Type 130"}},
    {ctGetDataSetEx, 29, "GetDataSetEx", 9, "Move the Blade using the given parameters, recording data",
     {"Helix Angle 130", "Tip Speed 130", "Height 130", "Data Set Type 130", "Levelling From 130", "Levelling Type 130",
      "Levelling Trigger 130", "Levelling Helix Angle 130", "Levelling Tip Speed 130"}},
    {ctRotateForDuration, 30, "RotateForDuration", 4, "Maintain the current height and rotate the spindle",
     {"Speed Mode 130", "Tip Speed or Spindle RPM 130", "Duration Mode 130", "Time or Revolutions 130"}},
    {ctMoveToHeight, 31, "MoveToHeight", 4, "Adjust the Zero Height",
     {"Height to Move To/By 130", "Type of Movement 130", "Helix Angle 130", "Tip Speed 130"}},
    {ctCompactToForce, 32, "CompactToForce", 5, "Compact to a Given Force",
     {"Compaction Force 130", "Carriage Speed 130", "Hold Time 130", "Lower Height 130", "Hold Mode 130"}},
    {ctCompactToForceEx, 33, "CompactToForceEx", 9, "Compact to a Given Force (Ex)",
     {"Compaction Force 130", "Hold Option 130", "Hold Time 130", "Control Option 130", "Control Param 1 130",
      "Control Param 2 130", "Number of Degrees 130", "Lowest Height 130", "Data Set Type 130"}},
    {ctSCTest, 34, "SCTest", 13, "Shear Cell Test",
     {"PC - Force 130", "PC - Hold Time 130", "PC - Maintain Zero Torque 130", "PC - Shear Rate 130",
      "PC - Shear Distance 130", "PS - Hold Time 130", "PS - Maintain Zero Torque 130", "Shear - Force 130",
      "Shear - Rate 130", "Shear - Distance 130", "Shear - Repeats 130", "Shear - Treat as Test 130",
      "Maximum Carriage Speed 130"}},
    {ctSCTestEx, 35, "SCTestEx", 20, "Shear Cell Test",
     {"PreShear - Force 130", "PreShear - Force Control Speed 130", "PreShear - Shear Rate 130",
      "PreShear - Shear Distance 130", "Shear Hold - Force 130", "Shear Hold - Time 130",
      "Shear Hold - Hold Zero Torque 130", "Shear Hold - Force Control Speed 130", "Shear - Force 130",
      "Shear - Force Control Speed 130", "Shear - Shear Rate 130", "Shear - Shear Distance 130", "Reserved 255",
      "Reserved 255", "Reserved 255", "Reserved 255", "Reserved 255", "Reserved 255", "Reserved 255", "Reserved 255"}},
    {ctSCTestFull, 36, "SCTestFull", 25, "Full Shear Cell Test",
     {"PS AutoAnalisePreShears 130", "PS NormalStress 130", "PS MaxDegrees 130", "PS ZeroTorqueBeforePreShear 130",
      "PS ShearRate 130", "PS ControlSpeed 130", "PS AutoDetectPeakTorque 130", "PS MS FirstIsMulti 130",
      "PS MS ConsecutiveTorquesWithin 130", "PS MS MaxDegrees 130", "PS MS MaximumNumber 130", "PH HoldFor 130",
      "PH ZeroTorque 130", "PH ControlSpeed 130", "PH SplitZeroTorqueAndForceChange 130", "S AutoAnaliseShears 130",
      "S Shear Distance 130", "S NormalStresses 132", "S ShearRate 130", "S ControlSpeed 130",
      "S AutoDetectPeakTorque 130", "Reserved 255", "Reserved 255", "Reserved 255", "Reserved 255"}},
    {ctPark, 37, "Park", 0, "Park the Blade", {}},
    {ctShakeBlade, 38, "ShakeBlade", 1, "Shake the Blade", {"Number of Shakes 130"}},
    {ctShakeBladeEx, 39, "ShakeBladeEx", 6, "Shake the Blade (Ex)",
     {"Number of Shakes 130", "Amplitude 130", "Frequency 130", "Reserved 255", "Reserved 255", "Reserved 255"}},
    {ctMoveIntoVessel, 40, "MoveIntoVessel", 1, "Move the blade into the vessel", {"Test Start Height 130"}},
    {ctMoveIntoVesselEx, 41, "MoveIntoVesselEx", 6, "Move the blade into the vessel (Ex)",
     {"Test Start Height 130", "Tare Torque 130", "Tare Force 130", "Reserved 255", "Reserved 255", "Reserved 255"}},
    {ctTareWeight, 42, "TareWeight", 0, "Tare the current weight", {}},
    {ctTareWeightEx, 43, "TareWeightEx", 6, "Tare the current weight (Ex)",
     {"Update Powder Mass 130", "Reserved 255", "Reserved 255", "Reserved 255", "Reserved 255", "Reserved 255"}},
    {ctChangeBlade, 44, "ChangeBlade", 6, "Change Blade",
     {"New Blade ID 130", "Reserved 255", "Reserved 255", "Reserved 255", "Reserved 255", "Reserved 255"}},
    {ctChangeVessel, 45, "ChangeVessel", 6, "Change Vessel",
     {"New Vessel ID 130", "Reserved 255", "Reserved 255", "Reserved 255", "Reserved 255", "Reserved 255"}},
    {ctVesselSplit, 46, "VesselSplit", 6, "Vessel Split",
     {"Reserved 255", "Reserved 255", "Reserved 255", "Reserved 255", "Reserved 255", "Reserved 255"}},
    {ctEndTest, 47, "EndTest", 0, "End the Test/Script", {}},
    {ctSaveData, 48, "SaveData", 0, "Save the Test Data", {}},
    {ctTextCommand, 49, "TextCommand", 7, "Send a Text Command to the CV Code",
     {"Text Command 132", "Air Volume l/min 255", "Parameter 1 255", "Parameter 2 255", "Parameter 3 255",
      "Parameter 4 255", "Parameter 5 255"}},
    {ctAccAerationControl, 50, "AerationControl", 7, "Send a Command to the Aeration Control Unit",
     {"Air On or Off 130", "Air Velocity mm/s 130", "Parameter 2 255", "Parameter 3 255", "Parameter 4 255",
      "Parameter 5 255", "Parameter 6 255"}},
    {ctAccPressureControl, 51, "PressureControl", 8, "Run a Pressure Control Test",
     {"Measure 130", "Force 130", "Air Velocity mm/s 130", "Pressure 130", "Hold Time 130", "Min Height 130",
      "Channel 1 or 2 (0 = Both) 130", "Parameter 7 255"}},
    {ctBlockStart, 52, "BlockStart", 1, "", {"Block Identification 132"}},
};
// clang-format on

std::vector<std::string> slotsOf(const FunctionDefinition& definition) {
    std::vector<std::string> slots;
    for (const ParameterDefinition& slot : definition.Params) {
        if (slot.ParamType == 0 && slot.ParamName.empty()) break;
        slots.push_back(toUtf8(slot.ParamName) + " " + std::to_string(slot.ParamType));
    }
    return slots;
}

TEST(StatementTable, HasTheFortyNinePublishedKinds) {
    EXPECT_EQ(publishedStatements.size(), 49U);
    EXPECT_EQ(statementTable.size(), 49U);
}

TEST(StatementTable, KindsHaveTheirPublishedValues) {
    for (const PublishedStatement& expected : publishedStatements) {
        SCOPED_TRACE(expected.keyword);
        EXPECT_EQ(expected.kind, expected.value);
        const StatementRow* row = findStatementRow(expected.value);
        ASSERT_NE(row, nullptr);
        EXPECT_EQ(row->kind, expected.value);
    }
}

TEST(StatementTable, KeywordsCountsAndDescriptionsAreThePublishedOnes) {
    for (const PublishedStatement& expected : publishedStatements) {
        SCOPED_TRACE(expected.keyword);
        const FunctionDefinition& definition = findStatementRow(expected.value)->definition;
        EXPECT_EQ(toUtf8(definition.Name), expected.keyword);
        EXPECT_EQ(definition.ParamCount, expected.parameterCount);
        EXPECT_EQ(toUtf8(definition.Description), expected.description);
    }
}

TEST(StatementTable, SlotsHaveThePublishedNamesAndMasks) {
    for (const PublishedStatement& expected : publishedStatements) {
        SCOPED_TRACE(expected.keyword);
        const FunctionDefinition& definition = findStatementRow(expected.value)->definition;
        EXPECT_EQ(slotsOf(definition), std::vector<std::string>(expected.slots.begin(), expected.slots.end()));
    }
}

TEST(StatementTable, SlotsBehindTheLastNamedOneAreEmpty) {
    for (const PublishedStatement& expected : publishedStatements) {
        SCOPED_TRACE(expected.keyword);
        const FunctionDefinition& definition = findStatementRow(expected.value)->definition;
        for (std::size_t slot = expected.slots.size(); slot < definition.Params.size(); ++slot) {
            EXPECT_EQ(definition.Params[slot].ParamType, 0) << slot;
            EXPECT_TRUE(definition.Params[slot].ParamName.empty()) << slot;
        }
    }
}

TEST(StatementTable, EveryKindNamesAsManySlotsAsItTakesExceptTheTestVariable) {
    for (const StatementRow& row : statementTable) {
        const auto named = static_cast<std::int32_t>(slotsOf(row.definition).size());
        EXPECT_EQ(named, row.definition.ParamCount + (row.kind == ctAddTestVariable ? 1 : 0))
            << toUtf8(row.definition.Name);
    }
}

TEST(StatementTable, OnlyEightMasksOccur) {
    std::set<std::int32_t> masks;
    for (const StatementRow& row : statementTable)
        for (const ParameterDefinition& slot : row.definition.Params) masks.insert(slot.ParamType);
    EXPECT_EQ(masks, (std::set<std::int32_t>{0, 2, 4, 6, 8, 130, 132, 134, 255}));
}

TEST(StatementTable, ThreeRowsSurpriseAsPublished) {
    EXPECT_EQ(findStatementRow(ctMathsFunction)->definition.Description, u"Start a Script Block");
    EXPECT_EQ(findStatementRow(ctBlockStart)->definition.Description, u"");
    EXPECT_EQ(findStatementRow(ctWaitTime)->definition.Description,
              findStatementRow(ctMsgInfo)->definition.Description);
    EXPECT_EQ(findStatementRow(ctAddTestVariable)->definition.ParamCount, 3);
    EXPECT_EQ(findStatementRow(ctAddTestVariable)->definition.Params[3].ParamName, u"Input Mode");
}

TEST(StatementTable, HasNoRowForWhatIsNoStatement) {
    for (const std::int32_t kind : {-2147483647 - 1, -1, 0, 1, 2, 3, 53, 99, 100, 2147483647})
        EXPECT_EQ(findStatementRow(kind), nullptr) << kind;
}

/// What fills the arguments of the event before tSucess: "P2" is the statement's parameter 2, a number is fixed.
std::string sourcesOf(const Execution& execution) {
    const std::size_t arguments = eventRow(execution.event).argumentCount - 1U;
    std::string sources;
    for (std::size_t i = 0; i < arguments; ++i) {
        if (i != 0) sources += " ";
        if (i < execution.passed)
            sources += "P" + std::to_string(i);
        else
            sources += std::to_string(static_cast<int>(execution.rest));
    }
    return sources;
}

std::string upTo(int last) {
    std::string sources = "P0";
    for (int i = 1; i <= last; ++i) sources += " P" + std::to_string(i);
    return sources;
}

struct Raised {
    enumCommandType kind;
    std::string_view event;
    std::string sources;
};

const std::vector<Raised> raisedEvents = {
    {ctWaitTime, "WaitTime", upTo(1)},
    {ctAddAnalysisMacro, "AddAnalysisMacro", "P0"},
    {ctAddAnalysisMacroEx, "AddAnalysisMacroEx", upTo(3)},
    {ctAddTestVariable, "AddTestVariable", "P0 P1 P2 0"},
    {ctAddDataSetVariable, "AddDataSetVariable", upTo(3)},
    {ctRotateForDuration, "RotateForDuration", upTo(3)},
    {ctMoveToHeight, "MoveToHeight", upTo(3)},
    {ctCompactToForce, "CompactToForce", upTo(4)},
    {ctCompactToForceEx, "CompactToForceEx", upTo(8)},
    {ctSCTest, "SCTest", upTo(12)},
    {ctSCTestEx, "SCTestEx", upTo(19)},
    {ctSCTestFull, "SCTestFull", upTo(24)},
    {ctPark, "Park", ""},
    {ctShakeBlade, "ShakeBlade", "P0 -1 -1"},
    {ctShakeBladeEx, "ShakeBlade", "P0 P1 P2"},
    {ctMoveIntoVessel, "MoveIntoVessel", "P0"},
    {ctMoveIntoVesselEx, "MoveIntoVesselEx", "P0 P1 P2 0 0 0"},
    {ctTareWeight, "TareWeight", ""},
    {ctTareWeightEx, "TareWeightEx", "P0 0 0 0 0 0"},
    {ctChangeBlade, "ChangeBlade", "P0 0 0 0 0 0"},
    {ctChangeVessel, "ChangeVessel", "P0 0 0 0 0 0"},
    {ctVesselSplit, "VesselSplit", "P0 0 0 0 0 0"},
    {ctEndTest, "EndTest", ""},
    {ctSaveData, "SaveData", ""},
    {ctTextCommand, "TextCommand", upTo(6)},
    {ctAccAerationControl, "AerationControl", upTo(6)},
    {ctAccPressureControl, "PressureControl", upTo(7)},
};

TEST(StatementTable, InstrumentStatementsFillTheirEventFromTheirParameters) {
    for (const Raised& expected : raisedEvents) {
        SCOPED_TRACE(expected.kind);
        const Execution& execution = findStatementRow(expected.kind)->execution;
        ASSERT_TRUE(execution.raises());
        EXPECT_EQ(eventRow(execution.event).name, expected.event);
        EXPECT_EQ(sourcesOf(execution), expected.sources);
    }
}

TEST(StatementTable, NoStatementRaisesTheExtendedShake) {
    for (const StatementRow& row : statementTable) {
        if (!row.execution.raises()) continue;
        EXPECT_NE(row.execution.event, HostEvent::ShakeBladeEx) << row.kind;
    }
}

TEST(StatementTable, NoEventTakesAParameterThatTheStatementDoesNotHave) {
    for (const StatementRow& row : statementTable) {
        if (!row.execution.raises()) continue;
        const std::int32_t arguments = eventRow(row.execution.event).argumentCount - 1;
        EXPECT_LE(std::min<std::int32_t>(row.execution.passed, arguments), row.definition.ParamCount) << row.kind;
    }
}

TEST(StatementTable, TheOtherStatementsRunInsideTheEngineByTheirOwnHandlers) {
    using Engine = clsCommandList;
    struct Handled {
        enumCommandType kind;
        Execution::Handler handler;
    };
    const std::vector<Handled> handled = {
        {ctGoto, handledBy<&Engine::executeGoto>},
        {ctCall, handledBy<&Engine::executeCall>},
        {ctReturn, handledBy<&Engine::executeReturn>},
        {ctIfNotFinishLoopFlag, handledBy<&Engine::executeIfNotFinishLoopFlag>},
        {ctIfGreaterThan, handledBy<&Engine::executeIfGreaterThan>},
        {ctIfLessThan, handledBy<&Engine::executeIfLessThan>},
        {ctIfNotEqual, handledBy<&Engine::executeIfNotEqual>},
        {ctIfEqual, handledBy<&Engine::executeIfEqual>},
        {ctSet, handledBy<&Engine::executeSet>},
        {ctDecrement, handledBy<&Engine::executeDecrement>},
        {ctIncrement, handledBy<&Engine::executeIncrement>},
        {ctMathsFunction, handledBy<&Engine::executeMathsFunction>},
        {ctConCatString, handledBy<&Engine::executeConCatString>},
        {ctInputNumber, handledBy<&Engine::executeInputNumber>},
        {ctInputString, handledBy<&Engine::executeInputString>},
        {ctInfo, handledBy<&Engine::executeInfo>},
        {ctMsgAsk, handledBy<&Engine::executeMsgAsk>},
        {ctMsgInfo, handledBy<&Engine::executeMsgInfo>},
        {ctMsgInfoEx, handledBy<&Engine::executeMsgInfoEx>},
        {ctGetDataSet, handledBy<&Engine::executeGetDataSet>},
        {ctGetDataSetEx, handledBy<&Engine::executeGetDataSetEx>},
        {ctBlockStart, handledBy<&Engine::executeInfo>},
    };
    for (const Handled& expected : handled) {
        SCOPED_TRACE(expected.kind);
        const Execution& execution = findStatementRow(expected.kind)->execution;
        EXPECT_FALSE(execution.raises());
        EXPECT_TRUE(execution.handler == expected.handler);
    }
    EXPECT_EQ(handled.size() + raisedEvents.size(), statementTable.size());
}

TEST(StatementTable, NamesAKindByItsKeywordInAnyCase) {
    for (const StatementRow& row : statementTable) {
        EXPECT_EQ(statementKindNamed(row.definition.Name), row.kind);
        EXPECT_EQ(statementKindNamed(toLower(row.definition.Name)), row.kind);
    }
    for (const std::u16string_view other : {u"", u"G", u"Gotoo", u"Goto ", u"Declare Variable", u"<unknown>"})
        EXPECT_EQ(statementKindNamed(other), ctUnknown) << toUtf8(other);
}

}  // namespace
}  // namespace corvane
