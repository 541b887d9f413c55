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

std::int32_t clsCommandList::execute(const clsCommand& command, std::int32_t& address) {
    // A block start is an information in all respects.
    const std::int32_t kind = command.CommandType() == ctBlockStart ? ctInfo : command.CommandType();
    StatementStep step{command, address};
    {
        Event called(HostEvent::FunctionCalled);
        called.append(Value::ofLong(kind));
        called.append(Value::ofBoolean(step.execute));
        called.append(Value::ofBoolean(false));
        owner_.raise(called);
        step.execute = called.argument(1).boolean();
    }
    const StatementRow* const row = findStatementRow(kind);
    if (row == nullptr) {
        // Kept: reported to the statement collection, which has no SyntaxError.
        if (!options_.designedMemberAccess) throw automation_error(ErrorNumber::MemberNotFound);
        SyntaxError(u"Command Number: " + decimal(kind) + u" not found.");
        return crFailed;
    }
    const Execution& execution = row->execution;
    if (execution.way == Execution::Way::Inside) return (this->*execution.handler)(step);
    return raiseToHost(step, execution.event, execution.passed, execution.rest);
}

// The result is never true; the loop's last test of it is therefore left out.
bool clsCommandList::ApplyCommandResult(std::int32_t result, std::int32_t target, const clsCommand& command,
                                        std::int32_t& programCounter, bool& keepRunning) {
    switch (result) {
        case crNext: break;
        case crFailed:
            reportFailure(u"ERROR (ExecuteList) - Command Failed: Address ", command, programCounter, result);
            keepRunning = false;
            break;
        case crReturn:
            if (!PopReturnAddress(target)) keepRunning = false;
            programCounter = addressPlus(target, -1);
            break;
        case crCall:
            PushReturnAddress(addressPlus(programCounter, 1));
            programCounter = addressPlus(target, -1);
            break;
        case crJump: programCounter = addressPlus(target, -1); break;
        default:
            reportFailure(u"ERROR (ExecuteList) - Unhandled ExecuteCommand Return:  Address ", command, programCounter,
                          result);
            keepRunning = false;
    }
    programCounter = addressPlus(programCounter, 1);
    if (programCounter >= commandCount()) keepRunning = false;
    return false;
}

const clsCommand& clsCommandList::commandAt(std::int32_t address) const {
    if (address >= 0 && address < commandCount()) return script_->statements[static_cast<std::size_t>(address)];
    return Command(addressPlus(address, 1));
}

bool clsCommandList::runStatement() {
    const ScriptUse use(*this);
    const clsCommand& command = commandAt(programCounter_);
    if (traceSink_ != nullptr) traceStatement(u"Running Command: ", command);
    if (listener_ != nullptr) listener_->CommandStart(programCounter_);
    std::int32_t target = programCounter_;
    const std::int32_t result = execute(command, target);
    bool keepRunning = true;
    ApplyCommandResult(result, target, command, programCounter_, keepRunning);
    owner_.CommandComplete(programCounter_, result);
    if (listener_ != nullptr) listener_->CommandComplete(programCounter_, result);
    return keepRunning;
}

bool clsCommandList::runStatements() {
    programCounter_ = 0;
    for (;;) {
        const bool keepRunning = runStatement();
        services_.pump.yield();
        // Asked before the end of the list, so that a run stopped on its last statement counts as stopped.
        if (stopExecution_) return false;
        if (!keepRunning) return true;
    }
}

std::int32_t clsCommandList::ExecuteCommand(const clsCommand& tCommand, std::int32_t& tCurrentAddress) {
    const ScriptUse use(*this);
    return execute(tCommand, tCurrentAddress);
}

void clsCommandList::reportFailure(std::u16string_view introduction, const clsCommand& command, std::int32_t address,
                                   std::int32_t result) {
    if (traceSink_ != nullptr) traceStatement(introduction, command);
    if (listener_ != nullptr) listener_->CommandError(address, result);
}

void clsCommandList::PushReturnAddress(std::int32_t address) {
    constexpr std::size_t most = std::numeric_limits<std::int32_t>::max();
    if (callStack_.size() == most) throw automation_error(ErrorNumber::Overflow);
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
