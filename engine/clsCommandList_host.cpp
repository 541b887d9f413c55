// The statements that only hand work to the host: one event each, whose success decides the result.

#include "engine/clsCommandList.h"
#include "platform/value_rules.h"

namespace corvane {

Value clsCommandList::argumentOf(const StatementStep& step, std::int32_t parameter, ValueType type) const {
    Value value = step.command.ParamValue(parameter);
    if (value.type() == type) return value;
    switch (type) {
        case ValueType::Single: return Value::ofSingle(toSingle(value, locale()));
        case ValueType::Long: return Value::ofLong(toLong(value, locale()));
        case ValueType::Boolean: return Value::ofBoolean(toBoolean(value, locale()));
        default: return Value::ofText(toText(value, locale()));
    }
}

std::int32_t clsCommandList::raiseToHost(const StatementStep& step, HostEvent hostEvent, std::uint8_t passed,
                                         float rest) {
    Event event(hostEvent);
    const EventRow& row = event.row();
    const std::size_t last = row.argumentCount - std::size_t{1};
    for (std::size_t i = 0; i < last; ++i) {
        const ValueType type = row.arguments[i].type;
        if (i < passed)
            event.append(argumentOf(step, static_cast<std::int32_t>(i), type));
        else
            event.append(type == ValueType::Single ? Value::ofSingle(rest)
                                                   : Value::ofLong(static_cast<std::int32_t>(rest)));
    }
    event.append(Value::ofBoolean(false));
    owner_.raise(event);
    return event.succeeded() ? crNext : crFailed;
}

std::int32_t clsCommandList::executeGetDataSet(StatementStep& step) {
    fillDataSet(step);
    dataSet_->LevellingType = ltNoLevelling;
    return raiseDataSet();
}

std::int32_t clsCommandList::executeGetDataSetEx(StatementStep& step) {
    fillDataSet(step);
    dataSet_->LevellingFrom = static_cast<enumLevellingFrom>(longOf(step, 4));
    dataSet_->LevellingType = static_cast<enumLevellingType>(longOf(step, 5));
    dataSet_->LevellingTrigger = singleOf(step, 6);
    dataSet_->LevellingHix = singleOf(step, 7);
    dataSet_->LevellingTip = singleOf(step, 8);
    return raiseDataSet();
}

void clsCommandList::fillDataSet(const StatementStep& step) {
    dataSet_->HelixAngle = singleOf(step, 0);
    dataSet_->TipSpeed = singleOf(step, 1);
    dataSet_->Height = singleOf(step, 2);
    dataSet_->DataSetType = static_cast<enumDataSetType>(longOf(step, 3));
    dataSet_->TestResult = trNotRun;
}

std::int32_t clsCommandList::raiseDataSet() {
    Event event(HostEvent::GetDataSet);
    event.append(Value::ofObject(*dataSet_));
    event.append(Value::ofBoolean(false));
    owner_.raise(event);
    // The host may keep the object that it was given, so the next statement starts from a new one.
    dataSet_ = makeReference<clsDataSetParameters>();
    return event.succeeded() ? crNext : crFailed;
}

}  // namespace corvane
