#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <future>
#include <istream>
#include <optional>
#include <sstream>
#include <thread>

#include "cli/command_line.h"
#include "cli/console.h"
#include "tests/platform/temporary_folder.h"

namespace corvane {
namespace {

volatile sig_atomic_t noted = 0;

void note(int) { noted = 1; }

/// An interruption that came before the read began is followed by others.
void noteAndExpectAnother(int) {
    noted = 1;
    onInterruption(noteAndExpectAnother);
}

/// What an interruption does is as it was before, in the end.
class InterruptionAsBefore {
public:
    InterruptionAsBefore() { sigaction(SIGINT, nullptr, &before_); }
    InterruptionAsBefore(const InterruptionAsBefore&) = delete;
    InterruptionAsBefore& operator=(const InterruptionAsBefore&) = delete;
    ~InterruptionAsBefore() { sigaction(SIGINT, &before_, nullptr); }

private:
    struct sigaction before_ = {};
};

/// A pipe in place of the standard input.
class PipedInput {
public:
    PipedInput() : before_(dup(STDIN_FILENO)) {
        EXPECT_EQ(pipe(ends_.data()), 0);
        dup2(ends_[0], STDIN_FILENO);
    }
    PipedInput(const PipedInput&) = delete;
    PipedInput& operator=(const PipedInput&) = delete;
    ~PipedInput() {
        dup2(before_, STDIN_FILENO);
        for (const int end : {before_, ends_[0], ends_[1]}) close(end);
    }
    void type(std::string_view text) const {
        EXPECT_EQ(write(ends_[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }

private:
    int before_;
    std::array<int, 2> ends_{};
};

TEST(Console, ReadsTheStandardInput) {
    const PipedInput piped;
    piped.type("first\nsecond\n");
    std::string line;
    EXPECT_FALSE(inputIsTerminal());
    EXPECT_TRUE(std::getline(standardInput(), line));
    EXPECT_EQ(line, "first");
    EXPECT_TRUE(std::getline(standardInput(), line));
    EXPECT_EQ(line, "second");
}

TEST(Console, EndsAReadThatIsInterrupted) {
    const PipedInput piped;
    const InterruptionAsBefore restored;
    noted = 0;
    onInterruption(noteAndExpectAnother);
    std::promise<void> ended;
    std::thread user([&, reader = pthread_self(), end = ended.get_future()] {
        constexpr int interruptions = 1000;
        for (int i = 0; i < interruptions; ++i) {
            if (end.wait_for(std::chrono::milliseconds(10)) == std::future_status::ready) return;
            pthread_kill(reader, SIGINT);
        }
        piped.type("late\n");  // a read that goes on all the same must not hang the test
    });
    std::string line;
    EXPECT_FALSE(std::getline(standardInput(), line)) << line;
    ended.set_value();
    user.join();
    EXPECT_EQ(noted, 1);
    standardInput().clear();
}

TEST(Console, LeavesASecondInterruptionToEndTheProgram) {
    const InterruptionAsBefore restored;
    noted = 0;
    onInterruption(note);
    raise(SIGINT);
    EXPECT_EQ(noted, 1);
    struct sigaction after = {};
    sigaction(SIGINT, nullptr, &after);
    EXPECT_EQ(after.sa_handler, SIG_DFL);
}

TEST(CommandLine, WithoutADecimalMarkTakesTheNumbersOfTheEnvironment) {
    const char* const language = getenv("LC_ALL");
    const std::optional<std::string> before = language == nullptr ? std::nullopt : std::optional<std::string>(language);
    setenv("LC_ALL", "C", 1);
    const TemporaryFolder folder;
    const std::string script = folder.write("a.script", "VAR X = 2.5\nWaitTime(X, \"\")\n").string();
    std::istringstream input;
    std::ostringstream output;
    std::ostringstream errors;
    EXPECT_EQ(runCommandLine({"run", script, "--unattended"}, {input, output, errors, {}}), ExitCode::Success);
    EXPECT_THAT(output.str(),
                testing::AllOf(testing::HasSubstr("tValue=\"2.5\""), testing::HasSubstr("tDuration=2.5,")));
    if (before)
        setenv("LC_ALL", before->c_str(), 1);
    else
        unsetenv("LC_ALL");
}

}  // namespace
}  // namespace corvane
