#pragma once

#include <bit>
#include <cassert>
#include <cstddef>
#include <initializer_list>
#include <new>
#include <span>
#include <string_view>

#include "engine/event_table.h"
#include "platform/value.h"

namespace corvane {

/// One event on its way to the host: a row of the event table and its argument values.
///
/// The host reads arguments by position or by published name and answers through those that are by reference; the
/// raiser reads the answers from the same object when the sink returns. Events live on the stack of whoever raises
/// them, and one may be raised again with other values: a sink keeps none.
class Event {
public:
    /// The arguments before `tSucess`, in order; tSucess starts false. Throws std::logic_error when number or types do
    /// not fit the row.
    Event(HostEvent event, std::span<const Value> arguments);
    Event(HostEvent event, std::initializer_list<Value> arguments)
        : Event(event, std::span<const Value>(arguments.begin(), arguments.size())) {}
    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;
    ~Event() {
        // Most events carry nothing that needs release, and one is raised before and after each statement.
        const std::uint32_t written = (std::uint32_t{1} << count_) - 1;
        for (std::uint32_t owned = row_->ownedPlaces & written; owned != 0; owned &= owned - 1)
            slots()[std::countr_zero(owned)].~Value();
    }

    HostEvent id() const noexcept { return row_->id; }
    const EventRow& row() const noexcept { return *row_; }

    /// The number of arguments, `tSucess` included.
    std::size_t count() const noexcept { return count_; }
    /// The argument at `position`, from 0 to `count()` - 1.
    const Value& argument(std::size_t position) const noexcept {
        assert(position < count_);
        return slots()[position];
    }
    /// The argument of that published name; throws std::logic_error, naming event and argument, when there is none.
    const Value& argument(std::string_view name) const { return argument(positionOf(name)); }

    /// Writes a by-reference argument. Throws std::logic_error, naming event and argument, when the argument is passed
    /// by value, when `value` is not of its published type, or when there is no such argument.
    void answer(std::size_t position, Value value) {
        if (!takes(position, value.type())) refuseAnswer(position);
        slots()[position] = std::move(value);
    }
    void answer(std::string_view name, Value value) { answer(positionOf(name), std::move(value)); }

    /// `tSucess`, the last argument.
    bool succeeded() const noexcept { return slots()[count_ - 1].boolean(); }
    void succeed(bool success = true) noexcept { renew(count_ - 1, Value::ofBoolean(success)); }

private:
    friend class clsCommandList;
    friend class clsScriptControl;

    explicit Event(HostEvent event) noexcept : row_(&eventRow(event)) {}
    void append(Value value) noexcept { place(count_, std::move(value)); }
    /// The argument that comes next, by a raiser that counts itself: reading back what was just written takes time.
    void place(std::size_t next, Value value) noexcept {
        assert(next < row_->argumentCount && value.type() == row_->types[next]);
        new (&storage_[next * sizeof(Value)]) Value(std::move(value));
        count_ = next + 1;
    }
    /// Another value, of the same type, for an argument that owns nothing, when the event is raised once more.
    void renew(std::size_t position, const Value& number) noexcept {
        assert(position < count_ && number.type() < ValueType::Text && number.type() == slots()[position].type());
        slots()[position].renew(number);
    }
    bool takes(std::size_t position, ValueType type) const noexcept {
        return position < count_ && row_->arguments[position].byReference && row_->arguments[position].type == type;
    }
    [[noreturn]] void refuseAnswer(std::size_t position) const;
    std::size_t positionOf(std::string_view name) const;
    Value* slots() noexcept { return std::launder(reinterpret_cast<Value*>(storage_)); }
    const Value* slots() const noexcept { return std::launder(reinterpret_cast<const Value*>(storage_)); }

    const EventRow* row_;
    std::size_t count_ = 0;
    // Raw, since most events use few of the 26 places and a statement pays for each that is initialised.
    alignas(Value) std::byte storage_[maximumEventArguments * sizeof(Value)];
};

/// What a host in C++ implements to receive the events. Called on the engine's thread, inside the load or the run.
class EventSink {
public:
    virtual ~EventSink() = default;
    /// Does the work that the event asks for and answers through it. An event left unanswered keeps `tSucess` false.
    /// An exception ends the run, or the load, and passes to its caller; but a load traps automation errors and
    /// exhausted memory, and answers false.
    virtual void raise(Event& event) = 0;
};

}  // namespace corvane
