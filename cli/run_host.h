#pragma once

#include <cstdint>
#include <functional>

#include "cli/event_log.h"
#include "cli/host_answers.h"
#include "cli/outcome.h"
#include "host/clsScriptControl.h"

namespace corvane {

/// The host of a run: each event is answered and written to the log, and KeepGoing ends what should not go on.
class RunHost final : public EventSink {
public:
    struct Limits {
        std::int64_t statements = 0;        ///< 0: any number
        std::function<bool()> interrupted;  ///< asked after each statement; may be empty
    };

    /// Everything referred to must outlive the host, which sinks the control's events as long as it lives.
    RunHost(clsScriptControl& control, const Answers& answers, EventLog& log, RunWatch& watch, Limits limits);
    RunHost(const RunHost&) = delete;
    RunHost& operator=(const RunHost&) = delete;
    ~RunHost() override { control_.setEventSink(nullptr); }

    const SimulatedInstrument& instrument() const { return answers_.instrument(); }

private:
    void raise(Event& event) override;
    void keepGoing(Event& event);
    LoggedPlace place() const;

    clsScriptControl& control_;
    HostAnswers answers_;
    EventLog& log_;
    RunWatch& watch_;
    Limits limits_;
};

}  // namespace corvane
