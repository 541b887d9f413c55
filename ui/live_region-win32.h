#pragma once

#include <windows.h>

namespace corvane {

/// A label whose text screen readers say when it has changed, wherever the focus is, once they have finished what they
/// are saying. Where the system does not know of this the label is a label.
class LiveRegion {
public:
    explicit LiveRegion(HWND label);
    LiveRegion(const LiveRegion&) = delete;
    LiveRegion& operator=(const LiveRegion&) = delete;
    /// The label must still be there.
    ~LiveRegion();

    /// The text has changed.
    void announce() const;

private:
    HWND label_;
};

}  // namespace corvane
