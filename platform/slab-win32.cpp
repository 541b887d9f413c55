#include <new>

#include "platform/slab.h"

namespace corvane {

// Large pages need a privilege here that programs do not have. Larger pieces the heap gives back to the system when
// they are freed, and the next load would touch each of their pages for the first time again.
const std::size_t largestSlab = std::size_t{1} << 16;

Slab allocateSlab(std::size_t size) { return Slab(static_cast<std::byte*>(::operator new(size)), SlabRelease{size}); }

void SlabRelease::operator()(std::byte* slab) const noexcept { ::operator delete(slab); }

}  // namespace corvane
