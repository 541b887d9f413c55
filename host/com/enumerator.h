#pragma once

#include <algorithm>
#include <exception>
#include <new>

#include "host/com/automation.h"
#include "host/com/module.h"
#include "platform/shared_record.h"

namespace corvane {

/// A standard enumerator. `Source` hands out the items by position from 0:
///     std::size_t count()
///     bool item(std::size_t position, Item& item)   fills in a new copy; false when there is none
template <typename Interface, typename Item, typename Source>
class Enumerator final : public SharedRecord, public Interface {
public:
    Enumerator(const IID& interfaceId, Source source, std::size_t position = 0)
        : interfaceId_(interfaceId), source_(std::move(source)), position_(position) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (!IsEqualIID(id, IID_IUnknown) && !IsEqualIID(id, interfaceId_)) return E_NOINTERFACE;
        *object = static_cast<Interface*>(this);
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return retain(); }
    ULONG STDMETHODCALLTYPE Release() override { return release(); }

    HRESULT STDMETHODCALLTYPE Next(ULONG wanted, Item* items, ULONG* fetched) override {
        if (items == nullptr || (fetched == nullptr && wanted != 1)) return E_POINTER;
        // Copying an item calls the item, and that the host.
        const ComReference<Interface> alive(this);
        ULONG count = 0;
        try {
            while (count < wanted && source_.item(position_, items[count])) {
                ++count;
                ++position_;
            }
        } catch (const std::exception&) {
            // What was handed out so far is the caller's; the rest can be asked for again.
            if (fetched != nullptr) *fetched = count;
            return count == 0 ? E_OUTOFMEMORY : S_FALSE;
        }
        if (fetched != nullptr) *fetched = count;
        return count == wanted ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE Skip(ULONG count) override {
        const std::size_t left = source_.count() - std::min(position_, source_.count());
        position_ += std::min<std::size_t>(count, left);
        return count <= left ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE Reset() override {
        position_ = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Clone(Interface** enumerator) override {
        if (enumerator == nullptr) return E_POINTER;
        *enumerator = nullptr;
        auto* const copy = new (std::nothrow) Enumerator(interfaceId_, source_, position_);
        if (copy == nullptr) return E_OUTOFMEMORY;
        copy->AddRef();
        *enumerator = copy;
        return S_OK;
    }

private:
    const ModuleUse use_;
    const IID& interfaceId_;
    Source source_;
    std::size_t position_;
};

}  // namespace corvane
