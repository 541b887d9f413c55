#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "engine/clsCommandList.h"
#include "engine/modCommand.h"

namespace corvane {

/// A two-dimensional array of strings, both dimensions counted from 0.
class StringTable {
public:
    StringTable() = default;
    StringTable(std::int32_t rows, std::int32_t columns)
        : rows_(rows), columns_(columns), cells_(static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns)) {}

    std::int32_t rows() const { return rows_; }
    std::int32_t columns() const { return columns_; }
    /// Error 9 outside the table.
    std::u16string& at(std::int32_t row, std::int32_t column);
    const std::u16string& at(std::int32_t row, std::int32_t column) const;

private:
    std::int32_t rows_ = 0;
    std::int32_t columns_ = 0;
    std::vector<std::u16string> cells_;
};

/// Loads and runs scripts for a host: it owns an engine, hands the host's calls to it and its events to the host.
///
/// An object is used on the thread that made it. Load and run report failure by false; other failures are automation
/// errors. The sink answers every event; one that leaves `KeepGoing` unanswered has each run stopped after its first
/// statement. The object must not be destroyed from inside one of its events.
class clsScriptControl final : private EngineOwner {
public:
    /// Builds this thread's function catalogue anew.
    explicit clsScriptControl(const EngineServices& services, EngineOptions options = {});

    /// Who receives the 41 events; null for nobody. The sink outlives the object or is taken away before it goes.
    void setEventSink(EventSink* sink) { sink_ = sink; }

    /// Kept for hosts that set it: stored, never read.
    void setTestMode(bool testMode) { testMode_ = testMode; }

    /// Kept: ssFromFile after a load with a database identifier of 1 or more, else ssFromDataBase.
    enumScriptSource ScriptFrom() const { return databaseUid_ >= 1 ? ssFromFile : ssFromDataBase; }
    /// The path, or the script name, of the last load call.
    const std::u16string& ScriptFile() const { return scriptFile_; }
    /// The database identifier of the last load call; -1 after a load from a file, 0 before any.
    std::int32_t ScriptDB_UID() const { return databaseUid_; }
    /// The database version of the last load call; -1 after a load from a file, 0 before any.
    std::int32_t ScriptDB_Version() const { return databaseVersion_; }

    /// Loads the file named `tScript`; one that does not exist is created, empty. False when the script is rejected.
    /// File errors (7, 52, 57, 70, 75, 76) pass to the caller, the present script stays.
    bool LoadScript_FromFile(std::u16string_view tScript);
    /// Loads a script that the host holds. False when it is rejected.
    bool LoadScript_FromScript(std::u16string_view tScriptString, std::u16string_view tScriptName, std::int32_t tUID,
                               std::int32_t tVersion);

    /// Runs the loaded script to its end. False when a KeepGoing was not answered with true; true in every other case,
    /// a failed statement included: who needs the difference listens to the engine. Run-time errors pass to the caller.
    bool RunScript() { return engine_.ExecuteList(); }

    /// Sets the script's finish-loop flag; typically called while an event is answered. Error 91 before the first load.
    void FinishLoopFlag() { engine_.setEnvFinishLoopFlag(true); }

    /// Sets this thread's debug options word, a combination of enumDebugOptions bits.
    void setDebugMode(std::int32_t options) { setDebugOptions(options); }

    /// The initial value of an environment variable as text; empty when there is none of that name.
    std::u16string GetEnvironmentVariable(std::u16string_view tVal);
    /// The initial value of a constant as text; empty when there is none of that name.
    std::u16string GetConstant(std::u16string_view tVal);
    /// The initial value of anything that bears the name; the empty text when there is nothing.
    Value GetMemoryValue(std::u16string_view tVal);

    /// Gives `tStr` a row for each editable item: position, initial value, lower and upper limit, units, prompt.
    /// Without editable items `tStr` is left as it is. `tCount` receives the number of rows.
    void GetEditable(StringTable& tStr, std::int32_t& tCount);
    /// Sets initial and current value of the item at a position from 0; true. Nothing is checked but the position:
    /// error 5 outside the data memory.
    bool EditDataVariable(std::int32_t tIndex, float tNewValue);

    /// The name of a statement kind.
    std::u16string_view FunctionNameFromType(std::int32_t tType) const { return CommandNameFromType(tType); }

    /// The engine, for observers and diagnostic views.
    clsCommandList& engine() { return engine_; }

private:
    void raise(Event& event) override;
    void CommandComplete(std::int32_t CommandNumber, std::int32_t CommandStatus) override;
    /// The initial value of the first item that bears the name and has a bit of the mask, or the empty text.
    Value initialValueOf(std::u16string_view name, std::int32_t mask);

    std::u16string scriptFile_;
    std::int32_t databaseUid_ = 0;
    std::int32_t databaseVersion_ = 0;
    bool testMode_ = false;
    EventSink* sink_ = nullptr;
    clsCommandList engine_;
};

}  // namespace corvane
