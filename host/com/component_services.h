#pragma once

#include <memory>

#include "engine/operator_dialogs.h"
#include "platform/floating_point.h"
#include "platform/message_pump.h"

/// How the objects of the component reach the operator and their thread's messages.
namespace corvane {

struct ComponentServices {
    std::unique_ptr<OperatorDialogs> dialogs;
    std::unique_ptr<MessagePump> pump;
};

/// The services of one object: the system's own dialogs and message queue. Throws error 7.
ComponentServices makeServices();

/// Both as an object hands them to its engine: while they work, messages of the host's windows are handled, so the
/// host's arithmetic is in force.
class HostSideServices final : public OperatorDialogs, public MessagePump {
public:
    /// `host` tells, during a call, how its host calculates.
    explicit HostSideServices(const FloatingPointState* const& host) : host_(host), services_(makeServices()) {}

    std::optional<std::int32_t> showMessage(const OperatorMessage& message) override {
        const HostArithmetic arithmetic(*host_);
        return services_.dialogs->showMessage(message);
    }
    InputAnswer askInput(const InputRequest& request) override {
        const HostArithmetic arithmetic(*host_);
        return services_.dialogs->askInput(request);
    }
    void yield() override {
        const HostArithmetic arithmetic(*host_);
        services_.pump->yield();
    }

private:
    const FloatingPointState* const& host_;
    ComponentServices services_;
};

}  // namespace corvane
