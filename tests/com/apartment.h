#pragma once

#include "host/com/automation.h"

namespace corvane::testing {

/// The calling thread's apartment until the end of the scope.
class Apartment {
public:
    explicit Apartment(COINIT kind = COINIT_APARTMENTTHREADED) : entered_(CoInitializeEx(nullptr, kind)) {}
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;
    ~Apartment() {
        if (SUCCEEDED(entered_)) CoUninitialize();
    }

private:
    const HRESULT entered_;
};

}  // namespace corvane::testing
