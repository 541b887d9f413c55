// One log, whatever way a host takes to the script control: every script of the two folders is run by the same host
// over the engine itself, through the vtable and by name, and what the host saw is compared whole with the file written
// down for it. The files are the same for every system, so all logs are equal byte for byte.
//
// The host stands for the operator too, for nobody can answer a window here: tests/com/logs/NAME.answers.json answers
// the events of dialogs; where it leaves one to the component, that finds no operator. tools/update-expected writes the
// files anew.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <set>

#include "cli/event_log.h"
#include "cli/host_answers.h"
#include "cli/json_writer.h"
#include "cli/script_check.h"
#include "platform/utf8.h"
#include "platform/value_rules.h"
#include "tests/cli/ran.h"
#include "tests/cli/script_runs.h"
#include "tests/com/logged_control.h"

namespace corvane::testing {
namespace {

namespace files = std::filesystem;
using ::testing::HasSubstr;
using ::testing::TestWithParam;
using ::testing::ValuesIn;

const files::path logFolder = "tests/com/logs";

/// A script as a host runs it: without the options that only the command line has.
struct HostedRun {
    std::string name;
    files::path script;
    bool decimalComma = false;

    /// The host's answers where it has its own, else those of the script; perhaps none.
    files::path answersFile() const {
        const files::path answers = files::path(script).replace_extension("answers.json");
        const files::path own = logFolder / answers.filename();
        return files::exists(own) ? own : files::exists(answers) ? answers : files::path();
    }
    files::path expectedFile() const { return logFolder / (name + ".expected"); }
    NumberLocale locale() const { return decimalComma ? NumberLocale::commaDecimal() : NumberLocale::pointDecimal(); }
};

void PrintTo(const HostedRun& run, std::ostream* output) { *output << run.name; }

std::vector<HostedRun> allRuns() {
    std::vector<HostedRun> runs;
    for (const files::path folder : {"examples", "tests/scripts"})
        for (const files::path& script : scriptsIn(folder))
            for (const WayToRun& way : waysToRun(script)) {
                const bool choosesMark = way.options.size() == 2 && way.options[0] == "--decimal-mark";
                if (choosesMark || way.options.empty())
                    runs.push_back(
                        {script.stem().string() + way.suffix, script, choosesMark && way.options[1] == "comma"});
            }
    return runs;
}

/// The component writes numbers as the user does, so this process can do the runs with the user's decimal mark.
std::vector<HostedRun> runsOfThisUser() {
    std::vector<HostedRun> runs = allRuns();
    const bool comma = NumberLocale::user().decimalMark == u",";
    std::erase_if(runs, [&](const HostedRun& run) { return run.decimalComma != comma; });
    return runs;
}

Answers answersOf(const HostedRun& run) {
    const files::path file = run.answersFile();
    if (file.empty()) return {};
    const AnswersResult result = readAnswers(contentOf(file));
    EXPECT_TRUE(result.answers) << file << ": " << result.fault;
    return result.answers.value_or(Answers{});
}

std::string shown(bool truth) { return truth ? "True" : "False"; }

std::string shown(std::u16string_view text) { return quoted(text); }

std::string shown(const Value& value) {
    if (value.isText()) return shown(value.textView());
    const std::string text = toUtf8(portable::toText(value, NumberLocale::pointDecimal()).view());
    constexpr std::array typeWords{"Integer", "Long", "Single", "Double", "Boolean"};
    return typeWords.at(static_cast<std::size_t>(value.type())) + (" " + text);
}

/// What a call answers, or what it fails with.
template <typename Call>
std::string outcomeOf(Call&& call) {
    try {
        return call();
    } catch (const HostError& error) {
        return "error " + std::to_string(error.number()) + " (" + error.what() + ")";
    }
}

/// The host: it answers, writes down what it sees, and remembers what the script declares and calls.
class LoggingHost final : public EventSink {
public:
    LoggingHost(LoggedControl& control, const HostedRun& run, std::ostream& output)
        : control_(control),
          run_(run),
          output_(output),
          log_(makeTextLog(output, {.hostView = true, .everyEvent = true})),
          fromFile_(answersOf(run)),
          answers_(fromFile_) {
        control_.sinkTo(*this);
    }

    /// Uses every member of the control.
    void useAll() {
        control_.TestMode(true);
        control_.DebugMode(0);
        tellOrigin();
        tell("FinishLoopFlag()", [&] {
            control_.FinishLoopFlag();
            return std::string("done");
        });
        loadText();
        tellOrigin();
        runFile();
        tellOrigin();
        tellData();
        for (const std::int32_t kind : kinds_)
            tell("FunctionNameFromType(" + std::to_string(kind) + ")",
                 [&] { return shown(control_.FunctionNameFromType(kind)); });
    }

private:
    void raise(Event& event) override {
        remember(event);
        std::vector<LoggedValue> before = loggedValues(event);
        std::string refusal = answers_.answer(event);
        if (answers_.finishesLoop(event)) control_.FinishLoopFlag();
        LoggedEvent logged = loggedEvent(event.row().name, std::move(before), loggedValues(event));
        logged.refusal = std::move(refusal);
        log_->event(logged);
    }

    void remember(const Event& event) {
        switch (event.id()) {
            case HostEvent::VariableAdded:
            case HostEvent::ConstantAdded:
            case HostEvent::EnvironmentVariableAdded: names_.emplace(event.argument(0).textView()); break;
            case HostEvent::FunctionCalled: kinds_.insert(event.argument(0).longInteger()); break;
            default: break;
        }
    }

    template <typename Call>
    void tell(const std::string& title, Call&& call) {
        output_ << title << ": " << outcomeOf(call) << '\n';
    }

    void tellOrigin() {
        output_ << "ScriptFrom " << control_.ScriptFrom() << ", ScriptFile " << shown(control_.ScriptFile())
                << ", ScriptDB_UID " << control_.ScriptDB_UID() << ", ScriptDB_Version " << control_.ScriptDB_Version()
                << '\n';
    }

    void loadText() {
        std::string fault;
        const std::optional<std::u16string> text = readScript(run_.script.generic_string(), fault);
        ASSERT_TRUE(text) << fault;
        tell("LoadScript_FromScript", [&] { return shown(control_.LoadScript_FromScript(*text, u"stored", 7, 2)); });
    }

    /// Between the events of the load and those of the run there is nothing: the command line writes the same.
    void runFile() {
        const bool accepted = control_.LoadScript_FromFile(run_.script.generic_u16string());
        const std::string ran =
            accepted ? outcomeOf([&] { return shown(control_.RunScript()); }) : std::string("not tried");
        output_ << "LoadScript_FromFile: " << shown(accepted) << "\nRunScript: " << ran << '\n';
    }

    void tellData() {
        for (const std::u16string& name : names_) {
            tell("GetMemoryValue(" + shown(name) + ")", [&] { return shown(control_.GetMemoryValue(name)); });
            tell("GetConstant(" + shown(name) + ")", [&] { return shown(control_.GetConstant(name)); });
            tell("GetEnvironmentVariable(" + shown(name) + ")",
                 [&] { return shown(control_.GetEnvironmentVariable(name)); });
        }
        tell("GetEditable()", [&] { return std::to_string(control_.GetEditable()); });
        tell("EditDataVariable(0, 2.5)", [&] { return shown(control_.EditDataVariable(0, 2.5F)); });
        tell("EditDataVariable(-1, 2.5)", [&] { return shown(control_.EditDataVariable(-1, 2.5F)); });
        for (const std::u16string& name : names_)
            tell("GetMemoryValue(" + shown(name) + ")", [&] { return shown(control_.GetMemoryValue(name)); });
    }

    LoggedControl& control_;
    const HostedRun& run_;
    std::ostream& output_;
    std::unique_ptr<EventLog> log_;
    Answers fromFile_;
    HostAnswers answers_;
    std::set<std::u16string> names_;
    std::set<std::int32_t> kinds_;
};

std::string logOf(LoggedControl& control, const HostedRun& run) {
    std::ostringstream output;
    LoggingHost(control, run, output).useAll();
    return output.str();
}

std::string nameOf(const HostedRun& run) {
    std::string name = run.name;
    std::replace(name.begin(), name.end(), '.', '_');
    return name;
}

class EngineLog : public TestWithParam<HostedRun> {};

TEST_P(EngineLog, IsAsWrittenDown) {
    const std::unique_ptr<LoggedControl> control = makeEngineControl(GetParam().locale());
    const std::string log = logOf(*control, GetParam());
    if (std::getenv("CORVANE_UPDATE_EXPECTED") != nullptr)
        std::ofstream(GetParam().expectedFile(), std::ios::binary) << log;
    EXPECT_EQ(log, contentOf(GetParam().expectedFile())) << GetParam().expectedFile() << "; see tools/update-expected";
}

TEST_P(EngineLog, HoldsWhatTheCommandLineWrites) {
    const HostedRun& run = GetParam();
    std::vector<std::string> arguments = {"run",
                                          run.script.generic_string(),
                                          "--host-view",
                                          "--log-all",
                                          "--unattended",
                                          "--decimal-mark",
                                          run.decimalComma ? "comma" : "point"};
    if (!run.answersFile().empty())
        arguments.insert(arguments.end(), {"--answers", run.answersFile().generic_string()});
    const Ran result = ran(arguments);
    EXPECT_EQ(result.output.empty(), result.code == ExitCode::ScriptRejected) << result.errors;
    EXPECT_THAT(contentOf(run.expectedFile()), HasSubstr(result.output + "LoadScript_FromFile: "));
}

INSTANTIATE_TEST_SUITE_P(Scripts, EngineLog, ValuesIn(allRuns()), [](const auto& run) { return nameOf(run.param); });

struct BoundRun {
    Binding binding;
    HostedRun run;
};

void PrintTo(const BoundRun& bound, std::ostream* output) { *output << bound.binding.name << ' ' << bound.run.name; }

std::vector<BoundRun> boundRuns() {
    std::vector<BoundRun> all;
    for (const Binding& binding : automationBindings())
        for (const HostedRun& run : runsOfThisUser()) all.push_back({binding, run});
    return all;
}

class AutomationLog : public TestWithParam<BoundRun> {};

TEST_P(AutomationLog, IsThatOfTheEngine) {
    const std::unique_ptr<LoggedControl> control = GetParam().binding.make();
    EXPECT_EQ(logOf(*control, GetParam().run), contentOf(GetParam().run.expectedFile()));
}

INSTANTIATE_TEST_SUITE_P(Scripts, AutomationLog, ValuesIn(boundRuns()),
                         [](const auto& bound) { return bound.param.binding.name + "_" + nameOf(bound.param.run); });

TEST(Logs, LeaveNoDialogToAnswersThatTheComponentDoesNotSee) {
    for (const HostedRun& run : allRuns()) EXPECT_FALSE(answersOf(run).dialogs) << run.name;
}

TEST(Logs, AreWrittenByTheUserThatTheTestsAreRunFor) {
    const char* const mark = std::getenv("CORVANE_DECIMAL_MARK");
    if (mark != nullptr) {
        EXPECT_EQ(toUtf8(NumberLocale::user().decimalMark), mark);
    }
    EXPECT_FALSE(boundRuns().empty());
}

TEST(Logs, AreOfScriptsThatExist) {
    std::set<files::path> known;
    std::set<std::string> scripts;
    for (const HostedRun& run : allRuns()) {
        known.insert(run.expectedFile());
        known.insert(run.answersFile());
        scripts.insert(run.script.generic_string());
    }
    for (const files::directory_entry& entry : files::directory_iterator(logFolder))
        EXPECT_TRUE(known.contains(entry.path())) << entry.path();
    EXPECT_EQ(scripts.size(), scriptsIn("examples").size() + scriptsIn("tests/scripts").size());
}

}  // namespace
}  // namespace corvane::testing
