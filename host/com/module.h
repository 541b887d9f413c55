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
    static bool none() noexcept { return count() == 0 && locks() == 0; }

    /// A lock that outlives every scope, as class factories hand out.
    static void lock() noexcept { ++locks(); }
    /// False when there is no lock to undo: a host's slip must not unload the module under living objects.
    static bool unlock() noexcept;

private:
    static std::atomic<long>& count() noexcept;
    static std::atomic<long>& locks() noexcept;
};

}  // namespace corvane
