#include "tests/com/every_event.h"

#include <array>
#include <cstdio>

#include "platform/utf8.h"

namespace corvane::testing {
namespace {

std::string shown(BSTR text) { return text == nullptr ? "null" : "\"" + toUtf8(viewOf(text)) + "\""; }

std::string shown(float number) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%g", static_cast<double>(number));
    return text.data();
}

std::string shown(VARIANT_BOOL truth) {
    if (truth == VARIANT_TRUE) return "True";
    return truth == VARIANT_FALSE ? "False" : std::to_string(truth);
}

std::string shown(const VARIANTARG& argument) {
    switch (V_VT(&argument)) {
        case VT_BSTR: return shown(V_BSTR(&argument));
        case VT_R4: return shown(V_R4(&argument));
        case VT_I4: return std::to_string(V_I4(&argument));
        case VT_BOOL: return shown(V_BOOL(&argument));
        case VT_DISPATCH: return "object";
        case VT_BYREF | VT_BSTR: return "&" + shown(*V_BSTRREF(&argument));
        case VT_BYREF | VT_R4: return "&" + shown(*V_R4REF(&argument));
        case VT_BYREF | VT_I4: return "&" + std::to_string(*V_I4REF(&argument));
        case VT_BYREF | VT_BOOL: return "&" + shown(*V_BOOLREF(&argument));
        default: return "type " + std::to_string(V_VT(&argument));
    }
}

std::vector<DISPID> allButTwo() {
    std::vector<DISPID> events;
    for (const EventRow& row : eventTable)
        if (row.id != HostEvent::RequiredFinishLoopFlag && row.id != HostEvent::ShakeBladeEx)
            events.push_back(static_cast<DISPID>(row.id));
    return events;
}

}  // namespace

const std::u16string_view everyEventScript =
    u"ENV Room = Lab 2\r\n"
    u"CONST Limit = 10\r\n"
    u"VAR Number = 5\r\n"
    u"VAR Text = \"old\"\r\n"
    u"MathsFunction(\"Power\", Number, 11, 12.5, 13, 14)\r\n"
    u"InputNumber(\"How many?\", Number, 11, 12)\r\n"
    u"InputString(\"Who?\", Text, 11)\r\n"
    u"Info(\"fact\")\r\n"
    u"MsgAsk(\"Sure?\", End)\r\n"
    u"MsgInfo(\"note\")\r\n"
    u"MsgInfoEx(\"beep\", \"11\")\r\n"
    u"WaitTime(11.5, \"settling\")\r\n"
    u"AddAnalysisMacro(\"m\")\r\n"
    u"AddAnalysisMacroEx(\"name\", \"unit\", \"format\", \"macro\")\r\n"
    u"AddTestVariable(\"name\", \"value\", \"unit\")\r\n"
    u"AddDataSetVariable(\"name\", \"value\", \"unit\", 3)\r\n"
    u"GetDataSet(11, 12, 13.5, 4)\r\n"
    u"RotateForDuration(11, 12.5, 13, 14.5)\r\n"
    u"MoveToHeight(11.5, 12, 13.5, 14.5)\r\n"
    u"CompactToForce(11.5, 12.5, 13.5, 14.5, 15)\r\n"
    u"CompactToForceEx(11.5, 12, 13.5, 14, 15.5, 16.5, 17.5, 18.5, 19)\r\n"
    u"SCTest(11.5, 12.5, 13, 14.5, 15.5, 16.5, 17, 18.5, 19.5, 20.5, 21, 22, 23.5)\r\n"
    u"SCTestEx(11.5, 12.5, 13.5, 14.5, 15.5, 16.5, 17, 18.5, 19.5, 20.5, 21.5, 22.5, \"a\", \"b\", \"c\", \"d\", 27.5, "
    u"\"f\", \"g\", \"h\")\r\n"
    u"SCTestFull(1, 12.5, 13.5, 0, 15.5, 16.5, 1, 0, 19.5, 20.5, 21, 22.5, 1, 24.5, 0, 1, 27.5, \"3,6,9\", 29.5, 30.5, "
    u"0, \"a\", \"b\", \"c\", \"d\")\r\n"
    u"Park()\r\n"
    u"ShakeBlade(11)\r\n"
    u"MoveIntoVessel(11.5)\r\n"
    u"MoveIntoVesselEx(11.5, 12, 13, 14, 15, 16)\r\n"
    u"TareWeight()\r\n"
    u"TareWeightEx(11, 12, 13, 14, 15, 16)\r\n"
    u"ChangeBlade(11, 12, 13, 14, 15, 16)\r\n"
    u"ChangeVessel(11, 12, 13, 14, 15, 16)\r\n"
    u"VesselSplit(11, 12, 13, 14, 15, 16)\r\n"
    u"SaveData()\r\n"
    u"TextCommand(\"cmd\", \"a\", \"b\", \"c\", \"d\", \"e\", \"f\")\r\n"
    u"AerationControl(11, 12.5, \"a\", \"b\", \"c\", \"d\", \"e\")\r\n"
    u"PressureControl(11, 12.5, 13.5, 14.5, 15.5, 16.5, 17, \"a\")\r\n"
    u"EndTest()\r\n"
    u"End:\r\n";

const std::vector<DISPID> scriptEvents = allButTwo();

VARTYPE publishedTypeOf(const EventArgument& argument) {
    const auto reference = static_cast<VARTYPE>(argument.byReference ? VT_BYREF : 0);
    switch (argument.type) {
        case ValueType::Text: return VT_BSTR | reference;
        case ValueType::Single: return VT_R4 | reference;
        case ValueType::Long: return VT_I4 | reference;
        case ValueType::Boolean: return VT_BOOL | reference;
        case ValueType::Object: return VT_DISPATCH | reference;
        default: return VT_EMPTY;
    }
}

void takeOver(DISPID event, DISPPARAMS& arguments) {
    const EventRow& row = rowOf(event);
    for (std::size_t i = 0; i < row.argumentCount; ++i)
        if (row.arguments[i].name == "tDLLExecute") *V_BOOLREF(&argumentOf(arguments, i)) = VARIANT_FALSE;
}

void answer(DISPID event, DISPPARAMS& arguments) {
    Sink::succeed(event, arguments);
    takeOver(event, arguments);
}

std::string show(DISPID event, DISPPARAMS& arguments) {
    std::string line(rowOf(event).name);
    for (std::size_t i = 0; i < arguments.cArgs; ++i) line += " " + shown(argumentOf(arguments, i));
    return line;
}

RunResult run(_clsScriptControl& control) {
    RunResult run;
    run.result = control.RunScript(&run.value);
    return run;
}

ErrorSeen takeError() {
    ErrorSeen seen;
    ComReference<IErrorInfo> information;
    if (GetErrorInfo(0, information.receive()) != S_OK) return seen;
    BSTR text = nullptr;
    if (SUCCEEDED(information->GetSource(&text))) seen.source = toUtf8(taken(text));
    if (SUCCEEDED(information->GetDescription(&text))) seen.description = toUtf8(taken(text));
    information->GetGUID(&seen.id);
    return seen;
}

}  // namespace corvane::testing
