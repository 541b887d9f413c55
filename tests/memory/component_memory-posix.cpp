// The component is linked in: its memory comes from this program's own operator new and from the stand-in.

#include "tests/allocation_counter.h"
#include "tests/com/stand_in.h"
#include "tests/memory/component_memory.h"

namespace corvane::test {

struct ComponentMemory::Watch {};

ComponentMemory::ComponentMemory() = default;
ComponentMemory::~ComponentMemory() = default;

std::size_t ComponentMemory::living() { return livingAllocations() + testing::livingAutomationBlocks(); }

}  // namespace corvane::test
