"""The vocabulary: statement kinds with the masks of their parameters, events with their arguments."""

from __future__ import annotations

UNDECLARED, NUMBER, TEXT, LABEL, ENVIRONMENT, CONSTANT = 1, 2, 4, 8, 16, 128
NUMBER_CONSTANT, TEXT_CONSTANT = CONSTANT | NUMBER, CONSTANT | TEXT
ANY_ITEM = 255
LABEL_OR_UNDECLARED = LABEL | UNDECLARED
MOST_PARAMETERS = 25

GOTO, CALL, RETURN, IF_NOT_FINISH = 4, 5, 6, 7
IF_GREATER, IF_LESS, IF_NOT_EQUAL, IF_EQUAL = 8, 9, 10, 11
SET, DECREMENT, INCREMENT, MATHS, CONCAT = 12, 13, 14, 15, 16
INPUT_NUMBER, INPUT_STRING, INFO, MSG_ASK, MSG_INFO, MSG_INFO_EX = 17, 18, 19, 20, 21, 22
GET_DATA_SET, GET_DATA_SET_EX, BLOCK_START = 28, 29, 52

# One letter a parameter: N number, T text, A number or text, L label, n/t/v number, text or any variable, * anything.
MASKS = {
    "N": NUMBER_CONSTANT, "T": TEXT_CONSTANT, "A": NUMBER_CONSTANT | TEXT, "L": LABEL,
    "n": NUMBER, "t": TEXT, "v": NUMBER | TEXT, "*": ANY_ITEM,
}  # fmt: skip

KEYWORDS = {
    4: ("Goto", "L"),
    5: ("Call", "L"),
    6: ("Return", ""),
    7: ("IfNotFinishLoopFlag", "TL"),
    8: ("IfGreaterThan", "NNL"),
    9: ("IfLessThan", "NNL"),
    10: ("IfNotEqual", "NNL"),
    11: ("IfEqual", "NNL"),
    12: ("Set", "vA"),
    13: ("Decrement", "n"),
    14: ("Increment", "n"),
    15: ("MathsFunction", "TnNNNN"),
    16: ("ConCatString", "tAA"),
    17: ("InputNumber", "TnNN"),
    18: ("InputString", "TtN"),
    19: ("Info", "T"),
    20: ("MsgAsk", "TL"),
    21: ("MsgInfo", "T"),
    22: ("MsgInfoEx", "TT"),
    23: ("WaitTime", "NT"),
    24: ("AddAnalysisMacro", "T"),
    25: ("AddAnalysisMacroEx", "TTTT"),
    26: ("AddTestVariable", "AAA"),
    27: ("AddDataSetVariable", "AAAN"),
    28: ("GetDataSet", "NNNN"),
    29: ("GetDataSetEx", "NNNNNNNNN"),
    30: ("RotateForDuration", "NNNN"),
    31: ("MoveToHeight", "NNNN"),
    32: ("CompactToForce", "NNNNN"),
    33: ("CompactToForceEx", "NNNNNNNNN"),
    34: ("SCTest", "N" * 13),
    35: ("SCTestEx", "N" * 12 + "*" * 8),
    36: ("SCTestFull", "N" * 17 + "T" + "NNN" + "****"),
    37: ("Park", ""),
    38: ("ShakeBlade", "N"),
    39: ("ShakeBladeEx", "NNN***"),
    40: ("MoveIntoVessel", "N"),
    41: ("MoveIntoVesselEx", "NNN***"),
    42: ("TareWeight", ""),
    43: ("TareWeightEx", "N*****"),
    44: ("ChangeBlade", "N*****"),
    45: ("ChangeVessel", "N*****"),
    46: ("VesselSplit", "******"),
    47: ("EndTest", ""),
    48: ("SaveData", ""),
    49: ("TextCommand", "T******"),
    50: ("AerationControl", "NN*****"),
    51: ("PressureControl", "NNNNNNN*"),
    52: ("BlockStart", "T"),
}

KIND_OF_KEYWORD = {keyword.lower(): kind for kind, (keyword, _) in KEYWORDS.items()}
SLOT_MASKS = {kind: [MASKS[letter] for letter in letters] for kind, (_, letters) in KEYWORDS.items()}

DISPLAY_NAMES = {0: "Unknown", 1: "Declare Environment Variable", 2: "Declare Variable", 3: "Declare Constant"}


def display_name(kind: int) -> str:
    if kind in KEYWORDS:
        return KEYWORDS[kind][0]
    return DISPLAY_NAMES.get(kind, "Function not recognised")


def _zeros(first: int, last: int) -> str:
    return " ".join(f"=tR{n}:l" for n in range(first, last + 1))


# Arguments are name:type with l long, s single, b boolean, t text, o object; '=' marks one that is passed by value.
# The last argument of every event, tSucess:b, is added below.
_EVENTS = {
    "RequiredFinishLoopFlag": "=tPrompt:t",
    "MathsFunction": "tFunction:t tParam0:s tParam1:s tParam2:s tParam3:s tReturn:s",
    "InputNumber": "tQuest:t tMin:s tMax:s tValue:s tDLLExecute:b",
    "InputString": "tQuest:t tMaxLen:l tValue:t tDLLExecute:b",
    "Info": "tInfoStr:t",
    "MsgAsk": "tQuest:t tResult:l tDLLExecute:b",
    "MsgInfo": "tQuest:t tDLLExecute:b",
    "MsgInfoEx": "tQuest:t tSoundID:l tDLLExecute:b",
    "WaitTime": "tDuration:s tMessage:t",
    "AddAnalysisMacro": "tMacroString:t",
    "AddAnalysisMacroEx": "tMacroName:t tMacroUnits:t tMacroFormat:t tMacroString:t",
    "AddTestVariable": "=tName:t =tValue:t =tUnit:t =tInputMethod:l",
    "AddDataSetVariable": "=tName:t =tValue:t =tUnit:t =tInputMethod:l",
    "GetDataSet": "=tTestParameters:o",
    "RotateForDuration": "=tSpeedMode:l =tSpeed:s =tDurationMode:l =tDuration:s",
    "MoveToHeight": "tHeightMM:s tMoveType:l tHelixAngle:s tTipSpeed:s",
    "CompactToForce": "tForceN:s tCarriageSpeed:s tMinHeight:s tHoldTime:s tHoldMode:l",
    "CompactToForceEx": "tForceN:s tHoldOption:l tHoldTime:s tControlOption:l tControlParam1:s tControlParam2:s"
    " tNumberOfDegrees:s tLowestHeight:s tDataSetType:l",
    "SCTest": "tPCForce:s tPCHoldTime:s tPCMaintainZeroTorque:l tPCShearRate:s tPCShearDistance:s tPSHoldTime:s"
    " tPSMaintainZeroTorque:l tShearForce:s tShearRate:s tShearDistance:s tShearRepeats:l tShearTreatAsTest:l"
    " tMaxCarriageSpeed:s",
    "SCTestEx": "tPSForce:s tPSControlSpeed:s tPSShearRate:s tPSShearDistance:s tPHForce:s tPHTime:s"
    " tPHHoldZeroTorque:l tSHControlSpeed:s tSForce:s tSControlSpeed:s tSShearRate:s tSShearDistance:s"
    " tR1:t tR2:t tR3:t tR4:t tR5:s tR6:t tR7:t tR8:t",
    "SCTestFull": "tPSAutoAnalisePreShears:b tPSNormalStress:s tPSMaxDegrees:s tPSZeroTorqueBeforePreShear:b"
    " tPSShearRate:s tPSControlSpeed:s tPSAutoDetectPeakTorque:b tPSMSFirstIsMulti:b"
    " tPSMSConsecutiveTorquesWithin:s tPSMSMaxDegrees:s tPSMSMaximumNumber:l tPHHoldFor:s tPHZeroTorque:b"
    " tPHControlSpeed:s tPHSplitZeroTorqueAndForceChange:b tSAutoAnaliseShears:b tSShearDistance:s"
    " tSNormalStresses:t tSShearRate:s tSControlSpeed:s tSAutoDetectPeakTorque:b"
    " tReserved0:t tReserved1:t tReserved2:t tReserved3:t",
    "Park": "",
    "ShakeBlade": "=tNumberOfTimes:l =tAmplitude:s =tFrequency:s",
    "ShakeBladeEx": "=tNumberOfTimes:l =tAmplitude:s =tFrequency:s =tR1:l =tR2:l =tR3:l",
    "MoveIntoVessel": "=tTestStartHeight:s",
    "MoveIntoVesselEx": "=tTestStartHeight:s =tTareTorque:l =tTareForce:l " + _zeros(1, 3),
    "TareWeight": "",
    "TareWeightEx": "=tUpdatePowderMass:l " + _zeros(1, 5),
    "ChangeBlade": "=tNewBladeID:l " + _zeros(1, 5),
    "ChangeVessel": "=tNewVesselID:l " + _zeros(1, 5),
    "VesselSplit": _zeros(1, 6),
    "SaveData": "",
    "EndTest": "",
    "TextCommand": "tCommand:t p0:t p1:t p2:t p3:t p4:t p5:t",
    "AerationControl": "tAirOnOff:l tAirVelocity:s p0:t p1:t p2:t p3:t p4:t",
    "PressureControl": "tMeasure:l tForce:s tAirVelocity:s tPressure:s tHoldTime:s tMinHeight:s tChannelMode:l p0:t",
    "KeepGoing": "",
    "EnvironmentVariableAdded": "tIdentifier:t tValue:t",
    "ConstantAdded": "tIdentifier:t tValue:t",
    "VariableAdded": "tIdentifier:t tValue:t",
    "FunctionCalled": "tType:l tDoExecuteCommand:b",
}


class Argument:
    def __init__(self, description: str) -> None:
        self.by_reference = not description.startswith("=")
        self.name, self.type = description.lstrip("=").split(":")


EVENTS = {
    name: [Argument(argument) for argument in (arguments + " tSucess:b").split()]
    for name, arguments in _EVENTS.items()
}

# Statements that do nothing but raise an event: parameter n fills argument n; arguments beyond are the constants.
INSTRUMENT = {
    23: ("WaitTime", []),
    24: ("AddAnalysisMacro", []),
    25: ("AddAnalysisMacroEx", []),
    26: ("AddTestVariable", [0]),
    27: ("AddDataSetVariable", []),
    30: ("RotateForDuration", []),
    31: ("MoveToHeight", []),
    32: ("CompactToForce", []),
    33: ("CompactToForceEx", []),
    34: ("SCTest", []),
    35: ("SCTestEx", []),
    36: ("SCTestFull", []),
    37: ("Park", []),
    38: ("ShakeBlade", [-1.0, -1.0]),
    39: ("ShakeBlade", []),
    40: ("MoveIntoVessel", []),
    41: ("MoveIntoVesselEx", [0] * 3),
    42: ("TareWeight", []),
    43: ("TareWeightEx", [0] * 5),
    44: ("ChangeBlade", [0] * 5),
    45: ("ChangeVessel", [0] * 5),
    46: ("VesselSplit", [0] * 5),
    47: ("EndTest", []),
    48: ("SaveData", []),
    49: ("TextCommand", []),
    50: ("AerationControl", []),
    51: ("PressureControl", []),
}

# What the program function list records of an event: the kind and how many of its arguments, from the first.
RECORDED = {
    "EnvironmentVariableAdded": (1, 2), "VariableAdded": (2, 2), "ConstantAdded": (3, 2),
    "RequiredFinishLoopFlag": (7, 1), "MathsFunction": (15, 5), "InputNumber": (17, 4), "InputString": (18, 3),
    "Info": (19, 1), "MsgAsk": (20, 1), "MsgInfo": (21, 1), "MsgInfoEx": (22, 3), "WaitTime": (23, 2),
    "AddAnalysisMacro": (24, 1), "AddAnalysisMacroEx": (25, 4), "AddTestVariable": (26, 4),
    "AddDataSetVariable": (27, 4), "RotateForDuration": (30, 4), "MoveToHeight": (31, 4), "CompactToForce": (32, 5),
    "CompactToForceEx": (33, 9), "SCTest": (34, 13), "SCTestEx": (35, 20), "SCTestFull": (36, 25), "Park": (37, 0),
    "ShakeBlade": (38, 3), "ShakeBladeEx": (39, 3), "MoveIntoVessel": (40, 1), "MoveIntoVesselEx": (41, 3),
    "TareWeight": (42, 0), "TareWeightEx": (43, 1), "ChangeBlade": (44, 1), "ChangeVessel": (45, 1),
    "VesselSplit": (46, 1), "EndTest": (47, 0), "SaveData": (48, 0), "TextCommand": (49, 7),
    "AerationControl": (50, 7), "PressureControl": (51, 8),
}  # fmt: skip
TAKEN_OVER_BY_LISTING = ("InputNumber", "InputString", "MsgAsk", "MsgInfo")
