#include <memory>
#include <ostream>

#include "cli/commands.h"
#include "cli/run_dialogs.h"
#include "cli/run_host.h"
#include "cli/script_check.h"
#include "cli/terminal_dialogs.h"
#include "cli/window_dialogs.h"
#include "platform/utf8.h"
#include "platform/whole_file.h"

namespace corvane {
namespace {

class LoggedTrace final : public TraceSink {
public:
    explicit LoggedTrace(EventLog& log) : log_(log) {}
    void trace(enumDebugOptions category, std::u16string_view line) override { log_.trace(category, line); }

private:
    EventLog& log_;
};

/// The debug options word belongs to the thread, which outlives a run.
class DebugOptions {
public:
    explicit DebugOptions(std::int32_t options) : before_(debugOptions()) { setDebugOptions(options); }
    DebugOptions(const DebugOptions&) = delete;
    DebugOptions& operator=(const DebugOptions&) = delete;
    ~DebugOptions() { setDebugOptions(before_); }

private:
    std::int32_t before_;
};

std::optional<Answers> chosenAnswers(const RunOptions& options, const Surroundings& surroundings, ExitCode& exitCode) {
    if (options.answersFile.empty()) return Answers{};
    const std::string name = printable(options.answersFile);
    std::optional<std::string> bytes;
    try {
        bytes = readWholeFile(fromUtf8(options.answersFile), WhenAbsent::Report);
        if (!bytes) surroundings.errors << "corvane: no such file: '" << name << "'\n";
    } catch (const automation_error& error) {
        surroundings.errors << "corvane: " << error.what() << '\n';
    }
    if (!bytes) {
        exitCode = ExitCode::NoInput;
        return std::nullopt;
    }
    AnswersResult result = readAnswers(*bytes);
    if (!result.answers) {
        surroundings.errors << name << ':' << (result.fault.starts_with('/') ? " " : "") << result.fault << '\n';
        exitCode = ExitCode::BadAnswers;
    }
    return result.answers;
}

std::unique_ptr<OperatorDialogs> chosenDialogs(const RunOptions& options, const Answers& answers,
                                               const Surroundings& surroundings) {
    const NumberLocale locale = options.locale ? *options.locale : NumberLocale::user();
    if (answers.dialogs) return std::make_unique<AnsweredDialogs>(*answers.dialogs, locale);
    if (options.unattended) return std::make_unique<NoOperator>();
    if (options.windows) return makeWindowDialogs(locale);
    // A log for programs must not have questions between its lines.
    std::ostream& output = options.jsonLog ? surroundings.errors : surroundings.output;
    return std::make_unique<TerminalDialogs>(
        surroundings.input, output, u"Corvane", locale,
        surroundings.inputIsTerminal ? TerminalDialogs::Typing::Seen : TerminalDialogs::Typing::Unseen);
}

RunOutcome runToItsEnd(clsScriptControl& control, const RunWatch& watch) {
    try {
        control.RunScript();
        return watch.outcome();
    } catch (const automation_error& error) {
        return watch.outcome(error);
    }
}

}  // namespace

ExitCode runCommand(const RunOptions& options, const Surroundings& surroundings) {
    ExitCode exitCode = ExitCode::Success;
    const std::optional<std::u16string> text = acceptedScript(options.script, options.locale, surroundings, exitCode);
    if (!text) return exitCode;
    const std::optional<Answers> answers = chosenAnswers(options, surroundings, exitCode);
    if (!answers) return exitCode;

    const LogOptions logOptions{options.hostView, options.everyEvent};
    const std::unique_ptr<EventLog> log =
        options.jsonLog ? makeJsonLog(surroundings.output, logOptions) : makeTextLog(surroundings.output, logOptions);
    const std::unique_ptr<OperatorDialogs> dialogs = chosenDialogs(options, *answers, surroundings);
    WatchedDialogs watchedDialogs(*dialogs, *log, answers->dialogs || options.unattended || options.windows);
    SystemMessagePump pump;
    LoggedTrace trace(*log);
    clsScriptControl control({watchedDialogs, pump, pointerTo(options.locale)},
                             {.designedMemberAccess = options.designedFinishLoop});
    const DebugOptions debugOptions(options.trace ? doParsing | doTables | doRuntimeResults : 0);
    if (options.trace) control.engine().setTraceSink(&trace);
    RunWatch watch(control.engine());
    watchedDialogs.setWatch(&watch);
    const RunHost host(control, *answers, *log, watch, {options.maximumStatements, surroundings.interrupted});

    if (!control.LoadScript_FromScript(*text, fromUtf8(options.script), 0, 0)) {
        surroundings.errors << "corvane: " << printable(options.script) << " could not be loaded\n";
        return ExitCode::ScriptRejected;
    }
    RunOutcome outcome = runToItsEnd(control, watch);
    outcome.simulatedSeconds = host.instrument().seconds();
    log->end(outcome);
    if (options.hostView) surroundings.errors << outcome.message() << '\n';
    return outcome.exitCode();
}

}  // namespace corvane
