#include <signal.h>
#include <unistd.h>

#include <iostream>
#include <streambuf>

#include "cli/console.h"

namespace corvane {
namespace {

/// The library's own buffer reads again after an interruption, and the operator would have to press Enter first.
class InterruptibleInput final : public std::streambuf {
    int_type underflow() override {
        const ssize_t count = read(STDIN_FILENO, bytes_, sizeof bytes_);
        if (count <= 0) return traits_type::eof();
        setg(bytes_, bytes_, bytes_ + count);
        return traits_type::to_int_type(bytes_[0]);
    }

    char bytes_[4096];
};

}  // namespace

std::shared_ptr<void> prepareConsole() { return nullptr; }

void onInterruption(void (*noted)(int)) {
    struct sigaction action = {};
    action.sa_handler = noted;
    // Without SA_RESTART, so that a read in progress ends.
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigaction(SIGINT, &action, nullptr);
}

std::istream& standardInput() {
    static InterruptibleInput buffer;
    static std::istream input(&buffer);
    // As with the library's own, what was written is seen before an answer is waited for.
    input.tie(&std::cout);
    return input;
}

bool inputIsTerminal() { return isatty(STDIN_FILENO) != 0; }

std::vector<std::string> commandLineArguments(int count, char** texts) {
    if (count == 0) return {};
    return {texts + 1, texts + count};
}

}  // namespace corvane
