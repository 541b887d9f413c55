#pragma once

#include <windows.h>
// After windows.h, which it needs.
#include <oleauto.h>

#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <utility>

/// Objects of the host's, called by the names of their members. What such a call fails with is thrown as automation
/// error: with the number that the object gave, where it gave one; 438 for a member that it does not have, 5, 6, 7, 9
/// and 13 for what the platform means by them, 440 for anything else.
namespace corvane {

class LateBoundObject;

/// An automation variant that owns what it holds.
class Variant {
public:
    Variant() noexcept { VariantInit(&variant_); }
    static Variant ofLong(std::int32_t number) noexcept;
    static Variant ofBoolean(bool truth) noexcept;
    /// Throws error 7.
    static Variant ofText(std::u16string_view text);
    /// An argument that is left out.
    static Variant missing() noexcept;
    Variant(Variant&& other) noexcept : variant_(other.variant_) { VariantInit(&other.variant_); }
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;
    ~Variant() { VariantClear(&variant_); }

    // Converted as the platform converts; errors 6 and 13.
    std::int32_t toLong() const;
    std::int64_t toLongLong() const;
    double toDouble() const;
    /// Error 91 for a reference to nothing, 424 for what is no object.
    LateBoundObject toObject() const;

    VARIANT* get() noexcept { return &variant_; }
    const VARIANT* get() const noexcept { return &variant_; }

private:
    Variant converted(VARTYPE type) const;

    VARIANT variant_;
};

/// A counted reference to an object, or none.
class LateBoundObject {
public:
    LateBoundObject() noexcept = default;
    explicit LateBoundObject(IDispatch* object) noexcept : object_(object) {
        if (object_ != nullptr) object_->AddRef();
    }
    LateBoundObject(const LateBoundObject& other) noexcept : LateBoundObject(other.object_) {}
    LateBoundObject(LateBoundObject&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    LateBoundObject& operator=(LateBoundObject other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~LateBoundObject() {
        if (object_ != nullptr) object_->Release();
    }

    // All of these are error 91 without an object.

    /// What the object knows the member by: worth keeping where many calls follow, and valid for this object only.
    DISPID idOf(const wchar_t* member) const;
    Variant get(const wchar_t* property) const;
    void put(const wchar_t* property, Variant value) const;
    Variant call(const wchar_t* method, std::initializer_list<Variant> arguments = {}) const;
    Variant call(DISPID method, std::initializer_list<Variant> arguments) const;
    /// A property with an index: `property(index) = value`.
    void putIndexed(DISPID property, std::int32_t index, Variant value) const;

private:
    Variant invoke(DISPID member, WORD kind, std::initializer_list<Variant> arguments) const;

    IDispatch* object_ = nullptr;
};

}  // namespace corvane
