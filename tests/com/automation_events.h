#pragma once

#include <gtest/gtest.h>

#include "tests/com/component.h"
#include "tests/com/dispatched_event.h"
#include "tests/com/logged_control.h"

namespace corvane::testing {

/// Hands the events that a control dispatches to an EventSink. A call that is not as published fails the test.
class AutomationEvents {
public:
    AutomationEvents(IUnknown& control, DataSetAccess& dataSets)
        : dataSets_(dataSets),
          sink_([this](DISPID event, DISPPARAMS& arguments) { return dispatched(event, arguments); }),
          control_(&control),
          advised_(control, sink_) {}

    void sinkTo(EventSink& sink) { receiver_ = &sink; }

    void onlookers(std::int32_t count) {
        onlookers_.resize(std::min<std::size_t>(onlookers_.size(), count));
        while (onlookers_.size() < static_cast<std::size_t>(count))
            onlookers_.push_back(std::make_unique<Advised>(*control_, onlooker_));
    }

private:
    HRESULT dispatched(DISPID event, DISPPARAMS& arguments) {
        try {
            DispatchedEvent received(event, arguments, dataSets_);
            receiver_->raise(received.event());
            received.giveBack();
            return S_OK;
        } catch (const std::exception& error) {
            ADD_FAILURE() << "event " << event << ": " << error.what();
            return E_FAIL;
        }
    }

    DataSetAccess& dataSets_;
    EventSink* receiver_ = nullptr;
    Sink sink_;
    Sink onlooker_{[](DISPID, DISPPARAMS&) { return S_OK; }};
    IUnknown* control_;
    Advised advised_;
    std::vector<std::unique_ptr<Advised>> onlookers_;
};

inline Value valueOf(const VARIANT& variant) {
    switch (V_VT(&variant)) {
        case VT_I2: return Value::ofInteger(V_I2(&variant));
        case VT_I4: return Value::ofLong(V_I4(&variant));
        case VT_R4: return Value::ofSingle(V_R4(&variant));
        case VT_R8: return Value::ofDouble(V_R8(&variant));
        case VT_BOOL: return Value::ofBoolean(V_BOOL(&variant) != VARIANT_FALSE);
        case VT_BSTR: return Value::ofText(viewOf(V_BSTR(&variant)));
        default: throw std::runtime_error("a variant of type " + std::to_string(V_VT(&variant)));
    }
}

/// The number of a failed call's automation error.
inline std::int32_t errorNumberOf(HRESULT result) {
    constexpr HRESULT automationErrors = static_cast<HRESULT>(0x800A0000);
    return (result & static_cast<HRESULT>(0xFFFF0000)) == automationErrors ? result & 0xFFFF : result;
}

/// One property of a data set: by name, by its places in the vtable, and in the record.
template <typename PublishedType, typename Get, typename Put, typename Field>
struct DataSetProperty {
    using Published = PublishedType;
    const char16_t* name;
    Get get;
    Put put;
    Field field;
};

template <typename Use>
void forEachDataSetProperty(Use&& use) {
    const auto with = [&](auto published, const char16_t* name, auto get, auto put, auto field) {
        use(DataSetProperty<decltype(published), decltype(get), decltype(put), decltype(field)>{name, get, put, field});
    };
    using Automation = _clsDataSetParameters;
    using Record = clsDataSetParameters;
    with(float{}, u"HelixAngle", &Automation::get_HelixAngle, &Automation::put_HelixAngle, &Record::HelixAngle);
    with(float{}, u"TipSpeed", &Automation::get_TipSpeed, &Automation::put_TipSpeed, &Record::TipSpeed);
    with(float{}, u"Height", &Automation::get_Height, &Automation::put_Height, &Record::Height);
    with(float{}, u"Force", &Automation::get_Force, &Automation::put_Force, &Record::Force);
    with(float{}, u"SampleDelta", &Automation::get_SampleDelta, &Automation::put_SampleDelta, &Record::SampleDelta);
    with(::enumSampleMode{}, u"SampleType", &Automation::get_SampleType, &Automation::put_SampleType,
         &Record::SampleType);
    with(::enumDataSetType{}, u"DataSetType", &Automation::get_DataSetType, &Automation::put_DataSetType,
         &Record::DataSetType);
    with(LONG{}, u"Direction", &Automation::get_Direction, &Automation::put_Direction, &Record::Direction);
    with(::enumLevellingFrom{}, u"LevellingFrom", &Automation::get_LevellingFrom, &Automation::put_LevellingFrom,
         &Record::LevellingFrom);
    with(::enumLevellingType{}, u"LevellingType", &Automation::get_LevellingType, &Automation::put_LevellingType,
         &Record::LevellingType);
    with(float{}, u"LevellingTrigger", &Automation::get_LevellingTrigger, &Automation::put_LevellingTrigger,
         &Record::LevellingTrigger);
    with(float{}, u"LevellingHix", &Automation::get_LevellingHix, &Automation::put_LevellingHix, &Record::LevellingHix);
    with(float{}, u"LevellingTip", &Automation::get_LevellingTip, &Automation::put_LevellingTip, &Record::LevellingTip);
    with(::enumTestResult{}, u"TestResult", &Automation::get_TestResult, &Automation::put_TestResult,
         &Record::TestResult);
}

}  // namespace corvane::testing
