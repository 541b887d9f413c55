#include "host/com/connection_point.h"

#include <algorithm>
#include <limits>

#include "host/com/enumerator.h"

namespace corvane {
namespace {

/// The connections as they were when the enumeration began. Hosts release enumerators on any thread.
class Connections {
public:
    explicit Connections(const SinkList& sinks) : sinks_(sinks.everywhere()) {}
    std::size_t count() const { return sinks_ ? sinks_->size() : 0; }
    bool item(std::size_t position, CONNECTDATA& connection) const {
        if (position >= count()) return false;
        const AdvisedSink& advised = (*sinks_)[position];
        connection.pUnk = ComReference<IUnknown>(advised.sink.get()).detach();
        connection.dwCookie = advised.cookie;
        return true;
    }

private:
    std::shared_ptr<const AdvisedSinks> sinks_;
};

class ConnectionPoints {
public:
    explicit ConnectionPoints(IConnectionPoint* point) : point_(point) {}
    std::size_t count() const { return 1; }
    bool item(std::size_t position, IConnectionPoint*& point) const {
        if (position >= count()) return false;
        point = ComReference<IConnectionPoint>(point_).detach();
        return true;
    }

private:
    ComReference<IConnectionPoint> point_;
};

template <typename Interface, typename Item, typename Source>
HRESULT handOutEnumerator(const IID& interfaceId, Source source, Interface** enumerator) noexcept {
    if (enumerator == nullptr) return E_POINTER;
    *enumerator = nullptr;
    auto* const created = new (std::nothrow) Enumerator<Interface, Item, Source>(interfaceId, std::move(source));
    if (created == nullptr) return E_OUTOFMEMORY;
    created->AddRef();
    *enumerator = created;
    return S_OK;
}

}  // namespace

ConnectionPoint::~ConnectionPoint() {
    // A sink may unadvise itself once more on its way; by then there is no list.
    const SinkList released = std::move(sinks_);
}

bool ConnectionPoint::isAdvised(DWORD cookie) const noexcept {
    return std::any_of(sinks_.begin(), sinks_.end(),
                       [&](const AdvisedSink& advised) { return advised.cookie == cookie; });
}

HRESULT ConnectionPoint::QueryInterface(REFIID id, void** object) {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (!IsEqualIID(id, IID_IUnknown) && !IsEqualIID(id, IID_IConnectionPoint)) return E_NOINTERFACE;
    *object = static_cast<IConnectionPoint*>(this);
    AddRef();
    return S_OK;
}

HRESULT ConnectionPoint::GetConnectionInterface(IID* id) {
    if (id == nullptr) return E_POINTER;
    *id = eventInterfaceId_;
    return S_OK;
}

HRESULT ConnectionPoint::GetConnectionPointContainer(IConnectionPointContainer** container) {
    if (container == nullptr) return E_POINTER;
    *container = ComReference<IConnectionPointContainer>(&container_).detach();
    return S_OK;
}

HRESULT ConnectionPoint::Advise(IUnknown* sink, DWORD* cookie) {
    if (sink == nullptr || cookie == nullptr) return E_POINTER;
    *cookie = 0;
    // A sink that knows itself under IDispatch only is as good: events arrive through nothing else.
    ComReference<IDispatch> dispatch = queryFor<IDispatch>(sink, eventInterfaceId_);
    if (!dispatch) dispatch = queryFor<IDispatch>(sink, IID_IDispatch);
    if (!dispatch) return CONNECT_E_CANNOTCONNECT;
    if (lastCookie_ == std::numeric_limits<DWORD>::max()) return CONNECT_E_ADVISELIMIT;
    try {
        // An event under way goes on over the list that it began with.
        AdvisedSinks advised(sinks_.begin(), sinks_.end());
        advised.push_back({std::move(dispatch), lastCookie_ + 1});
        sinks_ = SinkList(std::move(advised));
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
    *cookie = ++lastCookie_;
    return S_OK;
}

HRESULT ConnectionPoint::Unadvise(DWORD cookie) {
    if (!isAdvised(cookie)) return CONNECT_E_NOCONNECTION;
    const SinkList before = sinks_;
    try {
        AdvisedSinks left;
        std::copy_if(before.begin(), before.end(), std::back_inserter(left),
                     [&](const AdvisedSink& advised) { return advised.cookie != cookie; });
        sinks_ = SinkList(std::move(left));
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
    // The sink's last reference may go with the old list, and with the sink anything: nothing is touched after this.
    return S_OK;
}

HRESULT ConnectionPoint::EnumConnections(IEnumConnections** enumerator) {
    return handOutEnumerator<IEnumConnections, CONNECTDATA>(IID_IEnumConnections, Connections(sinks_), enumerator);
}

HRESULT enumerateConnectionPoints(IConnectionPoint* point, IEnumConnectionPoints** enumerator) noexcept {
    return handOutEnumerator<IEnumConnectionPoints, IConnectionPoint*>(IID_IEnumConnectionPoints,
                                                                       ConnectionPoints(point), enumerator);
}

}  // namespace corvane
