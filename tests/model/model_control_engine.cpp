// The cases' control without automation: an engine of its own whose surroundings are all logged.

#include "host/clsProgramFunctionList.h"
#include "host/clsScriptControl.h"
#include "platform/automation_error.h"
#include "tests/model/model_control.h"
#include "ui/input_rules.h"

namespace corvane::testing {
namespace {

template <typename Body>
auto asCall(Body&& body) {
    try {
        return body();
    } catch (const automation_error& error) {
        throw CallFailed{static_cast<std::int32_t>(error.number())};
    }
}

std::string writtenNumbers(std::initializer_list<std::int32_t> numbers) {
    std::string line;
    for (const std::int32_t number : numbers) line += " " + std::to_string(number);
    return line;
}

class EngineControl final : public ModelControl, OperatorDialogs, MessagePump, EngineListener, TraceSink {
public:
    EngineControl(const CaseSettings& settings, EventSink& sink, CaseOperator& caseOperator)
        : settings_(settings), operator_(caseOperator), control_(services(), options()) {
        control_.setEventSink(&sink);
        if (settings.traced) control_.engine().setTraceSink(this);
        if (settings.listened) control_.engine().setListener(this);
        control_.setDebugMode(settings.traceParameters ? doParsing : 0);
    }

    bool load(std::u16string_view text, std::u16string_view name, std::int32_t uid, std::int32_t version) override {
        return asCall([&] { return control_.LoadScript_FromScript(text, name, uid, version); });
    }
    bool run() override {
        return asCall([&] { return control_.RunScript(); });
    }
    void finishLoopFlag() override {
        asCall([&] { control_.FinishLoopFlag(); });
    }
    bool edit(std::int32_t index, float value) override {
        return asCall([&] { return control_.EditDataVariable(index, value); });
    }
    std::u16string environmentVariable(std::u16string_view name) override {
        return control_.GetEnvironmentVariable(name);
    }
    std::u16string constant(std::u16string_view name) override { return control_.GetConstant(name); }
    Value memoryValue(std::u16string_view name) override { return control_.GetMemoryValue(name); }
    std::int32_t scriptFrom() override { return control_.ScriptFrom(); }
    std::u16string scriptFile() override { return control_.ScriptFile(); }
    std::int32_t uid() override { return control_.ScriptDB_UID(); }
    std::int32_t version() override { return control_.ScriptDB_Version(); }
    std::int32_t editableCount() override {
        StringTable table;
        std::int32_t count = -1;
        control_.GetEditable(table, count);
        return count;
    }
    std::u16string kindName(std::int32_t kind) override { return std::u16string(control_.FunctionNameFromType(kind)); }

    void onlookers(std::int32_t) override {}

    void logMemory() override {
        clsDataList& memory = control_.engine().DataMemory();
        operator_.log("= " + std::to_string(memory.Count()));
        for (std::int32_t i = 0; i < memory.Count(); ++i) {
            const clsData item = memory.Item(i);
            operator_.log("  " + written(item.Identifier()) + writtenNumbers({item.ParameterType()}) + " " +
                          written(item.InitialValue()) + " " + written(item.CurrentValue()));
        }
    }

    void list(std::int32_t times, std::u16string_view script) override {
        clsProgramFunctionList functions(services());
        operator_.log(functions.LoadProgramScript_FromDatabase(script, u"", 1, 1) ? "= b:1" : "= b:0");
        for (std::int32_t i = 0; i < times; ++i) {
            try {
                Reference<FunctionCollection> listing;
                operator_.log(asCall([&] { return functions.CreateFunctionList(listing); }) ? "= b:1" : "= b:0");
            } catch (const CallFailed& failure) {
                operator_.log("! " + std::to_string(failure.number));
            }
        }
        const FunctionCollection& listing = *functions.FunctionList();
        for (std::int32_t i = 1; i <= listing.Count(); ++i) {
            const clsProgramFunction& function = listing.Item(i);
            std::string line = " " + writtenNumbers({function.FunctionType}) + " " + written(function.FunctionName);
            for (std::int32_t p = 0; p < function.ParamCount(); ++p) line += " " + written(function.Param(p));
            operator_.log(line);
        }
    }

private:
    EngineServices services() { return {*this, *this, &locale_}; }
    EngineOptions options() const { return {.designedMemberAccess = settings_.designed}; }

    std::optional<std::int32_t> showMessage(const OperatorMessage& message) override {
        if (settings_.unattended) return std::nullopt;
        operator_.log(" m " + written(message.caption.value_or(u"")) + writtenNumbers({message.style}) + " " +
                      written(message.helpFile) + " " + written(message.text));
        return operator_.nextButton();
    }

    InputAnswer askInput(const InputRequest& request) override {
        if (settings_.unattended) return {request.initialValue, InputAnswer::Ending::Unavailable};
        operator_.log(" i " + std::to_string(static_cast<std::int32_t>(request.kind)) + " " + written(request.title) +
                      " " + written(request.question) + " " + writtenSingle(request.minimum) + " " +
                      writtenSingle(request.maximum) + writtenNumbers({request.allowZero ? 1 : 0}) + " " +
                      written(request.initialValue));
        InputRules box(request, u"", locale_);
        std::unique_ptr<std::u16string> entry;
        const bool accepted = operator_.nextInput(entry);
        if (entry) box.change(box.typeable(*entry));
        if (accepted) box.pressOk();
        return {box.result(), accepted ? InputAnswer::Ending::Accepted : InputAnswer::Ending::Cancelled};
    }

    void yield() override { operator_.pumped(); }

    void CommandStart(std::int32_t programCounter) override { notice("CommandStart", {programCounter}); }
    void CommandComplete(std::int32_t CommandNumber, std::int32_t CommandStatus) override {
        notice("CommandComplete", {CommandNumber, CommandStatus});
    }
    void CommandError(std::int32_t programCounter, std::int32_t resultCode) override {
        notice("CommandError", {programCounter, resultCode});
    }
    void ScriptComplete(bool result) override { notice("ScriptComplete", {result ? 1 : 0}); }
    void CurrentValueChanged(const clsData&, const Value& value) override {
        operator_.log(" l CurrentValueChanged " + written(value));
    }
    void notice(const std::string& name, std::initializer_list<std::int32_t> numbers) {
        operator_.log(" l " + name + writtenNumbers(numbers));
    }

    void trace(enumDebugOptions, std::u16string_view line) override { operator_.log(" t " + written(line)); }

    CaseSettings settings_;
    CaseOperator& operator_;
    NumberLocale locale_ = settings_.comma ? NumberLocale::commaDecimal() : NumberLocale::pointDecimal();
    clsScriptControl control_;
};

}  // namespace

std::unique_ptr<ModelControl> makeModelControl(const CaseSettings& settings, EventSink& sink,
                                               CaseOperator& caseOperator) {
    return std::make_unique<EngineControl>(settings, sink, caseOperator);
}

}  // namespace corvane::testing
