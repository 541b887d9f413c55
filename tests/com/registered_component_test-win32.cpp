// The component as a host finds it by its names: registered, or by the manifests without registration.

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <iterator>
#include <thread>

#include "tests/com/component.h"
#include "tests/com/registry.h"

namespace corvane::testing {
namespace {

const CLSID* const classIds[] = {&CLSID_clsScriptControl, &CLSID_clsProgramFunctionList, &CLSID_clsProgramFunction,
                                 &CLSID_clsDataSetParameters, &CLSID_clsScriptParamList};
constexpr const wchar_t* names[] = {L"clsScriptControl", L"clsProgramFunctionList", L"clsProgramFunction",
                                    L"clsDataSetParameters", L"clsScriptParamList"};

std::filesystem::path component() { return std::filesystem::absolute(CORVANE_COMPONENT); }

HRESULT create(REFCLSID id, ComReference<IDispatch>& object) {
    void* created = nullptr;
    const HRESULT result = CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, &created);
    object = ComReference<IDispatch>::adopt(static_cast<IDispatch*>(created));
    return result;
}

void expectNobodyKnowsIt() {
    for (const CLSID* id : classIds) {
        ComReference<IDispatch> object;
        EXPECT_EQ(create(*id, object), REGDB_E_CLASSNOTREG);
    }
    for (const wchar_t* name : names) {
        CLSID id{};
        EXPECT_EQ(CLSIDFromProgID((std::wstring(L"prjCorvaneScript.") + name).c_str(), &id), CO_E_CLASSSTRING);
    }
}

void expectClass(REFCLSID name, REFCLSID expected) {
    ComReference<IDispatch> object;
    ASSERT_EQ(create(name, object), S_OK);
    const auto described = queryFor<IProvideClassInfo>(object.get(), IID_IProvideClassInfo);
    ASSERT_TRUE(described);
    ComReference<ITypeInfo> information;
    ASSERT_EQ(described->GetClassInfo(information.receive()), S_OK);
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(information->GetTypeAttr(&attributes), S_OK);
    EXPECT_TRUE(IsEqualGUID(attributes->guid, expected));
    information->ReleaseTypeAttr(attributes);
}

void expectEveryNameLeadsToIt() {
    for (std::size_t i = 0; i < std::size(classIds); ++i) {
        for (const wchar_t* version : {L"", L".1"}) {
            CLSID id{};
            const std::wstring programId = std::wstring(L"prjCorvaneScript.") + names[i] + version;
            ASSERT_EQ(CLSIDFromProgID(programId.c_str(), &id), S_OK) << i << version;
            // A manifest's program identifier leads to the class by an identifier that the system makes up.
            expectClass(id, *classIds[i]);
        }
        expectClass(*classIds[i], *classIds[i]);
    }
    wchar_t path[MAX_PATH]{};
    ASSERT_NE(GetModuleFileNameW(GetModuleHandleW(L"CorvaneScript.dll"), path, MAX_PATH), 0U);
    EXPECT_TRUE(std::filesystem::equivalent(path, component()));
}

// A text goes to the other thread's object and comes back.
void expectCallsBetweenThreads() {
    ComReference<IDispatch> object;
    ASSERT_EQ(create(CLSID_clsScriptControl, object), S_OK);
    const auto control = queryFor<_clsScriptControl>(object.get(), IID__clsScriptControl);
    IStream* stream = nullptr;
    ASSERT_EQ(CoMarshalInterThreadInterfaceInStream(IID__clsScriptControl, control.get(), &stream), S_OK);
    std::atomic<bool> ended{false};
    HANDLE context = nullptr;
    GetCurrentActCtx(&context);
    std::thread other([&] {
        ULONG_PTR cookie = 0;
        ActivateActCtx(context, &cookie);
        CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        void* unmarshalled = nullptr;
        EXPECT_EQ(CoGetInterfaceAndReleaseStream(stream, IID__clsScriptControl, &unmarshalled), S_OK);
        if (unmarshalled != nullptr) {
            const auto proxy = ComReference<_clsScriptControl>::adopt(static_cast<_clsScriptControl*>(unmarshalled));
            EXPECT_NE(proxy.get(), control.get());
            EXPECT_TRUE(load(*proxy.get(), u"CONST Height = \"70\""));
            HostText name(u"Height");
            BSTR value = nullptr;
            EXPECT_EQ(proxy->GetConstant(name.address(), &value), S_OK);
            EXPECT_EQ(taken(value), u"70");
        }
        CoUninitialize();
        DeactivateActCtx(0, cookie);
        ended = true;
    });
    while (!ended) {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
    }
    other.join();
    if (context != nullptr) ReleaseActCtx(context);
}

class FoundByName : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK); }
    void TearDown() override { CoUninitialize(); }
};

DWORD regsvr32(const std::wstring& options) {
    std::wstring command = L"regsvr32.exe " + options + L" \"" + component().wstring() + L"\"";
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process))
        return GetLastError();
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD code = ~DWORD{0};
    GetExitCodeProcess(process.hProcess, &code);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return code;
}

TEST_F(FoundByName, RegisteredByTheSystemsTool) {
    const RegistryContent before = contentBelow(HKEY_CLASSES_ROOT);
    expectNobodyKnowsIt();
    ASSERT_EQ(regsvr32(L"/s"), 0U);
    expectEveryNameLeadsToIt();
    expectCallsBetweenThreads();
    EXPECT_EQ(regsvr32(L"/s"), 0U);
    EXPECT_EQ(regsvr32(L"/u /s"), 0U);
    expectNobodyKnowsIt();
    for (const auto& entry : contentBelow(HKEY_CLASSES_ROOT))
        EXPECT_TRUE(before.contains(entry.first)) << std::filesystem::path(entry.first);
}

TEST_F(FoundByName, ByTheManifestsWithoutRegistration) {
    expectNobodyKnowsIt();
    const std::wstring manifest = (component().parent_path() / "registration_free_host.manifest").wstring();
    ACTCTXW description{};
    description.cbSize = sizeof description;
    description.lpSource = manifest.c_str();
    const HANDLE context = CreateActCtxW(&description);
    ASSERT_NE(context, INVALID_HANDLE_VALUE) << GetLastError();
    ULONG_PTR cookie = 0;
    ASSERT_TRUE(ActivateActCtx(context, &cookie));
    expectEveryNameLeadsToIt();
    expectCallsBetweenThreads();
    EXPECT_TRUE(DeactivateActCtx(0, cookie));
    ReleaseActCtx(context);
    expectNobodyKnowsIt();
}

}  // namespace
}  // namespace corvane::testing
