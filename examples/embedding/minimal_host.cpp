// A host in C++ in one page: it loads a script, answers its events, and tells how the run ended.
//
//     minimal_host [SCRIPT]

#include <iostream>

#include "host/clsScriptControl.h"
#include "platform/automation_error.h"
#include "platform/script_file.h"
#include "platform/utf8.h"

namespace {

using namespace corvane;

constexpr std::u16string_view builtInScript =
    u"VAR Count = 0\n"
    u"CONST Limit = 3\n"
    u"Again:\n"
    u"Increment(Count)\n"
    u"MoveToHeight(70, 0, -5, 60)\n"
    u"IfLessThan(Count, Limit, Again)\n"
    u"Park\n";

/// Stands for the code that drives the instrument.
class Instrument final : public EventSink {
public:
    void raise(Event& event) override {
        switch (event.id()) {
            case HostEvent::MoveToHeight:
                std::cout << "blade to " << event.argument("tHeightMM").single() << " mm\n";
                event.succeed();
                break;
            case HostEvent::Park:
                std::cout << "blade parked\n";
                event.succeed();
                break;
            case HostEvent::MathsFunction:
                event.answer("tReturn", Value::ofSingle(event.argument("tParam0").single() * 2));
                event.succeed();
                break;
            case HostEvent::KeepGoing:  // asked after every statement; without a yes the run is stopped
                event.succeed();
                break;
            default:  // what the instrument is asked to do and does not answer fails, and that ends the run
                break;
        }
    }
};

/// RunScript answers true even after a failed statement; who wants to know listens to the engine.
class Outcome final : public EngineListener {
public:
    bool failed = false;
    void CommandError(std::int32_t programCounter, std::int32_t) override {
        failed = true;
        std::cout << "statement " << programCounter + 1 << " failed\n";
    }
};

int runScript(int argumentCount, char** arguments) {
    NoOperator nobody;  // a host with a user interface implements OperatorDialogs instead
    SystemMessagePump pump;
    Instrument instrument;
    Outcome outcome;
    clsScriptControl control({nobody, pump});
    control.setEventSink(&instrument);
    control.engine().setListener(&outcome);

    const bool accepted = argumentCount > 1 ? control.LoadScript_FromFile(fromUtf8(arguments[1]))
                                            : control.LoadScript_FromScript(builtInScript, u"built in", 1, 1);
    if (!accepted) {
        std::cout << "the script is rejected\n";
        return 2;
    }
    const bool ran = control.RunScript();
    std::cout << (ran ? "the run ended\n" : "the run was stopped\n");
    return ran && !outcome.failed ? 0 : 1;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    try {
        return runScript(argumentCount, arguments);
    } catch (const corvane::automation_error& error) {
        std::cout << "error " << static_cast<int>(error.number()) << ": " << error.what() << "\n";
        return 1;
    }
}
