#include "cli/console.h"

namespace corvane {

Console::Console() = default;
Console::~Console() = default;

std::vector<std::string> Console::arguments(int count, char** texts) {
    if (count == 0) return {};
    return {texts + 1, texts + count};
}

}  // namespace corvane
