// The platform's automation functions, as far as the component and its tests call them, for machines without them.
// Every text, array and object is one block of the ordinary heap, exactly as long as it must be, so that the address
// sanitizer sees each overrun, use after release, double release and leak.

// The identifiers of the platform's interfaces are defined here; those of our own stand elsewhere.
// clang-format off
#define INITGUID
#include <windows.h>
#include <ocidl.h>
#include <ole2.h>
#include <oleauto.h>
#include <olectl.h>
#undef INITGUID
#include <guiddef.h>
// clang-format on

#undef GetEnvironmentVariable

#include "tests/com/stand_in.h"

#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>

#include "host/com/automation.h"
#include "host/com/component_services.h"
#include "platform/utf8.h"
#include "tests/memory/memory_fault.h"

namespace {

std::size_t livingBlocks = 0;

void* allocate(std::size_t size) {
    void* const block = corvane::test::MemoryFault::grants() ? std::malloc(size) : nullptr;
    if (block != nullptr) ++livingBlocks;
    return block;
}

void* allocateZeroed(std::size_t size) {
    void* const block = allocate(size);
    return block == nullptr ? nullptr : std::memset(block, 0, size);
}

void release(void* block) {
    if (block != nullptr) --livingBlocks;
    std::free(block);
}

}  // namespace

extern "C" {

extern const GUID GUID_NULL;
const GUID GUID_NULL{};

// ----------------------------------------------------------------------------------------------------------- strings

namespace {

constexpr std::size_t prefixSize = sizeof(std::uint32_t);

std::uint32_t* prefixOf(BSTR text) {
    return reinterpret_cast<std::uint32_t*>(reinterpret_cast<std::byte*>(text) - prefixSize);
}

std::size_t lengthOf(const OLECHAR* text) {
    std::size_t length = 0;
    while (text[length] != 0) ++length;
    return length;
}

}  // namespace

BSTR WINAPI SysAllocStringByteLen(LPCSTR bytes, UINT count) {
    constexpr OLECHAR end = 0;
    auto* const block = static_cast<std::byte*>(allocate(prefixSize + count + sizeof end));
    if (block == nullptr) return nullptr;
    std::memcpy(block, &count, prefixSize);
    if (bytes != nullptr) std::memcpy(block + prefixSize, bytes, count);
    std::memcpy(block + prefixSize + count, &end, sizeof end);
    return reinterpret_cast<BSTR>(block + prefixSize);
}

BSTR WINAPI SysAllocStringLen(const OLECHAR* text, UINT length) {
    if (length > std::numeric_limits<UINT>::max() / 2 - prefixSize) return nullptr;
    return SysAllocStringByteLen(reinterpret_cast<LPCSTR>(text), length * static_cast<UINT>(sizeof(OLECHAR)));
}

BSTR WINAPI SysAllocString(const OLECHAR* text) {
    return text == nullptr ? nullptr : SysAllocStringLen(text, static_cast<UINT>(lengthOf(text)));
}

void WINAPI SysFreeString(BSTR text) {
    if (text != nullptr) release(prefixOf(text));
}

INT WINAPI SysReAllocStringLen(BSTR* text, const OLECHAR* content, UINT length) {
    const BSTR replacement = SysAllocStringLen(content, length);
    if (replacement == nullptr) return FALSE;
    SysFreeString(*text);
    *text = replacement;
    return TRUE;
}

UINT WINAPI SysStringByteLen(BSTR text) { return text == nullptr ? 0 : *prefixOf(text); }

UINT WINAPI SysStringLen(BSTR text) { return SysStringByteLen(text) / static_cast<UINT>(sizeof(OLECHAR)); }

// ------------------------------------------------------------------------------------------------------------ arrays

namespace {

std::size_t cellCount(const SAFEARRAY& array) {
    std::size_t count = 1;
    for (USHORT i = 0; i < array.cDims; ++i) count *= array.rgsabound[i].cElements;
    return count;
}

HRESULT cellOf(SAFEARRAY* array, const LONG* indices, void** cell) {
    if (array == nullptr || indices == nullptr || cell == nullptr) return E_INVALIDARG;
    std::size_t position = 0;
    std::size_t step = 1;
    for (USHORT dimension = 0; dimension < array->cDims; ++dimension) {
        // A descriptor keeps its dimensions last to first.
        const SAFEARRAYBOUND& bound = array->rgsabound[array->cDims - 1 - dimension];
        const LONG index = indices[dimension] - bound.lLbound;
        if (index < 0 || static_cast<ULONG>(index) >= bound.cElements) return DISP_E_BADINDEX;
        position += static_cast<std::size_t>(index) * step;
        step *= bound.cElements;
    }
    *cell = static_cast<std::byte*>(array->pvData) + position * array->cbElements;
    return S_OK;
}

}  // namespace

SAFEARRAY* WINAPI SafeArrayCreate(VARTYPE type, UINT dimensions, SAFEARRAYBOUND* bounds) {
    if (bounds == nullptr || dimensions == 0) return nullptr;
    auto* const array =
        static_cast<SAFEARRAY*>(allocateZeroed(offsetof(SAFEARRAY, rgsabound) + dimensions * sizeof(SAFEARRAYBOUND)));
    if (array == nullptr) return nullptr;
    array->cDims = static_cast<USHORT>(dimensions);
    for (UINT i = 0; i < dimensions; ++i) array->rgsabound[dimensions - 1 - i] = bounds[i];
    switch (type) {
        case VT_BSTR:
            array->cbElements = sizeof(BSTR);
            array->fFeatures = FADF_BSTR;
            break;
        case VT_VARIANT:
            array->cbElements = sizeof(VARIANT);
            array->fFeatures = FADF_VARIANT;
            break;
        default: array->cbElements = sizeof(LONG);
    }
    array->pvData = allocateZeroed(cellCount(*array) * array->cbElements);
    if (array->pvData != nullptr) return array;
    release(array);
    return nullptr;
}

SAFEARRAY* WINAPI SafeArrayCreateVector(VARTYPE type, LONG first, ULONG count) {
    SAFEARRAYBOUND bound{count, first};
    return SafeArrayCreate(type, 1, &bound);
}

HRESULT WINAPI SafeArrayGetVartype(SAFEARRAY* array, VARTYPE* type) {
    *type = (array->fFeatures & FADF_BSTR) != 0 ? VT_BSTR : (array->fFeatures & FADF_VARIANT) != 0 ? VT_VARIANT : VT_I4;
    return S_OK;
}

HRESULT WINAPI SafeArrayDestroy(SAFEARRAY* array) {
    if (array == nullptr) return S_OK;
    if (array->cLocks != 0) return DISP_E_ARRAYISLOCKED;
    for (std::size_t i = 0; i < cellCount(*array); ++i) {
        if ((array->fFeatures & FADF_BSTR) != 0) SysFreeString(static_cast<BSTR*>(array->pvData)[i]);
        if ((array->fFeatures & FADF_VARIANT) != 0) VariantClear(&static_cast<VARIANT*>(array->pvData)[i]);
    }
    release(array->pvData);
    release(array);
    return S_OK;
}

HRESULT WINAPI SafeArrayLock(SAFEARRAY* array) {
    ++array->cLocks;
    return S_OK;
}

HRESULT WINAPI SafeArrayUnlock(SAFEARRAY* array) {
    if (array->cLocks == 0) return E_UNEXPECTED;
    --array->cLocks;
    return S_OK;
}

UINT WINAPI SafeArrayGetDim(SAFEARRAY* array) { return array->cDims; }

HRESULT WINAPI SafeArrayGetLBound(SAFEARRAY* array, UINT dimension, LONG* bound) {
    if (dimension == 0 || dimension > array->cDims) return DISP_E_BADINDEX;
    *bound = array->rgsabound[array->cDims - dimension].lLbound;
    return S_OK;
}

HRESULT WINAPI SafeArrayGetUBound(SAFEARRAY* array, UINT dimension, LONG* bound) {
    if (dimension == 0 || dimension > array->cDims) return DISP_E_BADINDEX;
    const SAFEARRAYBOUND& range = array->rgsabound[array->cDims - dimension];
    *bound = range.lLbound + static_cast<LONG>(range.cElements) - 1;
    return S_OK;
}

/// For arrays of strings and of variants.
HRESULT WINAPI SafeArrayGetElement(SAFEARRAY* array, LONG* indices, void* element) {
    void* cell = nullptr;
    const HRESULT result = cellOf(array, indices, &cell);
    if (FAILED(result)) return result;
    if ((array->fFeatures & FADF_VARIANT) != 0)
        return VariantCopy(static_cast<VARIANT*>(element), static_cast<VARIANT*>(cell));
    if ((array->fFeatures & FADF_BSTR) == 0) return E_NOTIMPL;
    const BSTR text = *static_cast<BSTR*>(cell);
    BSTR& copy = *static_cast<BSTR*>(element);
    copy = text == nullptr ? nullptr : SysAllocStringLen(text, SysStringLen(text));
    return text != nullptr && copy == nullptr ? E_OUTOFMEMORY : S_OK;
}

/// For arrays of strings.
HRESULT WINAPI SafeArrayPutElement(SAFEARRAY* array, LONG* indices, void* element) {
    void* cell = nullptr;
    const HRESULT result = cellOf(array, indices, &cell);
    if (FAILED(result)) return result;
    if ((array->fFeatures & FADF_BSTR) == 0) return E_NOTIMPL;
    const auto text = static_cast<BSTR>(element);
    return SysReAllocStringLen(static_cast<BSTR*>(cell), text, SysStringLen(text)) ? S_OK : E_OUTOFMEMORY;
}

// ---------------------------------------------------------------------------------------------------------- variants

void WINAPI VariantInit(VARIANTARG* variant) {
    // Nobody may read what was never set.
    std::memset(variant, 0xCD, sizeof *variant);
    V_VT(variant) = VT_EMPTY;
}

HRESULT WINAPI VariantClear(VARIANTARG* variant) {
    const VARTYPE type = V_VT(variant);
    if ((type & VT_BYREF) == 0) {
        if ((type & VT_ARRAY) != 0) {
            const HRESULT destroyed = SafeArrayDestroy(V_ARRAY(variant));
            if (FAILED(destroyed)) return destroyed;
        } else if (type == VT_BSTR) {
            SysFreeString(V_BSTR(variant));
        } else if ((type == VT_DISPATCH || type == VT_UNKNOWN) && V_UNKNOWN(variant) != nullptr) {
            V_UNKNOWN(variant)->Release();
        } else if (type > VT_UINT) {
            return DISP_E_BADVARTYPE;
        }
    }
    VariantInit(variant);
    return S_OK;
}

HRESULT WINAPI VariantCopy(VARIANTARG* target, const VARIANTARG* source) {
    if (target == source) return S_OK;
    if ((V_VT(source) & VT_ARRAY) != 0) return E_NOTIMPL;
    VARIANT copy = *source;
    if (V_VT(source) == VT_BSTR && V_BSTR(source) != nullptr) {
        V_BSTR(&copy) =
            SysAllocStringByteLen(reinterpret_cast<LPCSTR>(V_BSTR(source)), SysStringByteLen(V_BSTR(source)));
        if (V_BSTR(&copy) == nullptr) return E_OUTOFMEMORY;
    }
    if ((V_VT(source) == VT_DISPATCH || V_VT(source) == VT_UNKNOWN) && V_UNKNOWN(source) != nullptr)
        V_UNKNOWN(source)->AddRef();
    const HRESULT cleared = VariantClear(target);
    if (FAILED(cleared)) {
        VariantClear(&copy);
        return cleared;
    }
    *target = copy;
    return S_OK;
}

HRESULT WINAPI VariantCopyInd(VARIANT* target, const VARIANTARG* source) {
    if ((V_VT(source) & VT_BYREF) == 0) return VariantCopy(target, source);
    const VARTYPE type = V_VT(source) & static_cast<VARTYPE>(~VT_BYREF);
    if (V_BYREF(source) == nullptr) return E_INVALIDARG;
    if (type == VT_VARIANT) {
        const VARIANT& inner = *V_VARIANTREF(source);
        return V_VT(&inner) == (VT_BYREF | VT_VARIANT) ? E_INVALIDARG : VariantCopyInd(target, &inner);
    }
    VARIANT direct;
    VariantInit(&direct);
    V_VT(&direct) = type;
    switch (type) {
        case VT_I1:
        case VT_UI1: V_UI1(&direct) = *V_UI1REF(source); break;
        case VT_I2:
        case VT_UI2:
        case VT_BOOL: V_I2(&direct) = *V_I2REF(source); break;
        case VT_I4:
        case VT_UI4:
        case VT_INT:
        case VT_UINT:
        case VT_R4:
        case VT_ERROR: V_I4(&direct) = *V_I4REF(source); break;
        case VT_I8:
        case VT_UI8:
        case VT_CY:
        case VT_DATE:
        case VT_R8: V_I8(&direct) = *V_I8REF(source); break;
        case VT_DECIMAL:
            V_DECIMAL(&direct) = *V_DECIMALREF(source);
            V_VT(&direct) = type;
            break;
        case VT_BSTR: V_BSTR(&direct) = *V_BSTRREF(source); break;
        case VT_DISPATCH:
        case VT_UNKNOWN: V_UNKNOWN(&direct) = *V_UNKNOWNREF(source); break;
        default: return DISP_E_BADVARTYPE;
    }
    return VariantCopy(target, &direct);
}

}  // extern "C"

// ------------------------------------------------------------------------------------------------- error information

namespace {

class ErrorInformation final : public ICreateErrorInfo, public IErrorInfo {
public:
    ErrorInformation() = default;
    ErrorInformation(const ErrorInformation&) = delete;
    ErrorInformation& operator=(const ErrorInformation&) = delete;
    virtual ~ErrorInformation() {
        SysFreeString(source_);
        SysFreeString(description_);
    }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        *object = nullptr;
        if (IsEqualIID(id, IID_IErrorInfo))
            *object = static_cast<IErrorInfo*>(this);
        else if (IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, IID_ICreateErrorInfo))
            *object = static_cast<ICreateErrorInfo*>(this);
        else
            return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --references_;
        if (left == 0) delete this;
        return left;
    }

    HRESULT STDMETHODCALLTYPE SetGUID(REFGUID id) override {
        id_ = id;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetSource(LPOLESTR text) override { return set(source_, text); }
    HRESULT STDMETHODCALLTYPE SetDescription(LPOLESTR text) override { return set(description_, text); }
    HRESULT STDMETHODCALLTYPE SetHelpFile(LPOLESTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetHelpContext(DWORD) override { return E_NOTIMPL; }

    HRESULT STDMETHODCALLTYPE GetGUID(GUID* id) override {
        *id = id_;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetSource(BSTR* text) override { return copy(source_, text); }
    HRESULT STDMETHODCALLTYPE GetDescription(BSTR* text) override { return copy(description_, text); }
    HRESULT STDMETHODCALLTYPE GetHelpFile(BSTR* text) override { return copy(nullptr, text); }
    HRESULT STDMETHODCALLTYPE GetHelpContext(DWORD* context) override {
        *context = 0;
        return S_OK;
    }

private:
    static HRESULT set(BSTR& place, LPOLESTR text) {
        SysFreeString(place);
        return copy(text, &place);
    }
    static HRESULT copy(const OLECHAR* text, BSTR* target) {
        *target = SysAllocString(text);
        return text != nullptr && *target == nullptr ? E_OUTOFMEMORY : S_OK;
    }

    ULONG references_ = 0;
    GUID id_{};
    BSTR source_ = nullptr;
    BSTR description_ = nullptr;
};

corvane::ComReference<IErrorInfo>& threadsError() {
    static thread_local corvane::ComReference<IErrorInfo> error;
    return error;
}

}  // namespace

extern "C" {

HRESULT WINAPI CreateErrorInfo(ICreateErrorInfo** information) {
    *information = corvane::ComReference<ICreateErrorInfo>(new (std::nothrow) ErrorInformation).detach();
    return *information == nullptr ? E_OUTOFMEMORY : S_OK;
}

HRESULT WINAPI SetErrorInfo(ULONG, IErrorInfo* information) {
    threadsError() = corvane::ComReference<IErrorInfo>(information);
    return S_OK;
}

HRESULT WINAPI GetErrorInfo(ULONG, IErrorInfo** information) {
    *information = threadsError().detach();
    return *information == nullptr ? S_FALSE : S_OK;
}

}  // extern "C"

namespace corvane {

// ------------------------------------------------------------------------------------- the operator and the messages

namespace {

class StandInDialogs final : public OperatorDialogs {
public:
    std::optional<std::int32_t> showMessage(const OperatorMessage& message) override {
        testing::StandInServices& services = testing::standInServices();
        services.messages.push_back(toUtf8(message.text));
        if (services.onMessage) services.onMessage();
        return std::nullopt;
    }
    InputAnswer askInput(const InputRequest& request) override {
        testing::standInServices().questions.push_back(toUtf8(request.question));
        return {request.initialValue, InputAnswer::Ending::Unavailable};
    }
};

class StandInPump final : public MessagePump {
public:
    void yield() override {
        testing::StandInServices& services = testing::standInServices();
        ++services.yields;
        if (services.onYield) services.onYield();
    }
};

}  // namespace

ComponentServices makeServices() { return {std::make_unique<StandInDialogs>(), std::make_unique<StandInPump>()}; }

std::size_t testing::livingAutomationBlocks() { return livingBlocks; }

testing::StandInServices& testing::standInServices() {
    static StandInServices services;
    return services;
}

}  // namespace corvane
