#include <new>

#include "platform/slab.h"

namespace corvane {

// Large pages need a privilege here that programs do not have.
Slab allocateSlab(std::size_t size) { return Slab(static_cast<std::byte*>(::operator new(size)), SlabRelease{size}); }

void SlabRelease::operator()(std::byte* slab) const noexcept { ::operator delete(slab); }

}  // namespace corvane
