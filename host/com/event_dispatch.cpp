#include "host/com/event_dispatch.h"

#include <bit>
#include <cstdint>
#include <cstring>

#include "host/com/records_com.h"
#include "platform/automation_error.h"
#include "platform/floating_point.h"

namespace corvane {
namespace {

VARTYPE publishedType(const EventArgument& argument) {
    const VARTYPE reference = argument.byReference ? VT_BYREF : 0;
    switch (argument.type) {
        case ValueType::Text: return VT_BSTR | reference;
        case ValueType::Single: return VT_R4 | reference;
        case ValueType::Boolean: return VT_BOOL | reference;
        // The place of an object is empty while no sink has it.
        case ValueType::Object: return VT_EMPTY;
        default: return VT_I4 | reference;
    }
}

std::uint32_t bitsOf(float number) { return std::bit_cast<std::uint32_t>(number); }

/// How many bytes a text has: they stand before it.
std::uint32_t byteLengthOf(BSTR text) {
    std::uint32_t length = 0;
    std::memcpy(&length, reinterpret_cast<const std::byte*>(text) - sizeof length, sizeof length);
    return length;
}

/// Makes `text`, which a sink may have written over, freed or replaced, a text of that content.
void writeText(BSTR& text, std::u16string_view content) {
    const std::size_t bytes = content.size() * sizeof(OLECHAR);
    if (text == nullptr) {
        text = newText(content);
    } else if (byteLengthOf(text) == bytes) {
        std::memcpy(text, content.data(), bytes);
        text[content.size()] = 0;
    } else if (!SysReAllocStringLen(&text, reinterpret_cast<const OLECHAR*>(content.data()),
                                    static_cast<UINT>(content.size()))) {
        throw automation_error(ErrorNumber::OutOfMemory);
    }
}

/// The details of a failed call, which nobody here asks for.
class CallFailure {
public:
    CallFailure() noexcept = default;
    CallFailure(const CallFailure&) = delete;
    CallFailure& operator=(const CallFailure&) = delete;
    ~CallFailure() {
        release(exception_.bstrSource);
        release(exception_.bstrDescription);
        release(exception_.bstrHelpFile);
    }
    EXCEPINFO* exception() noexcept { return &exception_; }
    UINT* faultyArgument() noexcept { return &faultyArgument_; }

private:
    // Nearly always there is none, which needs no call of the system.
    static void release(BSTR text) noexcept {
        if (text != nullptr) SysFreeString(text);
    }

    EXCEPINFO exception_{};
    UINT faultyArgument_ = 0;
};

HRESULT invoke(IDispatch& sink, DISPID event, DISPPARAMS parameters, const FloatingPointState& host) {
    OwnedVariant result;
    CallFailure failure;
    const HostArithmetic arithmetic(host);
    return sink.Invoke(event, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, result.get(),
                       failure.exception(), failure.faultyArgument());
}

}  // namespace

EventArguments::EventArguments(const EventRow& row) : count_(row.argumentCount) {
    for (std::size_t place = 0; place < count_; ++place) {
        types_[place] = publishedType(row.arguments[count_ - 1 - place]);
        cells_[place].text = nullptr;
        prepare(place);
    }
}

EventArguments::~EventArguments() {
    for (std::size_t place = 0; place < count_; ++place)
        if ((types_[place] & ~VT_BYREF) == VT_BSTR) SysFreeString(values_[place]->text);
}

void EventArguments::prepare(std::size_t place) noexcept {
    VARIANTARG& variant = variants_[place];
    VariantInit(&variant);
    V_VT(&variant) = types_[place];
    if ((types_[place] & VT_BYREF) != 0) {
        values_[place] = &cells_[place];
        V_BYREF(&variant) = &cells_[place];
    } else {
        values_[place] = reinterpret_cast<Cell*>(&V_BYREF(&variant));
        values_[place]->text = nullptr;
    }
}

void EventArguments::write(const Event& event, IDispatch* object) {
    for (std::size_t place = 0; place < count_; ++place) {
        Cell& cell = *values_[place];
        const Value& value = event.argument(count_ - 1 - place);
        switch (value.type()) {
            case ValueType::Text: writeText(cell.text, value.textView()); break;
            case ValueType::Single: cell.single = value.single(); break;
            case ValueType::Boolean: cell.boolean = variantBool(value.boolean()); break;
            case ValueType::Object:
                object->AddRef();
                V_DISPATCH(&variants_[place]) = object;
                V_VT(&variants_[place]) = VT_DISPATCH;
                break;
            default: cell.longInteger = value.longInteger(); break;
        }
    }
}

void EventArguments::takeBack() noexcept {
    for (std::size_t place = 0; place < count_; ++place) {
        const VARIANTARG& variant = variants_[place];
        const bool byReference = (types_[place] & VT_BYREF) != 0;
        if (V_VT(&variant) != types_[place] || (byReference && V_BYREF(&variant) != &cells_[place])) takeBack(place);
    }
}

void EventArguments::takeBack(std::size_t place) noexcept {
    // A reference that a sink only tagged anew is still ours; everything else is released.
    if (V_BYREF(&variants_[place]) != &cells_[place]) VariantClear(&variants_[place]);
    prepare(place);
}

bool EventArguments::differs(const Cell& cell, const Value& value) noexcept {
    switch (value.type()) {
        case ValueType::Text: return viewOf(cell.text) != value.textView();
        case ValueType::Single: return bitsOf(cell.single) != bitsOf(value.single());
        case ValueType::Boolean: return (cell.boolean != 0) != value.boolean();
        default: return cell.longInteger != value.longInteger();
    }
}

Value EventArguments::valueOf(const Cell& cell, ValueType type) {
    switch (type) {
        case ValueType::Text: return Value::ofText(viewOf(cell.text));
        case ValueType::Single: return Value::ofSingle(cell.single);
        case ValueType::Boolean: return Value::ofBoolean(cell.boolean != 0);
        default: return Value::ofLong(cell.longInteger);
    }
}

void EventArguments::answer(Event& event) const {
    for (std::size_t place = 0; place < count_; ++place) {
        if ((types_[place] & VT_BYREF) == 0) continue;
        const std::size_t position = count_ - 1 - place;
        const Value& value = event.argument(position);
        if (differs(cells_[place], value)) event.answer(position, valueOf(cells_[place], value.type()));
    }
}

IDispatch* EventDelivery::object() {
    // It stands first, in the events that have one.
    const Value& value = event_.argument(0);
    if (value.type() != ValueType::Object) return nullptr;
    if (!face_) face_ = newDataSetFace(static_cast<clsDataSetParameters&>(value.object()));
    return face_.get();
}

void EventDelivery::deliverTo(IDispatch& sink, const FloatingPointState& host) {
    arguments_->write(event_, object());
    const HRESULT answered = invoke(sink, static_cast<DISPID>(event_.id()), arguments_->parameters(), host);
    arguments_->takeBack();
    if (SUCCEEDED(answered)) arguments_->answer(event_);
}

void EventRelay::raise(Event& event) {
    // Held as it is: a sink may advise and unadvise, itself and others.
    const SinkList sinks = point_.sinks();
    if (sinks.empty()) return;
    EventDelivery delivery(event, arguments_);
    for (const AdvisedSink& advised : sinks)
        if (point_.sinks() == sinks || point_.isAdvised(advised.cookie))
            delivery.deliverTo(*advised.sink.get(), *host_);
}

}  // namespace corvane
