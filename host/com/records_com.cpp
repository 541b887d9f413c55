#include "host/com/records_com.h"

#include "host/clsScriptParamList.h"
#include "host/com/automation_object.h"

namespace corvane {
namespace {

class DataSetParametersObject final : public AutomationObject<_clsDataSetParameters> {
public:
    explicit DataSetParametersObject(clsDataSetParameters& record)
        : AutomationObject(publishedDataSetParameters), record_(&record) {}

    HRESULT STDMETHODCALLTYPE get_HelixAngle(float* tValue) override { return get(&Record::HelixAngle, tValue); }
    HRESULT STDMETHODCALLTYPE put_HelixAngle(float* tNewValue) override { return put(&Record::HelixAngle, tNewValue); }
    HRESULT STDMETHODCALLTYPE get_TipSpeed(float* tValue) override { return get(&Record::TipSpeed, tValue); }
    HRESULT STDMETHODCALLTYPE put_TipSpeed(float* tNewValue) override { return put(&Record::TipSpeed, tNewValue); }
    HRESULT STDMETHODCALLTYPE get_Height(float* tValue) override { return get(&Record::Height, tValue); }
    HRESULT STDMETHODCALLTYPE put_Height(float* tNewValue) override { return put(&Record::Height, tNewValue); }
    HRESULT STDMETHODCALLTYPE get_Force(float* tValue) override { return get(&Record::Force, tValue); }
    HRESULT STDMETHODCALLTYPE put_Force(float* tNewValue) override { return put(&Record::Force, tNewValue); }
    HRESULT STDMETHODCALLTYPE get_SampleDelta(float* tValue) override { return get(&Record::SampleDelta, tValue); }
    HRESULT STDMETHODCALLTYPE put_SampleDelta(float* tNewValue) override {
        return put(&Record::SampleDelta, tNewValue);
    }
    HRESULT STDMETHODCALLTYPE get_SampleType(::enumSampleMode* tValue) override {
        return get(&Record::SampleType, tValue);
    }
    HRESULT STDMETHODCALLTYPE put_SampleType(::enumSampleMode* tNewValue) override {
        return put(&Record::SampleType, tNewValue);
    }
    HRESULT STDMETHODCALLTYPE get_DataSetType(::enumDataSetType* tValue) override {
        return get(&Record::DataSetType, tValue);
    }
    HRESULT STDMETHODCALLTYPE put_DataSetType(::enumDataSetType* tNewValue) override {
        return put(&Record::DataSetType, tNewValue);
    }
    HRESULT STDMETHODCALLTYPE put_AddDataSetVariable(LONG* tIndex, BSTR* tNewValue) override {
        return call([&] { record_->AddDataSetVariable(*tIndex, viewOf(*tNewValue)); }, tIndex, tNewValue);
    }
    HRESULT STDMETHODCALLTYPE get_DataSetVariable(LONG* tIndex, BSTR* tValue) override {
        if (tValue != nullptr) *tValue = nullptr;
        return call([&] { *tValue = newText(record_->DataSetVariable(*tIndex)); }, tIndex, tValue);
    }
    HRESULT STDMETHODCALLTYPE get_TestResult(::enumTestResult* tValue) override {
        return get(&Record::TestResult, tValue);
    }
    HRESULT STDMETHODCALLTYPE put_TestResult(::enumTestResult* tNewValue) override {
        return put(&Record::TestResult, tNewValue);
    }
    HRESULT STDMETHODCALLTYPE get_Direction(LONG* tValue) override { return get(&Record::Direction, tValue); }
    HRESULT STDMETHODCALLTYPE put_Direction(LONG* tNewValue) override { return put(&Record::Direction, tNewValue); }
    HRESULT STDMETHODCALLTYPE get_LevellingFrom(::enumLevellingFrom* tValue) override {
        return get(&Record::LevellingFrom, tValue);
    }
    HRESULT STDMETHODCALLTYPE put_LevellingFrom(::enumLevellingFrom* tNewValue) override {
        return put(&Record::LevellingFrom, tNewValue);
    }
    HRESULT STDMETHODCALLTYPE get_LevellingType(::enumLevellingType* tValue) override {
        return get(&Record::LevellingType, tValue);
    }
    HRESULT STDMETHODCALLTYPE put_LevellingType(::enumLevellingType* tNewValue) override {
        return put(&Record::LevellingType, tNewValue);
    }
    HRESULT STDMETHODCALLTYPE get_LevellingTrigger(float* tValue) override {
        return get(&Record::LevellingTrigger, tValue);
    }
    HRESULT STDMETHODCALLTYPE put_LevellingTrigger(float* tNewValue) override {
        return put(&Record::LevellingTrigger, tNewValue);
    }
    HRESULT STDMETHODCALLTYPE get_LevellingHix(float* tValue) override { return get(&Record::LevellingHix, tValue); }
    HRESULT STDMETHODCALLTYPE put_LevellingHix(float* tNewValue) override {
        return put(&Record::LevellingHix, tNewValue);
    }
    HRESULT STDMETHODCALLTYPE get_LevellingTip(float* tValue) override { return get(&Record::LevellingTip, tValue); }
    HRESULT STDMETHODCALLTYPE put_LevellingTip(float* tNewValue) override {
        return put(&Record::LevellingTip, tNewValue);
    }

private:
    using Record = clsDataSetParameters;

    // Stored and returned unchanged, values outside an enumeration included.
    template <typename Field, typename Published>
    HRESULT get(Field Record::*field, Published* value) {
        return call([&] { copyNumber(*value, (*record_).*field); }, value);
    }
    template <typename Field, typename Published>
    HRESULT put(Field Record::*field, const Published* value) {
        return call([&] { copyNumber((*record_).*field, *value); }, value);
    }

    const Reference<clsDataSetParameters> record_;
};

class ProgramFunctionObject final : public AutomationObject<_clsProgramFunction> {
public:
    explicit ProgramFunctionObject(clsProgramFunction& record)
        : AutomationObject(publishedProgramFunction), record_(&record) {}

    HRESULT STDMETHODCALLTYPE get_FunctionType(::enumCommandType* tValue) override {
        return call([&] { copyNumber(*tValue, record_->FunctionType); }, tValue);
    }
    HRESULT STDMETHODCALLTYPE put_FunctionType(::enumCommandType* tNewValue) override {
        return call([&] { copyNumber(record_->FunctionType, *tNewValue); }, tNewValue);
    }
    HRESULT STDMETHODCALLTYPE get_FunctionName(BSTR* tValue) override {
        if (tValue != nullptr) *tValue = nullptr;
        return call([&] { *tValue = newText(record_->FunctionName); }, tValue);
    }
    HRESULT STDMETHODCALLTYPE put_FunctionName(BSTR* tNewValue) override {
        return call([&] { record_->FunctionName = viewOf(*tNewValue); }, tNewValue);
    }
    HRESULT STDMETHODCALLTYPE AddParam(BSTR tParam) override {
        return call([&] { record_->AddParam(viewOf(tParam)); });
    }
    HRESULT STDMETHODCALLTYPE get_Param(LONG* tIndex, BSTR* tValue) override {
        if (tValue != nullptr) *tValue = nullptr;
        return call([&] { *tValue = newText(record_->Param(*tIndex)); }, tIndex, tValue);
    }
    HRESULT STDMETHODCALLTYPE get_ParamCount(LONG* tValue) override {
        return call([&] { *tValue = record_->ParamCount(); }, tValue);
    }
    HRESULT STDMETHODCALLTYPE DebugPrint(LONG* tIndex, VARIANT_BOOL* tPrintParams) override {
        return call([&] { record_->DebugPrint(*tIndex, *tPrintParams != 0); }, tIndex, tPrintParams);
    }

private:
    const Reference<clsProgramFunction> record_;
};

class ScriptParamListObject final : public AutomationObject<_clsScriptParamList> {
public:
    ScriptParamListObject() : AutomationObject(publishedScriptParamList) {}

    HRESULT STDMETHODCALLTYPE get_SingleValue(LONG* tIndex, float* tValue) override {
        return call([&] { *tValue = list_.SingleValue(*tIndex); }, tIndex, tValue);
    }
    HRESULT STDMETHODCALLTYPE put_SingleValue(LONG* tIndex, float* tNewValue) override {
        return call([&] { list_.setSingleValue(*tIndex, *tNewValue); }, tIndex, tNewValue);
    }
    HRESULT STDMETHODCALLTYPE get_StringValue(LONG* tIndex, BSTR* tValue) override {
        if (tValue != nullptr) *tValue = nullptr;
        return call([&] { *tValue = newText(list_.StringValue(*tIndex)); }, tIndex, tValue);
    }
    HRESULT STDMETHODCALLTYPE put_StringValue(LONG* tIndex, BSTR* tNewValue) override {
        return call([&] { list_.setStringValue(*tIndex, viewOf(*tNewValue)); }, tIndex, tNewValue);
    }
    HRESULT STDMETHODCALLTYPE get_BooleanValue(LONG* tIndex, VARIANT_BOOL* tValue) override {
        return call([&] { *tValue = variantBool(list_.BooleanValue(*tIndex)); }, tIndex, tValue);
    }
    HRESULT STDMETHODCALLTYPE put_BooleanValue(LONG* tIndex, VARIANT_BOOL* tNewValue) override {
        return call([&] { list_.setBooleanValue(*tIndex, *tNewValue != 0); }, tIndex, tNewValue);
    }

private:
    clsScriptParamList list_;
};

}  // namespace

ComReference<IDispatch> newDataSetFace(clsDataSetParameters& record) {
    return ComReference<IDispatch>(static_cast<_clsDataSetParameters*>(new DataSetParametersObject(record)));
}

ComReference<IDispatch> newProgramFunctionFace(clsProgramFunction& record) {
    return ComReference<IDispatch>(static_cast<_clsProgramFunction*>(new ProgramFunctionObject(record)));
}

ComReference<IUnknown> createDataSetParameters() {
    return ComReference<IUnknown>(newDataSetFace(*makeReference<clsDataSetParameters>()).get());
}

ComReference<IUnknown> createProgramFunction() {
    return ComReference<IUnknown>(newProgramFunctionFace(*makeReference<clsProgramFunction>()).get());
}

ComReference<IUnknown> createScriptParamList() {
    return ComReference<IUnknown>(static_cast<_clsScriptParamList*>(new ScriptParamListObject()));
}

}  // namespace corvane
