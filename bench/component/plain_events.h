#pragma once

#include <vector>

#include "engine/event.h"
#include "host/com/automation.h"

namespace corvane::bench {

/// The baseline of event delivery: the straightforward way, as one writes it first and as generated code does it.
///
/// At each event it counts the sinks, and for each of them makes an argument array, an automation text for each text,
/// calls the sink with a reference of its own, takes the answers and throws everything away.
class PlainEvents final : public EventSink {
public:
    void advise(IDispatch& sink) { sinks_.emplace_back(&sink); }
    void raise(Event& event) override;

private:
    std::vector<ComReference<IDispatch>> sinks_;
};

}  // namespace corvane::bench
