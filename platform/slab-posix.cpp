#include <sys/mman.h>

#include <new>

#include "platform/slab.h"

namespace corvane {
namespace {

// What usual processors map as one page, which is then touched once instead of hundreds of times.
constexpr std::size_t largePage = std::size_t{1} << 21;
constexpr std::align_val_t largePageAlignment{largePage};

}  // namespace

const std::size_t largestSlab = largePage;

Slab allocateSlab(std::size_t size) {
    if (size != largePage) return Slab(static_cast<std::byte*>(::operator new(size)), SlabRelease{size});
    Slab slab(static_cast<std::byte*>(::operator new(size, largePageAlignment)), SlabRelease{size});
    madvise(slab.get(), size, MADV_HUGEPAGE);  // small pages do as well where it is refused
    return slab;
}

void SlabRelease::operator()(std::byte* slab) const noexcept {
    if (size != largePage)
        ::operator delete(slab);
    else
        ::operator delete(slab, largePageAlignment);
}

}  // namespace corvane
