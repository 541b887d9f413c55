#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/event.h"

namespace corvane {

/// What an event is answered with: the positions of arguments and their values.
using EventAnswer = std::vector<std::pair<std::size_t, Value>>;

/// What an operator types into an input box.
struct TypedInput {
    enum class Kind { Number, Text, Cancel };
    Kind kind = Kind::Cancel;
    float number = 0;
    std::u16string text;
};

/// What the operator answers, in order.
struct DialogAnswers {
    std::vector<std::int32_t> messages;  ///< the platform's answer codes, for message boxes with more than one button
    std::vector<TypedInput> inputs;
};

/// The content of an answers file.
struct Answers {
    /// By event and occurrence, from 1; occurrence 0 is every one without an answer of its own.
    std::map<std::pair<HostEvent, std::int64_t>, EventAnswer> events;
    std::optional<DialogAnswers> dialogs;  ///< none: the file does not speak for the operator
    std::int64_t finishLoopAfter = 3;      ///< at each so-manieth RequiredFinishLoopFlag the loop is finished

    /// The answer to an event's n-th occurrence, counted from 1, or null.
    const EventAnswer* find(HostEvent event, std::int64_t occurrence) const;
};

struct AnswersResult {
    std::optional<Answers> answers;
    std::string fault;  ///< why there are none: "line:column: text" for faults of form, "/path: text" for others
};

/// Reads the JSON text of an answers file and checks all of it against the event table.
AnswersResult readAnswers(std::string_view bytes);

}  // namespace corvane
