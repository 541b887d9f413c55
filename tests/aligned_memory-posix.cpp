#include <algorithm>
#include <cstdlib>

#include "tests/aligned_memory.h"

namespace corvane::test {

void* takeAligned(std::size_t size, std::size_t alignment) noexcept {
    void* memory = nullptr;
    return posix_memalign(&memory, std::max(alignment, sizeof(void*)), size) == 0 ? memory : nullptr;
}

void giveBackAligned(void* memory) noexcept { std::free(memory); }

}  // namespace corvane::test
