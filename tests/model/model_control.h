#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include "engine/event.h"
#include "platform/number_locale.h"

namespace corvane::testing {

/// A call failed with this automation error.
struct CallFailed {
    std::int32_t number;
};

/// What a case asks of the surroundings of its control.
struct CaseSettings {
    bool comma = false;     ///< numbers are written with a comma
    bool designed = false;  ///< the finish-loop test reads the engine's own flag
    bool traced = false;    ///< trace lines are logged
    bool traceParameters = false;
    bool listened = false;    ///< the engine's notices are logged
    bool unattended = false;  ///< nobody answers dialogs
    bool lateBound = false;   ///< an automation host calls members by name, where it can
};

/// How a control that is played with reaches the case.
class CaseOperator {
public:
    virtual ~CaseOperator() = default;
    virtual void log(std::string line) = 0;
    virtual std::int32_t nextButton() = 0;
    /// False when the operator cancels; `entry` is null when nothing was typed.
    virtual bool nextInput(std::unique_ptr<std::u16string>& entry) = 0;
    virtual void pumped() = 0;
};

/// A script control as the cases use it. Calls that fail throw CallFailed.
class ModelControl {
public:
    virtual ~ModelControl() = default;

    virtual bool load(std::u16string_view text, std::u16string_view name, std::int32_t uid, std::int32_t version) = 0;
    virtual bool run() = 0;
    /// See LoggedControl.
    virtual void onlookers(std::int32_t count) = 0;
    virtual void finishLoopFlag() = 0;
    virtual bool edit(std::int32_t index, float value) = 0;
    virtual std::u16string environmentVariable(std::u16string_view name) = 0;
    virtual std::u16string constant(std::u16string_view name) = 0;
    virtual Value memoryValue(std::u16string_view name) = 0;
    virtual std::int32_t scriptFrom() = 0;
    virtual std::u16string scriptFile() = 0;
    virtual std::int32_t uid() = 0;
    virtual std::int32_t version() = 0;
    virtual std::int32_t editableCount() = 0;
    virtual std::u16string kindName(std::int32_t kind) = 0;
    /// Logs every item of the data memory.
    virtual void logMemory() = 0;
    /// Lists a script `times` times over and logs the results and the listing.
    virtual void list(std::int32_t times, std::u16string_view script) = 0;
};

/// `sink` and `caseOperator` outlive the control.
std::unique_ptr<ModelControl> makeModelControl(const CaseSettings& settings, EventSink& sink,
                                               CaseOperator& caseOperator);

// How the log writes things.

std::string written(std::u16string_view text);
std::string written(const Value& value);
std::string writtenSingle(float number);

}  // namespace corvane::testing
