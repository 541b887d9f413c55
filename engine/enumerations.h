#pragma once

#include <cstdint>

/// The enumerations that the component publishes, names and values as hosts know them. All are 32 bits wide.
namespace corvane {

/// The kinds of statement; the value is the index of the kind's record in the function catalogue.
enum enumCommandType : std::int32_t {
    ctUnknown = 0,
    ctDecEnvironmentVariable = 1,
    ctDecVariable = 2,
    ctDecConstant = 3,
    ctGoto = 4,
    ctCall = 5,
    ctReturn = 6,
    ctIfNotFinishLoopFlag = 7,
    ctIfGreaterThan = 8,
    ctIfLessThan = 9,
    ctIfNotEqual = 10,
    ctIfEqual = 11,
    ctSet = 12,
    ctDecrement = 13,
    ctIncrement = 14,
    ctMathsFunction = 15,
    ctConCatString = 16,
    ctInputNumber = 17,
    ctInputString = 18,
    ctInfo = 19,
    ctMsgAsk = 20,
    ctMsgInfo = 21,
    ctMsgInfoEx = 22,
    ctWaitTime = 23,
    ctAddAnalysisMacro = 24,
    ctAddAnalysisMacroEx = 25,
    ctAddTestVariable = 26,
    ctAddDataSetVariable = 27,
    ctGetDataSet = 28,
    ctGetDataSetEx = 29,
    ctRotateForDuration = 30,
    ctMoveToHeight = 31,
    ctCompactToForce = 32,
    ctCompactToForceEx = 33,
    ctSCTest = 34,
    ctSCTestEx = 35,
    ctSCTestFull = 36,
    ctPark = 37,
    ctShakeBlade = 38,
    ctShakeBladeEx = 39,
    ctMoveIntoVessel = 40,
    ctMoveIntoVesselEx = 41,
    ctTareWeight = 42,
    ctTareWeightEx = 43,
    ctChangeBlade = 44,
    ctChangeVessel = 45,
    ctVesselSplit = 46,
    ctEndTest = 47,
    ctSaveData = 48,
    ctTextCommand = 49,
    ctAccAerationControl = 50,
    ctAccPressureControl = 51,
    ctBlockStart = 52,
};

/// What a memory item is, and, as a mask, what a parameter slot accepts.
enum enumParamType : std::int32_t {
    ptUndeclared = 1,    ///< a name neither declared nor defined as a label so far
    ptNumber = 2,        ///< a number; alone: a numeric variable
    ptString = 4,        ///< a string; alone: a string variable
    ptLabel = 8,         ///< a label; its value is a statement address
    ptEnvironment = 16,  ///< an environment variable; its value is text
    ptConstant = 128,    ///< read only: a literal or a declared constant
};

enum enumRunTestResult : std::int32_t {
    rtrSucess = 0,
    rtprCanceled = 1,
    rtprParked = 2,
    rtrOverloadUp = 3,
    rtrOverloadDown = 4,
};

enum enumTestResult : std::int32_t {
    trNotRun = 0,
    trComplete = 1,
    trFailed = 2,
    trOverload = 3,
    trUpperLimitHit = 4,
    trLowerLimitHit = 5,
};

enum enumDataSetType : std::int32_t {
    dstTest = 0,
    dstConditioning = 1,
    dstAutoTurn = 2,
    dstManualTest = 3,
    dstLevelling = 4,
};

enum enumSampleMode : std::int32_t {
    smHeight = 0,
    smTime = 1,
};

/// There is no value 0, yet the AddTestVariable event carries one.
enum enumAddVariableMode : std::int32_t {
    avmAskNow = 1,
    avmAskAtEndOfDataSet = 2,
    avmAskAtEndOfTest = 3,
    avmAssignFromVariable = 4,
};

enum enumLevellingFrom : std::int32_t {
    lfNone = 0,
    lfGlobal = 1,
    lfCustom = 2,
};

enum enumLevellingType : std::int32_t {
    ltNoLevelling = 0,
    ltByHeight = 1,
    ltByTorque = 2,
    ltByTorquePercentage = 3,
};

/// For hosts only; nothing in the component uses it.
enum enumScripEvents : std::int32_t {
    seRunTest = 0,
    sePark = 1,
    seSaveData = 2,
    seEndTest = 3,
};

/// Bits of the debug options word.
enum enumDebugOptions : std::int32_t {
    doParsing = 1,         ///< trace the bound parameters of each statement while a script is loaded
    doTables = 2,          ///< trace the identifier table after a load
    doRuntimeResults = 4,  ///< the category of the run's trace lines; switches nothing
};

enum enumScriptSource : std::int32_t {
    ssFromDataBase = 0,
    ssFromFile = 1,
};

}  // namespace corvane
