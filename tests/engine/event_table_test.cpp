#include "engine/event_table.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {
namespace {

struct PublishedEvent {
    std::int32_t dispatchIdentifier;
    std::string_view name;
    enumCommandType recordedAs;  // by the program listing
    std::int32_t recordedCount;  // how many of the first arguments it records
    std::vector<std::string_view> arguments;
};

// clang-format off
const std::vector<PublishedEvent> publishedEvents = {
    {1, "RequiredFinishLoopFlag", ctIfNotFinishLoopFlag, 1, {"byval string tPrompt", "boolean tSucess"}},
    {2, "MathsFunction", ctMathsFunction, 5, {"string tFunction", "single tParam0", "single tParam1", "single tParam2",
     "single tParam3", "single tReturn", "boolean tSucess"}},
    {3, "InputNumber", ctInputNumber, 4, {"string tQuest", "single tMin", "single tMax", "single tValue",
     "boolean tDLLExecute", "boolean tSucess"}},
    {4, "InputString", ctInputString, 3, {"string tQuest", "long tMaxLen", "string tValue", "boolean tDLLExecute",
     "boolean tSucess"}},
    {5, "Info", ctInfo, 1, {"string tInfoStr", "boolean tSucess"}},
    {6, "MsgAsk", ctMsgAsk, 1, {"string tQuest", "message-box answer tResult", "boolean tDLLExecute",
     "boolean tSucess"}},
    {7, "MsgInfo", ctMsgInfo, 1, {"string tQuest", "boolean tDLLExecute", "boolean tSucess"}},
    {8, "MsgInfoEx", ctMsgInfoEx, 3, {"string tQuest", "long tSoundID", "boolean tDLLExecute", "boolean tSucess"}},
    {9, "WaitTime", ctWaitTime, 2, {"single tDuration", "string tMessage", "boolean tSucess"}},
    {10, "AddAnalysisMacro", ctAddAnalysisMacro, 1, {"string tMacroString", "boolean tSucess"}},
    {11, "AddAnalysisMacroEx", ctAddAnalysisMacroEx, 4, {"string tMacroName", "string tMacroUnits",
     "string tMacroFormat", "string tMacroString", "boolean tSucess"}},
    {12, "AddTestVariable", ctAddTestVariable, 4, {"byval string tName", "byval string tValue", "byval string tUnit",
     "byval enumAddVariableMode tInputMethod", "boolean tSucess"}},
    {13, "AddDataSetVariable", ctAddDataSetVariable, 4, {"byval string tName", "byval string tValue",
     "byval string tUnit", "byval enumAddVariableMode tInputMethod", "boolean tSucess"}},
    {14, "GetDataSet", ctGetDataSet, 0, {"byval clsDataSetParameters tTestParameters", "boolean tSucess"}},
    {15, "RotateForDuration", ctRotateForDuration, 4, {"byval long tSpeedMode", "byval single tSpeed",
     "byval long tDurationMode", "byval single tDuration", "boolean tSucess"}},
    {16, "MoveToHeight", ctMoveToHeight, 4, {"single tHeightMM", "long tMoveType", "single tHelixAngle",
     "single tTipSpeed", "boolean tSucess"}},
    {17, "CompactToForce", ctCompactToForce, 5, {"single tForceN", "single tCarriageSpeed", "single tMinHeight",
     "single tHoldTime", "long tHoldMode", "boolean tSucess"}},
    {18, "CompactToForceEx", ctCompactToForceEx, 9, {"single tForceN", "long tHoldOption", "single tHoldTime",
     "long tControlOption", "single tControlParam1", "single tControlParam2", "single tNumberOfDegrees",
     "single tLowestHeight", "long tDataSetType", "boolean tSucess"}},
    {19, "SCTest", ctSCTest, 13, {"single tPCForce", "single tPCHoldTime", "long tPCMaintainZeroTorque",
     "single tPCShearRate", "single tPCShearDistance", "single tPSHoldTime", "long tPSMaintainZeroTorque",
     "single tShearForce", "single tShearRate", "single tShearDistance", "long tShearRepeats", "long tShearTreatAsTest",
     "single tMaxCarriageSpeed", "boolean tSucess"}},
    {20, "SCTestEx", ctSCTestEx, 20, {"single tPSForce", "single tPSControlSpeed", "single tPSShearRate",
     "single tPSShearDistance", "single tPHForce", "single tPHTime", "long tPHHoldZeroTorque", "single tSHControlSpeed",
     "single tSForce", "single tSControlSpeed", "single tSShearRate", "single tSShearDistance", "string tR1",
     "string tR2", "string tR3", "string tR4", "single tR5", "string tR6", "string tR7", "string tR8",
     "boolean tSucess"}},
    {21, "SCTestFull", ctSCTestFull, 25, {"boolean tPSAutoAnalisePreShears", "single tPSNormalStress",
     "single tPSMaxDegrees", "boolean tPSZeroTorqueBeforePreShear", "single tPSShearRate", "single tPSControlSpeed",
     "boolean tPSAutoDetectPeakTorque", "boolean tPSMSFirstIsMulti", "single tPSMSConsecutiveTorquesWithin",
     "single tPSMSMaxDegrees", "long tPSMSMaximumNumber", "single tPHHoldFor", "boolean tPHZeroTorque",
     "single tPHControlSpeed", "boolean tPHSplitZeroTorqueAndForceChange", "boolean tSAutoAnaliseShears",
     "single tSShearDistance", "string tSNormalStresses", "single tSShearRate", "single tSControlSpeed",
     "boolean tSAutoDetectPeakTorque", "string tReserved0", "string tReserved1", "string tReserved2",
     "string tReserved3", "boolean tSucess"}},
    {22, "Park", ctPark, 0, {"boolean tSucess"}},
    {23, "ShakeBlade", ctShakeBlade, 3, {"byval long tNumberOfTimes", "byval single tAmplitude",
     "byval single tFrequency", "boolean tSucess"}},
    {24, "ShakeBladeEx", ctShakeBladeEx, 3, {"byval long tNumberOfTimes", "byval single tAmplitude",
     "byval single tFrequency", "byval long tR1", "byval long tR2", "byval long tR3", "boolean tSucess"}},
    {25, "MoveIntoVessel", ctMoveIntoVessel, 1, {"byval single tTestStartHeight", "boolean tSucess"}},
    {26, "MoveIntoVesselEx", ctMoveIntoVesselEx, 3, {"byval single tTestStartHeight", "byval long tTareTorque",
     "byval long tTareForce", "byval long tR1", "byval long tR2", "byval long tR3", "boolean tSucess"}},
    {27, "TareWeight", ctTareWeight, 0, {"boolean tSucess"}},
    {28, "TareWeightEx", ctTareWeightEx, 1, {"byval long tUpdatePowderMass", "byval long tR1", "byval long tR2",
     "byval long tR3", "byval long tR4", "byval long tR5", "boolean tSucess"}},
    {29, "ChangeBlade", ctChangeBlade, 1, {"byval long tNewBladeID", "byval long tR1", "byval long tR2",
     "byval long tR3", "byval long tR4", "byval long tR5", "boolean tSucess"}},
    {30, "ChangeVessel", ctChangeVessel, 1, {"byval long tNewVesselID", "byval long tR1", "byval long tR2",
     "byval long tR3", "byval long tR4", "byval long tR5", "boolean tSucess"}},
    {31, "VesselSplit", ctVesselSplit, 1, {"byval long tR1", "byval long tR2", "byval long tR3", "byval long tR4",
     "byval long tR5", "byval long tR6", "boolean tSucess"}},
    {32, "SaveData", ctSaveData, 0, {"boolean tSucess"}},
    {33, "EndTest", ctEndTest, 0, {"boolean tSucess"}},
    {34, "TextCommand", ctTextCommand, 7, {"string tCommand", "string p0", "string p1", "string p2", "string p3",
     "string p4", "string p5", "boolean tSucess"}},
    {35, "AerationControl", ctAccAerationControl, 7, {"long tAirOnOff", "single tAirVelocity", "string p0", "string p1",
     "string p2", "string p3", "string p4", "boolean tSucess"}},
    {36, "PressureControl", ctAccPressureControl, 8, {"long tMeasure", "single tForce", "single tAirVelocity",
     "single tPressure", "single tHoldTime", "single tMinHeight", "long tChannelMode", "string p0", "boolean tSucess"}},
    {37, "KeepGoing", ctUnknown, 0, {"boolean tSucess"}},
    {38, "EnvironmentVariableAdded", ctDecEnvironmentVariable, 2, {"string tIdentifier", "string tValue",
     "boolean tSucess"}},
    {39, "ConstantAdded", ctDecConstant, 2, {"string tIdentifier", "string tValue", "boolean tSucess"}},
    {40, "VariableAdded", ctDecVariable, 2, {"string tIdentifier", "string tValue", "boolean tSucess"}},
    {41, "FunctionCalled", ctUnknown, 0, {"enumCommandType tType", "boolean tDoExecuteCommand", "boolean tSucess"}},
};
// clang-format on

std::string_view typeName(ValueType type) {
    switch (type) {
        case ValueType::Text: return "string";
        case ValueType::Single: return "single";
        case ValueType::Long: return "long";
        case ValueType::Boolean: return "boolean";
        default: return "no type of an argument";
    }
}

std::string show(const EventArgument& argument) {
    std::string text(argument.byReference ? "" : "byval ");
    text += argument.publishedType.empty() ? typeName(argument.type) : argument.publishedType;
    return text.append(" ").append(argument.name);
}

std::vector<std::string> argumentsOf(const EventRow& row) {
    std::vector<std::string> arguments;
    for (std::size_t i = 0; i < row.argumentCount; ++i) arguments.push_back(show(row.arguments[i]));
    return arguments;
}

TEST(EventTable, HasTheFortyOnePublishedEvents) {
    EXPECT_EQ(publishedEvents.size(), 41U);
    EXPECT_EQ(eventTable.size(), 41U);
}

TEST(EventTable, EventsHaveTheirPublishedDispatchIdentifiersAndNames) {
    for (std::size_t i = 0; i < eventTable.size(); ++i) {
        EXPECT_EQ(static_cast<std::int32_t>(eventTable[i].id), publishedEvents[i].dispatchIdentifier);
        EXPECT_EQ(eventTable[i].name, publishedEvents[i].name);
    }
}

TEST(EventTable, EnumeratorsNameTheEventTheyStandFor) {
    const std::vector<std::pair<HostEvent, std::string_view>> enumerators = {
        {HostEvent::RequiredFinishLoopFlag, "RequiredFinishLoopFlag"},
        {HostEvent::MathsFunction, "MathsFunction"},
        {HostEvent::InputNumber, "InputNumber"},
        {HostEvent::InputString, "InputString"},
        {HostEvent::Info, "Info"},
        {HostEvent::MsgAsk, "MsgAsk"},
        {HostEvent::MsgInfo, "MsgInfo"},
        {HostEvent::MsgInfoEx, "MsgInfoEx"},
        {HostEvent::WaitTime, "WaitTime"},
        {HostEvent::AddAnalysisMacro, "AddAnalysisMacro"},
        {HostEvent::AddAnalysisMacroEx, "AddAnalysisMacroEx"},
        {HostEvent::AddTestVariable, "AddTestVariable"},
        {HostEvent::AddDataSetVariable, "AddDataSetVariable"},
        {HostEvent::GetDataSet, "GetDataSet"},
        {HostEvent::RotateForDuration, "RotateForDuration"},
        {HostEvent::MoveToHeight, "MoveToHeight"},
        {HostEvent::CompactToForce, "CompactToForce"},
        {HostEvent::CompactToForceEx, "CompactToForceEx"},
        {HostEvent::SCTest, "SCTest"},
        {HostEvent::SCTestEx, "SCTestEx"},
        {HostEvent::SCTestFull, "SCTestFull"},
        {HostEvent::Park, "Park"},
        {HostEvent::ShakeBlade, "ShakeBlade"},
        {HostEvent::ShakeBladeEx, "ShakeBladeEx"},
        {HostEvent::MoveIntoVessel, "MoveIntoVessel"},
        {HostEvent::MoveIntoVesselEx, "MoveIntoVesselEx"},
        {HostEvent::TareWeight, "TareWeight"},
        {HostEvent::TareWeightEx, "TareWeightEx"},
        {HostEvent::ChangeBlade, "ChangeBlade"},
        {HostEvent::ChangeVessel, "ChangeVessel"},
        {HostEvent::VesselSplit, "VesselSplit"},
        {HostEvent::SaveData, "SaveData"},
        {HostEvent::EndTest, "EndTest"},
        {HostEvent::TextCommand, "TextCommand"},
        {HostEvent::AerationControl, "AerationControl"},
        {HostEvent::PressureControl, "PressureControl"},
        {HostEvent::KeepGoing, "KeepGoing"},
        {HostEvent::EnvironmentVariableAdded, "EnvironmentVariableAdded"},
        {HostEvent::ConstantAdded, "ConstantAdded"},
        {HostEvent::VariableAdded, "VariableAdded"},
        {HostEvent::FunctionCalled, "FunctionCalled"},
    };
    ASSERT_EQ(enumerators.size(), eventTable.size());
    for (const auto& [event, name] : enumerators) {
        EXPECT_EQ(eventRow(event).id, event) << name;
        EXPECT_EQ(eventRow(event).name, name);
    }
}

TEST(EventTable, ArgumentsHaveThePublishedOrderNamesTypesAndPassing) {
    for (std::size_t i = 0; i < eventTable.size(); ++i) {
        const std::vector<std::string_view>& expected = publishedEvents[i].arguments;
        EXPECT_EQ(argumentsOf(eventTable[i]), std::vector<std::string>(expected.begin(), expected.end()))
            << publishedEvents[i].name;
    }
}

TEST(EventTable, EnumerationsTravelAsLongsAndTheDataSetAsAnObject) {
    std::set<std::string_view> publishedTypes;
    for (const EventRow& row : eventTable) {
        for (std::size_t i = 0; i < row.argumentCount; ++i) {
            const EventArgument& argument = row.arguments[i];
            if (argument.publishedType.empty()) continue;
            publishedTypes.insert(argument.publishedType);
            EXPECT_EQ(argument.type,
                      argument.publishedType == "clsDataSetParameters" ? ValueType::Object : ValueType::Long)
                << row.name << " " << argument.name;
        }
    }
    EXPECT_EQ(publishedTypes, (std::set<std::string_view>{"clsDataSetParameters", "enumAddVariableMode",
                                                          "enumCommandType", "message-box answer"}));
}

TEST(EventTable, TheLastArgumentOfEveryEventIsTheAnswer) {
    for (const EventRow& row : eventTable) {
        ASSERT_GE(row.argumentCount, 1) << row.name;
        const EventArgument& last = row.arguments[row.argumentCount - 1U];
        EXPECT_EQ(last.name, "tSucess") << row.name;
        EXPECT_EQ(last.type, ValueType::Boolean) << row.name;
        EXPECT_TRUE(last.byReference) << row.name;
    }
}

TEST(EventTable, ArgumentNamesOfAnEventAreDistinct) {
    for (const EventRow& row : eventTable) {
        std::set<std::string_view> names;
        for (std::size_t i = 0; i < row.argumentCount; ++i) names.insert(row.arguments[i].name);
        EXPECT_EQ(names.size(), row.argumentCount) << row.name;
    }
}

TEST(EventTable, TheLongestEventHasTwentySixArguments) {
    EXPECT_EQ(eventRow(HostEvent::SCTestFull).argumentCount, maximumEventArguments);
    EXPECT_EQ(maximumEventArguments, 26U);
}

TEST(EventTable, ListingRecordsThePublishedKindAndArguments) {
    for (std::size_t i = 0; i < eventTable.size(); ++i) {
        EXPECT_EQ(eventTable[i].recordedAs, publishedEvents[i].recordedAs) << publishedEvents[i].name;
        EXPECT_EQ(eventTable[i].recordedCount, publishedEvents[i].recordedCount) << publishedEvents[i].name;
    }
}

TEST(EventTable, ListingNeverRecordsTheAnswer) {
    for (const EventRow& row : eventTable) EXPECT_LT(row.recordedCount, row.argumentCount) << row.name;
}

TEST(EventTable, OnlyTheHandshakesAreNotListed) {
    std::set<std::string_view> unlisted;
    for (const EventRow& row : eventTable)
        if (row.recordedAs == ctUnknown) unlisted.insert(row.name);
    EXPECT_EQ(unlisted, (std::set<std::string_view>{"FunctionCalled", "KeepGoing"}));
}

TEST(EventTable, FindsEveryEventByItsName) {
    for (const PublishedEvent& expected : publishedEvents) {
        const EventRow* row = findEvent(expected.name);
        ASSERT_NE(row, nullptr) << expected.name;
        EXPECT_EQ(static_cast<std::int32_t>(row->id), expected.dispatchIdentifier);
    }
}

TEST(EventTable, EventNamesKeepTheirCase) {
    for (const std::string_view name : {"", "park", "PARK", "Park ", "CommandComplete", "CurrentValueChanged"})
        EXPECT_EQ(findEvent(name), nullptr) << name;
}

}  // namespace
}  // namespace corvane
