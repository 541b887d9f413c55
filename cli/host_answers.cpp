#include "cli/host_answers.h"

#include <algorithm>

namespace corvane {

std::string HostAnswers::answer(Event& event) {
    const EventAnswer* const fromFile = answers_.find(event.id(), ++occurrences_[indexOf(event)]);
    return fromFile != nullptr ? overrule(event, *fromFile) : instrument_.handle(event);
}

bool HostAnswers::finishesLoop(const Event& event) const {
    return event.id() == HostEvent::RequiredFinishLoopFlag &&
           occurrences_[indexOf(event)] % answers_.finishLoopAfter == 0;
}

std::string HostAnswers::overrule(Event& event, const EventAnswer& answer) {
    const std::size_t success = event.count() - 1;
    const auto decided =
        std::find_if(answer.begin(), answer.end(), [&](const auto& entry) { return entry.first == success; });
    const bool refuses = decided != answer.end() && !decided->second.boolean();
    // What is refused does not happen; all else does, as far as the instrument can.
    std::string refusal = refuses ? "by the answers file" : instrument_.handle(event);
    for (const auto& [position, value] : answer) event.answer(position, value);
    return event.succeeded() ? std::string() : refusal;
}

}  // namespace corvane
