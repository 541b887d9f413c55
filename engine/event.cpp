#include "engine/event.h"

#include <stdexcept>
#include <string>

namespace corvane {
namespace {

[[noreturn]] void refuse(const EventRow& row, std::string_view argument, std::string_view fault) {
    throw std::logic_error(
        std::string("event ").append(row.name).append(", argument ").append(argument).append(": ").append(fault));
}

}  // namespace

Event::Event(HostEvent event, std::span<const Value> arguments) : row_(&eventRow(event)) {
    if (arguments.size() + 1 != row_->argumentCount) refuse(*row_, "tSucess", "wrong number of arguments before it");
    std::size_t position = 0;
    for (const Value& value : arguments) {
        const EventArgument& expected = row_->arguments[position++];
        if (value.type() != expected.type) refuse(*row_, expected.name, "wrong type");
    }
    for (const Value& value : arguments) append(value);
    append(Value::ofBoolean(false));
}

std::size_t Event::positionOf(std::string_view name) const {
    for (std::size_t i = 0; i < count_; ++i)
        if (row_->arguments[i].name == name) return i;
    refuse(*row_, name, "no such argument");
}

void Event::refuseAnswer(std::size_t position) const {
    if (position >= count_) refuse(*row_, std::to_string(position), "no such argument");
    const EventArgument& argument = row_->arguments[position];
    if (!argument.byReference) refuse(*row_, argument.name, "passed by value, it takes no answer");
    refuse(*row_, argument.name, "wrong type of answer");
}

}  // namespace corvane
