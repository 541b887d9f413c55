#include "platform/utf8.h"
#include "tests/com/automation_events.h"

namespace corvane::testing {
namespace {

void check(HRESULT result) {
    if (SUCCEEDED(result)) return;
    ComReference<IErrorInfo> information;
    BSTR description = nullptr;
    if (GetErrorInfo(0, information.receive()) == S_OK) information->GetDescription(&description);
    throw HostError(errorNumberOf(result), toUtf8(taken(description)));
}

/// The result of a call that hands out a Boolean through its last pointer, and the like.
template <typename Result, typename Call>
Result answerOf(Call&& call) {
    Result result{};
    check(call(&result));
    return result;
}

class DataSetVtable final : public DataSetAccess {
public:
    void read(IDispatch& object, clsDataSetParameters& record) override {
        const auto face = queryFor<_clsDataSetParameters>(&object, IID__clsDataSetParameters);
        forEachDataSetProperty([&](auto property) {
            typename decltype(property)::Published value{};
            check((face.get()->*property.get)(&value));
            auto& field = record.*property.field;
            field = static_cast<std::remove_reference_t<decltype(field)>>(value);
        });
        for (LONG i = 0; i < clsDataSetParameters::variableCount; ++i)
            record.AddDataSetVariable(
                i, taken(answerOf<BSTR>([&](BSTR* text) { return face->get_DataSetVariable(&i, text); })));
    }
    void write(const clsDataSetParameters& record, IDispatch& object) override {
        const auto face = queryFor<_clsDataSetParameters>(&object, IID__clsDataSetParameters);
        forEachDataSetProperty([&](auto property) {
            auto value = static_cast<typename decltype(property)::Published>(record.*property.field);
            check((face.get()->*property.put)(&value));
        });
        for (LONG i = 0; i < clsDataSetParameters::variableCount; ++i) {
            HostText text(record.DataSetVariable(i));
            check(face->put_AddDataSetVariable(&i, text.address()));
        }
    }
};

class EarlyBoundControl final : public LoggedControl {
public:
    void sinkTo(EventSink& sink) override { events_.sinkTo(sink); }
    void onlookers(std::int32_t count) override { events_.onlookers(count); }

    void TestMode(bool mode) override {
        VARIANT_BOOL value = variantBool(mode);
        check(control_->put_TestMode(&value));
    }
    void DebugMode(std::int32_t options) override {
        auto value = static_cast<::enumDebugOptions>(options);
        check(control_->put_DebugMode(&value));
    }
    std::int32_t ScriptFrom() override {
        return answerOf<::enumScriptSource>([&](auto* value) { return control_->get_ScriptFrom(value); });
    }
    std::u16string ScriptFile() override {
        return taken(answerOf<BSTR>([&](BSTR* value) { return control_->get_ScriptFile(value); }));
    }
    std::int32_t ScriptDB_UID() override {
        return answerOf<LONG>([&](LONG* value) { return control_->get_ScriptDB_UID(value); });
    }
    std::int32_t ScriptDB_Version() override {
        return answerOf<LONG>([&](LONG* value) { return control_->get_ScriptDB_Version(value); });
    }
    bool LoadScript_FromFile(std::u16string_view file) override {
        HostText name(file);
        return isTrue([&](VARIANT_BOOL* result) { return control_->LoadScript_FromFile(name.address(), result); });
    }
    bool LoadScript_FromScript(std::u16string_view text, std::u16string_view name, std::int32_t uid,
                               std::int32_t version) override {
        HostText script(text);
        HostText title(name);
        LONG identifier = uid;
        LONG number = version;
        return isTrue([&](VARIANT_BOOL* result) {
            return control_->LoadScript_FromScript(script.address(), title.address(), &identifier, &number, result);
        });
    }
    bool RunScript() override {
        return isTrue([&](VARIANT_BOOL* result) { return control_->RunScript(result); });
    }
    void FinishLoopFlag() override { check(control_->FinishLoopFlag()); }
    std::u16string GetEnvironmentVariable(std::u16string_view name) override {
        HostText text(name);
        return taken(
            answerOf<BSTR>([&](BSTR* value) { return control_->GetEnvironmentVariable(text.address(), value); }));
    }
    std::u16string GetConstant(std::u16string_view name) override {
        HostText text(name);
        return taken(answerOf<BSTR>([&](BSTR* value) { return control_->GetConstant(text.address(), value); }));
    }
    Value GetMemoryValue(std::u16string_view name) override {
        HostText text(name);
        OwnedVariant value;
        check(control_->GetMemoryValue(text.address(), value.get()));
        return valueOf(*value.get());
    }
    std::int32_t GetEditable() override {
        SAFEARRAY* rows = nullptr;
        LONG count = -1;
        check(control_->GetEditable(&rows, &count));
        if (rows != nullptr) SafeArrayDestroy(rows);
        EXPECT_EQ(rows != nullptr, count > 0);
        return count;
    }
    bool EditDataVariable(std::int32_t index, float value) override {
        LONG position = index;
        return isTrue([&](VARIANT_BOOL* result) { return control_->EditDataVariable(&position, &value, result); });
    }
    std::u16string FunctionNameFromType(std::int32_t type) override {
        auto kind = static_cast<::enumCommandType>(type);
        OwnedVariant value;
        check(control_->FunctionNameFromType(&kind, value.get()));
        return std::u16string(valueOf(*value.get()).textView());
    }

private:
    template <typename Call>
    static bool isTrue(Call&& call) {
        return answerOf<VARIANT_BOOL>(call) == VARIANT_TRUE;
    }

    DataSetVtable dataSets_;
    ComReference<_clsScriptControl> control_ = newControl();
    AutomationEvents events_{*control_.get(), dataSets_};
};

}  // namespace

std::unique_ptr<LoggedControl> makeEarlyBoundControl() { return std::make_unique<EarlyBoundControl>(); }

}  // namespace corvane::testing
