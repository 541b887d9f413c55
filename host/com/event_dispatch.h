#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "engine/event.h"
#include "host/com/automation.h"
#include "host/com/connection_point.h"
#include "platform/floating_point.h"

namespace corvane {

/// The arguments of one kind of event, in the published types, as one sink after the other is handed them.
///
/// They are made once and serve each event of the kind: what never differs is written at the start, and a text whose
/// content is there already, or fits, is not allocated anew. Between two sinks everything that they hold is theirs,
/// whatever the sink has put there.
class EventArguments {
public:
    explicit EventArguments(const EventRow& row);
    EventArguments(const EventArguments&) = delete;
    EventArguments& operator=(const EventArguments&) = delete;
    ~EventArguments();

    /// Writes the arguments of `event`. `object` is the one that the event carries, if it does. Throws error 7.
    void write(const Event& event, IDispatch* object);
    /// Valid until the arguments are taken back.
    DISPPARAMS parameters() noexcept { return {variants_.data(), nullptr, static_cast<UINT>(count_), 0}; }
    /// After a sink: releases what it put in the place of an argument, and the object.
    void takeBack() noexcept;
    /// Answers `event` with what a sink wrote by reference.
    void answer(Event& event);
    /// Releases long texts, which would only take memory until the next event of the kind.
    void dropLongTexts() noexcept;

private:
    /// The value of an argument, in its variant or where its variant refers to.
    union Cell {
        std::uint32_t number;  // the bits of a single or a long
        VARIANT_BOOL boolean;
        BSTR text;
    };
    struct Place {
        VARTYPE type;  // as the variant's is while no sink has it
        Cell* value;
        Cell cell;  // for what is passed by reference
        // The automation text that was made for this place, and its length: a sink may have put another there, or have
        // written another length before it.
        BSTR own;
        std::size_t ownLength;
        Text known;  // the content of the automation text that stands there, where it was seen since the last sink

        bool holdsOwn(std::size_t length) const noexcept;
    };

    void prepare(std::size_t place) noexcept;
    void takeBack(std::size_t place) noexcept;
    static void writeText(Place& place, const Value& value);
    static void answerText(Place& place, Event& event, std::size_t position);

    const std::size_t count_;
    // Automation counts arguments from the last, and so do the places.
    std::array<VARIANTARG, maximumEventArguments> variants_;
    std::array<Place, maximumEventArguments> places_;
};

/// The arguments that an object keeps for its next events. Whoever takes some has them alone: an event that is raised
/// while another of its kind is on its way gets new ones.
class KeptArguments {
public:
    /// Throws std::bad_alloc.
    std::unique_ptr<EventArguments> take(const EventRow& row) {
        std::unique_ptr<EventArguments> arguments = std::move(keptFor(row));
        if (!arguments) arguments = std::make_unique<EventArguments>(row);
        return arguments;
    }
    void keep(const EventRow& row, std::unique_ptr<EventArguments> arguments) noexcept {
        if (row.ownedPlaces != 0) arguments->dropLongTexts();
        keptFor(row) = std::move(arguments);
    }

private:
    std::unique_ptr<EventArguments>& keptFor(const EventRow& row) noexcept {
        return kept_[static_cast<std::size_t>(row.id) - 1];
    }

    std::array<std::unique_ptr<EventArguments>, eventCount> kept_;
};

/// Hands one event to the sinks of one object, one sink after the other.
///
/// Every sink is handed the arguments in the published types, as the sinks before it left them. What it writes by
/// reference counts when it answers with success; a sink that fails has not answered. Whatever tag it leaves in an
/// argument, a by-reference cell is read in its published type; True is any non-zero.
class EventDelivery {
public:
    /// Throws std::bad_alloc.
    EventDelivery(Event& event, KeptArguments& kept) : event_(event), kept_(kept), arguments_(kept.take(event.row())) {}
    EventDelivery(const EventDelivery&) = delete;
    EventDelivery& operator=(const EventDelivery&) = delete;
    ~EventDelivery() { kept_.keep(event_.row(), std::move(arguments_)); }

    /// Throws error 7.
    void deliverTo(IDispatch& sink, const FloatingPointState& host);

private:
    IDispatch* object();

    Event& event_;
    KeptArguments& kept_;
    std::unique_ptr<EventArguments> arguments_;
    ComReference<IDispatch> face_;  // of the event's object: the same for all sinks
};

/// Hands the events of one object to all sinks that are advised at its connection point, in the order of advising.
class EventRelay final : public EventSink {
public:
    /// `host` tells, whenever an event is raised, how the host calculates.
    EventRelay(const ConnectionPoint& point, const FloatingPointState* const& host) noexcept
        : point_(point), host_(host) {}

    void raise(Event& event) override;

private:
    const ConnectionPoint& point_;
    const FloatingPointState* const& host_;
    KeptArguments arguments_;
};

}  // namespace corvane
