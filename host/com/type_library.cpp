#include "host/com/type_library.h"

#include <string>

#include "host/com/error_boundary.h"
#include "platform/automation_error.h"

namespace corvane {
namespace {

HMODULE ownModule() {
    static const char somethingInThisModule = 0;
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&somethingInThisModule), &module);
    return module;
}

}  // namespace

std::u16string modulePath() {
    std::u16string path(MAX_PATH, u'\0');
    for (;;) {
        const DWORD length =
            GetModuleFileNameW(ownModule(), reinterpret_cast<WCHAR*>(path.data()), static_cast<DWORD>(path.size()));
        if (length < path.size()) {
            path.resize(length);
            return path;
        }
        path.resize(path.size() * 2);
    }
}

HRESULT loadTypeLibrary(ComReference<ITypeLib>& library) noexcept {
    try {
        ComReference<ITypeLib> loaded;
        const HRESULT result =
            LoadTypeLibEx(reinterpret_cast<const OLECHAR*>(modulePath().c_str()), REGKIND_NONE, loaded.receive());
        library = std::move(loaded);
        return result;
    } catch (const std::exception&) {
        return E_OUTOFMEMORY;
    }
}

HRESULT loadTypeInfo(REFGUID id, ComReference<ITypeInfo>& information) noexcept {
    ComReference<ITypeLib> library;
    HRESULT result = loadTypeLibrary(library);
    if (FAILED(result)) return result;
    ComReference<ITypeInfo> found;
    result = library->GetTypeInfoOfGuid(id, found.receive());
    information = std::move(found);
    return result;
}

}  // namespace corvane
