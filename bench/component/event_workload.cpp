#include "bench/component/event_workload.h"

namespace corvane::bench {
namespace {

std::vector<Value> samplesFor(const EventRow& row) {
    std::vector<Value> values;
    for (std::size_t i = 0; i + 1 < row.argumentCount; ++i) {
        switch (row.arguments[i].type) {
            case ValueType::Text: values.push_back(Value::ofText(u"3,6,9,12")); break;
            case ValueType::Single: values.push_back(Value::ofSingle(static_cast<float>(i) + 0.5F)); break;
            case ValueType::Boolean: values.push_back(Value::ofBoolean(i % 2 == 0)); break;
            default: values.push_back(Value::ofLong(static_cast<std::int32_t>(i) + 100)); break;
        }
    }
    return values;
}

bool holds(const VARIANTARG& argument, const Value& value) {
    switch (V_VT(&argument)) {
        case VT_BYREF | VT_BSTR: return viewOf(*V_BSTRREF(&argument)) == value.textView();
        case VT_BYREF | VT_R4: return *V_R4REF(&argument) == value.single();
        case VT_BYREF | VT_I4: return *V_I4REF(&argument) == value.longInteger();
        case VT_BYREF | VT_BOOL: return (*V_BOOLREF(&argument) != VARIANT_FALSE) == value.boolean();
        default: return false;
    }
}

/// Compares what it is handed.
class CheckingSink final : public LocalDispatch {
public:
    explicit CheckingSink(const std::vector<Value>& expected) : expected_(expected) {}
    bool right = false;

    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        right = parameters->cArgs == expected_.size() + 1;
        for (std::size_t i = 0; right && i < expected_.size(); ++i)
            right = holds(parameters->rgvarg[parameters->cArgs - 1 - i], expected_[i]);
        return S_OK;
    }

private:
    const std::vector<Value>& expected_;
};

}  // namespace

EventWorkload::EventWorkload(HostEvent kind) : values_(samplesFor(eventRow(kind))), event_(kind, values_) {
    CheckingSink checking(values_);
    DWORD cookie = 0;
    point_.Advise(&checking, &cookie);
    relay_.raise(event_);
    point_.Unadvise(cookie);
    require(checking.right, "the relay hands out wrong arguments");
    PlainEvents plain;
    plain.advise(checking);
    checking.right = false;
    plain.raise(event_);
    require(checking.right, "the plain way hands out wrong arguments");
    point_.Advise(&sink_, &cookie);
    plain_.advise(sink_);
}

void EventWorkload::raise(EventSink& way, std::size_t times) {
    sink_.events = 0;
    sink_.arguments = 0;
    std::size_t succeeded = 0;
    for (std::size_t i = 0; i < times; ++i) {
        event_.succeed(false);
        way.raise(event_);
        if (event_.succeeded()) ++succeeded;
    }
    require(succeeded == times && sink_.events == times && sink_.arguments == times * event_.count(),
            "events got lost");
}

}  // namespace corvane::bench
