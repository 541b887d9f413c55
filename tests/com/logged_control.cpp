#include "tests/com/logged_control.h"

#include "host/clsScriptControl.h"
#include "platform/automation_error.h"

namespace corvane::testing {
namespace {

template <typename Body>
auto asHostCall(Body&& body) {
    try {
        return body();
    } catch (const automation_error& error) {
        throw HostError(static_cast<std::int32_t>(error.number()), error.what());
    }
}

class EngineControl final : public LoggedControl {
public:
    explicit EngineControl(const NumberLocale& locale) : locale_(locale), control_({nobody_, pump_, &locale_}) {}

    void sinkTo(EventSink& sink) override { control_.setEventSink(&sink); }

    void TestMode(bool mode) override { control_.setTestMode(mode); }
    void DebugMode(std::int32_t options) override { control_.setDebugMode(options); }
    std::int32_t ScriptFrom() override { return control_.ScriptFrom(); }
    std::u16string ScriptFile() override { return control_.ScriptFile(); }
    std::int32_t ScriptDB_UID() override { return control_.ScriptDB_UID(); }
    std::int32_t ScriptDB_Version() override { return control_.ScriptDB_Version(); }
    bool LoadScript_FromFile(std::u16string_view file) override {
        return asHostCall([&] { return control_.LoadScript_FromFile(file); });
    }
    bool LoadScript_FromScript(std::u16string_view text, std::u16string_view name, std::int32_t uid,
                               std::int32_t version) override {
        return asHostCall([&] { return control_.LoadScript_FromScript(text, name, uid, version); });
    }
    bool RunScript() override {
        return asHostCall([&] { return control_.RunScript(); });
    }
    void FinishLoopFlag() override {
        asHostCall([&] { control_.FinishLoopFlag(); });
    }
    std::u16string GetEnvironmentVariable(std::u16string_view name) override {
        return control_.GetEnvironmentVariable(name);
    }
    std::u16string GetConstant(std::u16string_view name) override { return control_.GetConstant(name); }
    Value GetMemoryValue(std::u16string_view name) override { return control_.GetMemoryValue(name); }
    std::int32_t GetEditable() override {
        StringTable table;
        std::int32_t count = 0;
        control_.GetEditable(table, count);
        return count;
    }
    bool EditDataVariable(std::int32_t index, float value) override {
        return asHostCall([&] { return control_.EditDataVariable(index, value); });
    }
    std::u16string FunctionNameFromType(std::int32_t type) override {
        return std::u16string(control_.FunctionNameFromType(type));
    }

private:
    NumberLocale locale_;
    NoOperator nobody_;
    SystemMessagePump pump_;
    clsScriptControl control_;
};

}  // namespace

std::unique_ptr<LoggedControl> makeEngineControl(const NumberLocale& locale) {
    return std::make_unique<EngineControl>(locale);
}

}  // namespace corvane::testing
