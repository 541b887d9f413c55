#pragma once

#include <array>
#include <cstdint>
#include <functional>

#include "cli/answers_file.h"
#include "cli/event_log.h"
#include "cli/outcome.h"
#include "cli/simulated_instrument.h"
#include "host/clsScriptControl.h"

namespace corvane {

/// The host of a run: the simulated instrument answers each event, the answers file may overrule it, the log writes it
/// down, and KeepGoing ends what should not go on.
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

    const SimulatedInstrument& instrument() const { return instrument_; }

private:
    void raise(Event& event) override;
    std::string answer(Event& event);
    std::string overrule(Event& event, const EventAnswer& answer);
    void keepGoing(Event& event);
    LoggedPlace place() const;

    clsScriptControl& control_;
    const Answers& answers_;
    EventLog& log_;
    RunWatch& watch_;
    Limits limits_;
    SimulatedInstrument instrument_;
    std::array<std::int64_t, eventCount> occurrences_{};
};

}  // namespace corvane
