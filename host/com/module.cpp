#include "host/com/module.h"

namespace corvane {

std::atomic<long>& ModuleUse::count() noexcept {
    static constinit std::atomic<long> uses{0};
    return uses;
}

}  // namespace corvane
