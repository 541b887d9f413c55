#include <gtest/gtest.h>

#include <array>

#include "tests/com/registry.h"

namespace corvane::testing {
namespace {

constexpr const wchar_t* ownRoot = L"Software\\Corvane test classes";

void addValues(RegistryContent& content, HKEY key, const std::wstring& path) {
    for (DWORD i = 0;; ++i) {
        std::array<wchar_t, 256> name{};
        std::array<wchar_t, 2048> text{};
        DWORD nameLength = static_cast<DWORD>(name.size());
        DWORD size = sizeof text - sizeof(wchar_t);
        DWORD type = 0;
        const LONG result = RegEnumValueW(key, i, name.data(), &nameLength, nullptr, &type,
                                          reinterpret_cast<BYTE*>(text.data()), &size);
        if (result == ERROR_NO_MORE_ITEMS) return;
        if (result == ERROR_SUCCESS && type == REG_SZ) content[path + L":" + name.data()] = text.data();
    }
}

void addKeys(RegistryContent& content, HKEY key, const std::wstring& path) {
    for (DWORD i = 0;; ++i) {
        std::array<wchar_t, 256> name{};
        DWORD length = static_cast<DWORD>(name.size());
        if (RegEnumKeyExW(key, i, name.data(), &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) return;
        HKEY child = nullptr;
        if (RegOpenKeyExW(key, name.data(), 0, KEY_READ, &child) != ERROR_SUCCESS) continue;
        const std::wstring childPath = path.empty() ? name.data() : path + L"\\" + name.data();
        content[childPath];
        addValues(content, child, childPath);
        addKeys(content, child, childPath);
        RegCloseKey(child);
    }
}

}  // namespace

RegistryContent contentBelow(HKEY key, const std::wstring& subkey) {
    RegistryContent content;
    HKEY opened = nullptr;
    if (RegOpenKeyExW(key, subkey.c_str(), 0, KEY_READ, &opened) != ERROR_SUCCESS) return content;
    addKeys(content, opened, subkey);
    RegCloseKey(opened);
    return content;
}

OwnClassesRoot::OwnClassesRoot() {
    RegDeleteTreeW(HKEY_CURRENT_USER, ownRoot);
    EXPECT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, ownRoot, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &root_, nullptr),
              ERROR_SUCCESS);
    EXPECT_EQ(RegOverridePredefKey(HKEY_CLASSES_ROOT, root_), ERROR_SUCCESS);
}

OwnClassesRoot::~OwnClassesRoot() {
    RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr);
    RegCloseKey(root_);
    RegDeleteTreeW(HKEY_CURRENT_USER, ownRoot);
}

void OwnClassesRoot::blockBelow(const wchar_t* subkey) const {
    HKEY key = nullptr;
    EXPECT_EQ(RegCreateKeyExW(root_, subkey, 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr, &key, nullptr),
              ERROR_SUCCESS);
    RegCloseKey(key);
}

void OwnClassesRoot::create(const wchar_t* subkey, REGSAM view) const {
    HKEY key = nullptr;
    EXPECT_EQ(RegCreateKeyExW(HKEY_CLASSES_ROOT, subkey, 0, nullptr, 0, KEY_ALL_ACCESS | view, nullptr, &key, nullptr),
              ERROR_SUCCESS);
    RegCloseKey(key);
}

void OwnClassesRoot::remove(const wchar_t* subkey, REGSAM view) const {
    EXPECT_EQ(RegDeleteKeyExW(HKEY_CLASSES_ROOT, subkey, view, 0), ERROR_SUCCESS);
}

}  // namespace corvane::testing
