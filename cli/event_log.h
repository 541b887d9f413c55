#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include "cli/log_record.h"
#include "cli/outcome.h"
#include "engine/enumerations.h"

namespace corvane {

/// What an operator dialog was answered with when no operator was asked.
struct LoggedDialog {
    std::string_view kind;  ///< "message" or "input"
    std::u16string_view text;
    std::optional<Value> answer;  ///< the value given
    std::string_view ending;      ///< the button's word; "accepted", "cancelled"; "nobody there"
};

struct LogOptions {
    /// The events as a host sees them and nothing else: no places, no dialogs, no end.
    bool hostView = false;
    /// The readable log holds FunctionCalled and KeepGoing too.
    bool everyEvent = false;
};

/// Writes down a run. The same run gives the same bytes on every system and under every locale.
class EventLog {
public:
    virtual ~EventLog() = default;
    virtual void event(const LoggedEvent& event) = 0;
    virtual void dialog(const LoggedDialog& dialog) = 0;
    virtual void trace(enumDebugOptions category, std::u16string_view line) = 0;
    virtual void end(const RunOutcome& outcome) = 0;
};

/// Columns for people: statement counted from 1, line counted from 1, the event with its arguments and answers.
std::unique_ptr<EventLog> makeTextLog(std::ostream& output, LogOptions options);

/// One JSON object a line, for programs; all 41 events.
std::unique_ptr<EventLog> makeJsonLog(std::ostream& output, LogOptions options);

}  // namespace corvane
