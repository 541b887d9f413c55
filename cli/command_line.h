#pragma once

#include <string>
#include <vector>

#include "cli/commands.h"

namespace corvane {

/// Does what the arguments (UTF-8, without the program's name) ask for. A wrong usage is explained on `errors`.
ExitCode runCommandLine(const std::vector<std::string>& arguments, const Surroundings& surroundings);

}  // namespace corvane
