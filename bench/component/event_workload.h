#pragma once

#include "bench/component/plain_events.h"
#include "bench/component/sinks.h"
#include "host/com/event_dispatch.h"

namespace corvane::bench {

/// One event with sample values, raised again and again: through the component's relay and in the straightforward way.
class EventWorkload {
public:
    explicit EventWorkload(HostEvent kind);

    void throughRelay(std::size_t times) { raise(relay_, times); }
    void plainly(std::size_t times) { raise(plain_, times); }

private:
    /// Bears the connection point; nobody asks it anything.
    class Container final : public IConnectionPointContainer {
    public:
        virtual ~Container() = default;
        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
        ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
        ULONG STDMETHODCALLTYPE Release() override { return 1; }
        HRESULT STDMETHODCALLTYPE EnumConnectionPoints(IEnumConnectionPoints**) override { return E_NOTIMPL; }
        HRESULT STDMETHODCALLTYPE FindConnectionPoint(REFIID, IConnectionPoint**) override { return E_NOTIMPL; }
    };

    void raise(EventSink& way, std::size_t times);

    std::vector<Value> values_;
    Event event_;
    CountingSink sink_;
    FloatingPointState host_ = FloatingPointState::present();
    const FloatingPointState* presentHost_ = &host_;
    Container container_;
    ConnectionPoint point_{container_, DIID___clsScriptControl};
    EventRelay relay_{point_, presentHost_};
    PlainEvents plain_;
};

}  // namespace corvane::bench
