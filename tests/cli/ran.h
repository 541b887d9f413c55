#pragma once

#include <algorithm>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "cli/command_line.h"

namespace corvane {

/// What one call of the program did.
struct Ran {
    ExitCode code;
    std::string output;
    std::string errors;
};

/// Runs the program in this process. Numbers have a decimal point, so that no user's settings decide a test.
inline Ran ran(std::vector<std::string> arguments, const std::string& typed = {},
               const std::function<bool()>& interrupted = {}) {
    const bool readsScripts =
        !arguments.empty() && arguments[0] != "catalogue" && arguments[0] != "locale" && arguments[0].front() != '-';
    const bool hasMark = std::find(arguments.begin(), arguments.end(), "--decimal-mark") != arguments.end();
    if (readsScripts && !hasMark) arguments.insert(arguments.end(), {"--decimal-mark", "point"});
    std::istringstream input(typed);
    std::ostringstream output;
    std::ostringstream errors;
    const ExitCode code = runCommandLine(arguments, {input, output, errors, interrupted});
    return {code, output.str(), errors.str()};
}

}  // namespace corvane
