#include "cli/log_record.h"

#include <utility>

#include "host/clsDataSetParameters.h"
#include "platform/value_rules.h"

namespace corvane {
namespace {

std::vector<LoggedValue> loggedProperties(const clsDataSetParameters& dataSet) {
    std::vector<LoggedValue> properties;
    const auto add = [&](std::string name, Value value) {
        properties.push_back({std::move(name), std::move(value), {}});
    };
    add("HelixAngle", Value::ofSingle(dataSet.HelixAngle));
    add("TipSpeed", Value::ofSingle(dataSet.TipSpeed));
    add("Height", Value::ofSingle(dataSet.Height));
    add("Force", Value::ofSingle(dataSet.Force));
    add("SampleDelta", Value::ofSingle(dataSet.SampleDelta));
    add("SampleType", Value::ofLong(dataSet.SampleType));
    add("DataSetType", Value::ofLong(dataSet.DataSetType));
    add("Direction", Value::ofLong(dataSet.Direction));
    add("LevellingFrom", Value::ofLong(dataSet.LevellingFrom));
    add("LevellingType", Value::ofLong(dataSet.LevellingType));
    add("LevellingTrigger", Value::ofSingle(dataSet.LevellingTrigger));
    add("LevellingHix", Value::ofSingle(dataSet.LevellingHix));
    add("LevellingTip", Value::ofSingle(dataSet.LevellingTip));
    add("TestResult", Value::ofLong(dataSet.TestResult));
    for (std::int32_t i = 0; i < clsDataSetParameters::variableCount; ++i)
        add("DataSetVariable" + std::to_string(i), Value::ofText(dataSet.DataSetVariable(i)));
    return properties;
}

/// The values of `after` that differ from those of `before`; of a record, its properties that differ.
std::vector<LoggedValue> changes(const std::vector<LoggedValue>& before, const std::vector<LoggedValue>& after) {
    std::vector<LoggedValue> changed;
    for (std::size_t i = 0; i < after.size(); ++i) {
        if (after[i] == before[i]) continue;
        changed.push_back(after[i]);
        if (!after[i].fields.empty()) changed.back().fields = changes(before[i].fields, after[i].fields);
    }
    return changed;
}

}  // namespace

bool operator==(const LoggedValue& left, const LoggedValue& right) {
    return left.name == right.name && left.fields == right.fields && left.value.type() == right.value.type() &&
           std::is_eq(compare(left.value, right.value));
}

std::vector<LoggedValue> loggedValues(const Event& event) {
    std::vector<LoggedValue> values;
    for (std::size_t i = 0; i < event.count(); ++i) {
        LoggedValue logged{std::string(event.row().arguments[i].name), {}, {}};
        if (event.argument(i).type() == ValueType::Object)
            logged.fields = loggedProperties(static_cast<const clsDataSetParameters&>(event.argument(i).object()));
        else
            logged.value = event.argument(i);
        values.push_back(std::move(logged));
    }
    return values;
}

LoggedEvent loggedEvent(std::string_view name, std::vector<LoggedValue> before, const std::vector<LoggedValue>& after) {
    LoggedEvent event;
    event.name = name;
    event.answers = changes(before, after);
    const LoggedValue& success = after.back();
    if (event.answers.empty() || event.answers.back().name != success.name) event.answers.push_back(success);
    before.pop_back();
    event.arguments = std::move(before);
    return event;
}

}  // namespace corvane
