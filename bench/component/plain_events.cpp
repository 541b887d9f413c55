#include "bench/component/plain_events.h"

namespace corvane::bench {
namespace {

union Cell {
    float single;
    LONG longInteger;
    VARIANT_BOOL boolean;
    BSTR text;
};

void setByReference(VARIANTARG& argument, Cell& cell, const Value& value) {
    switch (value.type()) {
        case ValueType::Text:
            cell.text = newText(value.textView());
            V_VT(&argument) = VT_BYREF | VT_BSTR;
            break;
        case ValueType::Single:
            cell.single = value.single();
            V_VT(&argument) = VT_BYREF | VT_R4;
            break;
        case ValueType::Boolean:
            cell.boolean = variantBool(value.boolean());
            V_VT(&argument) = VT_BYREF | VT_BOOL;
            break;
        default:
            cell.longInteger = value.longInteger();
            V_VT(&argument) = VT_BYREF | VT_I4;
            break;
    }
    V_BYREF(&argument) = &cell;
}

void takeAnswer(Event& event, std::size_t position, Cell& cell) {
    switch (event.argument(position).type()) {
        case ValueType::Text:
            if (viewOf(cell.text) != event.argument(position).textView())
                event.answer(position, Value::ofText(viewOf(cell.text)));
            SysFreeString(cell.text);
            break;
        case ValueType::Single: event.answer(position, Value::ofSingle(cell.single)); break;
        case ValueType::Boolean: event.answer(position, Value::ofBoolean(cell.boolean != 0)); break;
        default: event.answer(position, Value::ofLong(cell.longInteger)); break;
    }
}

void deliver(Event& event, IDispatch& sink) {
    const std::size_t count = event.count();
    std::vector<VARIANTARG> arguments(count);
    std::vector<Cell> cells(count);
    for (std::size_t i = 0; i < count; ++i) {
        VARIANTARG& argument = arguments[count - 1 - i];
        VariantInit(&argument);
        setByReference(argument, cells[i], event.argument(i));
    }
    DISPPARAMS parameters{arguments.data(), nullptr, static_cast<UINT>(count), 0};
    VARIANT result;
    VariantInit(&result);
    sink.Invoke(static_cast<DISPID>(event.id()), IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, &result,
                nullptr, nullptr);
    VariantClear(&result);
    for (std::size_t i = 0; i < count; ++i) {
        takeAnswer(event, i, cells[i]);
        VariantClear(&arguments[count - 1 - i]);
    }
}

}  // namespace

void PlainEvents::raise(Event& event) {
    std::size_t connected = 0;
    for (std::size_t i = 0; i < sinks_.size(); ++i) {
        const ComReference<IDispatch> sink = sinks_[i];
        if (sink) ++connected;
    }
    for (std::size_t i = 0; i < connected; ++i) {
        const ComReference<IDispatch> sink = sinks_[i];
        deliver(event, *sink.get());
    }
}

}  // namespace corvane::bench
