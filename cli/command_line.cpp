#include "cli/command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <limits>
#include <map>
#include <ostream>

#include "cli/locale_window.h"
#include "cli/script_check.h"
#include "cli/table_window.h"
#include "cli/window_dialogs.h"

namespace corvane {
namespace {

constexpr const char* version = "corvane 0.1.0";

constexpr const char* about = R"(Corvane Script: runs test scripts of a powder-testing instrument.

Exit codes: 0 the script ran to its end; 1 it failed, was stopped, met an automation error or the statement limit;
2 it is rejected; 64 wrong usage; 65 bad answers file; 66 a file is missing or cannot be read; 74 no output possible.)";

const std::map<std::string, NumberLocale> decimalMarks = {
    {"point", NumberLocale::pointDecimal()},
    {"comma", NumberLocale::commaDecimal()},
};

void addDecimalMark(CLI::App& command, ChosenLocale& locale) {
    command
        .add_option_function<std::string>(
            "--decimal-mark", [&locale](const std::string& word) { locale = decimalMarks.at(word); },
            "How scripts and texts write numbers; without it as your own settings say")
        ->option_text("point|comma")
        ->check(CLI::IsMember({"point", "comma"}));
}

void addFinishLoop(CLI::App& command, bool& designed) {
    command
        .add_option_function<std::string>(
            "--finish-loop", [&designed](const std::string& word) { designed = word == "designed"; },
            "IfNotFinishLoopFlag: faithful raises automation error 438, designed reads the flag")
        ->option_text("faithful|designed")
        ->check(CLI::IsMember({"faithful", "designed"}));
}

void addMaximumStatements(CLI::App& command, std::int64_t& maximum, const char* help) {
    command.add_option("--max-statements", maximum, help)
        ->option_text("N")
        ->check(CLI::Range(std::int64_t{1}, std::int64_t{1} << 60));
}

void addJson(CLI::App& command, bool& json) { command.add_flag("--json", json, "Write JSON, for programs"); }

void addScript(CLI::App& command, std::string& script) {
    command.add_option("SCRIPT", script, "The script file")->required()->option_text(" ");
}

CLI::App* addRun(CLI::App& program, RunOptions& options) {
    CLI::App* command = program.add_subcommand("run", "Run a script against a simulated instrument");
    addScript(*command, options.script);
    command
        ->add_option_function<std::string>(
            "--log", [&options](const std::string& word) { options.jsonLog = word == "jsonl"; },
            "Columns for people (the default), or one JSON object a line for programs")
        ->option_text("text|jsonl")
        ->check(CLI::IsMember({"text", "jsonl"}));
    command->add_flag("--log-all", options.everyEvent, "Show FunctionCalled and KeepGoing in the text log too");
    command->add_flag("--host-view", options.hostView,
                      "Log nothing but what a host sees: no statements, lines, dialogs or end");
    command->add_option("--answers", options.answersFile, "What events and operator dialogs are answered with (JSON)")
        ->option_text("FILE");
    CLI::Option* const unattended = command->add_flag("--unattended", options.unattended,
                                                      "Ask nobody: dialogs are answered as without an operator");
    if (hasWindowDialogs())
        command->add_flag("--windows", options.windows, "Ask in windows, as in a host, instead of in the terminal")
            ->excludes(unattended);
    addMaximumStatements(*command, options.maximumStatements, "Stop after so many statements; without it never");
    command->add_flag("--trace", options.trace, "Show the trace lines of the component");
    addFinishLoop(*command, options.designedFinishLoop);
    addDecimalMark(*command, options.locale);
    return command;
}

CLI::App* addCheck(CLI::App& program, CheckOptions& options) {
    CLI::App* command = program.add_subcommand("check", "Load scripts and report every fault, run nothing");
    command->add_option("FILE", options.scripts, "The script files")->required()->option_text("...");
    addJson(*command, options.json);
    addDecimalMark(*command, options.locale);
    return command;
}

CLI::App* addList(CLI::App& program, ListOptions& options) {
    CLI::App* command = program.add_subcommand("list", "List the statements that a script performs");
    addScript(*command, options.script);
    addJson(*command, options.json);
    addMaximumStatements(*command, options.maximumStatements, "Stop after so many statements; without it 100000");
    addFinishLoop(*command, options.designedFinishLoop);
    addDecimalMark(*command, options.locale);
    return command;
}

CLI::App* addShow(CLI::App& program, ShowOptions& options) {
    CLI::App* command = program.add_subcommand("show", "Show a script's statements and identifiers as tables");
    addScript(*command, options.script);
    addJson(*command, options.json);
    if (hasTableWindow())
        command->add_flag("--windows", options.windows, "Show them in a window until it is closed")->excludes("--json");
    addDecimalMark(*command, options.locale);
    return command;
}

CLI::App* addCatalogue(CLI::App& program, CatalogueOptions& options) {
    CLI::App* command = program.add_subcommand("catalogue", "The reference of statements, or of one statement");
    command->add_option("KEYWORD", options.keyword, "The statement")->option_text(" ");
    addJson(*command, options.json);
    return command;
}

CLI::App* addLocale(CLI::App& program, LocaleOptions& options) {
    CLI::App* command =
        program.add_subcommand("locale", "What the component knows of your regional settings and of the system");
    command->add_option("ID", options.id, "The locale's number; without it yours")
        ->option_text(" ")
        ->check(CLI::Range(std::int32_t{0}, std::numeric_limits<std::int32_t>::max()));
    addJson(*command, options.json);
    if (hasLocaleWindow())
        command->add_flag("--windows", options.windows, "Show it in a window until that is closed")->excludes("--json");
    return command;
}

int reportUsage(const CLI::App& program, const CLI::ParseError& error, const Surroundings& surroundings) {
    const std::vector<std::string> unknown = program.remaining();
    // The library would only say that a command is missing.
    if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::RequiredError) && program.get_subcommands().empty() &&
        !unknown.empty()) {
        surroundings.errors << "'" << printable(unknown.front()) << "' is no command\n"
                            << "Run with --help for more information.\n";
        return error.get_exit_code();
    }
    return program.exit(error, surroundings.output, surroundings.errors);
}

}  // namespace

ExitCode runCommandLine(const std::vector<std::string>& arguments, const Surroundings& surroundings) {
    CLI::App program(about, "corvane");
    // A path may begin with a slash on Windows as well.
    program.allow_windows_style_options(false);
    program.set_version_flag("--version", version);
    program.require_subcommand(1);

    RunOptions run;
    CheckOptions check;
    ListOptions list;
    ShowOptions show;
    CatalogueOptions catalogue;
    LocaleOptions locale;
    const CLI::App* const runs = addRun(program, run);
    const CLI::App* const checks = addCheck(program, check);
    const CLI::App* const lists = addList(program, list);
    const CLI::App* const shows = addShow(program, show);
    const CLI::App* const locales = addLocale(program, locale);
    addCatalogue(program, catalogue);
    try {
        program.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    } catch (const CLI::ParseError& error) {
        return reportUsage(program, error, surroundings) == 0 ? ExitCode::Success : ExitCode::WrongUsage;
    }
    if (runs->parsed()) return runCommand(run, surroundings);
    if (checks->parsed()) return checkCommand(check, surroundings);
    if (lists->parsed()) return listCommand(list, surroundings);
    if (shows->parsed()) return showCommand(show, surroundings);
    if (locales->parsed()) return localeCommand(locale, surroundings);
    return catalogueCommand(catalogue, surroundings);
}

}  // namespace corvane
