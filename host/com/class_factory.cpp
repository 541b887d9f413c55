#include "host/com/class_factory.h"

#include <cstdint>
#include <exception>
#include <new>

#include "engine/trace.h"
#include "host/com/error_boundary.h"
#include "host/com/module.h"
#include "host/com/published_classes.h"
#include "platform/shared_record.h"

namespace corvane {
namespace {

/// Has the compiler's run-time support take what it keeps for each thread, while there is memory: later, when exhausted
/// memory is to be met by an exception, it would end the process for want of these bytes.
void prepareThread() noexcept {
    // Volatile, as the compiler leaves out a question whose answer nobody wants.
    [[maybe_unused]] const volatile int exceptions = std::uncaught_exceptions();
    [[maybe_unused]] const volatile std::int32_t options = debugOptions();
}

class ClassFactory final : public SharedRecord, public IClassFactory {
public:
    explicit ClassFactory(const PublishedInterface& published) noexcept : published_(published) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (!IsEqualIID(id, IID_IUnknown) && !IsEqualIID(id, IID_IClassFactory)) return E_NOINTERFACE;
        *object = static_cast<IClassFactory*>(this);
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return retain(); }
    ULONG STDMETHODCALLTYPE Release() override { return release(); }

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID id, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (outer != nullptr) return CLASS_E_NOAGGREGATION;
        prepareThread();
        ComReference<IUnknown> created;
        const HRESULT result = guardedCall(CallSource{published_.interfaceId, published_.programId},
                                           [&](const FloatingPointState&) { created = published_.create(); });
        return FAILED(result) ? result : created->QueryInterface(id, object);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
        if (!lock) return ModuleUse::unlock() ? S_OK : E_UNEXPECTED;
        ModuleUse::lock();
        return S_OK;
    }

private:
    const ModuleUse use_;
    const PublishedInterface& published_;
};

}  // namespace

HRESULT classObject(REFCLSID classId, REFIID id, void** factory) noexcept {
    if (factory == nullptr) return E_POINTER;
    *factory = nullptr;
    for (const PublishedInterface* published : creatableClasses) {
        if (!IsEqualCLSID(classId, *published->classId)) continue;
        auto* const created = new (std::nothrow) ClassFactory(*published);
        if (created == nullptr) return E_OUTOFMEMORY;
        const ComReference<IClassFactory> reference(created);
        return created->QueryInterface(id, factory);
    }
    return CLASS_E_CLASSNOTAVAILABLE;
}

}  // namespace corvane
