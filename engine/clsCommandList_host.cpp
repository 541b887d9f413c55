// The statements that only hand work to the host: one event each, whose success decides the result.

#include <algorithm>

#include "engine/clsCommandList.h"
#include "engine/statement_table.h"
#include "platform/value_rules.h"

namespace corvane {

inline Value clsCommandList::argumentOf(ValueView value, ValueType type) const {
    switch (type) {
        case ValueType::Single: return Value::ofSingle(singleOf(value));
        case ValueType::Long: return Value::ofLong(longOf(value));
        case ValueType::Boolean: return Value::ofBoolean(booleanOf(value));
        default: return Value::ofText(textOf(value));
    }
}

namespace {

Value restOf(ValueType type, float rest) {
    return type == ValueType::Single ? Value::ofSingle(rest) : Value::ofLong(static_cast<std::int32_t>(rest));
}

}  // namespace

std::int32_t clsCommandList::raiseToHost(const StatementStep& step, const Execution& execution) {
    Event event(execution.event);
    const EventRow& row = event.row();
    const std::size_t last = row.argumentCount - std::size_t{1};
    const std::size_t passed = std::min<std::size_t>(execution.passed, last);
    const std::span<ItemRecord* const> slots = step.command.slots();
    std::size_t i = 0;
    for (; i < passed; ++i) {
        if (i >= slots.size()) clsCommand::refuseSlot(static_cast<std::int32_t>(i));
        event.place(i, argumentOf({slots[i]->currentType, slots[i]->current}, row.arguments[i].type));
    }
    for (; i < last; ++i) event.place(i, restOf(row.arguments[i].type, execution.rest));
    event.place(last, Value::ofBoolean(false));
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
    dataSet_->LevellingFrom = static_cast<enumLevellingFrom>(longOf(step.view(4)));
    dataSet_->LevellingType = static_cast<enumLevellingType>(longOf(step.view(5)));
    dataSet_->LevellingTrigger = singleOf(step.view(6));
    dataSet_->LevellingHix = singleOf(step.view(7));
    dataSet_->LevellingTip = singleOf(step.view(8));
    return raiseDataSet();
}

void clsCommandList::fillDataSet(const StatementStep& step) {
    dataSet_->HelixAngle = singleOf(step.view(0));
    dataSet_->TipSpeed = singleOf(step.view(1));
    dataSet_->Height = singleOf(step.view(2));
    dataSet_->DataSetType = static_cast<enumDataSetType>(longOf(step.view(3)));
    dataSet_->TestResult = trNotRun;
}

std::int32_t clsCommandList::raiseDataSet() {
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
