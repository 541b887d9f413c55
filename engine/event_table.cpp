#include "engine/event_table.h"

#include <algorithm>

namespace corvane {
namespace {

consteval EventArgument text(std::string_view name) { return {name, ValueType::Text, true, {}}; }
consteval EventArgument single(std::string_view name) { return {name, ValueType::Single, true, {}}; }
consteval EventArgument integer(std::string_view name) { return {name, ValueType::Long, true, {}}; }
consteval EventArgument boolean(std::string_view name) { return {name, ValueType::Boolean, true, {}}; }
consteval EventArgument enumeration(std::string_view name, std::string_view type) {
    return {name, ValueType::Long, true, type};
}
/// A message box's answer, numbered as the platform numbers it.
consteval EventArgument answerCode(std::string_view name) { return enumeration(name, "message-box answer"); }
consteval EventArgument object(std::string_view name) {
    return {name, ValueType::Object, true, "clsDataSetParameters"};
}
consteval EventArgument byValue(EventArgument argument) {
    argument.byReference = false;
    return argument;
}
constexpr EventArgument success = boolean("tSucess");

}  // namespace

// clang-format off
extern constexpr std::array<EventRow, eventCount> eventTable = {{
    //  event, name, listed as, how many of its arguments are listed, arguments
    {HostEvent::RequiredFinishLoopFlag, "RequiredFinishLoopFlag", ctIfNotFinishLoopFlag, 1, {byValue(text("tPrompt")), success}},
    {HostEvent::MathsFunction, "MathsFunction", ctMathsFunction, 5, {text("tFunction"), single("tParam0"), single("tParam1"), single("tParam2"), single("tParam3"), single("tReturn"), success}},
    {HostEvent::InputNumber, "InputNumber", ctInputNumber, 4, {text("tQuest"), single("tMin"), single("tMax"), single("tValue"), boolean("tDLLExecute"), success}},
    {HostEvent::InputString, "InputString", ctInputString, 3, {text("tQuest"), integer("tMaxLen"), text("tValue"), boolean("tDLLExecute"), success}},
    {HostEvent::Info, "Info", ctInfo, 1, {text("tInfoStr"), success}},
    {HostEvent::MsgAsk, "MsgAsk", ctMsgAsk, 1, {text("tQuest"), answerCode("tResult"), boolean("tDLLExecute"), success}},
    {HostEvent::MsgInfo, "MsgInfo", ctMsgInfo, 1, {text("tQuest"), boolean("tDLLExecute"), success}},
    {HostEvent::MsgInfoEx, "MsgInfoEx", ctMsgInfoEx, 3, {text("tQuest"), integer("tSoundID"), boolean("tDLLExecute"), success}},
    {HostEvent::WaitTime, "WaitTime", ctWaitTime, 2, {single("tDuration"), text("tMessage"), success}},
    {HostEvent::AddAnalysisMacro, "AddAnalysisMacro", ctAddAnalysisMacro, 1, {text("tMacroString"), success}},
    {HostEvent::AddAnalysisMacroEx, "AddAnalysisMacroEx", ctAddAnalysisMacroEx, 4, {text("tMacroName"), text("tMacroUnits"), text("tMacroFormat"), text("tMacroString"), success}},
    {HostEvent::AddTestVariable, "AddTestVariable", ctAddTestVariable, 4, {byValue(text("tName")), byValue(text("tValue")), byValue(text("tUnit")), byValue(enumeration("tInputMethod", "enumAddVariableMode")), success}},
    {HostEvent::AddDataSetVariable, "AddDataSetVariable", ctAddDataSetVariable, 4, {byValue(text("tName")), byValue(text("tValue")), byValue(text("tUnit")), byValue(enumeration("tInputMethod", "enumAddVariableMode")), success}},
    {HostEvent::GetDataSet, "GetDataSet", ctGetDataSet, 0, {byValue(object("tTestParameters")), success}},
    {HostEvent::RotateForDuration, "RotateForDuration", ctRotateForDuration, 4, {byValue(integer("tSpeedMode")), byValue(single("tSpeed")), byValue(integer("tDurationMode")), byValue(single("tDuration")), success}},
    {HostEvent::MoveToHeight, "MoveToHeight", ctMoveToHeight, 4, {single("tHeightMM"), integer("tMoveType"), single("tHelixAngle"), single("tTipSpeed"), success}},
    {HostEvent::CompactToForce, "CompactToForce", ctCompactToForce, 5, {single("tForceN"), single("tCarriageSpeed"), single("tMinHeight"), single("tHoldTime"), integer("tHoldMode"), success}},
    {HostEvent::CompactToForceEx, "CompactToForceEx", ctCompactToForceEx, 9, {single("tForceN"), integer("tHoldOption"), single("tHoldTime"), integer("tControlOption"), single("tControlParam1"), single("tControlParam2"), single("tNumberOfDegrees"), single("tLowestHeight"), integer("tDataSetType"), success}},
    {HostEvent::SCTest, "SCTest", ctSCTest, 13, {single("tPCForce"), single("tPCHoldTime"), integer("tPCMaintainZeroTorque"), single("tPCShearRate"), single("tPCShearDistance"), single("tPSHoldTime"), integer("tPSMaintainZeroTorque"), single("tShearForce"), single("tShearRate"), single("tShearDistance"), integer("tShearRepeats"), integer("tShearTreatAsTest"), single("tMaxCarriageSpeed"), success}},
    {HostEvent::SCTestEx, "SCTestEx", ctSCTestEx, 20, {single("tPSForce"), single("tPSControlSpeed"), single("tPSShearRate"), single("tPSShearDistance"), single("tPHForce"), single("tPHTime"), integer("tPHHoldZeroTorque"), single("tSHControlSpeed"), single("tSForce"), single("tSControlSpeed"), single("tSShearRate"), single("tSShearDistance"), text("tR1"), text("tR2"), text("tR3"), text("tR4"), single("tR5"), text("tR6"), text("tR7"), text("tR8"), success}},
    {HostEvent::SCTestFull, "SCTestFull", ctSCTestFull, 25, {boolean("tPSAutoAnalisePreShears"), single("tPSNormalStress"), single("tPSMaxDegrees"), boolean("tPSZeroTorqueBeforePreShear"), single("tPSShearRate"), single("tPSControlSpeed"), boolean("tPSAutoDetectPeakTorque"), boolean("tPSMSFirstIsMulti"), single("tPSMSConsecutiveTorquesWithin"), single("tPSMSMaxDegrees"), integer("tPSMSMaximumNumber"), single("tPHHoldFor"), boolean("tPHZeroTorque"), single("tPHControlSpeed"), boolean("tPHSplitZeroTorqueAndForceChange"), boolean("tSAutoAnaliseShears"), single("tSShearDistance"), text("tSNormalStresses"), single("tSShearRate"), single("tSControlSpeed"), boolean("tSAutoDetectPeakTorque"), text("tReserved0"), text("tReserved1"), text("tReserved2"), text("tReserved3"), success}},
    {HostEvent::Park, "Park", ctPark, 0, {success}},
    {HostEvent::ShakeBlade, "ShakeBlade", ctShakeBlade, 3, {byValue(integer("tNumberOfTimes")), byValue(single("tAmplitude")), byValue(single("tFrequency")), success}},
    {HostEvent::ShakeBladeEx, "ShakeBladeEx", ctShakeBladeEx, 3, {byValue(integer("tNumberOfTimes")), byValue(single("tAmplitude")), byValue(single("tFrequency")), byValue(integer("tR1")), byValue(integer("tR2")), byValue(integer("tR3")), success}},
    {HostEvent::MoveIntoVessel, "MoveIntoVessel", ctMoveIntoVessel, 1, {byValue(single("tTestStartHeight")), success}},
    {HostEvent::MoveIntoVesselEx, "MoveIntoVesselEx", ctMoveIntoVesselEx, 3, {byValue(single("tTestStartHeight")), byValue(integer("tTareTorque")), byValue(integer("tTareForce")), byValue(integer("tR1")), byValue(integer("tR2")), byValue(integer("tR3")), success}},
    {HostEvent::TareWeight, "TareWeight", ctTareWeight, 0, {success}},
    {HostEvent::TareWeightEx, "TareWeightEx", ctTareWeightEx, 1, {byValue(integer("tUpdatePowderMass")), byValue(integer("tR1")), byValue(integer("tR2")), byValue(integer("tR3")), byValue(integer("tR4")), byValue(integer("tR5")), success}},
    {HostEvent::ChangeBlade, "ChangeBlade", ctChangeBlade, 1, {byValue(integer("tNewBladeID")), byValue(integer("tR1")), byValue(integer("tR2")), byValue(integer("tR3")), byValue(integer("tR4")), byValue(integer("tR5")), success}},
    {HostEvent::ChangeVessel, "ChangeVessel", ctChangeVessel, 1, {byValue(integer("tNewVesselID")), byValue(integer("tR1")), byValue(integer("tR2")), byValue(integer("tR3")), byValue(integer("tR4")), byValue(integer("tR5")), success}},
    {HostEvent::VesselSplit, "VesselSplit", ctVesselSplit, 1, {byValue(integer("tR1")), byValue(integer("tR2")), byValue(integer("tR3")), byValue(integer("tR4")), byValue(integer("tR5")), byValue(integer("tR6")), success}},
    {HostEvent::SaveData, "SaveData", ctSaveData, 0, {success}},
    {HostEvent::EndTest, "EndTest", ctEndTest, 0, {success}},
    {HostEvent::TextCommand, "TextCommand", ctTextCommand, 7, {text("tCommand"), text("p0"), text("p1"), text("p2"), text("p3"), text("p4"), text("p5"), success}},
    {HostEvent::AerationControl, "AerationControl", ctAccAerationControl, 7, {integer("tAirOnOff"), single("tAirVelocity"), text("p0"), text("p1"), text("p2"), text("p3"), text("p4"), success}},
    {HostEvent::PressureControl, "PressureControl", ctAccPressureControl, 8, {integer("tMeasure"), single("tForce"), single("tAirVelocity"), single("tPressure"), single("tHoldTime"), single("tMinHeight"), integer("tChannelMode"), text("p0"), success}},
    {HostEvent::KeepGoing, "KeepGoing", ctUnknown, 0, {success}},
    {HostEvent::EnvironmentVariableAdded, "EnvironmentVariableAdded", ctDecEnvironmentVariable, 2, {text("tIdentifier"), text("tValue"), success}},
    {HostEvent::ConstantAdded, "ConstantAdded", ctDecConstant, 2, {text("tIdentifier"), text("tValue"), success}},
    {HostEvent::VariableAdded, "VariableAdded", ctDecVariable, 2, {text("tIdentifier"), text("tValue"), success}},
    {HostEvent::FunctionCalled, "FunctionCalled", ctUnknown, 0, {enumeration("tType", "enumCommandType"), boolean("tDoExecuteCommand"), success}},
}};
// clang-format on

namespace {

consteval bool rowsStandInDispatchOrder() {
    for (std::size_t i = 0; i < eventTable.size(); ++i)
        if (static_cast<std::size_t>(eventTable[i].id) != i + 1) return false;
    return true;
}
static_assert(rowsStandInDispatchOrder(), "rows stand in dispatch-identifier order, none is left out");

consteval bool successIsLast() {
    for (const EventRow& row : eventTable)
        if (row.arguments[row.argumentCount - 1U].name != success.name) return false;
    return true;
}
static_assert(successIsLast(), "the last argument of every event is tSucess");

}  // namespace

const EventRow* findEvent(std::string_view name) {
    const auto* row =
        std::find_if(eventTable.begin(), eventTable.end(), [&](const EventRow& r) { return r.name == name; });
    return row == eventTable.end() ? nullptr : row;
}

}  // namespace corvane
