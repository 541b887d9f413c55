#pragma once

#include <memory>
#include <string>
#include <vector>

namespace corvane {

/// Makes the program's console one of UTF-8 without translation of line ends. It becomes again what it was when the
/// result goes.
std::shared_ptr<void> prepareConsole();

/// The arguments without the program's name, UTF-8.
std::vector<std::string> commandLineArguments(int count, char** texts);

}  // namespace corvane
