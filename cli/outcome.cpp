#include "cli/outcome.h"

#include <cmath>
#include <utility>

namespace corvane {
namespace {

std::string counted(std::int64_t count) { return std::to_string(count) + (count == 1 ? " statement" : " statements"); }

}  // namespace

std::string_view endingWord(RunOutcome::Ending ending) {
    switch (ending) {
        case RunOutcome::Ending::Ended: return "ended";
        case RunOutcome::Ending::Failed: return "failed";
        case RunOutcome::Ending::Stopped: return "stopped";
        case RunOutcome::Ending::AutomationError: return "automation error";
        case RunOutcome::Ending::StatementLimit: break;
    }
    return "statement limit";
}

std::string RunOutcome::message() const {
    const std::string place = address ? "statement " + std::to_string(*address + 1LL) +
                                            (line ? " on line " + std::to_string(*line + 1LL) : std::string())
                                      : std::string();
    switch (ending) {
        case Ending::Ended: return "ended after " + counted(statements) + (reason.empty() ? "" : " " + reason);
        case Ending::Failed: return place + " failed" + (reason.empty() ? "" : ": " + reason);
        case Ending::Stopped: return "stopped after " + counted(statements) + (reason.empty() ? "" : ": " + reason);
        case Ending::AutomationError:
            return "automation error " + std::to_string(errorNumber) + " (" + reason + ")" +
                   (place.empty() ? "" : " in " + place);
        case Ending::StatementLimit: break;
    }
    return "statement limit reached after " + counted(statements);
}

std::string durationText(double seconds) {
    const auto whole = static_cast<std::int64_t>(std::llround(seconds));
    std::string text;
    if (whole >= 3600) text += std::to_string(whole / 3600) + " h ";
    if (whole >= 60) text += std::to_string(whole / 60 % 60) + " min ";
    return text + std::to_string(whole % 60) + " s";
}

RunWatch::RunWatch(clsCommandList& engine) : engine_(engine) { engine_.setListener(this); }

void RunWatch::CommandStart(std::int32_t programCounter) {
    address_ = programCounter;
    line_ = engine_.Command(programCounter + 1).line();
    ++started_;
    lastEvent_ = {};
    isAnswered_ = true;
    refusal_.clear();
    operatorFailing_.clear();
}

void RunWatch::CommandComplete(std::int32_t CommandNumber, std::int32_t CommandStatus) {
    ++completed_;
    nextAddress_ = CommandNumber;
    lastStatus_ = CommandStatus;
    if (CommandStatus == crCall) ++openCalls_;
    if (CommandStatus == crReturn && openCalls_ > 0) --openCalls_;
}

void RunWatch::CommandError(std::int32_t, std::int32_t) { failed_ = true; }

bool RunWatch::isLastStatement() const {
    if (failed_ || engine_.programCounter() >= engine_.commandCount()) return true;
    // The listener is told of the result only after KeepGoing, so this Return's own call is still among the open ones.
    return openCalls_ == 0 && engine_.Command(*address_ + 1).CommandType() == ctReturn;
}

void RunWatch::noteEvent(const Event& event, std::string_view refusal) {
    if (event.id() == HostEvent::FunctionCalled || event.id() == HostEvent::KeepGoing) return;
    lastEvent_ = event.row().name;
    isAnswered_ = event.succeeded();
    refusal_ = refusal;
}

void RunWatch::noteStop(RunOutcome::Ending ending, std::string reason) {
    stop_ = ending;
    stopReason_ = std::move(reason);
}

RunOutcome RunWatch::unfinished(RunOutcome::Ending ending) const {
    RunOutcome outcome;
    outcome.ending = ending;
    outcome.statements = completed_;
    outcome.address = address_;
    if (address_) outcome.line = line_;
    return outcome;
}

RunOutcome RunWatch::outcome() const {
    if (failed_) {
        RunOutcome outcome = unfinished(RunOutcome::Ending::Failed);
        outcome.event = lastEvent_;
        if (!operatorFailing_.empty())
            outcome.reason = operatorFailing_ + " " + outcome.event;
        else if (!isAnswered_)
            outcome.reason = "the host did not answer " + outcome.event + (refusal_.empty() ? "" : ": " + refusal_);
        return outcome;
    }
    if (stop_) {
        RunOutcome outcome = unfinished(*stop_);
        outcome.reason = stopReason_;
        return outcome;
    }
    RunOutcome outcome;
    outcome.statements = completed_;
    if (lastStatus_ == crReturn && nextAddress_ < engine_.commandCount()) outcome.reason = "by a Return without a Call";
    return outcome;
}

RunOutcome RunWatch::outcome(const automation_error& error) const {
    RunOutcome outcome = unfinished(RunOutcome::Ending::AutomationError);
    outcome.errorNumber = static_cast<std::int32_t>(error.number());
    outcome.reason = error.what();
    return outcome;
}

}  // namespace corvane
