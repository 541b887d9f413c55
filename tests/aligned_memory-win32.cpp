#include <malloc.h>

#include "tests/aligned_memory.h"

namespace corvane::test {

void* takeAligned(std::size_t size, std::size_t alignment) noexcept { return _aligned_malloc(size, alignment); }
void giveBackAligned(void* memory) noexcept { _aligned_free(memory); }

}  // namespace corvane::test
