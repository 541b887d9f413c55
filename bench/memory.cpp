// What one load keeps, and how much more it needs on the way: every allocation of this process goes through here. One
// load a process, so that no memory of an earlier one is used again.

#include <dlfcn.h>
#include <malloc.h>

#include <algorithm>
#include <iostream>

#include "bench/corvane.h"

extern "C" void* __libc_malloc(std::size_t);
extern "C" void* __libc_calloc(std::size_t, std::size_t);
extern "C" void* __libc_realloc(void*, std::size_t);
extern "C" void* __libc_memalign(std::size_t, std::size_t);
extern "C" void __libc_free(void*);

namespace {

std::size_t live = 0;
std::size_t peak = 0;

// Aligned pieces count as what was asked for: the library calls usable what it has set aside to align them and nobody
// touches.
struct AlignedPiece {
    void* memory;
    std::size_t size;
};
constexpr std::size_t mostAlignedPieces = 4096;
AlignedPiece alignedPieces[mostAlignedPieces];
std::size_t alignedCount = 0;

AlignedPiece* alignedPiece(void* memory) {
    AlignedPiece* const end = alignedPieces + alignedCount;
    AlignedPiece* const found =
        std::find_if(alignedPieces, end, [&](const AlignedPiece& piece) { return piece.memory == memory; });
    return found != end ? found : nullptr;
}
void* taken(void* memory, std::size_t size) {
    live += size;
    peak = std::max(peak, live);
    return memory;
}
void* taken(void* memory) { return taken(memory, malloc_usable_size(memory)); }
void given(void* memory) {
    if (AlignedPiece* const piece = alignedPiece(memory)) {
        live -= piece->size;
        *piece = alignedPieces[--alignedCount];
    } else {
        live -= malloc_usable_size(memory);
    }
}

}  // namespace

extern "C" void* malloc(std::size_t size) { return taken(__libc_malloc(size)); }
extern "C" void* calloc(std::size_t count, std::size_t size) { return taken(__libc_calloc(count, size)); }
extern "C" void* realloc(void* memory, std::size_t size) {
    given(memory);
    return taken(__libc_realloc(memory, size));
}
extern "C" void* aligned_alloc(std::size_t alignment, std::size_t size) {
    if (alignedCount == mostAlignedPieces) return nullptr;
    void* const memory = __libc_memalign(alignment, size);
    if (memory == nullptr) return nullptr;
    alignedPieces[alignedCount++] = {memory, size};
    return taken(memory, size);
}
extern "C" void free(void* memory) {
    given(memory);
    __libc_free(memory);
}

// Prints the bytes that live after the load and those at its peak.
int main(int argc, char** argv) {
    using corvane::bench::PrepareLoad;
    if (argc < 2) {
        std::cerr << "usage: " << argv[0] << " LINES [LIBRARY OF A PEER]\n";
        return 64;
    }
    PrepareLoad* prepare = corvane::bench::prepareCorvane;
    if (argc > 2) {
        void* const library = dlopen(argv[2], RTLD_NOW | RTLD_LOCAL);
        if (library == nullptr) {
            std::cerr << dlerror() << '\n';
            return 1;
        }
        prepare = reinterpret_cast<PrepareLoad*>(dlsym(library, "prepareLoad"));
    }  // cppcheck-suppress resourceLeak ; what it prepares is called until the end
    std::function<void()> load;
    prepare(std::stoull(argv[1]), load);
    const std::size_t before = live;
    peak = live;
    load();
    const std::size_t after = live;
    const std::size_t most = peak;
    std::cout << after - before << ' ' << most - before << '\n';
    return 0;
}
