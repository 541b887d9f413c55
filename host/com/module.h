#pragma once

#include <atomic>

namespace corvane {

/// Counts what keeps the module loaded: every object handed out, every lock of a class factory.
class ModuleUse {
public:
    ModuleUse() noexcept { ++count(); }
    ModuleUse(const ModuleUse&) = delete;
    ModuleUse& operator=(const ModuleUse&) = delete;
    ~ModuleUse() { --count(); }

    /// Whether the module may go.
    static bool none() noexcept { return count() == 0; }

    /// A lock that outlives every scope, as class factories hand out.
    static void lock() noexcept { ++count(); }
    static void unlock() noexcept { --count(); }

private:
    static std::atomic<long>& count() noexcept;
};

}  // namespace corvane
