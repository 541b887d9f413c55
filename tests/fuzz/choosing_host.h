#pragma once

#include <functional>
#include <optional>

#include "host/clsScriptControl.h"
#include "platform/automation_error.h"
#include "tests/fuzz/fuzz_input.h"
#include "ui/input_rules.h"

namespace corvane::fuzz {

/// Leaves a call that would never end.
struct Enough {};

/// Everything around a script control, deciding by choices: the host that answers the events, the operator, the message
/// loop, the observers. A run is let go on for a bounded number of statements.
class ChoosingHost : public EventSink,
                     public OperatorDialogs,
                     public MessagePump,
                     public EngineListener,
                     public TraceSink {
public:
    explicit ChoosingHost(FuzzInput& input)
        : choices_(input.choices), locale_(choices_.locale()), mostStatements_(input.mostStatements) {}

    /// Called wherever the component calls out.
    std::function<void()> onCallOut;
    /// How the last KeepGoing was answered.
    bool goesOn = true;

    EngineServices services() { return {*this, *this, &locale_}; }
    const NumberLocale& locale() const { return locale_; }

    void raise(Event& event) override {
        for (std::size_t i = 0; i + 1 < event.count(); ++i)
            if (choices_.oneIn(4)) answer(event, i);
        event.succeed(!choices_.oneIn(12));
        if (event.id() == HostEvent::FunctionCalled) event.answer(1, Value::ofBoolean(!choices_.oneIn(8)));
        callOut();
        if (event.id() != HostEvent::KeepGoing) return;
        if (++statements_ > mostStatements_) event.succeed(false);
        goesOn = event.succeeded();
    }

    std::optional<std::int32_t> showMessage(const OperatorMessage&) override {
        callOut();
        if (choices_.isSpent()) return std::nullopt;
        return static_cast<std::int32_t>(choices_.below(8));
    }

    InputAnswer askInput(const InputRequest& request) override {
        callOut();
        if (choices_.oneIn(8)) return {request.initialValue, InputAnswer::Ending::Unavailable};
        InputRules box(request, u"Host", locale_);
        if (choices_.oneIn(2)) box.change(box.typeable(choices_.text()));
        if (choices_.oneIn(4)) return {box.result(), InputAnswer::Ending::Cancelled};
        box.pressOk();
        return {box.result(), InputAnswer::Ending::Accepted};
    }

    void yield() override {
        if (++yields_ > 2 * mostStatements_) throw Enough{};
        callOut();
    }

    void CommandStart(std::int32_t programCounter) override {
        require(programCounter >= 0, "a statement that runs has an address");
        callOut();
    }
    void CommandComplete(std::int32_t, std::int32_t) override { callOut(); }
    void CommandError(std::int32_t, std::int32_t) override { callOut(); }
    void CurrentValueChanged(const clsData& item, const Value&) override {
        item.Identifier();
        callOut();
    }
    void trace(enumDebugOptions, std::u16string_view line) override {
        require(!line.empty(), "a trace line says something");
        callOut();
    }

private:
    void callOut() const {
        if (onCallOut) onCallOut();
    }

    void answer(Event& event, std::size_t position) {
        const EventArgument& argument = event.row().arguments[position];
        if (argument.type == ValueType::Object)
            writeResults(static_cast<clsDataSetParameters&>(event.argument(position).object()));
        else if (argument.byReference)
            event.answer(position, choices_.value(argument.type));
    }

    void writeResults(clsDataSetParameters& dataSet) {
        dataSet.TestResult = static_cast<enumTestResult>(choices_.below(6));
        dataSet.Force = choices_.single();
        const std::int32_t slot = choices_.longInteger();
        try {
            dataSet.AddDataSetVariable(slot, choices_.text());
        } catch (const automation_error& error) {
            require(error.number() == ErrorNumber::SubscriptOutOfRange, "a variable beyond the record is error 9");
        }
    }

    Choices& choices_;
    NumberLocale locale_;
    int mostStatements_;
    int statements_ = 0;
    int yields_ = 0;
};

/// Whether a call came to its end. The errors that scripts and hosts can cause are no findings; others are.
template <typename Call>
bool succeeds(Call&& call) {
    try {
        call();
        return true;
    } catch (const automation_error& error) {
        const ErrorNumber number = error.number();
        require(number != ErrorNumber::Internal && number != ErrorNumber::OutOfMemory, "an error has a cause outside");
        return false;
    }
}

}  // namespace corvane::fuzz
