#pragma once

#include <cstdint>
#include <string_view>
#include <utility>

#include "platform/shared_record.h"
#include "platform/text.h"

namespace corvane {

/// The automation types that a script's values and an event's arguments have.
enum class ValueType : std::uint8_t {
    Integer,  ///< 16-bit signed
    Long,     ///< 32-bit signed
    Single,   ///< 32-bit float
    Double,   ///< 64-bit float; only arithmetic makes one
    Boolean,
    Text,
    Object,  ///< a SharedRecord, never null
};

/// An automation variant, reduced to what this component's values can be. 16 bytes; copying never allocates.
///
/// Reading a value under another type than its own is a fault of the caller (asserted); the conversions between types
/// are in value_rules.h.
class Value {
public:
    /// The 16-bit integer 0.
    Value() noexcept = default;
    static Value ofInteger(std::int16_t number) noexcept { return {ValueType::Integer, {.integer = number}}; }
    static Value ofLong(std::int32_t number) noexcept { return {ValueType::Long, {.longInteger = number}}; }
    static Value ofSingle(float number) noexcept { return {ValueType::Single, {.single = number}}; }
    static Value ofDouble(double number) noexcept { return {ValueType::Double, {.doubleFloat = number}}; }
    static Value ofBoolean(bool truth) noexcept { return {ValueType::Boolean, {.boolean = truth}}; }
    static Value ofText(Text text) noexcept {
        return {ValueType::Text, {.text = std::exchange(text.buffer_, nullptr)}};
    }
    static Value ofText(std::u16string_view text) { return ofText(Text(text)); }
    static Value ofObject(SharedRecord& record) noexcept {
        record.retain();
        return {ValueType::Object, {.object = &record}};
    }

    Value(const Value& other) noexcept : type_(other.type_), payload_(other.payload_) { retain(type_, payload_); }
    Value(Value&& other) noexcept
        : type_(std::exchange(other.type_, ValueType::Integer)), payload_(std::exchange(other.payload_, Payload{})) {}
    Value& operator=(Value other) noexcept {
        std::swap(type_, other.type_);
        std::swap(payload_, other.payload_);
        return *this;
    }
    ~Value() { release(type_, payload_); }

    ValueType type() const noexcept { return type_; }
    bool isText() const noexcept { return type_ == ValueType::Text; }
    std::int16_t integer() const noexcept { return payload_.integer; }
    std::int32_t longInteger() const noexcept { return payload_.longInteger; }
    float single() const noexcept { return payload_.single; }
    double doubleFloat() const noexcept { return payload_.doubleFloat; }
    bool boolean() const noexcept { return payload_.boolean; }
    SharedRecord& object() const noexcept { return *payload_.object; }
    /// Valid as long as a value with this text lives.
    std::u16string_view textView() const noexcept { return Text::view(payload_.text); }
    Text text() const noexcept {
        Text text;
        text.buffer_ = payload_.text;
        Text::retain(text.buffer_);
        return text;
    }

    /// The bits of a value without its type, for those who store many values and keep the types apart. A payload owns
    /// one reference to what it names; it goes back through `adopt`, or `release` drops it.
    union Payload {
        std::int16_t integer;
        std::int32_t longInteger;
        float single;
        double doubleFloat = 0;
        bool boolean;
        Text::Buffer* text;
        SharedRecord* object;
    };
    Payload detach() && noexcept {
        type_ = ValueType::Integer;
        return std::exchange(payload_, Payload{});
    }
    static Value adopt(ValueType type, Payload payload) noexcept { return {type, payload}; }
    static Value copyOf(ValueType type, Payload payload) noexcept {
        retain(type, payload);
        return {type, payload};
    }
    static void retain(ValueType type, Payload payload) noexcept {
        if (type >= ValueType::Text) retainOwned(type, payload);
    }
    static void release(ValueType type, Payload payload) noexcept {
        if (type >= ValueType::Text) releaseOwned(type, payload);
    }

private:
    Value(ValueType type, Payload payload) noexcept : type_(type), payload_(payload) {}
    static void retainOwned(ValueType type, Payload payload) noexcept {
        if (type == ValueType::Text)
            Text::retain(payload.text);
        else
            payload.object->retain();
    }
    static void releaseOwned(ValueType type, Payload payload) noexcept {
        if (type == ValueType::Text)
            Text::release(payload.text);
        else
            payload.object->release();
    }

    ValueType type_ = ValueType::Integer;
    Payload payload_{};
};

}  // namespace corvane
