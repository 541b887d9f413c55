#pragma once

#include <cstdint>

namespace corvane {

class clsData;
class Value;

/// What an engine tells an observer about its steps: tools, logs and tests, not hosts, which have the events. Called on
/// the engine's thread; every member does nothing unless overridden.
class EngineListener {
public:
    virtual ~EngineListener() = default;
    /// Before each statement.
    virtual void CommandStart(std::int32_t /*programCounter*/) {}
    /// After each statement: the address of the next one to run and the result code of this one.
    virtual void CommandComplete(std::int32_t /*CommandNumber*/, std::int32_t /*CommandStatus*/) {}
    /// A statement failed or gave an unknown result code; its CommandComplete follows.
    virtual void CommandError(std::int32_t /*programCounter*/, std::int32_t /*resultCode*/) {}
    /// Once at the end of a run that no run-time error ended.
    virtual void ScriptComplete(bool /*result*/) {}
    /// A memory item's current value was assigned; the reset before a run is no assignment. The item is valid until the
    /// listener has another script loaded.
    virtual void CurrentValueChanged(const clsData& /*item*/, const Value& /*value*/) {}
};

}  // namespace corvane
