#include "bench/component/loaded_dll.h"

#include <cstring>

#include "bench/component/sinks.h"

namespace corvane::bench {
namespace {

std::size_t calls = 0;

BOOL WINAPI countedPeekMessage(MSG* message, HWND window, UINT first, UINT last, UINT remove) {
    ++calls;
    return PeekMessageW(message, window, first, last, remove);
}

BOOL WINAPI noMessage(MSG*, HWND, UINT, UINT, UINT) { return FALSE; }

template <typename Target>
const Target* at(HMODULE module, DWORD offset) {
    return reinterpret_cast<const Target*>(reinterpret_cast<const std::byte*>(module) + offset);
}

/// Where a module keeps the address of a function that it takes from another one, or null.
void** importOf(HMODULE module, const char* function) {
    const auto* const headers =
        at<IMAGE_NT_HEADERS>(module, static_cast<DWORD>(at<IMAGE_DOS_HEADER>(module, 0)->e_lfanew));
    const DWORD table = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    for (const auto* library = at<IMAGE_IMPORT_DESCRIPTOR>(module, table); library->Name != 0; ++library) {
        const auto* name = at<IMAGE_THUNK_DATA>(module, library->OriginalFirstThunk);
        for (DWORD i = 0; name[i].u1.AddressOfData != 0; ++i) {
            if (IMAGE_SNAP_BY_ORDINAL(name[i].u1.Ordinal)) continue;
            const char* imported = at<char>(module, static_cast<DWORD>(name[i].u1.AddressOfData) + sizeof(WORD));
            if (std::strcmp(imported, function) != 0) continue;
            const DWORD offset = library->FirstThunk + i * static_cast<DWORD>(sizeof(void*));
            return reinterpret_cast<void**>(reinterpret_cast<std::byte*>(module) + offset);
        }
    }
    return nullptr;
}

}  // namespace

LoadedDll::LoadedDll(const std::wstring& path) : module_(LoadLibraryW(path.c_str())) {
    require(module_ != nullptr, "the DLL cannot be loaded");
    peekMessage_ = importOf(module_, "PeekMessageW");
    require(peekMessage_ != nullptr, "the DLL does not take PeekMessageW from the system");
    DWORD before = 0;
    VirtualProtect(peekMessage_, sizeof *peekMessage_, PAGE_READWRITE, &before);
}

ComReference<_clsScriptControl> LoadedDll::newControl() const {
    const auto getClassObject = reinterpret_cast<decltype(&DllGetClassObject)>(
        reinterpret_cast<void*>(GetProcAddress(module_, "DllGetClassObject")));
    void* factory = nullptr;
    require(SUCCEEDED(getClassObject(CLSID_clsScriptControl, IID_IClassFactory, &factory)), "there is no class");
    const auto owned = ComReference<IClassFactory>::adopt(static_cast<IClassFactory*>(factory));
    void* control = nullptr;
    require(SUCCEEDED(owned->CreateInstance(nullptr, IID__clsScriptControl, &control)), "there is no object");
    return ComReference<_clsScriptControl>::adopt(static_cast<_clsScriptControl*>(control));
}

void LoadedDll::use(Queue queue) {
    const auto function = queue == Queue::LeftOut   ? &noMessage
                          : queue == Queue::Counted ? &countedPeekMessage
                                                    : nullptr;
    *peekMessage_ = function != nullptr ? reinterpret_cast<void*>(function) : reinterpret_cast<void*>(&PeekMessageW);
    calls = 0;
}

std::size_t LoadedDll::queueCalls() { return calls; }

}  // namespace corvane::bench
