#include <ostream>

#include "cli/commands.h"
#include "cli/script_check.h"

namespace corvane {

std::optional<std::u16string> acceptedScript(const std::string& path, const ChosenLocale& locale,
                                             const Surroundings& surroundings, ExitCode& exitCode) {
    std::string fault;
    std::optional<std::u16string> text = readScript(path, fault);
    if (!text) {
        surroundings.errors << "corvane: " << fault << '\n';
        exitCode = ExitCode::NoInput;
        return std::nullopt;
    }
    const CheckedScript checked = checkScript(*text, pointerTo(locale));
    writeFaults(surroundings.errors, path, *text, checked.faults);
    if (checked.accepted) return text;
    surroundings.errors << "corvane: " << printable(path) << " is rejected\n";
    exitCode = ExitCode::ScriptRejected;
    return std::nullopt;
}

}  // namespace corvane
