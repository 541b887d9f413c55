// Any bytes as an answers file: it is refused with a readable word, or every answer fits its event.

#include "cli/answers_file.h"
#include "cli/message_buttons.h"
#include "platform/control_character.h"
#include "tests/fuzz/fuzz_input.h"

namespace corvane::fuzz {
namespace {

void checkFault(const std::string& fault) {
    require(!fault.empty(), "a refusal has a reason");
    const std::u16string shown = fromUtf8(fault);
    require(toUtf8(shown) == fault, "a fault is UTF-8");
    require(std::none_of(shown.begin(), shown.end(), isControl), "a fault is one plain line");
}

void checkAnswers(const Answers& answers) {
    require(answers.finishLoopAfter >= 1, "a loop is finished at some time");
    for (const auto& [occurrence, answer] : answers.events) {
        const EventRow& row = eventRow(occurrence.first);
        require(occurrence.second >= 0, "occurrences count from 1");
        require(answers.find(occurrence.first, occurrence.second) == &answer, "an answer is found");
        for (const auto& [position, value] : answer) {
            require(position < row.argumentCount && row.arguments[position].byReference, "an answer has a place");
            require(value.type() == row.arguments[position].type, "an answer has the argument's type");
        }
    }
    if (!answers.dialogs) return;
    for (const std::int32_t button : answers.dialogs->messages)
        require(findButton(button) != nullptr, "a button exists");
}

}  // namespace
}  // namespace corvane::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace corvane::fuzz;
    const corvane::AnswersResult result = corvane::readAnswers({reinterpret_cast<const char*>(data), size});
    if (result.answers) {
        require(result.fault.empty(), "an accepted file has no fault");
        checkAnswers(*result.answers);
    } else {
        checkFault(result.fault);
    }
    return 0;
}
