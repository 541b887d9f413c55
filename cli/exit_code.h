#pragma once

namespace corvane {

/// What the program's end says, for scripts that start it.
enum class ExitCode : int {
    Success = 0,
    RunFailed = 1,       ///< the script was accepted but did not run to its end
    ScriptRejected = 2,  ///< the script has faults
    WrongUsage = 64,
    BadAnswers = 65,  ///< the answers file cannot be used
    NoInput = 66,     ///< a file is missing or cannot be read
    NoOutput = 74,    ///< what the program had to say could not be written
};

}  // namespace corvane
