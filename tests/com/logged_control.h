#pragma once

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "engine/event.h"
#include "platform/number_locale.h"

namespace corvane::testing {

/// What a call failed with, as a host sees it.
class HostError : public std::runtime_error {
public:
    HostError(std::int32_t number, const std::string& description) : std::runtime_error(description), number_(number) {}
    std::int32_t number() const { return number_; }

private:
    std::int32_t number_;
};

/// The script control with all its members, reached in one way or another. A member that fails throws HostError.
class LoggedControl {
public:
    virtual ~LoggedControl() = default;

    /// Who answers the events from now on; outlives the control.
    virtual void sinkTo(EventSink& sink) = 0;
    /// How many further sinks there are from now on, which look on and answer nothing; the engine's own control has
    /// none.
    virtual void onlookers(std::int32_t) {}

    virtual void TestMode(bool mode) = 0;
    virtual void DebugMode(std::int32_t options) = 0;
    virtual std::int32_t ScriptFrom() = 0;
    virtual std::u16string ScriptFile() = 0;
    virtual std::int32_t ScriptDB_UID() = 0;
    virtual std::int32_t ScriptDB_Version() = 0;
    virtual bool LoadScript_FromFile(std::u16string_view file) = 0;
    virtual bool LoadScript_FromScript(std::u16string_view text, std::u16string_view name, std::int32_t uid,
                                       std::int32_t version) = 0;
    virtual bool RunScript() = 0;
    virtual void FinishLoopFlag() = 0;
    virtual std::u16string GetEnvironmentVariable(std::u16string_view name) = 0;
    virtual std::u16string GetConstant(std::u16string_view name) = 0;
    virtual Value GetMemoryValue(std::u16string_view name) = 0;
    /// The number of rows; an array that is handed out must have as many.
    virtual std::int32_t GetEditable() = 0;
    virtual bool EditDataVariable(std::int32_t index, float value) = 0;
    virtual std::u16string FunctionNameFromType(std::int32_t type) = 0;
};

/// A way to reach a control.
struct Binding {
    std::string name;
    std::function<std::unique_ptr<LoggedControl>()> make;
};

/// A control of the engine's own, without automation. Nobody answers its dialogs.
std::unique_ptr<LoggedControl> makeEngineControl(const NumberLocale& locale);
/// Through the vtable.
std::unique_ptr<LoggedControl> makeEarlyBoundControl();

/// The ways through automation that this system has.
std::vector<Binding> automationBindings();

}  // namespace corvane::testing
