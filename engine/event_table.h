#pragma once

#include <array>
#include <cstdint>
#include <initializer_list>
#include <string_view>

#include "engine/enumerations.h"
#include "platform/value.h"

/// The 41 events that a host can sink, one row an event: what the engine raises, automation dispatches, the program
/// listing records and a log prints is all read from these rows.
///
/// To add an event: its enumeration value, its row in event_table.cpp, its line in the type library. The dispatch
/// identifiers are consecutive from 1 and rows stand in their order; a static_assert holds that.
namespace corvane {

/// The events, by dispatch identifier.
enum class HostEvent : std::uint8_t {
    RequiredFinishLoopFlag = 1,
    MathsFunction = 2,
    InputNumber = 3,
    InputString = 4,
    Info = 5,
    MsgAsk = 6,
    MsgInfo = 7,
    MsgInfoEx = 8,
    WaitTime = 9,
    AddAnalysisMacro = 10,
    AddAnalysisMacroEx = 11,
    AddTestVariable = 12,
    AddDataSetVariable = 13,
    GetDataSet = 14,
    RotateForDuration = 15,
    MoveToHeight = 16,
    CompactToForce = 17,
    CompactToForceEx = 18,
    SCTest = 19,
    SCTestEx = 20,
    SCTestFull = 21,
    Park = 22,
    ShakeBlade = 23,
    ShakeBladeEx = 24,
    MoveIntoVessel = 25,
    MoveIntoVesselEx = 26,
    TareWeight = 27,
    TareWeightEx = 28,
    ChangeBlade = 29,
    ChangeVessel = 30,
    VesselSplit = 31,
    SaveData = 32,
    EndTest = 33,
    TextCommand = 34,
    AerationControl = 35,
    PressureControl = 36,
    KeepGoing = 37,
    EnvironmentVariableAdded = 38,
    ConstantAdded = 39,
    VariableAdded = 40,
    FunctionCalled = 41,
};

inline constexpr std::size_t eventCount = 41;
inline constexpr std::size_t maximumEventArguments = 26;

/// One argument of an event, as published.
struct EventArgument {
    std::string_view name;
    ValueType type = ValueType::Boolean;  ///< Text, Single, Long, Boolean or Object
    bool byReference = true;              ///< the host can answer through it
    std::string_view publishedType;       ///< the enumeration or class that a type library names; empty otherwise
};

/// One event: its arguments in order, `tSucess` last, and what the program listing records of it.
struct EventRow {
    HostEvent id;
    std::string_view name;
    enumCommandType recordedAs;  ///< the kind that the program listing records; ctUnknown: not recorded
    std::uint8_t recordedCount;  ///< how many arguments, from the first, the program listing records
    std::uint8_t argumentCount;
    std::uint32_t ownedPlaces;  ///< a bit for each argument that is a text or an object, the first the lowest
    std::array<EventArgument, maximumEventArguments> arguments;
    std::array<ValueType, maximumEventArguments> types;  ///< those of the arguments, close together

    consteval EventRow(HostEvent event, std::string_view eventName, enumCommandType kind, std::uint8_t recorded,
                       std::initializer_list<EventArgument> list)
        : id(event),
          name(eventName),
          recordedAs(kind),
          recordedCount(recorded),
          argumentCount(0),
          ownedPlaces(0),
          arguments(),
          types() {
        for (const EventArgument& argument : list) {
            if (argument.type >= ValueType::Text) ownedPlaces |= std::uint32_t{1} << argumentCount;
            types.at(argumentCount) = argument.type;
            arguments.at(argumentCount++) = argument;
        }
    }
};

/// All rows, in the order of their dispatch identifiers.
extern const std::array<EventRow, eventCount> eventTable;

inline const EventRow& eventRow(HostEvent event) { return eventTable[static_cast<std::size_t>(event) - 1]; }

/// The row of the event called `name` (case counts), or null.
const EventRow* findEvent(std::string_view name);

}  // namespace corvane
