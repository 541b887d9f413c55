#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "engine/event.h"

/// What a log says of one event: names and values, however the event arrived. A host that receives events by another
/// road fills the same records and so writes the same log.
namespace corvane {

/// A named value: an argument of an event or what it was answered with.
struct LoggedValue {
    std::string name;
    Value value;                      ///< text, single, long or Boolean
    std::vector<LoggedValue> fields;  ///< of a record; `value` means nothing then

    friend bool operator==(const LoggedValue& left, const LoggedValue& right);
};

/// Where in the script an event comes from.
struct LoggedPlace {
    std::optional<std::int32_t> address;  ///< of the statement, from 0; none while the script is loaded
    std::int32_t line = 0;                ///< from 0
};

struct LoggedEvent {
    std::optional<LoggedPlace> place;  ///< none where the host does not know it
    std::string name;
    std::vector<LoggedValue> arguments;  ///< as they arrived, without tSucess
    std::vector<LoggedValue> answers;    ///< what the host changed, and tSucess, last
    std::string refusal;                 ///< why the work was not done; empty when it was, UTF-8
};

/// The arguments of an event as they are now, tSucess included; the data-set record with its properties.
std::vector<LoggedValue> loggedValues(const Event& event);

/// The event as it is logged, from its values before and after it was answered.
LoggedEvent loggedEvent(std::string_view name, std::vector<LoggedValue> before, const std::vector<LoggedValue>& after);

}  // namespace corvane
