#include "engine/statement_table.h"

#include <initializer_list>

#include "engine/clsCommandList.h"
#include "platform/text_case.h"

namespace corvane {
namespace {

// What a parameter slot accepts.
constexpr std::int32_t NumberVariable = ptNumber;
constexpr std::int32_t StringVariable = ptString;
constexpr std::int32_t AnyVariable = ptNumber | ptString;
constexpr std::int32_t Label = ptLabel;
constexpr std::int32_t Number = ptConstant | ptNumber;
constexpr std::int32_t String = ptConstant | ptString;
constexpr std::int32_t NumberOrString = ptConstant | ptNumber | ptString;
constexpr std::int32_t Anything = 255;  // reserved slots; the only ones that admit an environment variable

consteval Execution inside(Execution::Handler handler, enumCommandType calledAs = ctUnknown) {
    return {handler, calledAs, HostEvent{}, 0, 0.0F};
}

constexpr std::uint8_t everyArgument = 0xFF;
consteval Execution raises(HostEvent event, std::uint8_t passed = everyArgument, float rest = 0.0F) {
    return {[](clsCommandList& engine, const clsCommand& command, bool, const Execution& execution) {
                return engine.raiseToHost(command, execution);
            },
            ctUnknown, event, passed, rest};
}

}  // namespace

// clang-format off
extern constexpr std::array<StatementRow, statementKindCount> statementTable = {{
    // kind, keyword, count, description, parameters, execution
    {ctGoto, u"Goto", 1, u"Goto a given label",
     {{Label, u"Jump Address"}}, inside(handledBy<&clsCommandList::executeGoto>)},
    {ctCall, u"Call", 1, u"Call a given label",
     {{Label, u"Call Address"}}, inside(handledBy<&clsCommandList::executeCall>)},
    {ctReturn, u"Return", 0, u"Return back to the caller function",
     {}, inside(handledBy<&clsCommandList::executeReturn>)},
    {ctIfNotFinishLoopFlag, u"IfNotFinishLoopFlag", 2, u"Jump to the given address if the user has not clicked the 'finish loop' button",
     {{String, u"Question"}, {Label, u"Jump Address"}}, inside(handledBy<&clsCommandList::executeIfNotFinishLoopFlag>)},
    {ctIfGreaterThan, u"IfGreaterThan", 3, u"Jump to the given label if the first number is greater than the second",
     {{Number, u"Left Value"}, {Number, u"Right Value"}, {Label, u"Jump Address"}},
      inside(handledBy<&clsCommandList::executeIfGreaterThan>)},
    {ctIfLessThan, u"IfLessThan", 3, u"Jump to the given label if the first number is less than the second",
     {{Number, u"Left Value"}, {Number, u"Right Value"}, {Label, u"Jump Address"}},
      inside(handledBy<&clsCommandList::executeIfLessThan>)},
    {ctIfNotEqual, u"IfNotEqual", 3, u"Jump to the given label if the first number is not equal than the second",
     {{Number, u"Left Value"}, {Number, u"Right Value"}, {Label, u"Jump Address"}},
      inside(handledBy<&clsCommandList::executeIfNotEqual>)},
    {ctIfEqual, u"IfEqual", 3, u"Jump to the given label if the first number is equal than the second",
     {{Number, u"Left Value"}, {Number, u"Right Value"}, {Label, u"Jump Address"}},
      inside(handledBy<&clsCommandList::executeIfEqual>)},
    {ctSet, u"Set", 2, u"Set the value of a variable",
     {{AnyVariable, u"Variable"}, {NumberOrString, u"Value to set to"}}, inside(handledBy<&clsCommandList::executeSet>)},
    {ctDecrement, u"Decrement", 1, u"Decrement the value of a variable",
     {{NumberVariable, u"Variable to Decrement"}}, inside(handledBy<&clsCommandList::executeDecrement>)},
    {ctIncrement, u"Increment", 1, u"Increment the value of a variable",
     {{NumberVariable, u"Variable to Increment"}}, inside(handledBy<&clsCommandList::executeIncrement>)},
    // Kept: this description belongs to a block start, and WaitTime's to a message box.
    {ctMathsFunction, u"MathsFunction", 6, u"Start a Script Block",
     {{String, u"Perform a Complex Mathamatical Calculation"}, {NumberVariable, u"Number to be set with the vaule"},
      {Number, u"Parameter 0"}, {Number, u"Parameter 1"}, {Number, u"Parameter 2"}, {Number, u"Parameter 3"}},
      inside(handledBy<&clsCommandList::executeMathsFunction>)},
    {ctConCatString, u"ConCatString", 3, u"Join two string",
     {{StringVariable, u"Variable to Set"}, {NumberOrString, u"Left String"}, {NumberOrString, u"Right String"}},
      inside(handledBy<&clsCommandList::executeConCatString>)},
    {ctInputNumber, u"InputNumber", 4, u"Input a number from the User within a give range",
     {{String, u"Question"}, {NumberVariable, u"Variable to Set"}, {Number, u"Lower Range"},
      {Number, u"Upper Range"}}, inside(handledBy<&clsCommandList::executeInputNumber>)},
    {ctInputString, u"InputString", 3, u"Input a string from the User within a maximum length",
     {{String, u"Question"}, {StringVariable, u"Variable to Set"}, {Number, u"Maximum Length"}},
      inside(handledBy<&clsCommandList::executeInputString>)},
    {ctInfo, u"Info", 1, u"Display a message on the screen",
     {{String, u"Information"}}, inside(handledBy<&clsCommandList::executeInfo>)},
    {ctMsgAsk, u"MsgAsk", 2, u"Jump to the given label if the user answers yes to the given question",
     {{String, u"Question Yes/No"}, {Label, u"Jump Address"}}, inside(handledBy<&clsCommandList::executeMsgAsk>)},
    {ctMsgInfo, u"MsgInfo", 1, u"Display a message box telling the user something",
     {{String, u"Information Box"}}, inside(handledBy<&clsCommandList::executeMsgInfo>)},
    {ctMsgInfoEx, u"MsgInfoEx", 2, u"Display a message box telling the user something",
     {{String, u"Information Box"}, {String, u"Play Sound ID (0 = None)"}},
      inside(handledBy<&clsCommandList::executeMsgInfoEx>)},
    {ctWaitTime, u"WaitTime", 2, u"Display a message box telling the user something",
     {{Number, u"Duration"}, {String, u"Message"}}, raises(HostEvent::WaitTime)},
    {ctAddAnalysisMacro, u"AddAnalysisMacro", 1, u"Adds an Analysis Macro to the Data File",
     {{String, u"Analysis Macro Text"}}, raises(HostEvent::AddAnalysisMacro)},
    {ctAddAnalysisMacroEx, u"AddAnalysisMacroEx", 4, u"Adds an Analysis Macro Ex to the Data File",
     {{String, u"Name"}, {String, u"Units"}, {String, u"Format"}, {String, u"Macro String"}},
      raises(HostEvent::AddAnalysisMacroEx)},
    // Kept: three parameters for four slots; "Input Mode" is never bound and its argument is 0.
    {ctAddTestVariable, u"AddTestVariable", 3, u"Add a test variable to the current traversal",
     {{NumberOrString, u"Name"}, {NumberOrString, u"Value"}, {NumberOrString, u"Unit"}, {Number, u"Input Mode"}},
      raises(HostEvent::AddTestVariable, 3)},
    {ctAddDataSetVariable, u"AddDataSetVariable", 4, u"Add a test variable to the next traversal",
     {{NumberOrString, u"Name"}, {NumberOrString, u"Value"}, {NumberOrString, u"Unit"}, {Number, u"Input Mode"}},
      raises(HostEvent::AddDataSetVariable)},
    {ctGetDataSet, u"GetDataSet", 4, u"Move the Blade using the given parameters, recording data",
     {{Number, u"Helix Angle"}, {Number, u"Tip Speed"}, {Number, u"Height"}, {Number, u"Data Set Type"}},
      inside(handledBy<&clsCommandList::executeGetDataSet>)},
    {ctGetDataSetEx, u"GetDataSetEx", 9, u"Move the Blade using the given parameters, recording data",
     {{Number, u"Helix Angle"}, {Number, u"Tip Speed"}, {Number, u"Height"}, {Number, u"Data Set Type"},
      {Number, u"Levelling From"}, {Number, u"Levelling Type"}, {Number, u"Levelling Trigger"},
      {Number, u"Levelling Helix Angle"}, {Number, u"Levelling Tip Speed"}},
      inside(handledBy<&clsCommandList::executeGetDataSetEx>)},
    {ctRotateForDuration, u"RotateForDuration", 4, u"Maintain the current height and rotate the spindle",
     {{Number, u"Speed Mode"}, {Number, u"Tip Speed or Spindle RPM"}, {Number, u"Duration Mode"},
      {Number, u"Time or Revolutions"}}, raises(HostEvent::RotateForDuration)},
    {ctMoveToHeight, u"MoveToHeight", 4, u"Adjust the Zero Height",
     {{Number, u"Height to Move To/By"}, {Number, u"Type of Movement"}, {Number, u"Helix Angle"},
      {Number, u"Tip Speed"}}, raises(HostEvent::MoveToHeight)},
    {ctCompactToForce, u"CompactToForce", 5, u"Compact to a Given Force",
     {{Number, u"Compaction Force"}, {Number, u"Carriage Speed"}, {Number, u"Hold Time"}, {Number, u"Lower Height"},
      {Number, u"Hold Mode"}}, raises(HostEvent::CompactToForce)},
    {ctCompactToForceEx, u"CompactToForceEx", 9, u"Compact to a Given Force (Ex)",
     {{Number, u"Compaction Force"}, {Number, u"Hold Option"}, {Number, u"Hold Time"}, {Number, u"Control Option"},
      {Number, u"Control Param 1"}, {Number, u"Control Param 2"}, {Number, u"Number of Degrees"},
      {Number, u"Lowest Height"}, {Number, u"Data Set Type"}}, raises(HostEvent::CompactToForceEx)},
    {ctSCTest, u"SCTest", 13, u"Shear Cell Test",
     {{Number, u"PC - Force"}, {Number, u"PC - Hold Time"}, {Number, u"PC - Maintain Zero Torque"},
      {Number, u"PC - Shear Rate"}, {Number, u"PC - Shear Distance"}, {Number, u"PS - Hold Time"},
      {Number, u"PS - Maintain Zero Torque"}, {Number, u"Shear - Force"}, {Number, u"Shear - Rate"},
      {Number, u"Shear - Distance"}, {Number, u"Shear - Repeats"}, {Number, u"Shear - Treat as Test"},
      {Number, u"Maximum Carriage Speed"}}, raises(HostEvent::SCTest)},
    {ctSCTestEx, u"SCTestEx", 20, u"Shear Cell Test",
     {{Number, u"PreShear - Force"}, {Number, u"PreShear - Force Control Speed"}, {Number, u"PreShear - Shear Rate"},
      {Number, u"PreShear - Shear Distance"}, {Number, u"Shear Hold - Force"}, {Number, u"Shear Hold - Time"},
      {Number, u"Shear Hold - Hold Zero Torque"}, {Number, u"Shear Hold - Force Control Speed"},
      {Number, u"Shear - Force"}, {Number, u"Shear - Force Control Speed"}, {Number, u"Shear - Shear Rate"},
      {Number, u"Shear - Shear Distance"}, {Anything, u"Reserved"}, {Anything, u"Reserved"}, {Anything, u"Reserved"},
      {Anything, u"Reserved"}, {Anything, u"Reserved"}, {Anything, u"Reserved"}, {Anything, u"Reserved"},
      {Anything, u"Reserved"}}, raises(HostEvent::SCTestEx)},
    {ctSCTestFull, u"SCTestFull", 25, u"Full Shear Cell Test",
     {{Number, u"PS AutoAnalisePreShears"}, {Number, u"PS NormalStress"}, {Number, u"PS MaxDegrees"},
      {Number, u"PS ZeroTorqueBeforePreShear"}, {Number, u"PS ShearRate"}, {Number, u"PS ControlSpeed"},
      {Number, u"PS AutoDetectPeakTorque"}, {Number, u"PS MS FirstIsMulti"},
      {Number, u"PS MS ConsecutiveTorquesWithin"}, {Number, u"PS MS MaxDegrees"}, {Number, u"PS MS MaximumNumber"},
      {Number, u"PH HoldFor"}, {Number, u"PH ZeroTorque"}, {Number, u"PH ControlSpeed"},
      {Number, u"PH SplitZeroTorqueAndForceChange"}, {Number, u"S AutoAnaliseShears"}, {Number, u"S Shear Distance"},
      {String, u"S NormalStresses"}, {Number, u"S ShearRate"}, {Number, u"S ControlSpeed"},
      {Number, u"S AutoDetectPeakTorque"}, {Anything, u"Reserved"}, {Anything, u"Reserved"}, {Anything, u"Reserved"},
      {Anything, u"Reserved"}}, raises(HostEvent::SCTestFull)},
    {ctPark, u"Park", 0, u"Park the Blade",
     {}, raises(HostEvent::Park)},
    // Kept: amplitude and frequency are -1.
    {ctShakeBlade, u"ShakeBlade", 1, u"Shake the Blade",
     {{Number, u"Number of Shakes"}}, raises(HostEvent::ShakeBlade, 1, -1.0F)},
    // Kept: the plain event; nothing raises ShakeBladeEx.
    {ctShakeBladeEx, u"ShakeBladeEx", 6, u"Shake the Blade (Ex)",
     {{Number, u"Number of Shakes"}, {Number, u"Amplitude"}, {Number, u"Frequency"}, {Anything, u"Reserved"},
      {Anything, u"Reserved"}, {Anything, u"Reserved"}}, raises(HostEvent::ShakeBlade)},
    {ctMoveIntoVessel, u"MoveIntoVessel", 1, u"Move the blade into the vessel",
     {{Number, u"Test Start Height"}}, raises(HostEvent::MoveIntoVessel)},
    {ctMoveIntoVesselEx, u"MoveIntoVesselEx", 6, u"Move the blade into the vessel (Ex)",
     {{Number, u"Test Start Height"}, {Number, u"Tare Torque"}, {Number, u"Tare Force"}, {Anything, u"Reserved"},
      {Anything, u"Reserved"}, {Anything, u"Reserved"}}, raises(HostEvent::MoveIntoVesselEx, 3)},
    {ctTareWeight, u"TareWeight", 0, u"Tare the current weight",
     {}, raises(HostEvent::TareWeight)},
    {ctTareWeightEx, u"TareWeightEx", 6, u"Tare the current weight (Ex)",
     {{Number, u"Update Powder Mass"}, {Anything, u"Reserved"}, {Anything, u"Reserved"}, {Anything, u"Reserved"},
      {Anything, u"Reserved"}, {Anything, u"Reserved"}}, raises(HostEvent::TareWeightEx, 1)},
    {ctChangeBlade, u"ChangeBlade", 6, u"Change Blade",
     {{Number, u"New Blade ID"}, {Anything, u"Reserved"}, {Anything, u"Reserved"}, {Anything, u"Reserved"},
      {Anything, u"Reserved"}, {Anything, u"Reserved"}}, raises(HostEvent::ChangeBlade, 1)},
    {ctChangeVessel, u"ChangeVessel", 6, u"Change Vessel",
     {{Number, u"New Vessel ID"}, {Anything, u"Reserved"}, {Anything, u"Reserved"}, {Anything, u"Reserved"},
      {Anything, u"Reserved"}, {Anything, u"Reserved"}}, raises(HostEvent::ChangeVessel, 1)},
    {ctVesselSplit, u"VesselSplit", 6, u"Vessel Split",
     {{Anything, u"Reserved"}, {Anything, u"Reserved"}, {Anything, u"Reserved"}, {Anything, u"Reserved"},
      {Anything, u"Reserved"}, {Anything, u"Reserved"}}, raises(HostEvent::VesselSplit, 1)},
    {ctEndTest, u"EndTest", 0, u"End the Test/Script",
     {}, raises(HostEvent::EndTest)},
    {ctSaveData, u"SaveData", 0, u"Save the Test Data",
     {}, raises(HostEvent::SaveData)},
    {ctTextCommand, u"TextCommand", 7, u"Send a Text Command to the CV Code",
     {{String, u"Text Command"}, {Anything, u"Air Volume l/min"}, {Anything, u"Parameter 1"},
      {Anything, u"Parameter 2"}, {Anything, u"Parameter 3"}, {Anything, u"Parameter 4"}, {Anything, u"Parameter 5"}},
      raises(HostEvent::TextCommand)},
    {ctAccAerationControl, u"AerationControl", 7, u"Send a Command to the Aeration Control Unit",
     {{Number, u"Air On or Off"}, {Number, u"Air Velocity mm/s"}, {Anything, u"Parameter 2"},
      {Anything, u"Parameter 3"}, {Anything, u"Parameter 4"}, {Anything, u"Parameter 5"}, {Anything, u"Parameter 6"}},
      raises(HostEvent::AerationControl)},
    {ctAccPressureControl, u"PressureControl", 8, u"Run a Pressure Control Test",
     {{Number, u"Measure"}, {Number, u"Force"}, {Number, u"Air Velocity mm/s"}, {Number, u"Pressure"},
      {Number, u"Hold Time"}, {Number, u"Min Height"}, {Number, u"Channel 1 or 2 (0 = Both)"},
      {Anything, u"Parameter 7"}}, raises(HostEvent::PressureControl)},
    // Kept: an Info in all respects, FunctionCalled included.
    {ctBlockStart, u"BlockStart", 1, u"",
     {{String, u"Block Identification"}}, inside(handledBy<&clsCommandList::executeInfo>, ctInfo)},
}};
// clang-format on

extern constexpr std::array<Execution, statementKindCount> executionTable = []() {
    std::array<Execution, statementKindCount> executions;
    for (std::size_t i = 0; i < executions.size(); ++i) executions[i] = statementTable[i].execution;
    return executions;
}();

namespace {

consteval bool rowsStandInKindOrder() {
    for (std::size_t i = 0; i < statementTable.size(); ++i)
        if (statementTable[i].kind != firstStatementKind + static_cast<std::int32_t>(i)) return false;
    return true;
}
static_assert(rowsStandInKindOrder(), "rows stand in the order of their kinds, none is left out");

/// The keywords, hashed: a load looks one up for each statement.
class KeywordTable {
public:
    consteval KeywordTable() {
        for (const StatementRow& row : statementTable) {
            std::size_t place = hash(row.definition.Name);
            while (kinds_[place] != ctUnknown) place = (place + 1) % size;
            kinds_[place] = static_cast<std::uint8_t>(row.kind);
        }
    }

    std::int32_t find(std::u16string_view keyword) const {
        for (std::size_t place = hash(keyword); kinds_[place] != ctUnknown; place = (place + 1) % size)
            if (equalIgnoringCase(findStatementRow(kinds_[place])->definition.Name, keyword)) return kinds_[place];
        return ctUnknown;
    }

private:
    static constexpr std::size_t size = 256;
    // Four marks tell most of the keywords apart; the comparison that follows reads them all.
    static constexpr std::size_t hash(std::u16string_view keyword) {
        const std::size_t length = keyword.size();
        return (length * 37 + toLower(keyword.front()) + toLower(keyword[length / 2]) * 5u +
                toLower(keyword.back()) * 11u) %
               size;
    }
    std::array<std::uint8_t, size> kinds_{};
};
constexpr KeywordTable keywords;

}  // namespace

std::int32_t statementKindNamed(std::u16string_view keyword) {
    return keyword.empty() ? ctUnknown : keywords.find(keyword);
}

}  // namespace corvane
