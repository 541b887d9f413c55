#include <sys/mman.h>

#include <new>

#include "platform/slab.h"

namespace corvane {
namespace {

constexpr std::align_val_t largePageAlignment{largePageSize};

}  // namespace

Slab allocateSlab(std::size_t size) {
    if (size != largePageSize) return Slab(static_cast<std::byte*>(::operator new(size)), SlabRelease{size});
    Slab slab(static_cast<std::byte*>(::operator new(size, largePageAlignment)), SlabRelease{size});
    madvise(slab.get(), size, MADV_HUGEPAGE);  // small pages do as well where it is refused
    return slab;
}

void SlabRelease::operator()(std::byte* slab) const noexcept {
    if (size != largePageSize)
        ::operator delete(slab);
    else
        ::operator delete(slab, largePageAlignment);
}

}  // namespace corvane
