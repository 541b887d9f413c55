#include "cli/run_host.h"

#include <algorithm>
#include <utility>

namespace corvane {

RunHost::RunHost(clsScriptControl& control, const Answers& answers, EventLog& log, RunWatch& watch, Limits limits)
    : control_(control), answers_(answers), log_(log), watch_(watch), limits_(std::move(limits)) {
    control_.setEventSink(this);
}

void RunHost::raise(Event& event) {
    std::vector<LoggedValue> before = loggedValues(event);
    std::string refusal = answer(event);
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

std::string RunHost::answer(Event& event) {
    const std::int64_t occurrence = ++occurrences_[static_cast<std::size_t>(event.id()) - 1];
    const EventAnswer* fromFile = answers_.find(event.id(), occurrence);
    std::string refusal = fromFile != nullptr ? overrule(event, *fromFile) : instrument_.handle(event);
    // The operator presses the button while the host waits for the next round.
    if (event.id() == HostEvent::RequiredFinishLoopFlag && occurrence % answers_.finishLoopAfter == 0)
        control_.FinishLoopFlag();
    if (event.id() == HostEvent::KeepGoing) keepGoing(event);
    return refusal;
}

std::string RunHost::overrule(Event& event, const EventAnswer& answer) {
    const std::size_t success = event.count() - 1;
    const auto decided =
        std::find_if(answer.begin(), answer.end(), [&](const auto& entry) { return entry.first == success; });
    const bool refuses = decided != answer.end() && !decided->second.boolean();
    // What is refused does not happen; all else does, as far as the instrument can.
    std::string refusal = refuses ? "by the answers file" : instrument_.handle(event);
    for (const auto& [position, value] : answer) event.answer(position, value);
    return event.succeeded() ? std::string() : refusal;
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
