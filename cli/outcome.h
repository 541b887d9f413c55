#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "cli/exit_code.h"
#include "engine/clsCommandList.h"
#include "platform/automation_error.h"

namespace corvane {

/// How a run ended and why.
struct RunOutcome {
    enum class Ending {
        Ended,            ///< the end of the script, or a Return without a Call
        Failed,           ///< a statement failed
        Stopped,          ///< KeepGoing was not answered with true
        AutomationError,  ///< a run-time error
        StatementLimit,
    };
    Ending ending = Ending::Ended;
    std::int64_t statements = 0;          ///< how many were run to their end
    std::optional<std::int32_t> address;  ///< from 0, of the statement that failed
    std::optional<std::int32_t> line;     ///< from 0, where that statement stands
    std::string event;                    ///< the event whose answer failed the statement; may be empty
    std::string reason;                   ///< UTF-8; may be empty
    std::int32_t errorNumber = 0;
    double simulatedSeconds = 0;

    /// One line for people; lines and statements count from 1.
    std::string message() const;
    ExitCode exitCode() const { return ending == Ending::Ended ? ExitCode::Success : ExitCode::RunFailed; }
};

/// The word that programs know an ending by: "ended", "failed", "stopped", "automation error", "statement limit".
std::string_view endingWord(RunOutcome::Ending ending);

/// "12 min 34 s", rounded to whole seconds.
std::string durationText(double seconds);

/// Watches a run step by step, to tell afterwards how it ended: the result of `RunScript` is true even after a failed
/// statement.
class RunWatch final : public EngineListener {
public:
    /// Watches `engine`, which must outlive the watch, until the watch goes.
    explicit RunWatch(clsCommandList& engine);
    RunWatch(const RunWatch&) = delete;
    RunWatch& operator=(const RunWatch&) = delete;
    ~RunWatch() override { engine_.setListener(nullptr); }

    /// The address of the statement that runs or ran last; none before the first.
    std::optional<std::int32_t> address() const { return address_; }
    /// The line of that statement, from 0.
    std::int32_t line() const { return line_; }

    /// How many statements were started.
    std::int64_t started() const { return started_; }
    /// Inside KeepGoing: whether the run ends with this statement, however KeepGoing is answered.
    bool isLastStatement() const;

    /// To be told of each event after it was answered.
    void noteEvent(const Event& event, std::string_view refusal);
    /// How the operator let the present statement down: "the operator cancelled"; empty when he did not.
    void noteOperator(std::string_view failing) { operatorFailing_ = failing; }
    /// The run is being stopped through KeepGoing.
    void noteStop(RunOutcome::Ending ending, std::string reason);

    /// After `RunScript` returned.
    RunOutcome outcome() const;
    /// After `RunScript` failed with a run-time error.
    RunOutcome outcome(const automation_error& error) const;

private:
    void CommandStart(std::int32_t programCounter) override;
    void CommandComplete(std::int32_t CommandNumber, std::int32_t CommandStatus) override;
    void CommandError(std::int32_t programCounter, std::int32_t resultCode) override;

    RunOutcome unfinished(RunOutcome::Ending ending) const;

    clsCommandList& engine_;
    std::optional<std::int32_t> address_;
    std::int32_t line_ = 0;
    std::int64_t started_ = 0;
    std::int64_t completed_ = 0;
    std::int32_t lastStatus_ = crNext;
    std::int32_t nextAddress_ = 0;
    std::int64_t openCalls_ = 0;  // that no Return has ended yet
    bool failed_ = false;
    std::optional<RunOutcome::Ending> stop_;
    std::string stopReason_;
    std::string_view lastEvent_;  // of the present statement, FunctionCalled apart
    bool isAnswered_ = true;      // whether with success
    std::string refusal_;
    std::string operatorFailing_;
};

}  // namespace corvane
