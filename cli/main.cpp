#include <csignal>
#include <exception>
#include <iostream>
#include <new>

#include "cli/command_line.h"
#include "cli/console.h"

namespace {

volatile std::sig_atomic_t interruptions = 0;

// The first asks for an end with a report.
void noteInterruption(int) { interruptions = 1; }

int exitCodeOf(corvane::ExitCode code) { return static_cast<int>(code); }

}  // namespace

int main(int argc, char** argv) {
    const std::shared_ptr<void> console = corvane::prepareConsole();
    std::ios::sync_with_stdio(false);
    corvane::onInterruption(noteInterruption);
    corvane::ExitCode code = corvane::ExitCode::RunFailed;
    try {
        code = corvane::runCommandLine(corvane::commandLineArguments(argc, argv),
                                       {corvane::standardInput(), std::cout, std::cerr,
                                        [] { return interruptions != 0; }, corvane::inputIsTerminal()});
    } catch (const std::bad_alloc&) {
        std::cerr << "corvane: automation error 7 (Out of memory)\n";
    } catch (const std::exception& error) {
        std::cerr << "corvane: " << error.what() << '\n';
    }
    std::cout.flush();
    if (!std::cout) {
        std::cerr << "corvane: the output could not be written\n";
        return exitCodeOf(corvane::ExitCode::NoOutput);
    }
    return exitCodeOf(code);
}
