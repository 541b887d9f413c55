// The statements that only hand work to the host: one event each, whose success decides the result.

#include <algorithm>

#include "engine/clsCommandList.h"
#include "engine/statement_table.h"
#include "platform/value_rules.h"

namespace corvane {

// The payload of a value of its own. Numbers are singles as a rule, and their conversions part of the caller's loop.
inline Value::Payload clsCommandList::argumentOf(ValueView value, ValueType type) const {
    if (value.type() == type) return Value(value).detach();
    if (value.type() == ValueType::Single) {
        if (type == ValueType::Long && everyday::isLong(value)) return Value::ofLong(everyday::toLong(value)).detach();
        if (type == ValueType::Boolean && everyday::isBoolean(value))
            return Value::ofBoolean(everyday::toBoolean(value)).detach();
    }
    return convertedArgument(value, type);
}

Value::Payload clsCommandList::convertedArgument(ValueView value, ValueType type) const {
    switch (type) {
        case ValueType::Single: return Value::ofSingle(singleOf(value)).detach();
        case ValueType::Long: return Value::ofLong(longOf(value)).detach();
        case ValueType::Boolean: return Value::ofBoolean(toBoolean(value, locale())).detach();
        default: return Value::ofText(textOf(value)).detach();
    }
}

namespace {

Value restOf(ValueType type, float rest) {
    return type == ValueType::Single ? Value::ofSingle(rest) : Value::ofLong(static_cast<std::int32_t>(rest));
}

}  // namespace

StatementResult clsCommandList::raiseToHost(const clsCommand& command, const Execution& execution) {
    Event event(execution.event);
    const EventRow& row = event.row();
    const std::size_t last = row.argumentCount - std::size_t{1};
    const std::size_t passed = std::min<std::size_t>(execution.passed, last);
    const std::span<ItemRecord* const> slots = command.slots();
    const std::size_t bound = std::min(passed, slots.size());
    std::size_t i = 0;
    for (; i < bound; ++i) {
        const ValueType type = row.types[i];
        const ValueView value(slots[i]->currentType, slots[i]->current);
        event.place(i, Value::adopt(type, argumentOf(value, type)));
    }
    if (i < passed) clsCommand::refuseSlot(static_cast<std::int32_t>(i));
    for (; i < last; ++i) event.place(i, restOf(row.types[i], execution.rest));
    event.place(last, Value::ofBoolean(false));
    owner_.raise(event);
    return event.succeeded() ? crNext : crFailed;
}

StatementResult clsCommandList::executeGetDataSet(StatementStep step) {
    fillDataSet(step);
    dataSet_->LevellingType = ltNoLevelling;
    return raiseDataSet();
}

StatementResult clsCommandList::executeGetDataSetEx(StatementStep step) {
    fillDataSet(step);
    dataSet_->LevellingFrom = static_cast<enumLevellingFrom>(longOf(step.view(4)));
    dataSet_->LevellingType = static_cast<enumLevellingType>(longOf(step.view(5)));
    dataSet_->LevellingTrigger = singleOf(step.view(6));
    dataSet_->LevellingHix = singleOf(step.view(7));
    dataSet_->LevellingTip = singleOf(step.view(8));
    return raiseDataSet();
}

void clsCommandList::fillDataSet(StatementStep step) {
    dataSet_->HelixAngle = singleOf(step.view(0));
    dataSet_->TipSpeed = singleOf(step.view(1));
    dataSet_->Height = singleOf(step.view(2));
    dataSet_->DataSetType = static_cast<enumDataSetType>(longOf(step.view(3)));
    dataSet_->TestResult = trNotRun;
}

ResultCode clsCommandList::raiseDataSet() {
    Event event(HostEvent::GetDataSet);
    event.append(Value::ofObject(*dataSet_));
    event.append(Value::ofBoolean(false));
    // The host may keep the object that it is given, so the next statement starts from a new one. That is made before:
    // without memory for it the host is given none.
    auto next = makeReference<clsDataSetParameters>();
    owner_.raise(event);
    dataSet_ = std::move(next);
    return event.succeeded() ? crNext : crFailed;
}

}  // namespace corvane
