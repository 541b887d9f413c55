#include "host/clsScriptControl.h"

#include "engine/text_utilities.h"
#include "platform/script_file.h"
#include "platform/subscript.h"
#include "platform/value_rules.h"

namespace corvane {

std::u16string& StringTable::at(std::int32_t row, std::int32_t column) {
    const std::size_t r = subscript(row, static_cast<std::size_t>(rows_));
    const std::size_t c = subscript(column, static_cast<std::size_t>(columns_));
    return cells_[r * static_cast<std::size_t>(columns_) + c];
}

const std::u16string& StringTable::at(std::int32_t row, std::int32_t column) const {
    return const_cast<StringTable*>(this)->at(row, column);
}

clsScriptControl::clsScriptControl(const EngineServices& services, EngineOptions options)
    : engine_(*this, services, options) {
    BuildFunctionCatalogue();
}

bool clsScriptControl::LoadScript_FromFile(std::u16string_view tScript) {
    scriptFile_ = tScript;
    databaseUid_ = -1;
    databaseVersion_ = -1;
    return engine_.CreateCommandList(readScriptFile(scriptFile_));
}

bool clsScriptControl::LoadScript_FromScript(std::u16string_view tScriptString, std::u16string_view tScriptName,
                                             std::int32_t tUID, std::int32_t tVersion) {
    scriptFile_ = tScriptName;
    databaseUid_ = tUID;
    databaseVersion_ = tVersion;
    return engine_.CreateCommandList(tScriptString);
}

Value clsScriptControl::initialValueOf(std::u16string_view name, std::int32_t mask) {
    clsDataList& memory = engine_.DataMemory();
    std::int32_t position = 0;
    if (!memory.FindItem(name, position, mask)) return Value::ofText(Text());
    return memory.Item(position).InitialValue();
}

std::u16string clsScriptControl::GetEnvironmentVariable(std::u16string_view tVal) {
    return std::u16string(toText(initialValueOf(tVal, ptEnvironment), engine_.locale()).view());
}

std::u16string clsScriptControl::GetConstant(std::u16string_view tVal) {
    return std::u16string(toText(initialValueOf(tVal, ptConstant), engine_.locale()).view());
}

Value clsScriptControl::GetMemoryValue(std::u16string_view tVal) { return initialValueOf(tVal, 255); }

void clsScriptControl::GetEditable(StringTable& tStr, std::int32_t& tCount) {
    constexpr std::int32_t fieldCount = 6;
    clsDataList& memory = engine_.DataMemory();
    if (memory.EditableCount() >= 1) {
        tStr = StringTable(memory.EditableCount(), fieldCount);
        const NumberLocale& locale = engine_.locale();
        std::int32_t row = 0;
        for (std::int32_t i = 0; i < memory.Count(); ++i) {
            const clsData item = memory.Item(i);
            if (!item.IsEditable()) continue;
            tStr.at(row, 0) = decimal(i);
            tStr.at(row, 1) = toText(item.InitialValue(), locale).view();
            tStr.at(row, 2) = toText(Value::ofSingle(item.MinVal()), locale).view();
            tStr.at(row, 3) = toText(Value::ofSingle(item.MaxVal()), locale).view();
            tStr.at(row, 4) = item.Units();
            tStr.at(row, 5) = item.PromptString();
            ++row;
        }
    }
    tCount = memory.EditableCount();
}

bool clsScriptControl::EditDataVariable(std::int32_t tIndex, float tNewValue) {
    clsData item = engine_.DataMemory().Item(tIndex);
    item.setInitialValue(Value::ofSingle(tNewValue));
    item.setCurrentValue(Value::ofSingle(tNewValue));
    return true;
}

void clsScriptControl::raise(Event& event) {
    if (sink_ != nullptr) sink_->raise(event);
}

void clsScriptControl::CommandComplete(std::int32_t, std::int32_t) {
    if (sink_ == nullptr) {
        engine_.setStopExecution(true);
        return;
    }
    Event keepGoing(HostEvent::KeepGoing);
    keepGoing.append(Value::ofBoolean(false));
    sink_->raise(keepGoing);
    engine_.setStopExecution(!keepGoing.succeeded());
}

}  // namespace corvane
