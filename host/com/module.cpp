#include "host/com/module.h"

namespace corvane {

std::atomic<long>& ModuleUse::count() noexcept {
    static constinit std::atomic<long> uses{0};
    return uses;
}

std::atomic<long>& ModuleUse::locks() noexcept {
    static constinit std::atomic<long> locks{0};
    return locks;
}

bool ModuleUse::unlock() noexcept {
    long present = locks();
    while (present > 0)
        if (locks().compare_exchange_weak(present, present - 1)) return true;
    return false;
}

}  // namespace corvane
