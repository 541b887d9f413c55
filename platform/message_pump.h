#pragma once

namespace corvane {

/// How a running script lets its thread's window messages through.
class MessagePump {
public:
    virtual ~MessagePump() = default;
    /// Handles what is waiting and returns; never waits for a message.
    virtual void yield() = 0;
};

/// The system's own message queue of the calling thread. Where threads have none there is nothing to do.
///
/// One pass is bounded, so a flood of messages delays a script and does not stop it. A request to quit ends the pass
/// and stays in the queue for the host's own loop.
class SystemMessagePump final : public MessagePump {
public:
    void yield() override;
};

}  // namespace corvane
