#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>
#include <utility>

// The platform's automation types and the interfaces that the type library publishes.
#include <windows.h>
// Needs the former.
#include <ocidl.h>
#include <ole2.h>
#include <oleauto.h>
#include <olectl.h>

// A macro of the platform's, which would rename the published member.
#undef GetEnvironmentVariable

#include "script_component.h"

/// Owners of what automation hands around, and its texts as this component reads them.
namespace corvane {

/// The code units of an automation text; null is the empty text. Valid as long as the text lives.
inline std::u16string_view viewOf(BSTR text) {
    return text == nullptr ? std::u16string_view()
                           : std::u16string_view(reinterpret_cast<const char16_t*>(text), SysStringLen(text));
}

/// A new automation text, owned by the caller. Throws error 7.
BSTR newText(std::u16string_view text);

/// A counted reference to an interface, or none.
template <typename Interface>
class ComReference {
public:
    ComReference() noexcept = default;
    /// Counts a reference of its own.
    explicit ComReference(Interface* object) noexcept : object_(object) {
        if (object_ != nullptr) object_->AddRef();
    }
    /// Takes over a reference that the caller has counted.
    static ComReference adopt(Interface* object) noexcept {
        ComReference reference;
        reference.object_ = object;
        return reference;
    }
    ComReference(const ComReference& other) noexcept : ComReference(other.object_) {}
    ComReference(ComReference&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    ComReference& operator=(ComReference other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~ComReference() {
        if (object_ != nullptr) object_->Release();
    }

    Interface* get() const noexcept { return object_; }
    Interface* operator->() const noexcept { return object_; }
    explicit operator bool() const noexcept { return object_ != nullptr; }
    /// For calls that hand out a reference through a pointer; there must be none yet.
    Interface** receive() noexcept { return &object_; }
    /// Hands the reference to somebody who releases it.
    Interface* detach() noexcept { return std::exchange(object_, nullptr); }

private:
    Interface* object_ = nullptr;
};

/// The object's other interface, or none.
template <typename Interface, typename Other>
ComReference<Interface> queryFor(Other* object, REFIID id) {
    void* found = nullptr;
    if (object == nullptr || FAILED(object->QueryInterface(id, &found))) return {};
    return ComReference<Interface>::adopt(static_cast<Interface*>(found));
}

/// A variant that is cleared at the end of its life.
class OwnedVariant {
public:
    OwnedVariant() noexcept { V_VT(&variant_) = VT_EMPTY; }
    OwnedVariant(OwnedVariant&& other) noexcept { other.moveTo(variant_); }
    OwnedVariant(const OwnedVariant&) = delete;
    OwnedVariant& operator=(const OwnedVariant&) = delete;
    ~OwnedVariant() {
        if (V_VT(&variant_) != VT_EMPTY) VariantClear(&variant_);
    }

    VARIANT* get() noexcept { return &variant_; }
    const VARIANT* get() const noexcept { return &variant_; }
    VARIANT* operator->() noexcept { return &variant_; }

    /// Hands the content to `target`, which holds nothing that needs release.
    void moveTo(VARIANT& target) noexcept {
        target = variant_;
        V_VT(&variant_) = VT_EMPTY;
    }

private:
    VARIANT variant_;
};

/// Copies a number between cells of the same size. Hosts put any number into a cell of an enumeration; C++ lets nobody
/// read it as one there.
template <typename Target, typename Source>
void copyNumber(Target& target, const Source& source) {
    static_assert(sizeof target == sizeof source);
    std::memcpy(&target, &source, sizeof target);
}

inline VARIANT_BOOL variantBool(bool truth) { return truth ? VARIANT_TRUE : VARIANT_FALSE; }

}  // namespace corvane
