#include "bench/scripts.h"

namespace corvane::bench {
namespace {

std::string statement(std::size_t line) {
    const std::string height = std::to_string(line % 90) + ".5";
    switch (line % 3) {
        case 0: return "SCTest(" + height + ", 60, 1, 18, 5, 30, 1, 7.5, 18, 5, 1, 0, 12)";
        case 1: return "MoveToHeight(" + height + ", 0, 5, 60)";
        default: return "Info(\"Step " + std::to_string(line) + "\")";
    }
}

}  // namespace

std::string mixOf(std::size_t lines, int labels, const Notation& notation) {
    const std::size_t distance = 100 / static_cast<std::size_t>(labels);
    std::string text = notation.head;
    for (std::size_t line = 0; line < lines; ++line) {
        const std::size_t place = line % distance;
        if (place == 1)
            text += notation.label("Label" + std::to_string(line / distance));
        else if (place == 3)
            text += notation.jump("Label" + std::to_string(line / distance));
        else
            text += notation.call(statement(line));
        text += '\n';
    }
    return text;
}

std::string callsInTurn(const std::string& call) {
    std::string calls;
    for (std::size_t i = 0; i < callsOfTurn; ++i) calls += call;
    return calls;
}

std::string numbersCall() { return "SCTest(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13)"; }

std::string mixedCall() {
    return "SCTestFull(1, 2, 3, 1, 5, 6, 1, 1, 9, 10, 11, 12, 1, 14, 1, 1, 17, \"3,6,9\", 19, 20, 1, \"a\", \"b\", "
           "\"c\", \"d\")";
}

}  // namespace corvane::bench
