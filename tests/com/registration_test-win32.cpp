#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "tests/com/component.h"
#include "tests/com/registry.h"

namespace corvane::testing {
namespace {

constexpr bool is64Bit = sizeof(void*) == 8;

struct PublishedClass {
    const wchar_t* name;
    const wchar_t* id;
    const wchar_t* description;
};
constexpr PublishedClass classes[] = {
    {L"clsScriptControl", L"{F3C0FD1F-A4B4-4FBB-818D-BFDC51FDBF4C}", L"Corvane script control"},
    {L"clsProgramFunctionList", L"{83D22A22-38B1-4B46-B0E1-50CC73BD405A}", L"Corvane program function list"},
    {L"clsProgramFunction", L"{F810BFF5-8D53-4299-A93D-160AE825DEB0}", L"Corvane program function"},
    {L"clsDataSetParameters", L"{9DA63412-CD74-4316-83CB-DEF278C0689C}", L"Corvane data set parameters"},
    {L"clsScriptParamList", L"{654278B7-FA30-42CC-A4AC-6F1BA6B2AD67}", L"Corvane script parameter list"},
};
constexpr const wchar_t* libraryId = L"{D148D887-DC4C-42A1-9290-6CD2A0152120}";

struct PublishedInterfaceName {
    const wchar_t* name;
    const wchar_t* id;
};
constexpr PublishedInterfaceName dualInterfaces[] = {
    {L"_clsScriptControl", L"{49979728-5B44-43ED-AD29-B4C0F97C9569}"},
    {L"_clsProgramFunctionList", L"{431E29AA-473E-4ACC-9472-EACF54D784CF}"},
    {L"_clsProgramFunction", L"{4E44AD63-E843-47B6-B384-2B826381B911}"},
    {L"_clsDataSetParameters", L"{9A37D274-F6E9-4B2E-89F2-8F3E114AE0B8}"},
    {L"_clsScriptParamList", L"{B0985FF5-F49C-4557-85DB-B79871C22D37}"},
    {L"_Collection", L"{63A9B519-D848-461E-ACF9-5E227A375692}"},
};
constexpr PublishedInterfaceName eventInterface{L"__clsScriptControl", L"{5261AAAE-0BBC-4C17-ACF9-AF6AD3AAF330}"};

std::wstring upper(std::wstring text) {
    CharUpperW(text.data());
    return text;
}

/// Names of keys and values compare without regard to case.
RegistryContent comparable(const RegistryContent& content) {
    RegistryContent upperCase;
    for (const auto& [name, text] : content) upperCase[upper(name)] = text;
    return upperCase;
}

std::wstring modulePath() { return std::filesystem::absolute(CORVANE_COMPONENT).wstring(); }

/// What a class is registered by.
RegistryContent expectedOf(const PublishedClass& published) {
    const std::wstring key = std::wstring(L"CLSID\\") + published.id;
    const std::wstring programId = std::wstring(L"prjCorvaneScript.") + published.name;
    return {
        {key, L""},
        {key + L":", published.description},
        {key + L"\\InprocServer32", L""},
        {key + L"\\InprocServer32:", modulePath()},
        {key + L"\\InprocServer32:ThreadingModel", L"Apartment"},
        {key + L"\\ProgID", L""},
        {key + L"\\ProgID:", programId + L".1"},
        {key + L"\\VersionIndependentProgID", L""},
        {key + L"\\VersionIndependentProgID:", programId},
        {key + L"\\TypeLib", L""},
        {key + L"\\TypeLib:", libraryId},
        {key + L"\\Version", L""},
        {key + L"\\Version:", L"1.0"},
        {key + L"\\Programmable", L""},
        {key + L"\\Programmable:", L""},
        {programId, L""},
        {programId + L":", published.description},
        {programId + L"\\CLSID", L""},
        {programId + L"\\CLSID:", published.id},
        {programId + L"\\CurVer", L""},
        {programId + L"\\CurVer:", programId + L".1"},
        {programId + L".1", L""},
        {programId + L".1:", published.description},
        {programId + L".1\\CLSID", L""},
        {programId + L".1\\CLSID:", published.id},
    };
}

/// The entry points that write the registry.
class Registration : public ::testing::Test {
protected:
    OwnClassesRoot root;

    static HRESULT call(const char* name) {
        static const HMODULE module = LoadLibraryW(CORVANE_COMPONENT);
        return reinterpret_cast<HRESULT(STDAPICALLTYPE*)()>(reinterpret_cast<void*>(GetProcAddress(module, name)))();
    }
    static HRESULT doRegister() { return call("DllRegisterServer"); }
    static HRESULT doUnregister() { return call("DllUnregisterServer"); }
};

TEST_F(Registration, WritesTheKeysOfEachClassAndNoOthers) {
    ASSERT_EQ(doRegister(), S_OK);
    RegistryContent written = comparable(root.content());
    RegistryContent expected;
    for (const PublishedClass& published : classes)
        for (const auto& [name, text] : expectedOf(published)) expected[upper(name)] = text;
    // Above all of them, and what the platform writes of the type library.
    std::erase_if(written, [](const auto& entry) {
        return entry.first == L"CLSID" || entry.first.starts_with(L"TYPELIB") || entry.first.starts_with(L"INTERFACE");
    });
    EXPECT_EQ(written, expected);
}

TEST_F(Registration, WritesTheTypeLibraryAndItsInterfaces) {
    ASSERT_EQ(doRegister(), S_OK);
    RegistryContent written = comparable(root.content());
    const std::wstring library = upper(std::wstring(L"TypeLib\\") + libraryId);
    EXPECT_EQ(written[library + L"\\1.0:"], L"Corvane Script 1.0 Type Library");
    EXPECT_EQ(written[library + (is64Bit ? L"\\1.0\\0\\WIN64:" : L"\\1.0\\0\\WIN32:")], modulePath());
    const auto expectInterface = [&](const PublishedInterfaceName& published, const wchar_t* proxy) {
        const std::wstring key = upper(std::wstring(L"Interface\\") + published.id);
        EXPECT_EQ(written[key + L":"], published.name);
        EXPECT_EQ(upper(written[key + L"\\PROXYSTUBCLSID32:"]), proxy);
        EXPECT_EQ(upper(written[key + L"\\TYPELIB:"]), libraryId);
        EXPECT_EQ(written[key + L"\\TYPELIB:VERSION"], L"1.0");
    };
    for (const PublishedInterfaceName& published : dualInterfaces)
        expectInterface(published, L"{00020424-0000-0000-C000-000000000046}");
    expectInterface(eventInterface, L"{00020420-0000-0000-C000-000000000046}");
    EXPECT_EQ(std::count_if(written.begin(), written.end(),
                            [](const auto& entry) {
                                return entry.first.starts_with(L"INTERFACE\\") && entry.first.ends_with(L"}:");
                            }),
              7);
}

TEST_F(Registration, TwiceIsAsOnce) {
    ASSERT_EQ(doRegister(), S_OK);
    const RegistryContent once = root.content();
    EXPECT_EQ(doRegister(), S_OK);
    EXPECT_EQ(root.content(), once);
}

// The keys above the component's own belong to the platform, which has them anyway.
TEST_F(Registration, LeavesNoKeyBehind) {
    for (const wchar_t* key : {L"CLSID", L"Interface", L"TypeLib"}) root.create(key);
    const RegistryContent before = root.content();
    ASSERT_EQ(doRegister(), S_OK);
    EXPECT_GT(root.content().size(), before.size() + 100);
    EXPECT_EQ(doUnregister(), S_OK);
    EXPECT_EQ(root.content(), before);
    EXPECT_EQ(doUnregister(), S_OK);
    EXPECT_EQ(root.content(), before);
}

TEST_F(Registration, TouchesNobodyElsesKeys) {
    root.create(L"CLSID\\{11111111-F0E9-4B3C-9E62-2B38BB3BD0E7}\\InprocServer32");
    root.create(L"Interface\\{11111111-F0E9-4B3C-9E62-2B38BB3BD0E7}");
    root.create(L"TypeLib\\{11111111-F0E9-4B3C-9E62-2B38BB3BD0E7}\\1.0");
    root.create(L"prjCorvaneScript.clsScriptControl.2\\CLSID");
    const RegistryContent before = root.content();
    ASSERT_EQ(doRegister(), S_OK);
    ASSERT_EQ(doUnregister(), S_OK);
    EXPECT_EQ(root.content(), before);
}

TEST_F(Registration, LeavesNothingWhenAClassCannotBeWritten) {
    for (const wchar_t* key : {L"CLSID", L"Interface", L"TypeLib"}) root.create(key);
    const RegistryContent before = root.content();
    root.blockBelow(L"prjCorvaneScript.clsScriptParamList.1");
    EXPECT_EQ(doRegister(), SELFREG_E_CLASS);
    EXPECT_EQ(root.content(), before);
    root.blockBelow(L"CLSID\\{F3C0FD1F-A4B4-4FBB-818D-BFDC51FDBF4C}");
    EXPECT_EQ(doRegister(), SELFREG_E_CLASS);
    EXPECT_EQ(root.content(), before);
    EXPECT_EQ(doRegister(), S_OK);
}

TEST_F(Registration, LeavesNothingWhenTheTypeLibraryCannotBeWritten) {
    for (const wchar_t* key : {L"CLSID", L"Interface"}) root.create(key);
    root.blockBelow(L"TypeLib");
    const RegistryContent before = root.content();
    EXPECT_EQ(doRegister(), SELFREG_E_TYPELIB);
    EXPECT_EQ(root.content(), before);
    // Further on its way: the library's key can be written, what belongs below it cannot.
    root.blockBelow(L"TypeLib\\{D148D887-DC4C-42A1-9290-6CD2A0152120}");
    EXPECT_EQ(doRegister(), SELFREG_E_TYPELIB);
    EXPECT_EQ(root.content(), before);
}

// What 32-bit and 64-bit programs share stays as long as the other module is there.
TEST_F(Registration, LeavesToTheOtherModuleWhatItNeeds) {
    constexpr REGSAM otherView = is64Bit ? KEY_WOW64_32KEY : KEY_WOW64_64KEY;
    constexpr const wchar_t* otherSystem = is64Bit ? L"TypeLib\\{D148D887-DC4C-42A1-9290-6CD2A0152120}\\1.0\\0\\win32"
                                                   : L"TypeLib\\{D148D887-DC4C-42A1-9290-6CD2A0152120}\\1.0\\0\\win64";
    ASSERT_EQ(doRegister(), S_OK);
    const std::wstring control = std::wstring(L"CLSID\\") + classes[0].id;
    root.create(control.c_str(), otherView);
    root.create(otherSystem);
    ASSERT_EQ(doUnregister(), S_OK);
    RegistryContent left = comparable(root.content());
    EXPECT_TRUE(left.contains(upper(otherSystem)));
    EXPECT_FALSE(left.contains(upper(is64Bit ? L"TypeLib\\{D148D887-DC4C-42A1-9290-6CD2A0152120}\\1.0\\0\\win64"
                                             : L"TypeLib\\{D148D887-DC4C-42A1-9290-6CD2A0152120}\\1.0\\0\\win32")));
    EXPECT_TRUE(left.contains(L"PRJCORVANESCRIPT.CLSSCRIPTCONTROL\\CLSID"));
    EXPECT_TRUE(left.contains(L"PRJCORVANESCRIPT.CLSSCRIPTCONTROL.1\\CLSID"));
    EXPECT_FALSE(left.contains(L"PRJCORVANESCRIPT.CLSPROGRAMFUNCTION"));

    root.remove(control.c_str(), otherView);
    root.remove(otherSystem);
    ASSERT_EQ(doUnregister(), S_OK);
    left = comparable(root.content());
    EXPECT_EQ(left, (RegistryContent{{L"CLSID", L""}, {L"INTERFACE", L""}, {L"TYPELIB", L""}}));
}

}  // namespace
}  // namespace corvane::testing
