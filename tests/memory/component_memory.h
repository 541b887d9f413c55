#pragma once

#include <cstddef>
#include <memory>

namespace corvane::test {

/// Keeps the component within reach of `MemoryFault` until the end of the scope: in the DLL of a process each request
/// for memory that the component makes of the system is then asked for.
class ComponentMemory {
public:
    ComponentMemory();
    ComponentMemory(const ComponentMemory&) = delete;
    ComponentMemory& operator=(const ComponentMemory&) = delete;
    ~ComponentMemory();

    /// How many blocks the component holds, and how many automation texts and arrays are held by anybody.
    static std::size_t living();

private:
    struct Watch;
    std::unique_ptr<Watch> watch_;
};

}  // namespace corvane::test
