// Wine answers 0 where a process is asked for the number of its handles or GDI objects, so their places are looked at
// one by one.

#include <malloc.h>
#include <windows.h>

#include <array>

#include "tests/com/process_memory.h"
#include "tests/model/measurement.h"

namespace corvane::testing {
namespace {

void giveBackWhatIsKept() {
    _heapmin();
    std::array<HANDLE, 64> heaps{};
    const DWORD count = GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data());
    for (DWORD i = 0; i < count; ++i) HeapCompact(heaps[i], 0);
}

std::size_t privateBytes() {
    std::size_t bytes = 0;
    MEMORY_BASIC_INFORMATION pages{};
    for (const char* at = nullptr; VirtualQuery(at, &pages, sizeof pages) != 0;
         at = static_cast<const char*>(pages.BaseAddress) + pages.RegionSize)
        if (pages.State == MEM_COMMIT && pages.Type == MEM_PRIVATE) bytes += pages.RegionSize;
    return bytes;
}

// Places that became free are taken before new ones, so what is left behind is seen among the first.
constexpr UINT_PTR mostPlaces = 4096;

unsigned handles() {
    unsigned count = 0;
    DWORD flags = 0;
    for (UINT_PTR place = 1; place <= mostPlaces; ++place)
        if (GetHandleInformation(reinterpret_cast<HANDLE>(4 * place), &flags)) ++count;
    return count;
}

unsigned graphicsObjects() {
    if (const DWORD counted = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS)) return counted;
    unsigned count = 0;
    for (UINT_PTR place = 1; place <= mostPlaces; ++place)
        if (GetObjectType(reinterpret_cast<HGDIOBJ>(place)) != 0) ++count;
    return count;
}

unsigned ownWindowsIn(HWND parent) {
    unsigned count = 0;
    for (HWND window = nullptr; (window = FindWindowExW(parent, window, nullptr, nullptr)) != nullptr;) {
        DWORD process = 0;
        GetWindowThreadProcessId(window, &process);
        if (process == GetCurrentProcessId()) ++count;
    }
    return count;
}

}  // namespace

std::string measurement() {
    giveBackWhatIsKept();
    const std::size_t heap = ProcessMemory::now().heapBytes;
    const unsigned windows = ownWindowsIn(nullptr) + ownWindowsIn(HWND_MESSAGE);
    return "heap=" + std::to_string(heap) + " private=" + std::to_string(privateBytes()) +
           " handles=" + std::to_string(handles()) + " gdi=" + std::to_string(graphicsObjects()) +
           " user=" + std::to_string(GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS)) +
           " windows=" + std::to_string(windows);
}

}  // namespace corvane::testing
