#pragma once

#include <atomic>

#include "host/com/automation.h"
#include "host/com/dispatch_interface.h"
#include "host/com/error_boundary.h"
#include "host/com/module.h"
#include "host/com/published_classes.h"
#include "host/com/type_library.h"
#include "platform/shared_record.h"

namespace corvane {

/// Base of every object that automation reaches through a dual interface: reference count, QueryInterface, IDispatch
/// over the type library, class and error information.
///
/// `Counted` is a SharedRecord, or a class derived from one where the object is at the same time one of the component's
/// own records. Members are run through `call`.
template <typename Interface, typename Counted = SharedRecord>
class AutomationObject : public Counted, public Interface, public ISupportErrorInfo, public IProvideClassInfo2 {
public:
    explicit AutomationObject(const PublishedInterface& published) noexcept : published_(published) {}

    // IUnknown

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        if (object == nullptr) return E_POINTER;
        IUnknown* const found = interfaceFor(id);
        *object = found;
        if (found == nullptr) return E_NOINTERFACE;
        found->AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return Counted::retain(); }
    ULONG STDMETHODCALLTYPE Release() override { return Counted::release(); }

    // IDispatch

    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        if (count == nullptr) return E_POINTER;
        *count = 1;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT position, LCID, ITypeInfo** information) override {
        if (information == nullptr) return E_POINTER;
        *information = nullptr;
        if (position != 0) return DISP_E_BADINDEX;
        return typeInfo(published_.interfaceId, information);
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID reserved, OLECHAR** names, UINT count, LCID,
                                            DISPID* identifiers) override {
        if (!IsEqualIID(reserved, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
        if (count != 0 && (names == nullptr || identifiers == nullptr)) return E_POINTER;
        return described(
            [&](const DispatchInterface& description) { return description.identifiersOf(names, count, identifiers); });
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID reserved, LCID locale, WORD flags, DISPPARAMS* arguments,
                                     VARIANT* result, EXCEPINFO* exception, UINT* faultyArgument) override {
        if (!IsEqualIID(reserved, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
        const ComReference<IUnknown> alive(identity());
        return described([&](const DispatchInterface& description) {
            return description.invoke(static_cast<Interface*>(this), member, flags, locale, arguments, result,
                                      exception, faultyArgument);
        });
    }

    // ISupportErrorInfo

    HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID id) override {
        return IsEqualIID(id, published_.interfaceId) ? S_OK : S_FALSE;
    }

    // IProvideClassInfo2

    HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** information) override {
        if (information == nullptr) return E_POINTER;
        *information = nullptr;
        return typeInfo(*published_.classId, information);
    }
    HRESULT STDMETHODCALLTYPE GetGUID(DWORD kind, GUID* id) override {
        if (id == nullptr) return E_POINTER;
        *id = GUID_NULL;
        if (kind != GUIDKIND_DEFAULT_SOURCE_DISP_IID || published_.eventInterfaceId == nullptr) return E_INVALIDARG;
        *id = *published_.eventInterfaceId;
        return S_OK;
    }

protected:
    /// The object as an IUnknown: always the same pointer.
    IUnknown* identity() noexcept { return static_cast<Interface*>(this); }

    /// The interface that `id` names, or null.
    virtual IUnknown* interfaceFor(REFIID id) noexcept {
        if (IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, IID_IDispatch) || IsEqualIID(id, published_.interfaceId))
            return static_cast<Interface*>(this);
        if (IsEqualIID(id, IID_ISupportErrorInfo)) return static_cast<ISupportErrorInfo*>(this);
        const bool hasClass = published_.classId != nullptr;
        if (hasClass && (IsEqualIID(id, IID_IProvideClassInfo) || IsEqualIID(id, IID_IProvideClassInfo2)))
            return static_cast<IProvideClassInfo2*>(this);
        return nullptr;
    }

    /// Runs the body of a member: the object stays alive whatever the body's callbacks do, exceptions become the
    /// call's error, null pointers among `pointers` are refused.
    template <typename Body, typename... Pointers>
    HRESULT call(Body&& body, const Pointers*... pointers) noexcept {
        if ((... || !pointers)) {
            SetErrorInfo(0, nullptr);
            return E_POINTER;
        }
        const ComReference<IUnknown> alive(identity());
        return guardedCall(CallSource{published_.interfaceId, published_.programId},
                           [&](const FloatingPointState& host) {
                               const CallingHost calling(host_, host);
                               body();
                           });
    }

    /// How the host calculates that called in last; null outside `call`.
    const FloatingPointState* const& hostArithmetic() const noexcept { return host_; }

private:
    /// Calls nest: an event's handler may call in again.
    class CallingHost {
    public:
        CallingHost(const FloatingPointState*& present, const FloatingPointState& host) noexcept
            : present_(present), outer_(std::exchange(present, &host)) {}
        CallingHost(const CallingHost&) = delete;
        CallingHost& operator=(const CallingHost&) = delete;
        ~CallingHost() { present_ = outer_; }

    private:
        const FloatingPointState*& present_;
        const FloatingPointState* outer_;
    };

    static HRESULT typeInfo(REFGUID id, ITypeInfo** information) noexcept {
        ComReference<ITypeInfo> loaded;
        const HRESULT result = loadTypeInfo(id, loaded);
        *information = loaded.detach();
        return result;
    }

    template <typename Use>
    HRESULT described(Use&& use) noexcept {
        const DispatchInterface* description = description_.load(std::memory_order_acquire);
        if (description == nullptr) {
            const HRESULT read = guardedCall(
                CallSource{published_.interfaceId, published_.programId},
                [&](const FloatingPointState&) { description = &DispatchInterface::of(published_.interfaceId); });
            if (FAILED(read)) return read;
            description_ = description;
        }
        return use(*description);
    }

    const ModuleUse use_;
    const PublishedInterface& published_;
    std::atomic<const DispatchInterface*> description_{nullptr};
    const FloatingPointState* host_ = nullptr;
};

}  // namespace corvane
