#include "host/clsProgramFunctionList.h"

#include "platform/value_rules.h"

namespace corvane {
namespace {

// Marks a parameter slot that is not used; a text parameter that equals it is dropped like one.
constexpr std::u16string_view unusedParameter = u"    ";

}  // namespace

std::shared_ptr<clsScriptControl> clsProgramFunctionList::startListing() {
    auto control = std::make_shared<clsScriptControl>(services_, options_);
    Reference<FunctionCollection> listing = newCollection_();
    releaseControl();
    control_ = control;
    control->setEventSink(this);
    // The old listing goes when all is in place, since letting go of a host's objects may make the host call in.
    std::swap(functionList_, listing);
    return control;
}

bool clsProgramFunctionList::finishLoad(const clsScriptControl& control, bool loaded) {
    // A load from inside this one has taken its place.
    if (control_.get() == &control) scriptLoaded_ = loaded;
    return loaded;
}

void clsProgramFunctionList::releaseControl() {
    // A run of the old control that is still in progress ends at its next KeepGoing.
    if (control_) control_->setEventSink(nullptr);
    control_.reset();
}

bool clsProgramFunctionList::LoadProgramScript_FromFile(std::u16string_view tFileName) {
    const std::shared_ptr<clsScriptControl> control = startListing();
    return finishLoad(*control, control->LoadScript_FromFile(tFileName));
}

bool clsProgramFunctionList::LoadProgramScript_FromDatabase(std::u16string_view tScriptString,
                                                            std::u16string_view tScriptName, std::int32_t tUID,
                                                            std::int32_t tVersion) {
    const std::shared_ptr<clsScriptControl> control = startListing();
    return finishLoad(*control, control->LoadScript_FromScript(tScriptString, tScriptName, tUID, tVersion));
}

bool clsProgramFunctionList::CreateFunctionList(Reference<FunctionCollection>& tFunctionList) {
    if (!scriptLoaded_) return false;
    const std::shared_ptr<clsScriptControl> control = control_;
    control->setDebugMode(0);
    const bool result = control->RunScript();
    tFunctionList = functionList_;
    return result;
}

void clsProgramFunctionList::raise(Event& event) {
    const Value no = Value::ofBoolean(false);
    if (event.row().recordedAs != ctUnknown) record(event);
    switch (event.id()) {
        case HostEvent::InputNumber:
        case HostEvent::InputString:
        case HostEvent::MsgAsk:
        case HostEvent::MsgInfo:  // Kept: not MsgInfoEx, whose box is shown during a listing
            event.answer("tDLLExecute", no);
            break;
        case HostEvent::FunctionCalled: event.answer("tDoExecuteCommand", Value::ofBoolean(true)); break;
        default: break;
    }
    event.succeed();
    if (event.id() == HostEvent::FunctionCalled) services_.pump.yield();
}

void clsProgramFunctionList::record(const Event& event) {
    const Reference<clsProgramFunction> entry = makeReference<clsProgramFunction>();
    functionList_->Add(entry);
    entry->FunctionType = event.row().recordedAs;
    entry->FunctionName = control_->FunctionNameFromType(entry->FunctionType);
    if (event.id() == HostEvent::GetDataSet) {
        recordDataSet(*entry, event);
        return;
    }
    for (std::size_t i = 0; i < event.row().recordedCount; ++i) addParameter(*entry, event.argument(i));
}

void clsProgramFunctionList::recordDataSet(clsProgramFunction& entry, const Event& event) const {
    const auto& dataSet = static_cast<const clsDataSetParameters&>(event.argument(0).object());
    addParameter(entry, Value::ofSingle(dataSet.Height));
    addParameter(entry, Value::ofSingle(dataSet.HelixAngle));
    addParameter(entry, Value::ofSingle(dataSet.TipSpeed));
    addParameter(entry, Value::ofLong(dataSet.DataSetType));
    addParameter(entry, Value::ofLong(dataSet.LevellingFrom));
    addParameter(entry, Value::ofLong(dataSet.LevellingType));
    addParameter(entry, Value::ofSingle(dataSet.LevellingTrigger));
    addParameter(entry, Value::ofSingle(dataSet.LevellingHix));
    addParameter(entry, Value::ofSingle(dataSet.LevellingTip));
}

void clsProgramFunctionList::addParameter(clsProgramFunction& entry, const Value& value) const {
    if (value.isText() && value.textView() == unusedParameter) return;
    entry.AddParam(toText(value, control_->engine().locale()).view());
}

}  // namespace corvane
