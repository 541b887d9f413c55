// What a host in C++ meets when memory runs out: every request for memory that a load, a run, a listing or a view makes
// is refused in turn, and the object that was disturbed then loads and runs the next script as if nothing had been.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>
#include <sstream>
#include <vector>

#include "cli/host_answers.h"
#include "cli/run_dialogs.h"
#include "engine/clsCommand.h"
#include "host/clsProgramFunctionList.h"
#include "host/clsScriptControl.h"
#include "platform/slab.h"
#include "tests/allocation_counter.h"
#include "tests/cli/script_runs.h"
#include "tests/memory/every_request.h"
#include "tests/support/engine_fixture.h"
#include "ui/text_table.h"

namespace corvane {
namespace {

namespace files = std::filesystem;
using test::HostsOwnMemory;
using test::MemoryFault;
using test::Refused;

/// One script and what its host and operator answer.
struct Case {
    std::string name;
    std::u16string text;
    Answers answers;
    NumberLocale locale = NumberLocale::pointDecimal();
    EngineOptions options;
    bool isExample = false;  ///< one that is accepted, and runs to its end
};

void PrintTo(const Case& given, std::ostream* output) { *output << given.name; }

void addCases(std::vector<Case>& cases, const files::path& folder) {
    for (const files::path& script : scriptsIn(folder))
        for (const WayToRun& way : waysToRun(script)) {
            Case added;
            added.name = script.stem().string() + way.suffix;
            std::replace(added.name.begin(), added.name.end(), '.', '_');
            added.text = fromUtf8(contentOf(script));
            const std::string answers = contentOf(files::path(script).replace_extension("answers.json"));
            if (!answers.empty()) added.answers = readAnswers(answers).answers.value();
            if (way.suffix == ".comma") added.locale = NumberLocale::commaDecimal();
            added.options.designedMemberAccess = way.suffix == ".designed";
            added.isExample = folder == "examples";
            cases.push_back(std::move(added));
        }
}

const std::vector<Case>& allCases() {
    static const std::vector<Case> all = [] {
        std::vector<Case> cases;
        addCases(cases, "tests/scripts");
        addCases(cases, "examples");
        return cases;
    }();
    return all;
}

/// The operator of the answers file, or nobody.
class Operator final : public OperatorDialogs {
public:
    explicit Operator(const Case& given) { take(given); }
    void take(const Case& given) {
        answered_.reset();
        if (given.answers.dialogs) answered_.emplace(*given.answers.dialogs, given.locale);
    }
    std::optional<std::int32_t> showMessage(const OperatorMessage& message) override {
        const HostsOwnMemory own;
        return answered_ ? answered_->showMessage(message) : std::nullopt;
    }
    InputAnswer askInput(const InputRequest& request) override {
        const HostsOwnMemory own;
        if (answered_) return answered_->askInput(request);
        return {request.initialValue, InputAnswer::Ending::Unavailable};
    }

private:
    std::optional<AnsweredDialogs> answered_;
};

/// Ends a listing that waits for a finish-loop flag, which nobody sets.
class EndingPump final : public MessagePump {
public:
    void yield() override {
        constexpr int mostStatements = 2000;
        if (++statements_ < mostStatements) return;
        const HostsOwnMemory own;
        throw automation_error(ErrorNumber::Internal);
    }
    void startAnew() { statements_ = 0; }

private:
    int statements_ = 0;
};

class QuietTrace final : public TraceSink {
public:
    void trace(enumDebugOptions, std::u16string_view) override {}
};

class QuietFaults final : public FaultListener {
public:
    void fault(const ScriptFault&) override {}
};

/// The simulated instrument, which writes down what it is asked.
class Host final : public EventSink {
public:
    explicit Host(const Case& given) { take(given); }
    void take(const Case& given) {
        log.clear();
        answers_.emplace(given.answers);
        statements_ = 0;
    }
    void raise(Event& event) override {
        constexpr int mostStatements = 2000;
        const HostsOwnMemory own;
        answers_->answer(event);
        if (answers_->finishesLoop(event)) control->FinishLoopFlag();
        if (event.id() == HostEvent::KeepGoing && ++statements_ == mostStatements) event.succeed(false);
        log += testing::show(event) + "\n";
        if (event.id() == HostEvent::GetDataSet) keep(event.argument(0).object());
    }

    std::string log;
    clsScriptControl* control = nullptr;
    std::vector<Reference<SharedRecord>> dataSets;  ///< kept from one script to the next

private:
    void keep(SharedRecord& dataSet) {
        const Reference<SharedRecord> given(&dataSet);
        EXPECT_EQ(std::count(dataSets.begin(), dataSets.end(), given), 0) << "a data set is handed out again";
        dataSets.push_back(given);
    }

    std::optional<HostAnswers> answers_;
    int statements_ = 0;
};

/// How a call ended.
enum class Ending { True, False, OutOfMemory, OtherError };

std::ostream& operator<<(std::ostream& stream, Ending ending) {
    return stream << std::array{"true", "false", "out of memory", "another error"}.at(static_cast<std::size_t>(ending));
}

template <typename Call>
Ending endingOf(Call&& call) {
    try {
        return call() ? Ending::True : Ending::False;
    } catch (const std::bad_alloc&) {
        return Ending::OutOfMemory;
    } catch (const automation_error& error) {
        return error.number() == ErrorNumber::OutOfMemory ? Ending::OutOfMemory : Ending::OtherError;
    }
}

/// A control among its host and operator.
struct Scene {
    explicit Scene(const Case& script)
        : given(script), dialogs(script), host(script), control({dialogs, pump, &locale}, script.options) {
        control.setEventSink(&host);
        host.control = &control;
    }

    bool load() { return control.LoadScript_FromScript(given.text, u"script", 1, 1); }
    bool run() { return control.RunScript(); }
    /// The log of a load and a run of the script, with how they ended.
    std::string performed() {
        host.take(given);
        dialogs.take(given);
        const Ending loaded = endingOf([&] { return load(); });
        std::ostringstream text;
        text << "loaded " << loaded;
        if (loaded == Ending::True) text << ", ran " << endingOf([&] { return run(); });
        return text.str() + "\n" + host.log;
    }

    const Case& given;
    NumberLocale locale = given.locale;
    Operator dialogs;
    EndingPump pump;
    Host host;
    clsScriptControl control;
};

/// The log of the script when nothing disturbs it.
std::string undisturbed(const Case& given) { return Scene(given).performed(); }

/// A script that is loaded after the disturbance: one that every way of a run goes through, with texts and numbers.
/// It leaves out calls, since a return address that a run leaves behind serves the next one.
const Case& nextScript() {
    static const Case next{"next",
                           uR"(CONST Limit = 2
ENV Place = "Lab"
VAR Count = 0
VAR Word = ""
Again:
Increment(Count)
ConCatString(Word, Count, " rounds")
Info(Word)
GetDataSet(5, 60, 10, 1)
SCTestEx(11.5, 12.5, 13.5, 14.5, 15.5, 16.5, 17, 18.5, 19.5, 20.5, 21.5, 22.5, "a", "b", "c", "d", 27.5, "f", "g", "h")
IfLessThan(Count, Limit, Again)
Park()
)",
                           {},
                           NumberLocale::pointDecimal(),
                           {}};
    return next;
}

constexpr std::size_t requestsTried = 30;

class MemoryRunsOut : public ::testing::TestWithParam<Case> {
protected:
    /// `prepare` brings the scene to where `work` is done with every request for memory refused in turn. `work` ends in
    /// exhausted memory where a request was refused, or answers false where it may, and never so where none was.
    template <typename Prepare, typename Work>
    void refuseEach(const std::string& name, Prepare&& prepare, Work&& work, bool mayAnswerFalse = false,
                    std::size_t mostTried = requestsTried) {
        static const std::string nextLog = undisturbed(nextScript());
        test::refuseEachRequest(name, mostTried, test::livingAllocations, [&](std::size_t nth, Refused refused) {
            std::size_t requests = 0;
            {
                Scene scene(GetParam());
                prepare(scene);
                Ending ending = Ending::True;
                {
                    MemoryFault fault(nth, refused);
                    ending = endingOf([&] { return work(scene); });
                    requests = fault.requests();
                    const HostsOwnMemory own;
                    if (!fault.isReached()) {
                        expectUndisturbed(ending);
                    } else if (!(mayAnswerFalse && ending == Ending::False)) {
                        EXPECT_EQ(ending, Ending::OutOfMemory);
                    }
                }
                expectUsable(scene, nextLog);
            }
            return requests;
        });
    }

private:
    static void expectUndisturbed(Ending ending) {
        EXPECT_NE(ending, Ending::OutOfMemory);
        if (GetParam().isExample) {
            EXPECT_EQ(ending, Ending::True);
        }
    }
    static void expectUsable(Scene& scene, const std::string& nextLog) {
        scene.control.engine().setTraceSink(nullptr);
        Scene next(nextScript());
        next.host.control = &scene.control;
        next.host.dataSets = scene.host.dataSets;
        scene.control.setEventSink(&next.host);
        std::ostringstream text;
        text << "loaded "
             << endingOf([&] { return scene.control.LoadScript_FromScript(nextScript().text, u"script", 1, 1); })
             << ", ran " << endingOf([&] { return scene.control.RunScript(); }) << "\n";
        EXPECT_EQ(text.str() + next.host.log, nextLog);
        scene.control.setEventSink(nullptr);
    }
};

constexpr auto nothing = [](Scene&) {};
constexpr auto loadedScript = [](Scene& scene) { scene.load(); };

TEST_P(MemoryRunsOut, WhileAControlIsMade) {
    NoOperator nobody;
    EndingPump pump;
    test::refuseEachRequest("construction", requestsTried, test::livingAllocations,
                            [&](std::size_t nth, Refused refused) {
                                MemoryFault fault(nth, refused);
                                const Ending ending = endingOf([&] {
                                    const clsScriptControl control({nobody, pump, &GetParam().locale});
                                    return true;
                                });
                                const HostsOwnMemory own;
                                EXPECT_EQ(ending, fault.isReached() ? Ending::OutOfMemory : Ending::True);
                                return fault.requests();
                            });
}

TEST_P(MemoryRunsOut, InALoad) {
    refuseEach(
        "load", nothing, [](Scene& scene) { return scene.load(); }, true);
}

/// So many statements that their slabs grow to the largest there are: all smaller ones hold a third of that.
Case manyLines() {
    const std::size_t lines = largestSlab / 2 / sizeof(clsCommand);
    Case made{"many_lines", u"VAR N = 0\n", {}, NumberLocale::pointDecimal(), {}};
    for (std::size_t i = 0; i < lines; ++i) made.text += u"Set(N, 1.5)\n";
    return made;
}

class MemoryRunsOutInManyLines : public MemoryRunsOut {};

TEST_P(MemoryRunsOutInManyLines, InALoad) {
    constexpr std::size_t all = 100;  // and more: each slab is among them
    refuseEach(
        "load", nothing, [](Scene& scene) { return scene.load(); }, true, all);
}

INSTANTIATE_TEST_SUITE_P(Made, MemoryRunsOutInManyLines, ::testing::Values(manyLines()),
                         [](const auto& parameter) { return parameter.param.name; });

TEST_P(MemoryRunsOut, InATracedLoadAndRun) {
    QuietTrace trace;
    refuseEach(
        "traced",
        [&](Scene& scene) {
            setDebugOptions(doParsing | doTables | doRuntimeResults);
            scene.control.engine().setTraceSink(&trace);
        },
        [](Scene& scene) { return scene.load() && scene.run(); }, true);
    setDebugOptions(0);
}

TEST_P(MemoryRunsOut, InASecondLoad) {
    refuseEach(
        "second load", loadedScript, [](Scene& scene) { return scene.load(); }, true);
}

TEST_P(MemoryRunsOut, InACheck) {
    QuietFaults faults;
    refuseEach("check", nothing,
               [&](Scene& scene) { return scene.control.engine().CheckCommandList(scene.given.text, faults); });
}

TEST_P(MemoryRunsOut, InARun) {
    refuseEach("run", loadedScript, [](Scene& scene) { return scene.run(); });
}

TEST_P(MemoryRunsOut, InTheViews) {
    refuseEach("views", loadedScript, [](Scene& scene) {
        TextTable statements;
        TextTable items;
        scene.control.engine().DisplayDataInListViews(&statements, &items);
        return !statements.aligned().empty() && !items.aligned().empty();
    });
}

TEST_P(MemoryRunsOut, WhileValuesAreRead) {
    refuseEach(
        "values",
        [](Scene& scene) {
            scene.load();
            clsDataList& memory = scene.control.engine().DataMemory();
            for (std::int32_t i = 0; i < memory.Count(); ++i) {
                clsData item = memory.Item(i);
                item.setIsEditable(true);
                item.setUnits(u"millimetres a second");
                item.setPromptString(u"a question that needs memory of its own");
            }
            memory.setEditableCount(memory.Count());
        },
        [](Scene& scene) {
            StringTable table;
            std::int32_t count = 0;
            scene.control.GetEditable(table, count);
            scene.control.GetEnvironmentVariable(u"FINISH_LOOP_FLAG");
            scene.control.GetConstant(u"Limit");
            scene.control.GetMemoryValue(u"Title");
            return count == table.rows();
        });
}

std::string shown(const Reference<FunctionCollection>& listing) {
    std::string text;
    for (std::int32_t i = 1; listing && i <= listing->Count(); ++i) {
        const clsProgramFunction& function = listing->Item(i);
        text += toUtf8(function.FunctionName);
        for (std::int32_t p = 0; p < function.ParamCount(); ++p) text += " " + toUtf8(function.Param(p));
        text += "\n";
    }
    return text;
}

/// Loads the script into the list and lists it.
Ending list(clsProgramFunctionList& list, const Case& given, Reference<FunctionCollection>& listing) {
    return endingOf([&] {
        return list.LoadProgramScript_FromDatabase(given.text, u"script", 1, 1) && list.CreateFunctionList(listing);
    });
}

TEST_P(MemoryRunsOut, InAListing) {
    Operator dialogs(GetParam());
    EndingPump pump;
    const auto newList = [&] {
        return clsProgramFunctionList({dialogs, pump, &GetParam().locale}, GetParam().options);
    };
    std::string nextListing;
    {
        clsProgramFunctionList next = newList();
        Reference<FunctionCollection> listing;
        EXPECT_EQ(list(next, nextScript(), listing), Ending::True);
        nextListing = shown(listing);
    }
    test::refuseEachRequest("listing", requestsTried, test::livingAllocations, [&](std::size_t nth, Refused refused) {
        std::size_t requests = 0;
        {
            dialogs.take(GetParam());
            pump.startAnew();
            clsProgramFunctionList disturbed = newList();
            Reference<FunctionCollection> listing;
            {
                const MemoryFault fault(nth, refused);
                const Ending ending = list(disturbed, GetParam(), listing);
                requests = fault.requests();
                const HostsOwnMemory own;
                EXPECT_TRUE(!fault.isReached() || ending == Ending::OutOfMemory || ending == Ending::False) << ending;
            }
            pump.startAnew();
            EXPECT_EQ(list(disturbed, nextScript(), listing), Ending::True);
            EXPECT_EQ(shown(listing), nextListing);
        }
        dialogs.take(nextScript());
        return requests;
    });
}

INSTANTIATE_TEST_SUITE_P(Scripts, MemoryRunsOut, ::testing::ValuesIn(allCases()),
                         [](const auto& parameter) { return parameter.param.name; });

}  // namespace
}  // namespace corvane
