#pragma once

#include <cstddef>
#include <ostream>

namespace corvane::testing {

/// What the process holds at a moment.
struct ProcessMemory {
    std::size_t heapBlocks = 0;  ///< in use, in all heaps
    std::size_t heapBytes = 0;
    std::size_t taskBlocks = 0;  ///< handed out by the platform's allocator, texts included; see CountedTaskMemory
    unsigned nextTlsIndex = 0;   ///< grows as indexes are kept

    static ProcessMemory now();
};

std::ostream& operator<<(std::ostream& stream, const ProcessMemory& memory);

/// How many blocks the platform's allocator has handed out and not got back; see CountedTaskMemory.
std::size_t livingTaskBlocks();

/// Counts what CoTaskMemAlloc hands out, to all of its callers, until the end of the scope. Texts are counted exactly
/// where the environment says OANOCACHE=1.
class CountedTaskMemory {
public:
    CountedTaskMemory();
    CountedTaskMemory(const CountedTaskMemory&) = delete;
    CountedTaskMemory& operator=(const CountedTaskMemory&) = delete;
    ~CountedTaskMemory();
};

}  // namespace corvane::testing
