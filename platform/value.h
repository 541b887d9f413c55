#pragma once

#include <bit>
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

/// A value that somebody else keeps, to be looked at: type and bits. Passing it on costs no reference; it is valid as
/// long as that value is neither changed nor gone.
///
/// Reading a value under another type than its own is a fault of the caller; the conversions between types are in
/// value_rules.h.
class ValueView {
public:
    /// The bits of a value without its type, for those who store many values and keep the types apart. A payload owns
    /// one reference to what it names where a Value was detached into it.
    struct Payload {
        // Written whole at all times: a processor that has stored four bytes waits before it copies eight.
        std::uint64_t bits;
    };

    constexpr ValueView(ValueType type, Payload payload) noexcept : type_(type), payload_(payload) {}
    ValueView(const ValueView&) noexcept = default;

    ValueType type() const noexcept { return type_; }
    bool isText() const noexcept { return type_ == ValueType::Text; }
    std::int16_t integer() const noexcept { return static_cast<std::int16_t>(payload_.bits); }
    std::int32_t longInteger() const noexcept { return static_cast<std::int32_t>(payload_.bits); }
    float single() const noexcept { return std::bit_cast<float>(static_cast<std::uint32_t>(payload_.bits)); }
    double doubleFloat() const noexcept { return std::bit_cast<double>(payload_.bits); }
    bool boolean() const noexcept { return payload_.bits != 0; }
    SharedRecord& object() const noexcept { return *recordOf(payload_); }
    /// Valid as long as a value with this text lives.
    std::u16string_view textView() const noexcept { return Text::view(bufferOf(payload_)); }
    Text text() const noexcept {
        Text text;
        text.buffer_ = bufferOf(payload_);
        Text::retain(text.buffer_);
        return text;
    }

protected:
    // A view may be the base of a value, whose references an assignment would not count.
    ValueView& operator=(const ValueView&) noexcept = default;

    static Text::Buffer* bufferOf(Payload payload) noexcept {
        return reinterpret_cast<Text::Buffer*>(static_cast<std::uintptr_t>(payload.bits));  // NOLINT: an address
    }
    static SharedRecord* recordOf(Payload payload) noexcept {
        return reinterpret_cast<SharedRecord*>(static_cast<std::uintptr_t>(payload.bits));  // NOLINT: an address
    }

    ValueType type_;
    Payload payload_;
};

/// An automation variant, reduced to what this component's values can be. 16 bytes; copying never allocates.
class Value : public ValueView {
public:
    /// The 16-bit integer 0.
    Value() noexcept : ValueView(ValueType::Integer, Payload{}) {}
    static Value ofInteger(std::int16_t number) noexcept {
        return {ValueType::Integer, {static_cast<std::uint16_t>(number)}};
    }
    static Value ofLong(std::int32_t number) noexcept {
        return {ValueType::Long, {static_cast<std::uint32_t>(number)}};
    }
    static Value ofSingle(float number) noexcept { return {ValueType::Single, {std::bit_cast<std::uint32_t>(number)}}; }
    static Value ofDouble(double number) noexcept {
        return {ValueType::Double, {std::bit_cast<std::uint64_t>(number)}};
    }
    static Value ofBoolean(bool truth) noexcept { return {ValueType::Boolean, {truth}}; }
    static Value ofText(Text text) noexcept {
        return {ValueType::Text, {reinterpret_cast<std::uintptr_t>(std::exchange(text.buffer_, nullptr))}};
    }
    static Value ofText(std::u16string_view text) { return ofText(Text(text)); }
    static Value ofObject(SharedRecord& record) noexcept {
        record.retain();
        return {ValueType::Object, {reinterpret_cast<std::uintptr_t>(&record)}};
    }

    /// A value of its own, of what another keeps.
    explicit Value(ValueView view) noexcept : ValueView(view) { retain(type_, payload_); }
    Value(const Value& other) noexcept : Value(static_cast<const ValueView&>(other)) {}
    Value(Value&& other) noexcept
        : ValueView(std::exchange(other.type_, ValueType::Integer), std::exchange(other.payload_, Payload{})) {}
    Value& operator=(Value other) noexcept {
        std::swap(type_, other.type_);
        std::swap(payload_, other.payload_);
        return *this;
    }
    ~Value() { release(type_, payload_); }

    /// Becomes another number of the type that it has; it owns nothing, before and afterwards.
    void renew(const Value& number) noexcept { payload_ = number.payload_; }

    /// Gives the reference up to whoever keeps the payload; it goes back through `adopt`, or `release` drops it.
    Payload detach() && noexcept {
        type_ = ValueType::Integer;
        return std::exchange(payload_, Payload{});
    }
    static Value adopt(ValueType type, Payload payload) noexcept { return {type, payload}; }
    static Value copyOf(ValueType type, Payload payload) noexcept { return Value(ValueView(type, payload)); }
    static void retain(ValueType type, Payload payload) noexcept {
        if (type >= ValueType::Text) retainOwned(type, payload);
    }
    static void release(ValueType type, Payload payload) noexcept {
        if (type >= ValueType::Text) releaseOwned(type, payload);
    }

private:
    Value(ValueType type, Payload payload) noexcept : ValueView(type, payload) {}
    static void retainOwned(ValueType type, Payload payload) noexcept {
        if (type == ValueType::Text)
            Text::retain(bufferOf(payload));
        else
            recordOf(payload)->retain();
    }
    static void releaseOwned(ValueType type, Payload payload) noexcept {
        if (type == ValueType::Text)
            Text::release(bufferOf(payload));
        else
            recordOf(payload)->release();
    }
};

}  // namespace corvane
