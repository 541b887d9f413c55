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
extern "C" void __libc_free(void*);

namespace {

std::size_t live = 0;
std::size_t peak = 0;

void* taken(void* memory) {
    live += malloc_usable_size(memory);
    peak = std::max(peak, live);
    return memory;
}
void given(void* memory) { live -= malloc_usable_size(memory); }

}  // namespace

extern "C" void* malloc(std::size_t size) { return taken(__libc_malloc(size)); }
extern "C" void* calloc(std::size_t count, std::size_t size) { return taken(__libc_calloc(count, size)); }
extern "C" void* realloc(void* memory, std::size_t size) {
    given(memory);
    return taken(__libc_realloc(memory, size));
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
