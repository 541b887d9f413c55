#pragma once

#include <cstddef>
#include <string>

#include "host/com/automation.h"

namespace corvane::bench {

/// The real DLL, loaded without registration, and what it asks of the message queue.
class LoadedDll {
public:
    explicit LoadedDll(const std::wstring& path);

    ComReference<_clsScriptControl> newControl() const;

    /// What the DLL's call of the queue leads to.
    enum class Queue {
        Real,     ///< the system's function
        Counted,  ///< the same, counted
        LeftOut,  ///< nothing, as if the queue were empty
    };
    void use(Queue queue);
    static std::size_t queueCalls();

private:
    HMODULE module_;
    void** peekMessage_;  // the DLL's reference to the system's function
};

}  // namespace corvane::bench
