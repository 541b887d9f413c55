// Registration of the classes and the type library. Each class has
//
//   CLSID\{id}                          description
//     InprocServer32                    path of this module; ThreadingModel = Apartment
//     ProgID, VersionIndependentProgID  prjCorvaneScript.clsX.1, prjCorvaneScript.clsX
//     TypeLib, Version                  the library's identifier; 1.0
//     Programmable                      there for automation clients that ask for it
//   prjCorvaneScript.clsX               description; CLSID; CurVer
//   prjCorvaneScript.clsX.1             description; CLSID
//
// below HKEY_CLASSES_ROOT; the library's own keys and those of its interfaces are the platform's work.
//
// On a 64-bit system 32-bit and 64-bit programs have keys of their own below CLSID and Interface and share all others,
// so what both need goes with the last of the two modules.

#include "host/com/registration.h"

#include <olectl.h>

#include <array>
#include <string>
#include <vector>

#include "host/com/published_classes.h"
#include "host/com/type_library.h"

namespace corvane {
namespace {

constexpr std::u16string_view programIdVersion = u".1";
constexpr WORD libraryMajor = 1;
constexpr WORD libraryMinor = 0;
constexpr std::u16string_view libraryVersion = u"1.0";
constexpr bool is64Bit = sizeof(void*) == 8;
constexpr SYSKIND ownSystem = is64Bit ? SYS_WIN64 : SYS_WIN32;
constexpr REGSAM viewOfOtherModule = is64Bit ? KEY_WOW64_32KEY : KEY_WOW64_64KEY;
constexpr std::u16string_view librarySystemOfOtherModule = is64Bit ? u"win32" : u"win64";

const WCHAR* wide(const std::u16string& text) { return reinterpret_cast<const WCHAR*>(text.c_str()); }

std::u16string textOf(const GUID& id) {
    std::array<OLECHAR, 39> text{};
    StringFromGUID2(id, text.data(), static_cast<int>(text.size()));
    return reinterpret_cast<const char16_t*>(text.data());
}

/// One value, with the key that it is in.
struct Entry {
    std::u16string key;
    std::u16string name;  // empty: the key's default value
    std::u16string value;
};

/// The keys of one class, below which nothing belongs to anybody else.
struct ClassKeys {
    std::u16string classId;
    std::u16string programId;
    std::u16string versionedProgramId;
};

ClassKeys keysOf(const PublishedInterface& published) {
    const std::u16string programId(published.programId);
    return {u"CLSID\\" + textOf(*published.classId), programId, programId + std::u16string(programIdVersion)};
}

std::vector<Entry> entriesOf(const PublishedInterface& published, const std::u16string& module) {
    const auto [classKey, programId, versionedProgramId] = keysOf(published);
    const std::u16string description(published.description);
    const std::u16string classId = textOf(*published.classId);
    return {
        {classKey, u"", description},
        {classKey + u"\\InprocServer32", u"", module},
        {classKey + u"\\InprocServer32", u"ThreadingModel", u"Apartment"},
        {classKey + u"\\ProgID", u"", versionedProgramId},
        {classKey + u"\\VersionIndependentProgID", u"", programId},
        {classKey + u"\\TypeLib", u"", textOf(LIBID_prjCorvaneScript)},
        {classKey + u"\\Version", u"", std::u16string(libraryVersion)},
        {classKey + u"\\Programmable", u"", u""},
        {programId, u"", description},
        {programId + u"\\CLSID", u"", classId},
        {programId + u"\\CurVer", u"", versionedProgramId},
        {versionedProgramId, u"", description},
        {versionedProgramId + u"\\CLSID", u"", classId},
    };
}

LONG write(const Entry& entry) {
    HKEY key = nullptr;
    LONG result = RegCreateKeyExW(HKEY_CLASSES_ROOT, wide(entry.key), 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr);
    if (result != ERROR_SUCCESS) return result;
    result = RegSetValueExW(key, entry.name.empty() ? nullptr : wide(entry.name), 0, REG_SZ,
                            reinterpret_cast<const BYTE*>(entry.value.c_str()),
                            static_cast<DWORD>((entry.value.size() + 1) * sizeof(char16_t)));
    RegCloseKey(key);
    return result;
}

HRESULT writeClasses() {
    const std::u16string module = modulePath();
    for (const PublishedInterface* published : creatableClasses)
        for (const Entry& entry : entriesOf(*published, module))
            if (write(entry) != ERROR_SUCCESS) return SELFREG_E_CLASS;
    return S_OK;
}

bool removeTree(const std::u16string& key) {
    const LONG result = RegDeleteTreeW(HKEY_CLASSES_ROOT, wide(key));
    return result == ERROR_SUCCESS || result == ERROR_FILE_NOT_FOUND;
}

bool exists(const std::u16string& key, REGSAM view = 0) {
    HKEY found = nullptr;
    if (RegOpenKeyExW(HKEY_CLASSES_ROOT, wide(key), 0, KEY_READ | view, &found) != ERROR_SUCCESS) return false;
    RegCloseKey(found);
    return true;
}

HRESULT removeClasses() {
    bool removed = true;
    for (const PublishedInterface* published : creatableClasses) {
        const ClassKeys keys = keysOf(*published);
        removed = removeTree(keys.classId) && removed;
        if (exists(keys.classId, viewOfOtherModule)) continue;
        removed = removeTree(keys.programId) && removed;
        removed = removeTree(keys.versionedProgramId) && removed;
    }
    return removed ? S_OK : SELFREG_E_CLASS;
}

HRESULT writeTypeLibrary() {
    ComReference<ITypeLib> library;
    if (FAILED(loadTypeLibrary(library))) return SELFREG_E_TYPELIB;
    const std::u16string module = modulePath();
    return FAILED(RegisterTypeLib(library.get(), reinterpret_cast<OLECHAR*>(const_cast<char16_t*>(module.c_str())),
                                  nullptr))
               ? SELFREG_E_TYPELIB
               : S_OK;
}

bool removeInterface(const IID& id) { return removeTree(u"Interface\\" + textOf(id)); }

// The platform removes what it has registered in whole; of what it could not register in whole, it leaves pieces.
HRESULT removeTypeLibrary() {
    UnRegisterTypeLib(LIBID_prjCorvaneScript, libraryMajor, libraryMinor, LOCALE_NEUTRAL, ownSystem);
    bool removed = removeInterface(publishedCollection.interfaceId);
    for (const PublishedInterface* published : creatableClasses) {
        removed = removeInterface(published->interfaceId) && removed;
        if (published->eventInterfaceId != nullptr) removed = removeInterface(*published->eventInterfaceId) && removed;
    }
    const std::u16string library = u"TypeLib\\" + textOf(LIBID_prjCorvaneScript);
    const std::u16string otherModule =
        library + u"\\" + std::u16string(libraryVersion) + u"\\0\\" + std::u16string(librarySystemOfOtherModule);
    if (!exists(otherModule)) removed = removeTree(library) && removed;
    return removed ? S_OK : SELFREG_E_TYPELIB;
}

}  // namespace

HRESULT registerServer() noexcept {
    try {
        HRESULT result = writeClasses();
        if (SUCCEEDED(result)) result = writeTypeLibrary();
        if (FAILED(result)) unregisterServer();
        return result;
    } catch (const std::exception&) {
        unregisterServer();
        return E_OUTOFMEMORY;
    }
}

HRESULT unregisterServer() noexcept {
    try {
        const HRESULT library = removeTypeLibrary();
        const HRESULT classes = removeClasses();
        return FAILED(classes) ? classes : library;
    } catch (const std::exception&) {
        return E_OUTOFMEMORY;
    }
}

}  // namespace corvane
