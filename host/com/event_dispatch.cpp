#include "host/com/event_dispatch.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <utility>

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

std::uint32_t bitsOf(const Value& number) noexcept {
    return number.type() == ValueType::Single ? std::bit_cast<std::uint32_t>(number.single())
                                              : static_cast<std::uint32_t>(number.longInteger());
}

Value numberOf(std::uint32_t bits, ValueType type) noexcept {
    return type == ValueType::Single ? Value::ofSingle(std::bit_cast<float>(bits))
                                     : Value::ofLong(static_cast<std::int32_t>(bits));
}

/// How many bytes a text has: they stand before it.
std::uint32_t byteLengthOf(BSTR text) noexcept {
    std::uint32_t length = 0;
    std::memcpy(&length, reinterpret_cast<const std::byte*>(text) - sizeof length, sizeof length);
    return length;
}

/// Whether the text has that many code units and a proper end.
bool isOfLength(BSTR text, std::size_t length) noexcept {
    return text != nullptr && byteLengthOf(text) == length * sizeof(OLECHAR) && text[length] == 0;
}

constexpr std::size_t longText = 2048;

/// Takes the arguments back from a sink, whatever way it leaves.
class TakingBack {
public:
    explicit TakingBack(EventArguments& arguments) noexcept : arguments_(arguments) {}
    TakingBack(const TakingBack&) = delete;
    TakingBack& operator=(const TakingBack&) = delete;
    ~TakingBack() { arguments_.takeBack(); }

private:
    EventArguments& arguments_;
};

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
    for (std::size_t i = 0; i < count_; ++i) {
        places_[i].type = publishedType(row.arguments[count_ - 1 - i]);
        places_[i].cell.text = nullptr;
        places_[i].own = nullptr;
        places_[i].ownLength = 0;
        prepare(i);
    }
}

EventArguments::~EventArguments() {
    for (std::size_t i = 0; i < count_; ++i)
        if ((places_[i].type & ~VT_BYREF) == VT_BSTR) SysFreeString(places_[i].value->text);
}

void EventArguments::prepare(std::size_t place) noexcept {
    VARIANTARG& variant = variants_[place];
    Place& prepared = places_[place];
    VariantInit(&variant);
    V_VT(&variant) = prepared.type;
    if ((prepared.type & VT_BYREF) != 0) {
        prepared.value = &prepared.cell;
        V_BYREF(&variant) = &prepared.cell;
    } else {
        prepared.value = reinterpret_cast<Cell*>(&V_BYREF(&variant));
        prepared.value->text = nullptr;
    }
}

void EventArguments::write(const Event& event, IDispatch* object) {
    for (std::size_t i = 0; i < count_; ++i) {
        const Value& value = event.argument(count_ - 1 - i);
        switch (value.type()) {
            case ValueType::Text: writeText(places_[i], value); break;
            case ValueType::Boolean: places_[i].value->boolean = variantBool(value.boolean()); break;
            case ValueType::Object:
                object->AddRef();
                V_DISPATCH(&variants_[i]) = object;
                V_VT(&variants_[i]) = VT_DISPATCH;
                break;
            default: places_[i].value->number = bitsOf(value); break;
        }
    }
}

bool EventArguments::Place::holdsOwn(std::size_t length) const noexcept {
    return value->text == own && ownLength == length && isOfLength(own, length);
}

void EventArguments::writeText(Place& place, const Value& value) {
    const std::u16string_view content = value.textView();
    const bool fits = place.holdsOwn(content.size());
    const Text known = std::exchange(place.known, Text());
    // The same text, not only an equal one: a statement that is carried out again brings it again.
    if (fits && known.view().data() == content.data()) return;
    BSTR& text = place.value->text;
    if (fits) {
        std::memcpy(text, content.data(), content.size() * sizeof(OLECHAR));
        return;
    }
    SysFreeString(std::exchange(text, nullptr));
    place.own = text = newText(content);
    place.ownLength = content.size();
}

void EventArguments::dropLongTexts() noexcept {
    for (std::size_t i = 0; i < count_; ++i) {
        Place& place = places_[i];
        if ((place.type & ~VT_BYREF) != VT_BSTR || SysStringLen(place.value->text) < longText) continue;
        SysFreeString(std::exchange(place.value->text, nullptr));
        place.own = nullptr;
        place.known = Text();
    }
}

void EventArguments::takeBack() noexcept {
    for (std::size_t i = 0; i < count_; ++i) {
        const VARIANTARG& variant = variants_[i];
        const bool byReference = (places_[i].type & VT_BYREF) != 0;
        if (V_VT(&variant) != places_[i].type || (byReference && V_BYREF(&variant) != &places_[i].cell)) takeBack(i);
    }
}

void EventArguments::takeBack(std::size_t place) noexcept {
    // A reference that a sink only tagged anew is still ours; everything else is released.
    if (V_BYREF(&variants_[place]) != &places_[place].cell) VariantClear(&variants_[place]);
    prepare(place);
}

void EventArguments::answer(Event& event) {
    // The first place is that of `tSucess`, the last argument.
    event.succeed(places_[0].cell.boolean != 0);
    for (std::size_t i = 1; i < count_; ++i) {
        Place& place = places_[i];
        if ((place.type & VT_BYREF) == 0) continue;
        const std::size_t position = count_ - 1 - i;
        const Value& value = event.argument(position);
        switch (value.type()) {
            case ValueType::Text: answerText(place, event, position); break;
            case ValueType::Boolean:
                if (const bool truth = place.cell.boolean != 0; truth != value.boolean())
                    event.answer(position, Value::ofBoolean(truth));
                break;
            default:
                if (place.cell.number != bitsOf(value))
                    event.answer(position, numberOf(place.cell.number, value.type()));
        }
    }
}

void EventArguments::answerText(Place& place, Event& event, std::size_t position) {
    const Value& value = event.argument(position);
    const std::u16string_view content = value.textView();
    const BSTR text = place.cell.text;
    if (isOfLength(text, content.size()) && std::equal(content.begin(), content.end(), text))
        place.known = value.text();
    else
        event.answer(position, Value::ofText(viewOf(text)));
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
    HRESULT answered = E_FAIL;
    {
        const TakingBack takingBack(*arguments_);
        answered = invoke(sink, static_cast<DISPID>(event_.id()), arguments_->parameters(), host);
    }
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
