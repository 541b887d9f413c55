#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "cli/answers_file.h"
#include "cli/simulated_instrument.h"
#include "engine/event.h"

namespace corvane {

/// How the host of a run answers: the simulated instrument does the work, the answers file may overrule it. It depends
/// on nothing but the events it is given, so they may come by any road.
class HostAnswers {
public:
    /// `answers` must outlive this.
    explicit HostAnswers(const Answers& answers) : answers_(answers) {}

    /// Answers the event; says why the work was not done, nothing when it was.
    std::string answer(Event& event);
    /// Whether the operator presses the button while the host waits for the next round: to be asked after the answer.
    bool finishesLoop(const Event& event) const;

    const SimulatedInstrument& instrument() const { return instrument_; }

private:
    std::string overrule(Event& event, const EventAnswer& answer);
    static std::size_t indexOf(const Event& event) { return static_cast<std::size_t>(event.id()) - 1; }

    const Answers& answers_;
    SimulatedInstrument instrument_;
    std::array<std::int64_t, eventCount> occurrences_{};
};

}  // namespace corvane
