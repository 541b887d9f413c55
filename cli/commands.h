#pragma once

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "cli/exit_code.h"
#include "platform/clsLocale.h"
#include "platform/number_locale.h"

/// The subcommands, one source file each. Names of files and all texts are UTF-8.
namespace corvane {

/// What a command talks through.
struct Surroundings {
    std::istream& input;
    std::ostream& output;
    std::ostream& errors;
    /// Whether the user wants a run to stop; may be empty.
    std::function<bool()> interrupted;
    /// Whether `input` is a terminal, which shows what is typed.
    bool inputIsTerminal = true;
};

/// How numbers are read and written; none: as the present user does.
using ChosenLocale = std::optional<NumberLocale>;
inline const NumberLocale* pointerTo(const ChosenLocale& locale) { return locale ? &*locale : nullptr; }

struct RunOptions {
    std::string script;
    ChosenLocale locale;
    std::string answersFile;  ///< empty: none
    bool jsonLog = false;
    bool hostView = false;
    bool everyEvent = false;
    bool unattended = false;
    bool windows = false;  ///< ask in windows instead of in the terminal
    bool trace = false;
    bool designedFinishLoop = false;
    std::int64_t maximumStatements = 0;  ///< 0: any number
};
ExitCode runCommand(const RunOptions& options, const Surroundings& surroundings);

struct CheckOptions {
    std::vector<std::string> scripts;
    ChosenLocale locale;
    bool json = false;
};
ExitCode checkCommand(const CheckOptions& options, const Surroundings& surroundings);

struct ListOptions {
    std::string script;
    ChosenLocale locale;
    bool json = false;
    bool designedFinishLoop = false;
    std::int64_t maximumStatements = 100000;
};
ExitCode listCommand(const ListOptions& options, const Surroundings& surroundings);

struct ShowOptions {
    std::string script;
    ChosenLocale locale;
    bool json = false;
    bool windows = false;  ///< show the tables in a window instead of writing them
};
ExitCode showCommand(const ShowOptions& options, const Surroundings& surroundings);

struct CatalogueOptions {
    std::string keyword;  ///< empty: all
    bool json = false;
};
ExitCode catalogueCommand(const CatalogueOptions& options, const Surroundings& surroundings);

struct LocaleOptions {
    std::int32_t id = omittedLocale;
    bool json = false;
    bool windows = false;  ///< show a window instead of writing
};
ExitCode localeCommand(const LocaleOptions& options, const Surroundings& surroundings);

/// Reads a script and sees to it that it has no fault; otherwise says on `errors` what is wrong, and sets `exitCode`.
std::optional<std::u16string> acceptedScript(const std::string& path, const ChosenLocale& locale,
                                             const Surroundings& surroundings, ExitCode& exitCode);

}  // namespace corvane
