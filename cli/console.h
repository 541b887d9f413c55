#pragma once

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

namespace corvane {

/// Makes the program's console one of UTF-8 without translation of line ends. It becomes again what it was when the
/// result goes.
std::shared_ptr<void> prepareConsole();

/// Has `noted` called at the first interruption (Ctrl-C). A second one ends the program as usual.
void onInterruption(void (*noted)(int));

/// The standard input. An interruption while it is waited for is its end.
std::istream& standardInput();

/// Whether the standard input is a terminal, which shows what is typed.
bool inputIsTerminal();

/// The arguments without the program's name, UTF-8.
std::vector<std::string> commandLineArguments(int count, char** texts);

}  // namespace corvane
