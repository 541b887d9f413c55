#pragma once

#include <functional>

#include "tests/com/every_event.h"

namespace corvane::testing {

/// A sink that lives as long as somebody holds it, as those of real hosts do.
class HeldSink final : public Sink {
public:
    /// `living` counts such sinks as long as they live; `onEnd` is called when the sink goes.
    HeldSink(int& living, Handler handler, std::function<void()> onEnd = {})
        : Sink(std::move(handler)), living_(living), onEnd_(std::move(onEnd)) {
        ++living_;
    }
    ~HeldSink() override {
        if (onEnd_) onEnd_();
        --living_;
    }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = Sink::Release();
        if (left == 0) delete this;
        return left;
    }

private:
    int& living_;
    std::function<void()> onEnd_;
};

/// Advises a sink that only the object holds from then on; the cookie.
inline DWORD adviseHeld(IUnknown& object, int& living, Sink::Handler handler, std::function<void()> onEnd = {}) {
    const ComReference<IDispatch> sink(new HeldSink(living, std::move(handler), std::move(onEnd)));
    DWORD cookie = 0;
    connectionPointOf(object)->Advise(sink.get(), &cookie);
    return cookie;
}

}  // namespace corvane::testing
