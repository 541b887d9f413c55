#pragma once

#include <memory>
#include <vector>

#include "host/com/automation.h"

namespace corvane {

/// A host's sink of the events, as advised.
struct AdvisedSink {
    ComReference<IDispatch> sink;
    DWORD cookie = 0;
};
using AdvisedSinks = std::vector<AdvisedSink>;

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

    /// The sinks in the order of advising; null: none. Who holds the list holds all its sinks, whatever they do
    /// meanwhile.
    const std::shared_ptr<const AdvisedSinks>& sinks() const noexcept { return sinks_; }
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
    std::shared_ptr<const AdvisedSinks> sinks_;
    DWORD lastCookie_ = 0;
};

/// An enumerator over the one connection point that a container has.
HRESULT enumerateConnectionPoints(IConnectionPoint* point, IEnumConnectionPoints** enumerator) noexcept;

}  // namespace corvane
