#pragma once

#include <map>
#include <string>

#include "host/com/automation.h"

namespace corvane::testing {

/// A part of the registry as one looks at it: "key\subkey" for a key, "key\subkey:name" for a value and its text; the
/// default value has no name.
using RegistryContent = std::map<std::wstring, std::wstring>;

/// Everything below a key.
RegistryContent contentBelow(HKEY key, const std::wstring& subkey = {});

/// Puts an empty key in the place of HKEY_CLASSES_ROOT, for this process until the end of the scope.
class OwnClassesRoot {
public:
    OwnClassesRoot();
    OwnClassesRoot(const OwnClassesRoot&) = delete;
    OwnClassesRoot& operator=(const OwnClassesRoot&) = delete;
    ~OwnClassesRoot();

    RegistryContent content() const { return contentBelow(root_); }
    /// Makes a key that nothing lasting can be created below.
    void blockBelow(const wchar_t* subkey) const;
    /// `view`: of programs of the other bitness, which is not overridden: the caller removes the key again.
    void create(const wchar_t* subkey, REGSAM view = 0) const;
    void remove(const wchar_t* subkey, REGSAM view = 0) const;

private:
    HKEY root_ = nullptr;
};

}  // namespace corvane::testing
