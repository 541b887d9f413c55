#include "cli/console.h"

namespace corvane {

std::shared_ptr<void> prepareConsole() { return nullptr; }

std::vector<std::string> commandLineArguments(int count, char** texts) {
    if (count == 0) return {};
    return {texts + 1, texts + count};
}

}  // namespace corvane
