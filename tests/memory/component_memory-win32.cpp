// The component is in its DLL, as it is shipped, and knows nothing of tests. What it asks the system for it asks
// through its table of imports, so that is where this program takes the place of the functions that hand out memory.

#include <windows.h>
// windows.h first: the others need its types.
#include <oleauto.h>

#include <cstdlib>
#include <cstring>
#include <unordered_set>
#include <vector>

#include "tests/com/apartment.h"
#include "tests/com/component.h"
#include "tests/com/every_event.h"
#include "tests/com/loaded_component.h"
#include "tests/com/process_memory.h"
#include "tests/memory/component_memory.h"
#include "tests/memory/memory_fault.h"

namespace corvane::test {
namespace {

std::unordered_set<void*>& heldBlocks() {
    static std::unordered_set<void*> blocks;
    return blocks;
}

void* noted(void* block) {
    if (block != nullptr) heldBlocks().insert(block);
    return block;
}

void* refusableMalloc(std::size_t size) { return MemoryFault::grants() ? noted(std::malloc(size)) : nullptr; }
void* refusableCalloc(std::size_t count, std::size_t size) {
    return MemoryFault::grants() ? noted(std::calloc(count, size)) : nullptr;
}
void* refusableRealloc(void* block, std::size_t size) {
    if (!MemoryFault::grants()) return nullptr;
    void* const moved = std::realloc(block, size);
    if (moved == nullptr) return nullptr;
    heldBlocks().erase(block);
    return noted(moved);
}
void notingFree(void* block) {
    heldBlocks().erase(block);
    std::free(block);
}

/// A function of the component's imports, by name, and what it calls instead.
struct Import {
    const char* name;
    void* replacement;
    void (*keepOriginal)(void* original);
};

template <typename Function>
void* addressOf(Function* function) {
    return reinterpret_cast<void*>(function);
}

/// One of the system's functions that need memory; each use makes a type of its own, which keeps the original.
template <typename Function, typename Distinct = decltype([] {})>
struct Refusable;
template <typename Result, typename... Arguments, typename Distinct>
struct Refusable<Result(STDAPICALLTYPE*)(Arguments...), Distinct> {
    static inline Result(STDAPICALLTYPE* original)(Arguments...) = nullptr;

    static Result STDAPICALLTYPE call(Arguments... arguments) {
        if (MemoryFault::grants()) return original(arguments...);
        if constexpr (std::is_pointer_v<Result>)
            return nullptr;
        else
            return E_OUTOFMEMORY;
    }
    static Import named(const char* name) {
        return {name, addressOf(&call),
                [](void* function) { original = reinterpret_cast<Result(STDAPICALLTYPE*)(Arguments...)>(function); }};
    }
};

INT(STDAPICALLTYPE* reallocate)(BSTR*, const OLECHAR*, UINT) = nullptr;
void keepReallocation(void* function) {
    reallocate = reinterpret_cast<INT(STDAPICALLTYPE*)(BSTR*, const OLECHAR*, UINT)>(function);
}
INT STDAPICALLTYPE refusableReallocation(BSTR* text, const OLECHAR* content, UINT length) {
    return MemoryFault::grants() ? reallocate(text, content, length) : FALSE;
}

const std::vector<Import>& imports() {
    const auto ignored = [](void*) {};
    static const std::vector<Import> all = {
        {"malloc", addressOf(refusableMalloc), ignored},
        {"calloc", addressOf(refusableCalloc), ignored},
        {"realloc", addressOf(refusableRealloc), ignored},
        {"free", addressOf(notingFree), ignored},
        Refusable<decltype(&SysAllocString)>::named("SysAllocString"),
        Refusable<decltype(&SysAllocStringLen)>::named("SysAllocStringLen"),
        Refusable<decltype(&SysAllocStringByteLen)>::named("SysAllocStringByteLen"),
        {"SysReAllocStringLen", addressOf(refusableReallocation), keepReallocation},
        Refusable<decltype(&SafeArrayCreate)>::named("SafeArrayCreate"),
        Refusable<decltype(&VariantCopy)>::named("VariantCopy"),
        Refusable<decltype(&VariantCopyInd)>::named("VariantCopyInd"),
        Refusable<decltype(&VariantChangeType)>::named("VariantChangeType"),
        Refusable<decltype(&VariantChangeTypeEx)>::named("VariantChangeTypeEx"),
        Refusable<decltype(&VarBstrFromI2)>::named("VarBstrFromI2"),
        Refusable<decltype(&VarBstrFromI4)>::named("VarBstrFromI4"),
        Refusable<decltype(&VarBstrFromR4)>::named("VarBstrFromR4"),
        Refusable<decltype(&VarBstrFromR8)>::named("VarBstrFromR8"),
        Refusable<decltype(&VarBstrFromBool)>::named("VarBstrFromBool"),
        Refusable<decltype(&VarR4FromStr)>::named("VarR4FromStr"),
        Refusable<decltype(&VarR8FromStr)>::named("VarR8FromStr"),
        Refusable<decltype(&VarI4FromStr)>::named("VarI4FromStr"),
        Refusable<decltype(&VarBoolFromStr)>::named("VarBoolFromStr"),
        Refusable<decltype(&CreateErrorInfo)>::named("CreateErrorInfo"),
        Refusable<decltype(&LoadTypeLibEx)>::named("LoadTypeLibEx"),
    };
    return all;
}

void write(ULONG_PTR& place, void* function) {
    DWORD protection = 0;
    VirtualProtect(&place, sizeof place, PAGE_READWRITE, &protection);
    place = reinterpret_cast<ULONG_PTR>(function);
    VirtualProtect(&place, sizeof place, protection, &protection);
}

void redirect(ULONG_PTR& place, const char* name) {
    for (const Import& import : imports()) {
        if (std::strcmp(import.name, name) != 0) continue;
        import.keepOriginal(reinterpret_cast<void*>(place));
        write(place, import.replacement);
    }
}

void redirectImportsOf(HMODULE module) {
    auto* const base = reinterpret_cast<std::byte*>(module);
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const IMAGE_DATA_DIRECTORY& table = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    for (auto* from = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + table.VirtualAddress); from->Name != 0;
         ++from) {
        auto* named = reinterpret_cast<const IMAGE_THUNK_DATA*>(base + from->OriginalFirstThunk);
        auto* place = reinterpret_cast<IMAGE_THUNK_DATA*>(base + from->FirstThunk);
        for (; named->u1.AddressOfData != 0; ++named, ++place) {
            if (IMAGE_SNAP_BY_ORDINAL(named->u1.Ordinal)) continue;
            const auto* const import = reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + named->u1.AddressOfData);
            redirect(place->u1.Function, reinterpret_cast<const char*>(import->Name));
        }
    }
}

/// What the 32-bit run-time support sorts for the first exception it keeps until the module is unloaded.
void raiseFirstError() {
    LONG position = -1;
    float value = 0;
    VARIANT_BOOL answered = VARIANT_TRUE;
    testing::newControl()->EditDataVariable(&position, &value, &answered);
    testing::takeError();
}

/// What the process keeps from the first component on.
struct Surroundings {
    testing::CountedTaskMemory counted;
    testing::Apartment apartment;
};

}  // namespace

struct ComponentMemory::Watch {
    Watch() {
        redirectImportsOf(GetModuleHandleW(L"CorvaneScript.dll"));
        raiseFirstError();
    }

    testing::LoadedComponent component;
};

ComponentMemory::ComponentMemory() {
    static const Surroundings surroundings;
    watch_ = std::make_unique<Watch>();  // cppcheck-suppress useInitializationList ; the surroundings come first
}
ComponentMemory::~ComponentMemory() = default;

std::size_t ComponentMemory::living() { return heldBlocks().size() + testing::livingTaskBlocks(); }

}  // namespace corvane::test
