#include "cli/run_host.h"

#include <utility>

namespace corvane {

RunHost::RunHost(clsScriptControl& control, const Answers& answers, EventLog& log, RunWatch& watch, Limits limits)
    : control_(control), answers_(answers), log_(log), watch_(watch), limits_(std::move(limits)) {
    control_.setEventSink(this);
}

void RunHost::raise(Event& event) {
    std::vector<LoggedValue> before = loggedValues(event);
    std::string refusal = answers_.answer(event);
    if (answers_.finishesLoop(event)) control_.FinishLoopFlag();
    if (event.id() == HostEvent::KeepGoing) keepGoing(event);
    LoggedEvent logged = loggedEvent(event.row().name, std::move(before), loggedValues(event));
    logged.place = place();
    logged.refusal = std::move(refusal);
    log_.event(logged);
    watch_.noteEvent(event, logged.refusal);
}

LoggedPlace RunHost::place() const {
    if (!control_.engine().isRunning()) return {std::nullopt, control_.engine().currentLine()};
    return {watch_.address(), watch_.line()};
}

void RunHost::keepGoing(Event& event) {
    if (!event.succeeded()) {
        watch_.noteStop(RunOutcome::Ending::Stopped, "by the answers file");
    } else if (watch_.isLastStatement()) {
        return;
    } else if (limits_.interrupted && limits_.interrupted()) {
        watch_.noteStop(RunOutcome::Ending::Stopped, "interrupted");
        event.succeed(false);
    } else if (limits_.statements != 0 && watch_.started() >= limits_.statements) {
        watch_.noteStop(RunOutcome::Ending::StatementLimit, {});
        event.succeed(false);
    }
}

}  // namespace corvane
