#pragma once

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "host/com/automation.h"

namespace corvane {

/// A host's sink of the events, as advised.
struct AdvisedSink {
    ComReference<IDispatch> sink;
    DWORD cookie = 0;
};
using AdvisedSinks = std::vector<AdvisedSink>;

/// The sinks in the order of advising. A list is never changed, only replaced; whoever holds one holds all its sinks,
/// whatever they do meanwhile. Copies share it, and are counted without atomics, since every event holds one: all
/// copies stay on the thread of the object. What may leave the thread holds `everywhere()`.
class SinkList {
public:
    SinkList() noexcept = default;
    /// Throws std::bad_alloc.
    explicit SinkList(AdvisedSinks sinks) {
        if (!sinks.empty()) shared_ = new Shared{std::make_shared<const AdvisedSinks>(std::move(sinks)), 1};
    }
    SinkList(const SinkList& other) noexcept : shared_(other.shared_) {
        if (shared_ != nullptr) ++shared_->uses;
    }
    SinkList(SinkList&& other) noexcept : shared_(std::exchange(other.shared_, nullptr)) {}
    SinkList& operator=(SinkList other) noexcept {
        std::swap(shared_, other.shared_);
        return *this;
    }
    ~SinkList() {
        if (shared_ != nullptr && --shared_->uses == 0) delete shared_;
    }

    bool empty() const noexcept { return shared_ == nullptr; }
    const AdvisedSink* begin() const noexcept { return empty() ? nullptr : shared_->sinks->data(); }
    const AdvisedSink* end() const noexcept { return empty() ? nullptr : begin() + shared_->sinks->size(); }
    /// The same sinks for holders on any thread; null for none.
    std::shared_ptr<const AdvisedSinks> everywhere() const noexcept { return empty() ? nullptr : shared_->sinks; }
    /// Whether it is the same list, not only an equal one.
    friend bool operator==(const SinkList&, const SinkList&) noexcept = default;

private:
    struct Shared {
        std::shared_ptr<const AdvisedSinks> sinks;
        std::size_t uses;
    };

    Shared* shared_ = nullptr;
};

/// Where hosts advise their sinks of the event interface. It is a part of the object that raises the events: their
/// references are counted together.
class ConnectionPoint final : public IConnectionPoint {
public:
    /// `container` bears the events of `eventInterfaceId`.
    ConnectionPoint(IConnectionPointContainer& container, const IID& eventInterfaceId) noexcept
        : container_(container), eventInterfaceId_(eventInterfaceId) {}
    ConnectionPoint(const ConnectionPoint&) = delete;
    ConnectionPoint& operator=(const ConnectionPoint&) = delete;
    virtual ~ConnectionPoint();

    /// Those that are advised at present.
    const SinkList& sinks() const noexcept { return sinks_; }
    /// Whether the sink has not been unadvised since.
    bool isAdvised(DWORD cookie) const noexcept;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return container_.AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return container_.Release(); }

    HRESULT STDMETHODCALLTYPE GetConnectionInterface(IID* id) override;
    HRESULT STDMETHODCALLTYPE GetConnectionPointContainer(IConnectionPointContainer** container) override;
    HRESULT STDMETHODCALLTYPE Advise(IUnknown* sink, DWORD* cookie) override;
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD cookie) override;
    HRESULT STDMETHODCALLTYPE EnumConnections(IEnumConnections** enumerator) override;

private:
    IConnectionPointContainer& container_;
    const IID& eventInterfaceId_;
    SinkList sinks_;
    DWORD lastCookie_ = 0;
};

/// An enumerator over the one connection point that a container has.
HRESULT enumerateConnectionPoints(IConnectionPoint* point, IEnumConnectionPoints** enumerator) noexcept;

}  // namespace corvane
