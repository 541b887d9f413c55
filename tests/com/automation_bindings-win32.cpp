#include <initializer_list>

#include "host/com/com_variant.h"
#include "platform/utf8.h"
#include "tests/com/automation_events.h"

namespace corvane::testing {
namespace {

/// An object that is known by its IDispatch alone: members by name, arguments as variants.
class LateBound {
public:
    explicit LateBound(IDispatch& object) : object_(&object) {}

    Value get(std::u16string_view name, std::initializer_list<Value> arguments = {}) const {
        return answerOf(name, DISPATCH_PROPERTYGET, arguments);
    }
    void put(std::u16string_view name, std::initializer_list<Value> arguments) const {
        invoke(name, DISPATCH_PROPERTYPUT, arguments, nullptr);
    }
    Value call(std::u16string_view name, std::initializer_list<Value> arguments = {}) const {
        return answerOf(name, DISPATCH_METHOD, arguments);
    }
    /// A method that answers nothing.
    void perform(std::u16string_view name) const { invoke(name, DISPATCH_METHOD, {}, nullptr); }

    /// Calls a member with arguments that stand last to first.
    void invokeWith(std::u16string_view name, WORD flags, DISPPARAMS& parameters, VARIANT* result) const {
        EXCEPINFO exception{};
        UINT faultyArgument = 0;
        const HRESULT called = object_->Invoke(identifierOf(name), IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters,
                                               result, &exception, &faultyArgument);
        SysFreeString(exception.bstrHelpFile);
        SysFreeString(exception.bstrSource);
        const std::string description = toUtf8(taken(exception.bstrDescription));
        if (called == DISP_E_EXCEPTION) throw HostError(errorNumberOf(exception.scode), description);
        if (FAILED(called)) throw HostError(called, toUtf8(name) + " cannot be called");
    }

private:
    DISPID identifierOf(std::u16string_view name) const {
        std::u16string terminated(name);
        auto* member = reinterpret_cast<OLECHAR*>(terminated.data());
        DISPID id = DISPID_UNKNOWN;
        const HRESULT found = object_->GetIDsOfNames(IID_NULL, &member, 1, LOCALE_USER_DEFAULT, &id);
        if (FAILED(found)) throw HostError(found, toUtf8(name) + " is not known");
        return id;
    }

    void invoke(std::u16string_view name, WORD flags, std::initializer_list<Value> arguments, VARIANT* result) const {
        std::vector<OwnedVariant> owners(arguments.size());
        auto last = owners.rbegin();
        for (const Value& argument : arguments) setVariant(*(last++)->get(), argument);
        std::vector<VARIANTARG> passed;
        for (const OwnedVariant& owner : owners) passed.push_back(*owner.get());
        DISPID put = DISPID_PROPERTYPUT;
        const bool puts = flags == DISPATCH_PROPERTYPUT;
        DISPPARAMS parameters{passed.data(), puts ? &put : nullptr, static_cast<UINT>(passed.size()), puts ? 1U : 0U};
        invokeWith(name, flags, parameters, result);
    }
    Value answerOf(std::u16string_view name, WORD flags, std::initializer_list<Value> arguments) const {
        OwnedVariant result;
        invoke(name, flags, arguments, result.get());
        return valueOf(*result.get());
    }

    ComReference<IDispatch> object_;
};

Value text(std::u16string_view content) { return Value::ofText(content); }

class DataSetByName final : public DataSetAccess {
public:
    void read(IDispatch& object, clsDataSetParameters& record) override {
        const LateBound dataSet(object);
        forEachDataSetProperty([&](auto property) { assign(record.*property.field, dataSet.get(property.name)); });
        for (std::int32_t i = 0; i < clsDataSetParameters::variableCount; ++i)
            record.AddDataSetVariable(i, dataSet.get(u"DataSetVariable", {Value::ofLong(i)}).textView());
    }
    void write(const clsDataSetParameters& record, IDispatch& object) override {
        const LateBound dataSet(object);
        forEachDataSetProperty([&](auto property) { dataSet.put(property.name, {asValue(record.*property.field)}); });
        for (std::int32_t i = 0; i < clsDataSetParameters::variableCount; ++i)
            dataSet.put(u"AddDataSetVariable", {Value::ofLong(i), text(record.DataSetVariable(i))});
    }

private:
    template <typename Field>
    static void assign(Field& field, const Value& value) {
        constexpr ValueType published = std::is_same_v<Field, float> ? ValueType::Single : ValueType::Long;
        if (value.type() != published) throw std::runtime_error("a property is of another type than published");
        if constexpr (std::is_same_v<Field, float>)
            field = value.single();
        else
            field = static_cast<Field>(value.longInteger());
    }
    static Value asValue(float number) { return Value::ofSingle(number); }
    static Value asValue(std::int32_t number) { return Value::ofLong(number); }
};

class LateBoundControl final : public LoggedControl {
public:
    void sinkTo(EventSink& sink) override { events_.sinkTo(sink); }
    void onlookers(std::int32_t count) override { events_.onlookers(count); }

    void TestMode(bool mode) override { control_.put(u"TestMode", {Value::ofBoolean(mode)}); }
    void DebugMode(std::int32_t options) override { control_.put(u"DebugMode", {Value::ofLong(options)}); }
    std::int32_t ScriptFrom() override { return control_.get(u"ScriptFrom").longInteger(); }
    std::u16string ScriptFile() override { return std::u16string(control_.get(u"ScriptFile").textView()); }
    std::int32_t ScriptDB_UID() override { return control_.get(u"ScriptDB_UID").longInteger(); }
    std::int32_t ScriptDB_Version() override { return control_.get(u"ScriptDB_Version").longInteger(); }
    bool LoadScript_FromFile(std::u16string_view file) override {
        return control_.call(u"LoadScript_FromFile", {text(file)}).boolean();
    }
    bool LoadScript_FromScript(std::u16string_view script, std::u16string_view name, std::int32_t uid,
                               std::int32_t version) override {
        return control_
            .call(u"LoadScript_FromScript", {text(script), text(name), Value::ofLong(uid), Value::ofLong(version)})
            .boolean();
    }
    bool RunScript() override { return control_.call(u"RunScript").boolean(); }
    void FinishLoopFlag() override { control_.perform(u"FinishLoopFlag"); }
    std::u16string GetEnvironmentVariable(std::u16string_view name) override {
        return std::u16string(control_.call(u"GetEnvironmentVariable", {text(name)}).textView());
    }
    std::u16string GetConstant(std::u16string_view name) override {
        return std::u16string(control_.call(u"GetConstant", {text(name)}).textView());
    }
    Value GetMemoryValue(std::u16string_view name) override { return control_.call(u"GetMemoryValue", {text(name)}); }
    std::int32_t GetEditable() override {
        // As scripting languages pass their variables.
        OwnedVariant rows;
        OwnedVariant count;
        std::array<VARIANTARG, 2> arguments;
        for (VARIANTARG& argument : arguments) V_VT(&argument) = VT_VARIANT | VT_BYREF;
        V_VARIANTREF(&arguments[1]) = rows.get();
        V_VARIANTREF(&arguments[0]) = count.get();
        DISPPARAMS parameters{arguments.data(), nullptr, 2, 0};
        control_.invokeWith(u"GetEditable", DISPATCH_METHOD, parameters, nullptr);
        const std::int32_t editable = V_VT(count.get()) == VT_EMPTY ? 0 : V_I4(count.get());
        EXPECT_EQ((V_VT(rows.get()) & VT_ARRAY) != 0, editable > 0);
        return editable;
    }
    bool EditDataVariable(std::int32_t index, float value) override {
        return control_.call(u"EditDataVariable", {Value::ofLong(index), Value::ofSingle(value)}).boolean();
    }
    std::u16string FunctionNameFromType(std::int32_t type) override {
        return std::u16string(control_.call(u"FunctionNameFromType", {Value::ofLong(type)}).textView());
    }

private:
    DataSetByName dataSets_;
    ComReference<IDispatch> object_ = create<IDispatch>(CLSID_clsScriptControl, IID_IDispatch);
    LateBound control_{*object_.get()};
    AutomationEvents events_{*object_.get(), dataSets_};
};

}  // namespace

std::vector<Binding> automationBindings() {
    return {{"EarlyBound", makeEarlyBoundControl}, {"LateBound", std::make_unique<LateBoundControl>}};
}

}  // namespace corvane::testing
