#pragma once

#include "host/com/automation.h"

namespace corvane::testing {

/// Keeps the DLL in the process until the end of the scope, and no longer. There is one at a time; everything that the
/// tests ask of the component they ask of this one.
class LoadedComponent {
public:
    LoadedComponent();
    LoadedComponent(const LoadedComponent&) = delete;
    LoadedComponent& operator=(const LoadedComponent&) = delete;
    ~LoadedComponent();

    static bool isInTheProcess();
};

}  // namespace corvane::testing
