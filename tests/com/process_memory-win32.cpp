#include <objbase.h>
#include <windows.h>

#include <array>
#include <atomic>

#include "tests/com/process_memory.h"

namespace corvane::testing {
namespace {

std::atomic<std::size_t> handedOut{0};

/// Its methods come in pairs, before and after the allocator's work.
class Counter final : public IMallocSpy {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        const bool known = IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, IID_IMallocSpy);
        *object = known ? this : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }

    SIZE_T STDMETHODCALLTYPE PreAlloc(SIZE_T size) override { return size; }
    void* STDMETHODCALLTYPE PostAlloc(void* block) override {
        if (block != nullptr) ++handedOut;
        return block;
    }
    void* STDMETHODCALLTYPE PreFree(void* block, BOOL counted) override {
        if (block != nullptr && counted) --handedOut;
        return block;
    }
    void STDMETHODCALLTYPE PostFree(BOOL) override {}
    SIZE_T STDMETHODCALLTYPE PreRealloc(void* block, SIZE_T size, void** passed, BOOL) override {
        *passed = block;
        return size;
    }
    void* STDMETHODCALLTYPE PostRealloc(void* block, BOOL) override { return block; }
    void* STDMETHODCALLTYPE PreGetSize(void* block, BOOL) override { return block; }
    SIZE_T STDMETHODCALLTYPE PostGetSize(SIZE_T size, BOOL) override { return size; }
    void* STDMETHODCALLTYPE PreDidAlloc(void* block, BOOL) override { return block; }
    int STDMETHODCALLTYPE PostDidAlloc(void*, BOOL, int did) override { return did; }
    void STDMETHODCALLTYPE PreHeapMinimize() override {}
    void STDMETHODCALLTYPE PostHeapMinimize() override {}
};

Counter counter;

}  // namespace

ProcessMemory ProcessMemory::now() {
    ProcessMemory memory;
    std::array<HANDLE, 64> heaps{};
    const DWORD count = GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data());
    for (DWORD i = 0; i < count; ++i) {
        HeapLock(heaps[i]);
        PROCESS_HEAP_ENTRY entry{};
        while (HeapWalk(heaps[i], &entry)) {
            if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) == 0) continue;
            ++memory.heapBlocks;
            memory.heapBytes += entry.cbData;
        }
        HeapUnlock(heaps[i]);
    }
    memory.taskBlocks = handedOut;
    memory.nextTlsIndex = TlsAlloc();
    TlsFree(memory.nextTlsIndex);
    return memory;
}

std::ostream& operator<<(std::ostream& stream, const ProcessMemory& memory) {
    return stream << memory.heapBytes << " bytes in " << memory.heapBlocks << " blocks, " << memory.taskBlocks
                  << " task blocks, TLS index " << memory.nextTlsIndex;
}

std::size_t livingTaskBlocks() { return handedOut; }

CountedTaskMemory::CountedTaskMemory() { CoRegisterMallocSpy(&counter); }
CountedTaskMemory::~CountedTaskMemory() { CoRevokeMallocSpy(); }

}  // namespace corvane::testing
