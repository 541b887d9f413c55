#include <new>

#include "platform/slab.h"

namespace corvane {

// Large pages need a privilege here that programs do not have. Larger slabs the heap would take from the system and
// give back each time, with all their pages.
const std::size_t largestSlab = std::size_t{1} << 18;

Slab allocateSlab(std::size_t size) { return Slab(static_cast<std::byte*>(::operator new(size)), SlabRelease{size}); }

void SlabRelease::operator()(std::byte* slab) const noexcept { ::operator delete(slab); }

}  // namespace corvane
