#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "engine/engine_listener.h"
#include "engine/event.h"
#include "engine/loaded_script.h"
#include "engine/operator_dialogs.h"
#include "engine/table_view.h"
#include "engine/trace.h"
#include "host/clsDataSetParameters.h"
#include "platform/message_pump.h"
#include "platform/number_locale.h"
#include "platform/value_rules.h"

namespace corvane {

struct Execution;

/// What a statement tells the run loop.
enum ResultCode : std::int32_t {
    crNext = 0,    ///< go on with the next statement
    crFailed = 1,  ///< report the statement and end the run
    crJump = 2,    ///< go on at the address that the statement gave
    crCall = 3,    ///< the same, and keep the next statement's address for a return
    crReturn = 4,  ///< go on at the address kept last
};

/// What an engine needs of its surroundings. The referenced objects outlive the engine.
struct EngineServices {
    OperatorDialogs& dialogs;
    MessagePump& pump;
    /// How numbers are written; null: as the present user writes them, asked at the start of each load and run.
    const NumberLocale* locale = nullptr;
};

/// Choices that an engine offers beyond its published behaviour.
struct EngineOptions {
    /// The finish-loop test reads the engine's own flag, and an unknown statement kind is reported through SyntaxError.
    /// Without it both are addressed to the statement collection, which has no such member: error 438 ends the run.
    bool designedMemberAccess = false;
};

/// Who owns an engine: it receives the events and is told after each statement.
class EngineOwner : public EventSink {
public:
    /// After each statement: the address of the next one to run and the result code of this one.
    virtual void CommandComplete(std::int32_t CommandNumber, std::int32_t CommandStatus) = 0;
};

/// One thing wrong with a script, found by a check.
struct ScriptFault {
    std::int32_t line;            ///< from 0
    std::int32_t column;          ///< in code units of the untrimmed line, from 0
    std::u16string_view message;  ///< valid during the call only
    bool rejects;                 ///< whether the script is refused because of it
};

/// Receives the faults that a check finds, in the order in which they are found.
class FaultListener {
public:
    virtual ~FaultListener() = default;
    virtual void fault(const ScriptFault& fault) = 0;
};

/// What executing a statement answers: a result code and, from a statement that jumps, the address it leads to. One
/// word, so that it travels in a register: what a statement leaves in memory, the next one waits for.
class StatementResult {
public:
    StatementResult(ResultCode code) noexcept : bits_(code) {}  // NOLINT(google-explicit-constructor): the usual answer
    StatementResult(ResultCode code, std::int32_t target) noexcept
        : bits_(code | hasTargetBit | std::uint64_t{static_cast<std::uint32_t>(target)} << targetShift) {}

    ResultCode code() const noexcept { return static_cast<ResultCode>(bits_ & codeMask); }
    bool hasTarget() const noexcept { return (bits_ & hasTargetBit) != 0; }
    std::int32_t target() const noexcept { return static_cast<std::int32_t>(bits_ >> targetShift); }

private:
    static constexpr std::uint64_t codeMask = 0xFF;
    static constexpr std::uint64_t hasTargetBit = 0x100;
    static constexpr int targetShift = 32;

    std::uint64_t bits_;
};

/// A statement on its way through `ExecuteCommand`.
struct StatementStep {
    const clsCommand& command;
    bool execute;  ///< the host's answer to FunctionCalled; dialogs start from it

    /// The item in a slot; errors as those of clsCommand::ParamPtr.
    clsData item(std::int32_t slot) const { return command.ParamPtr(slot); }
    ValueView view(std::int32_t slot) const {
        const ItemRecord& record = command.slotRecord(slot);
        return {record.currentType, record.current};
    }
};

/// The script engine: it parses a script into statements and data memory and runs them.
///
/// Everything happens on the calling thread; the owner's and the listener's members are called from inside. They may
/// call back: a load during a run is safe (the statement in progress ends on the old script, then the run goes on by
/// position in the new one); a run inside a run, or a load inside a load, is refused with error 5.
class clsCommandList {
public:
    clsCommandList(EngineOwner& owner, const EngineServices& services, EngineOptions options = {});
    clsCommandList(const clsCommandList&) = delete;
    clsCommandList& operator=(const clsCommandList&) = delete;
    virtual ~clsCommandList();

    // Parsing

    /// Loads a whole script in place of the present one. False when it is rejected: the first error was shown to the
    /// operator, and what was declared and bound up to it stays. False without a message when a run-time error (memory,
    /// a number out of range) stopped it at one of its lines.
    bool CreateCommandList(std::u16string_view tScriptString);

    /// The same, but the load goes on after a rejected line, nothing is shown, and every fault is told to `faults`.
    /// Exhausted memory passes to the caller.
    bool CheckCommandList(std::u16string_view tScriptString, FaultListener& faults);

    /// Reports a syntax error on the current line: the first of a load is shown, all are counted. `where` may be the
    /// stretch of the script's text that is at fault.
    void SyntaxError(std::u16string_view tMsg, std::u16string_view where = {});

    /// The number of syntax errors reported during the last load.
    std::int32_t syntaxErrorCount() const { return syntaxErrorCount_; }

    /// The line being parsed, from 0; after a complete pass the number of lines.
    std::int32_t currentLine() const { return currentLine_; }

    // What a load has made; references are valid until the next load

    clsDataList& DataMemory() { return script_->dataMemory; }
    /// The number of statements.
    std::int32_t commandCount() const { return static_cast<std::int32_t>(script_->statements.size()); }
    /// The statement at a position from 1 to commandCount(); error 9 elsewhere.
    const clsCommand& Command(std::int32_t position) const;

    /// The record of the next data-set statement.
    clsDataSetParameters& DataSetParameters() { return *dataSet_; }

    /// The current value of the item FINISH_LOOP_FLAG as a Boolean. Error 91 before the first load; error 13 when a
    /// script has given it a text that is neither number nor Boolean.
    bool EnvFinishLoopFlag() const;
    void setEnvFinishLoopFlag(bool flag);

    /// Fills the view of the statements and, when there is one, that of the memory items.
    void DisplayDataInListViews(TableView* c_CmdListView, TableView* c_DataListView = nullptr);

    // Running

    /// Runs the script from its first statement. False when it was stopped, true in every other case, a failed
    /// statement included. Run-time errors pass to the caller. Error 9 when there is no statement; error 5 inside a
    /// run.
    bool ExecuteList();

    /// Runs one statement and returns its result code; a jump's target is written to `tCurrentAddress`.
    std::int32_t ExecuteCommand(const clsCommand& tCommand, std::int32_t& tCurrentAddress);

    /// Set during a run, ends it after the present statement; each run clears it.
    void setStopExecution(bool stop) { stopExecution_ = stop; }

    /// The address of the statement being run, from 0; it stays after a run.
    std::int32_t programCounter() const { return programCounter_; }

    bool isRunning() const { return running_; }

    // Observers; null for none. They outlive the engine or are taken away before they go

    void setListener(EngineListener* listener) { listener_ = listener; }
    void setTraceSink(TraceSink* sink) { traceSink_ = sink; }
    TraceSink* traceSink() const { return traceSink_; }

    /// How this engine reads and writes numbers.
    const NumberLocale& locale() const {
        if (services_.locale != nullptr) return *services_.locale;
        return userLocale_ ? *userLocale_ : presentUserLocale();
    }

    // For statements and the statement table

    LoadedScript& script() { return *script_; }
    bool isChecking() const { return check_ != nullptr; }
    /// A statement uses the item at `position` as a label that is not defined yet.
    void noteForwardReference(std::uint32_t position, std::u16string_view where);

    StatementResult executeGoto(StatementStep step);
    StatementResult executeCall(StatementStep step);
    StatementResult executeReturn(StatementStep step);
    StatementResult executeIfNotFinishLoopFlag(StatementStep step);
    StatementResult executeIfGreaterThan(StatementStep step);
    StatementResult executeIfLessThan(StatementStep step);
    StatementResult executeIfNotEqual(StatementStep step);
    StatementResult executeIfEqual(StatementStep step);
    StatementResult executeSet(StatementStep step);
    StatementResult executeDecrement(StatementStep step);
    StatementResult executeIncrement(StatementStep step);
    StatementResult executeMathsFunction(StatementStep step);
    StatementResult executeConCatString(StatementStep step);
    StatementResult executeInputNumber(StatementStep step);
    StatementResult executeInputString(StatementStep step);
    StatementResult executeInfo(StatementStep step);
    StatementResult executeMsgAsk(StatementStep step);
    StatementResult executeMsgInfo(StatementStep step);
    StatementResult executeMsgInfoEx(StatementStep step);
    StatementResult executeGetDataSet(StatementStep step);
    StatementResult executeGetDataSetEx(StatementStep step);
    /// Raises the event that the statement's parameters make; its success decides the result.
    StatementResult raiseToHost(const clsCommand& command, const Execution& execution);

protected:
    /// Resets the data memory at the start of a run; false: no statement is run.
    virtual bool initialiseData();

private:
    struct Check;
    class FunctionCall;

    /// Keeps a script that a load replaces until its last user is done with it.
    class ScriptUse {
    public:
        explicit ScriptUse(clsCommandList& engine) : engine_(engine) { ++engine_.scriptUses_; }
        ScriptUse(const ScriptUse&) = delete;
        ScriptUse& operator=(const ScriptUse&) = delete;
        ~ScriptUse() {
            dropReplacedScripts();
            --engine_.scriptUses_;
        }
        /// Called where this user holds nothing of them.
        void dropReplacedScripts() const {
            if (!engine_.replacedScripts_.empty() && engine_.scriptUses_ == 1) engine_.replacedScripts_.clear();
        }

    private:
        clsCommandList& engine_;
    };

    // clsCommandList_parse.cpp
    bool load(std::u16string_view text, Check* check);
    void discardScript();
    bool parseLines(std::u16string_view text);
    void checkLine(std::u16string_view line);
    bool parseLine(std::u16string_view line);
    bool parseScriptLine(std::u16string_view line);
    bool parseLabel(std::u16string_view line);
    void reportDuplicateLabel(std::u16string_view name);
    bool parseVariable(std::u16string_view line);
    bool parseConstant(std::u16string_view line);
    bool parseEmptyConstant(std::u16string_view name);
    bool parseEnvironmentVariable(std::u16string_view line);
    bool parseStatement(std::u16string_view line);
    bool resolveLabels();
    void raiseDeclaration(HostEvent event, std::u16string_view identifier, const Value& initialValue);
    void traceLine(std::u16string_view kind, std::u16string_view line);

    const NumberLocale& presentUserLocale() const;

    // clsCommandList_run.cpp
    bool runStatements();
    StatementResult execute(const clsCommand& command, FunctionCall& call);
    StatementResult refuseKind(const clsCommand& command, FunctionCall& call);
    bool ApplyCommandResult(std::int32_t result, std::int32_t target, const clsCommand& command,
                            std::int32_t& programCounter, bool& keepRunning);
    bool advance(StatementResult result, const clsCommand& command, std::int32_t& programCounter);
    static const clsCommand& commandAt(const LoadedScript& script, std::int32_t address);
    void reportFailure(std::u16string_view introduction, const clsCommand& command, std::int32_t address,
                       std::int32_t result);
    void PushReturnAddress(std::int32_t address);
    bool PopReturnAddress(std::int32_t& address);
    void traceStatement(std::u16string_view introduction, const clsCommand& command);

    // clsCommandList_inside.cpp and clsCommandList_host.cpp
    ResultCode askOperator(StatementStep step, InputKind kind);
    bool confirmCancel();
    ResultCode raiseDataSet();
    void fillDataSet(StatementStep step);
    Value::Payload argumentOf(ValueView value, ValueType type) const;
    Value::Payload convertedArgument(ValueView value, ValueType type) const;
    inline Text textOf(ValueView value) const;
    inline float singleOf(ValueView value) const;
    inline std::int32_t longOf(ValueView value) const;

    EngineOwner& owner_;
    EngineServices services_;
    EngineOptions options_;
    EngineListener* listener_ = nullptr;
    TraceSink* traceSink_ = nullptr;
    mutable std::optional<NumberLocale> userLocale_;

    std::unique_ptr<LoadedScript> script_;
    std::vector<std::unique_ptr<LoadedScript>> replacedScripts_;  // kept while somebody uses one of them
    std::int32_t scriptUses_ = 0;
    std::optional<std::uint32_t> finishLoopItem_;  // none before the first load
    Reference<clsDataSetParameters> dataSet_;

    std::int32_t currentLine_ = 0;
    std::int32_t syntaxErrorCount_ = 0;
    Check* check_ = nullptr;
    bool loading_ = false;

    std::int32_t programCounter_ = 0;
    std::vector<std::int32_t> callStack_;  // Kept: never cleared, so a stale address serves the next run
    bool stopExecution_ = false;
    bool running_ = false;
};

/// The handler of a statement that a member function of the engine carries out.
template <auto member>
StatementResult handledBy(clsCommandList& engine, const clsCommand& command, bool execute, const Execution&) {
    return (engine.*member)({command, execute});
}

// Asking for the locale is left to those values that need it.

inline float clsCommandList::singleOf(ValueView value) const {
    return value.type() == ValueType::Single ? value.single() : toSingle(value, locale());
}

inline std::int32_t clsCommandList::longOf(ValueView value) const {
    return everyday::isLong(value) ? everyday::toLong(value) : toLong(value, locale());
}

inline Text clsCommandList::textOf(ValueView value) const {
    return value.isText() ? value.text() : toText(value, locale());
}

}  // namespace corvane
