// The cases' control as automation hosts reach it, the way that the case says. Nobody answers its dialogs, and what
// only the engine's own host can see stays out of the log.

#include "host/com/com_variant.h"
#include "tests/com/automation_events.h"
#include "tests/com/logged_control.h"
#include "tests/model/model_control.h"

namespace corvane::testing {
namespace {

template <typename Body>
auto asCall(Body&& body) {
    try {
        return body();
    } catch (const HostError& error) {
        throw CallFailed{error.number()};
    }
}

void check(HRESULT result) {
    if (FAILED(result)) throw CallFailed{errorNumberOf(result)};
}

std::unique_ptr<LoggedControl> controlOf(const CaseSettings& settings) {
    static const std::vector<Binding> bindings = automationBindings();  // the latest last
    return (settings.lateBound ? bindings.back() : bindings.front()).make();
}

std::string writtenFunction(_clsProgramFunction& function) {
    ::enumCommandType kind{};
    check(function.get_FunctionType(&kind));
    BSTR name = nullptr;
    check(function.get_FunctionName(&name));
    std::string line = "  " + std::to_string(static_cast<int>(kind)) + " " + written(taken(name));
    LONG count = 0;
    check(function.get_ParamCount(&count));
    for (LONG i = 0; i < count; ++i) {
        BSTR parameter = nullptr;
        check(function.get_Param(&i, &parameter));
        line += " " + written(taken(parameter));
    }
    return line;
}

class ComponentControl final : public ModelControl {
public:
    ComponentControl(const CaseSettings& settings, EventSink& sink, CaseOperator& caseOperator)
        : operator_(caseOperator), control_(controlOf(settings)) {
        control_->sinkTo(sink);
        control_->DebugMode(0);
    }

    bool load(std::u16string_view text, std::u16string_view name, std::int32_t uid, std::int32_t version) override {
        return asCall([&] { return control_->LoadScript_FromScript(text, name, uid, version); });
    }
    bool run() override {
        return asCall([&] { return control_->RunScript(); });
    }
    void onlookers(std::int32_t count) override { control_->onlookers(count); }
    void finishLoopFlag() override {
        asCall([&] { control_->FinishLoopFlag(); });
    }
    bool edit(std::int32_t index, float value) override {
        return asCall([&] { return control_->EditDataVariable(index, value); });
    }
    std::u16string environmentVariable(std::u16string_view name) override {
        return control_->GetEnvironmentVariable(name);
    }
    std::u16string constant(std::u16string_view name) override { return control_->GetConstant(name); }
    Value memoryValue(std::u16string_view name) override { return control_->GetMemoryValue(name); }
    std::int32_t scriptFrom() override { return control_->ScriptFrom(); }
    std::u16string scriptFile() override { return control_->ScriptFile(); }
    std::int32_t uid() override { return control_->ScriptDB_UID(); }
    std::int32_t version() override { return control_->ScriptDB_Version(); }
    std::int32_t editableCount() override { return control_->GetEditable(); }
    std::u16string kindName(std::int32_t kind) override { return control_->FunctionNameFromType(kind); }
    void logMemory() override { throw CallFailed{errorNumberOf(E_NOTIMPL)}; }

    void list(std::int32_t times, std::u16string_view script) override {
        const ComReference<_clsProgramFunctionList> functions = newFunctionList();
        HostText text(script);
        HostText name(u"");
        LONG number = 1;
        VARIANT_BOOL result = VARIANT_FALSE;
        check(functions->LoadProgramScript_FromDatabase(text.address(), name.address(), &number, &number, &result));
        operator_.log(result == VARIANT_TRUE ? "= b:1" : "= b:0");
        for (std::int32_t i = 0; i < times; ++i) {
            ComReference<_Collection> listing;
            const HRESULT created = functions->CreateFunctionList(listing.receive(), &result);
            operator_.log(FAILED(created)          ? "! " + std::to_string(errorNumberOf(created))
                          : result == VARIANT_TRUE ? "= b:1"
                                                   : "= b:0");
        }
        logListing(*functions.get());
    }

private:
    void logListing(_clsProgramFunctionList& functions) {
        ComReference<_Collection> listing;
        check(functions.get_FunctionList(listing.receive()));
        LONG count = 0;
        check(listing->get_Count(&count));
        for (LONG i = 1; i <= count; ++i) {
            VARIANT position;
            VariantInit(&position);
            V_VT(&position) = VT_I4;
            V_I4(&position) = i;
            OwnedVariant item;
            check(listing->get_Item(position, item.get()));
            operator_.log(
                writtenFunction(*queryFor<_clsProgramFunction>(V_DISPATCH(item.get()), IID__clsProgramFunction).get()));
        }
    }

    CaseOperator& operator_;
    std::unique_ptr<LoggedControl> control_;
};

}  // namespace

std::unique_ptr<ModelControl> makeModelControl(const CaseSettings& settings, EventSink& sink,
                                               CaseOperator& caseOperator) {
    return std::make_unique<ComponentControl>(settings, sink, caseOperator);
}

}  // namespace corvane::testing
