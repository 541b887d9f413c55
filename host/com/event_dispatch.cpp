#include "host/com/event_dispatch.h"

#include <array>
#include <bit>
#include <cstdint>

#include "host/com/records_com.h"
#include "platform/automation_error.h"
#include "platform/floating_point.h"

namespace corvane {
namespace {

VARTYPE publishedType(ValueType type) {
    switch (type) {
        case ValueType::Text: return VT_BSTR;
        case ValueType::Single: return VT_R4;
        case ValueType::Boolean: return VT_BOOL;
        case ValueType::Object: return VT_DISPATCH;
        default: return VT_I4;
    }
}

/// What a by-reference argument points to.
union Cell {
    float single;
    LONG longInteger;
    VARIANT_BOOL boolean;
    BSTR text;
};

/// The arguments of an event as one sink is handed them.
class SinkArguments {
public:
    explicit SinkArguments(std::size_t count) : count_(count) {
        for (std::size_t i = 0; i < count_; ++i) VariantInit(&variant(i));
    }
    SinkArguments(const SinkArguments&) = delete;
    SinkArguments& operator=(const SinkArguments&) = delete;
    ~SinkArguments() {
        for (std::size_t i = 0; i < count_; ++i) {
            // A sink may have put something of its own in the place of a reference. A reference that it only tagged
            // anew stays ours.
            if (V_BYREF(&variant(i)) != &cells_[i]) VariantClear(&variant(i));
            if (ownsText_[i]) SysFreeString(cells_[i].text);
        }
    }

    void addByReference(std::size_t position, const Value& value) {
        Cell& cell = cells_[position];
        switch (value.type()) {
            case ValueType::Text:
                cell.text = newText(value.textView());
                ownsText_[position] = true;
                break;
            case ValueType::Single: cell.single = value.single(); break;
            case ValueType::Boolean: cell.boolean = variantBool(value.boolean()); break;
            default: cell.longInteger = value.longInteger(); break;
        }
        V_VT(&variant(position)) = static_cast<VARTYPE>(publishedType(value.type()) | VT_BYREF);
        V_BYREF(&variant(position)) = &cell;
    }

    void addByValue(std::size_t position, const Value& value) {
        VARIANTARG& target = variant(position);
        switch (value.type()) {
            case ValueType::Text: V_BSTR(&target) = newText(value.textView()); break;
            case ValueType::Single: V_R4(&target) = value.single(); break;
            case ValueType::Boolean: V_BOOL(&target) = variantBool(value.boolean()); break;
            default: V_I4(&target) = value.longInteger(); break;
        }
        V_VT(&target) = publishedType(value.type());
    }

    void addObject(std::size_t position, IDispatch& object) {
        object.AddRef();
        V_DISPATCH(&variant(position)) = &object;
        V_VT(&variant(position)) = VT_DISPATCH;
    }

    /// A by-reference argument as the sink left it.
    bool differs(std::size_t position, const Value& value) const {
        const Cell& cell = cells_[position];
        switch (value.type()) {
            case ValueType::Text: return viewOf(cell.text) != value.textView();
            case ValueType::Single: return bitsOf(cell.single) != bitsOf(value.single());
            case ValueType::Boolean: return (cell.boolean != 0) != value.boolean();
            default: return cell.longInteger != value.longInteger();
        }
    }
    Value valueOf(std::size_t position, ValueType type) const {
        const Cell& cell = cells_[position];
        switch (type) {
            case ValueType::Text: return Value::ofText(viewOf(cell.text));
            case ValueType::Single: return Value::ofSingle(cell.single);
            case ValueType::Boolean: return Value::ofBoolean(cell.boolean != 0);
            default: return Value::ofLong(cell.longInteger);
        }
    }

    DISPPARAMS parameters() { return {variants_.data(), nullptr, static_cast<UINT>(count_), 0}; }

private:
    // Automation counts arguments from the last.
    VARIANTARG& variant(std::size_t position) { return variants_[count_ - 1 - position]; }

    static std::uint32_t bitsOf(float number) { return std::bit_cast<std::uint32_t>(number); }

    std::size_t count_;
    std::array<VARIANTARG, maximumEventArguments> variants_;
    std::array<Cell, maximumEventArguments> cells_;
    std::array<bool, maximumEventArguments> ownsText_{};
};

void releaseTexts(EXCEPINFO& exception) {
    SysFreeString(exception.bstrSource);
    SysFreeString(exception.bstrDescription);
    SysFreeString(exception.bstrHelpFile);
}

HRESULT invoke(IDispatch& sink, DISPID event, DISPPARAMS& parameters, const FloatingPointState& host) {
    OwnedVariant result;
    EXCEPINFO exception{};
    UINT faultyArgument = 0;
    HRESULT answered = S_OK;
    {
        const HostArithmetic arithmetic(host);
        answered = sink.Invoke(event, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, result.get(),
                               &exception, &faultyArgument);
    }
    releaseTexts(exception);
    return answered;
}

}  // namespace

IDispatch& EventDelivery::faceOf(SharedRecord& record) {
    if (!face_) face_ = newDataSetFace(static_cast<clsDataSetParameters&>(record));
    return *face_.get();
}

void EventDelivery::deliverTo(IDispatch& sink, const FloatingPointState& host) {
    const EventRow& row = event_.row();
    SinkArguments arguments(event_.count());
    for (std::size_t i = 0; i < event_.count(); ++i) {
        const Value& value = event_.argument(i);
        if (value.type() == ValueType::Object)
            arguments.addObject(i, faceOf(value.object()));
        else if (row.arguments[i].byReference)
            arguments.addByReference(i, value);
        else
            arguments.addByValue(i, value);
    }
    DISPPARAMS parameters = arguments.parameters();
    if (FAILED(invoke(sink, static_cast<DISPID>(event_.id()), parameters, host))) return;
    for (std::size_t i = 0; i < event_.count(); ++i)
        if (row.arguments[i].byReference && arguments.differs(i, event_.argument(i)))
            event_.answer(i, arguments.valueOf(i, event_.argument(i).type()));
}

}  // namespace corvane
