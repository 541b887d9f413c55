#pragma once

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/clsCommandList.h"
#include "platform/automation_error.h"
#include "platform/utf8.h"
#include "platform/value_rules.h"

/// Remembering fakes of everything that an engine reaches, and a fixture that puts an engine among them.
namespace corvane::testing {

/// A value as text that shows its type: i0 (Integer), l7 (Long), s1.5 (Single), d2 (Double), bTrue, "text", <object>.
inline std::string show(const Value& value) {
    const auto text = [&] { return toUtf8(toText(value, NumberLocale::pointDecimal()).view()); };
    switch (value.type()) {
        case ValueType::Integer: return "i" + text();
        case ValueType::Long: return "l" + text();
        case ValueType::Single: return "s" + text();
        case ValueType::Double: return "d" + text();
        case ValueType::Boolean: return "b" + text();
        case ValueType::Text: return "\"" + text() + "\"";
        case ValueType::Object: break;
    }
    return "<object>";
}

/// An event as one line: Name(argument, ...) with the arguments before tSucess, in the form of `show(Value)`.
inline std::string show(const Event& event) {
    std::string line(event.row().name);
    line += "(";
    for (std::size_t i = 0; i + 1 < event.count(); ++i) {
        if (i != 0) line += ", ";
        line += show(event.argument(i));
    }
    return line + ")";
}

/// An owner that keeps what it was told as lines, answers every event with success and lets runs go on; `onEvent` sees
/// each event after that and may answer otherwise, call back or throw.
class RecordingOwner final : public EngineOwner {
public:
    std::vector<std::string> lines;
    bool recordFunctionCalled = false;
    bool recordSteps = false;
    std::function<void(Event&)> onEvent;
    std::function<void(std::int32_t next, std::int32_t result)> onStep;

    void raise(Event& event) override {
        if (event.id() != HostEvent::FunctionCalled || recordFunctionCalled) lines.push_back(show(event));
        event.succeed();
        if (onEvent) onEvent(event);
    }
    void CommandComplete(std::int32_t CommandNumber, std::int32_t CommandStatus) override {
        if (recordSteps)
            lines.push_back("CommandComplete(" + std::to_string(CommandNumber) + ", " + std::to_string(CommandStatus) +
                            ")");
        if (onStep) onStep(CommandNumber, CommandStatus);
    }
};

/// Dialogs that keep what they were asked and give the answers laid ready. Once those are used up nobody is there.
class ScriptedDialogs final : public OperatorDialogs {
public:
    struct Message {
        std::string text;
        std::optional<std::string> caption;
        std::int32_t style;
        std::string helpFile;
    };
    struct Input {
        std::string initialValue;  ///< in the form of `show(Value)`
        InputKind kind;
        std::string question;
        float minimum;
        float maximum;
        bool allowZero;
        std::string title;
    };
    std::vector<Message> messages;
    std::vector<Input> inputs;
    std::deque<std::int32_t> messageAnswers;
    std::deque<InputAnswer> inputAnswers;

    std::optional<std::int32_t> showMessage(const OperatorMessage& message) override {
        std::optional<std::string> caption;
        if (message.caption) caption = toUtf8(*message.caption);
        messages.push_back({toUtf8(message.text), caption, message.style, toUtf8(message.helpFile)});
        if (messageAnswers.empty()) return std::nullopt;
        const std::int32_t answer = messageAnswers.front();
        messageAnswers.pop_front();
        return answer;
    }
    InputAnswer askInput(const InputRequest& request) override {
        inputs.push_back({show(request.initialValue), request.kind, toUtf8(request.question), request.minimum,
                          request.maximum, request.allowZero, toUtf8(request.title)});
        if (inputAnswers.empty()) return {request.initialValue, InputAnswer::Ending::Unavailable};
        InputAnswer answer = inputAnswers.front();
        inputAnswers.pop_front();
        if (answer.ending != InputAnswer::Ending::Accepted) answer.value = request.initialValue;
        return answer;
    }
};

class CountingPump final : public MessagePump {
public:
    int yields = 0;
    std::function<void()> onYield;
    void yield() override {
        ++yields;
        if (onYield) onYield();
    }
};

/// Keeps the lines with their category: "1 File Line: 0:   Blank".
class RecordingTrace final : public TraceSink {
public:
    std::vector<std::string> lines;
    void trace(enumDebugOptions category, std::u16string_view line) override {
        lines.push_back(std::to_string(category) + " " + toUtf8(line));
    }
};

/// Keeps the engine's notifications as lines.
class RecordingListener final : public EngineListener {
public:
    std::vector<std::string> lines;
    void CommandStart(std::int32_t programCounter) override {
        lines.push_back("CommandStart(" + std::to_string(programCounter) + ")");
    }
    void CommandComplete(std::int32_t CommandNumber, std::int32_t CommandStatus) override {
        lines.push_back("CommandComplete(" + std::to_string(CommandNumber) + ", " + std::to_string(CommandStatus) +
                        ")");
    }
    void CommandError(std::int32_t programCounter, std::int32_t resultCode) override {
        lines.push_back("CommandError(" + std::to_string(programCounter) + ", " + std::to_string(resultCode) + ")");
    }
    void ScriptComplete(bool result) override {
        lines.push_back(std::string("ScriptComplete(") + (result ? "True" : "False") + ")");
    }
    void CurrentValueChanged(const clsData& item, const Value& value) override {
        lines.push_back("CurrentValueChanged(" + toUtf8(item.Identifier()) + ", " + show(value) + ")");
    }
};

/// An engine among fakes, under a point-decimal locale unless a test says otherwise before `load`.
class EngineTest : public ::testing::Test {
protected:
    NumberLocale numbers = NumberLocale::pointDecimal();
    RecordingOwner owner;
    ScriptedDialogs dialogs;
    CountingPump pump;
    EngineServices services{dialogs, pump, &numbers};
    clsCommandList engine{owner, services};

    bool load(std::u16string_view script) { return engine.CreateCommandList(script); }

    /// Loads and runs; the script must be accepted.
    bool run(std::u16string_view script) {
        EXPECT_TRUE(load(script));
        return engine.ExecuteList();
    }

    /// The item of that name, which must exist.
    clsData item(std::u16string_view name) {
        std::int32_t position = 0;
        EXPECT_TRUE(engine.DataMemory().FindItem(name, position)) << toUtf8(name);
        return engine.DataMemory().Item(position);
    }
    std::string current(std::u16string_view name) { return show(item(name).CurrentValue()); }
    std::string initial(std::u16string_view name) { return show(item(name).InitialValue()); }

    void TearDown() override { setDebugOptions(0); }
};

/// The number of the automation error that `action` fails with; 0 when it does not fail.
template <typename Action>
int errorOf(Action&& action) {
    try {
        action();
    } catch (const automation_error& error) {
        return static_cast<int>(error.number());
    }
    return 0;
}

}  // namespace corvane::testing
