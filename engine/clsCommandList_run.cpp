// The run loop: ExecuteList is the door, ExecuteCommand carries out one statement, ApplyCommandResult turns its result
// code into the next address.

#include <limits>
#include <string>

#include "engine/clsCommandList.h"
#include "engine/modCommand.h"
#include "engine/statement_table.h"
#include "engine/text_utilities.h"
#include "platform/automation_error.h"

namespace corvane {
namespace {

/// Address arithmetic is checked: error 6 beyond 32 bits.
std::int32_t addressPlus(std::int32_t address, std::int32_t distance) {
    std::int32_t sum = 0;
    if (__builtin_add_overflow(address, distance, &sum)) throw automation_error(ErrorNumber::Overflow);
    return sum;
}

}  // namespace

bool clsCommandList::initialiseData() { return DataMemory().InitialiseData(); }

bool clsCommandList::ExecuteList() {
    if (running_)
        throw automation_error(ErrorNumber::InvalidProcedureCall, "The script is running; another run cannot begin");
    struct RunGuard {
        bool& running;
        explicit RunGuard(bool& flag) : running(flag) { running = true; }
        ~RunGuard() { running = false; }
    } const guard(running_);

    stopExecution_ = false;
    userLocale_.reset();
    bool result = true;  // Kept: a failed statement leaves it so; CommandError tells of that
    if (initialiseData()) result = runStatements();
    if (traceSink_ != nullptr)
        traceSink_->trace(doRuntimeResults, std::u16string(u"ExecuteList Result: ") + (result ? u"True" : u"False"));
    if (listener_ != nullptr) listener_->ScriptComplete(result);
    return result;
}

/// What is asked before each statement. It is made once a run and renewed: most of an event is the same each time.
class clsCommandList::FunctionCall {
public:
    FunctionCall() {
        called_.append(Value::ofLong(ctUnknown));
        called_.append(Value::ofBoolean(true));
        called_.append(Value::ofBoolean(false));
    }
    /// Whether the statement is to be executed by the component.
    bool ask(EngineOwner& owner, std::int32_t kind) {
        called_.renew(0, Value::ofLong(kind));
        called_.renew(1, Value::ofBoolean(true));
        called_.renew(2, Value::ofBoolean(false));
        owner.raise(called_);
        return called_.argument(1).boolean();
    }

private:
    Event called_{HostEvent::FunctionCalled};
};

// Part of the loop itself: a call more a statement would be felt.
[[gnu::always_inline]] inline StatementResult clsCommandList::execute(const clsCommand& command, FunctionCall& call) {
    const Execution* const execution = findExecution(command.CommandType());
    if (execution == nullptr) [[unlikely]]
        return refuseKind(command, call);
    const bool isExecuted = call.ask(owner_, execution->calledAs);
    return execution->handler(*this, command, isExecuted, *execution);
}

// Kept: reported to the statement collection, which has no SyntaxError.
StatementResult clsCommandList::refuseKind(const clsCommand& command, FunctionCall& call) {
    const std::int32_t kind = command.CommandType();
    call.ask(owner_, kind);
    if (!options_.designedMemberAccess) throw automation_error(ErrorNumber::MemberNotFound);
    SyntaxError(u"Command Number: " + decimal(kind) + u" not found.");
    return crFailed;
}

bool clsCommandList::ApplyCommandResult(std::int32_t result, std::int32_t target, const clsCommand& command,
                                        std::int32_t& programCounter, bool& keepRunning) {
    switch (result) {
        case crNext: break;
        case crJump: programCounter = addressPlus(target, -1); break;
        case crCall:
            PushReturnAddress(addressPlus(programCounter, 1));
            programCounter = addressPlus(target, -1);
            break;
        case crReturn:
            keepRunning = PopReturnAddress(target);
            programCounter = addressPlus(target, -1);
            break;
        case crFailed:
            reportFailure(u"ERROR (ExecuteList) - Command Failed: Address ", command, programCounter, result);
            keepRunning = false;
            break;
        default:
            reportFailure(u"ERROR (ExecuteList) - Unhandled ExecuteCommand Return:  Address ", command, programCounter,
                          result);
            keepRunning = false;
    }
    programCounter = addressPlus(programCounter, 1);
    if (programCounter >= commandCount()) keepRunning = false;
    return false;  // Kept: never true; the loop's last test of that is therefore left out
}

// ApplyCommandResult, with the two results that nearly all statements have answered at once; whether the run goes on.
[[gnu::always_inline]] inline bool clsCommandList::advance(StatementResult result, const clsCommand& command,
                                                           std::int32_t& programCounter) {
    if (result.code() == crNext) {
        ++programCounter;  // that of a statement is none of the highest
    } else if (result.code() == crJump && result.target() >= 0) {
        programCounter = result.target();
    } else {
        bool keepRunning = true;
        std::int32_t address = programCounter;
        ApplyCommandResult(result.code(), result.hasTarget() ? result.target() : address, command, address,
                           keepRunning);
        programCounter = address;
        return keepRunning;
    }
    return programCounter < commandCount();
}

inline const clsCommand& clsCommandList::commandAt(const LoadedScript& script, std::int32_t address) {
    const auto position = static_cast<std::uint32_t>(address);
    if (position >= script.statements.size()) throw automation_error(ErrorNumber::SubscriptOutOfRange);
    return script.statements[position];
}

bool clsCommandList::runStatements() {
    const ScriptUse use(*this);
    FunctionCall call;
    const LoadedScript* script = script_.get();
    std::int32_t programCounter = programCounter_ = 0;
    for (;;) {
        if (script != script_.get()) [[unlikely]] {  // a load took place; the statement that was under way has ended
            script = script_.get();
            use.dropReplacedScripts();
        }
        const clsCommand& command = commandAt(*script, programCounter);
        if (traceSink_ != nullptr) [[unlikely]]
            traceStatement(u"Running Command: ", command);
        if (listener_ != nullptr) [[unlikely]]
            listener_->CommandStart(programCounter);

        const StatementResult result = execute(command, call);
        const bool keepRunning = advance(result, command, programCounter);
        programCounter_ = programCounter;

        owner_.CommandComplete(programCounter, result.code());
        if (listener_ != nullptr) [[unlikely]]
            listener_->CommandComplete(programCounter, result.code());
        services_.pump.yield();
        // Asked before the end of the list, so that a run stopped on its last statement counts as stopped.
        if (stopExecution_) [[unlikely]]
            return false;
        if (!keepRunning) [[unlikely]]
            return true;
    }
}

std::int32_t clsCommandList::ExecuteCommand(const clsCommand& tCommand, std::int32_t& tCurrentAddress) {
    const ScriptUse use(*this);
    FunctionCall call;
    const StatementResult result = execute(tCommand, call);
    if (result.hasTarget()) tCurrentAddress = result.target();
    return result.code();
}

void clsCommandList::reportFailure(std::u16string_view introduction, const clsCommand& command, std::int32_t address,
                                   std::int32_t result) {
    if (traceSink_ != nullptr) traceStatement(introduction, command);
    if (listener_ != nullptr) listener_->CommandError(address, result);
}

void clsCommandList::PushReturnAddress(std::int32_t address) {
    constexpr std::size_t most = std::numeric_limits<std::int32_t>::max();
    if (callStack_.size() == most)                      // GCOVR_EXCL_BR_LINE: eight gigabytes of calls
        throw automation_error(ErrorNumber::Overflow);  // GCOVR_EXCL_LINE: eight gigabytes of calls
    callStack_.push_back(address);
}

bool clsCommandList::PopReturnAddress(std::int32_t& address) {
    if (callStack_.empty()) return false;
    address = callStack_.back();
    callStack_.pop_back();
    return true;
}

void clsCommandList::traceStatement(std::u16string_view introduction, const clsCommand& command) {
    std::u16string line(introduction);
    line.append(decimal(programCounter_)).append(u" - ").append(CommandNameFromType(command.CommandType()));
    traceSink_->trace(doRuntimeResults, line);
}

}  // namespace corvane
