#pragma once

#include "engine/event.h"
#include "host/com/automation.h"
#include "platform/floating_point.h"

namespace corvane {

/// Hands one event to the sinks of one object, one sink after the other.
///
/// Every sink is handed the arguments in storage of its own, in the published types, as the sinks before it left them.
/// What it writes by reference counts when it answers with success; a sink that fails has not answered. Whatever tag it
/// leaves in an argument, a by-reference cell is read in its published type; True is any non-zero.
class EventDelivery {
public:
    explicit EventDelivery(Event& event) noexcept : event_(event) {}
    EventDelivery(const EventDelivery&) = delete;
    EventDelivery& operator=(const EventDelivery&) = delete;

    /// Throws error 7.
    void deliverTo(IDispatch& sink, const FloatingPointState& host);

private:
    IDispatch& faceOf(SharedRecord& record);

    Event& event_;
    ComReference<IDispatch> face_;  // of the event's object: the same for all sinks
};

}  // namespace corvane
