// A process that ends with everything alive. This program runs itself for each such end: with the end's name as its
// only argument it is the host that ends, otherwise the tests.

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>

#include "tests/com/apartment.h"
#include "tests/com/dispatch_call.h"
#include "tests/com/every_event.h"

namespace corvane::testing {
namespace {

constexpr std::u16string_view endlessScript = u"Again:\r\nInfo(\"still here\")\r\nGoto(Again)";

/// One object of each kind, none of which is ever released.
void keepEverything(Sink& sink) {
    _clsScriptControl& control = *newControl().detach();
    DWORD cookie = 0;
    IConnectionPoint& point = *connectionPointOf(control).detach();
    point.Advise(&sink, &cookie);
    load(control, everyEventScript);
    run(control);
    ComReference<IEnumConnections> connections;
    point.EnumConnections(connections.receive());
    connections.detach();
    // A thrown error, and a late-bound call that needs the type library.
    LONG position = 99;
    float value = 1;
    VARIANT_BOOL result = VARIANT_FALSE;
    control.EditDataVariable(&position, &value, &result);
    invoke(control, 0x60030034, DISPATCH_METHOD, {text(u"nothing")});

    _clsProgramFunctionList& list = *newFunctionList().detach();
    HostText script(u"VAR A = 1\r\nPark()");
    LONG number = 0;
    list.LoadProgramScript_FromDatabase(script.address(), script.address(), &number, &number, &result);
    _Collection* collection = nullptr;
    list.get_FunctionList(&collection);
    IUnknown* items = nullptr;
    collection->get__NewEnum(&items);
    VARIANT item;
    queryFor<IEnumVARIANT>(items, IID_IEnumVARIANT)->Next(1, &item, nullptr);
    create<_clsScriptParamList>(CLSID_clsScriptParamList, IID__clsScriptParamList).detach();
    create<_clsDataSetParameters>(CLSID_clsDataSetParameters, IID__clsDataSetParameters).detach();
    void* factory = nullptr;
    getClassObject(CLSID_clsScriptControl, IID_IClassFactory, &factory);
}

[[noreturn]] void endWithEverythingAlive() {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    static Sink sink(
        [](DISPID event, DISPPARAMS& arguments) { return answer(event, arguments), static_cast<HRESULT>(S_OK); });
    keepEverything(sink);
    std::exit(40);
}

[[noreturn]] void endAfterTheApartment() {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    static Sink sink(
        [](DISPID event, DISPPARAMS& arguments) { return answer(event, arguments), static_cast<HRESULT>(S_OK); });
    keepEverything(sink);
    CoUninitialize();
    ExitProcess(41);
}

void runEndlessly(std::atomic<int>& events) {
    const Apartment apartment;
    const ComReference<_clsScriptControl> control = newControl();
    Sink sink([&](DISPID event, DISPPARAMS& arguments) {
        ++events;
        answer(event, arguments);
        return S_OK;
    });
    const Advised advised(*control.get(), sink);
    load(*control.get(), endlessScript);
    run(*control.get());
}

template <int count>
[[noreturn]] void endDuringRunsOfOtherThreads() {
    static std::atomic<int> events{0};
    // Loads the component, which the threads then find.
    canUnloadNow();
    for (int i = 0; i < count; ++i) std::thread([] { runEndlessly(events); }).detach();
    while (events < 100 * count) Sleep(1);
    ExitProcess(42);
}

template <DISPID endingEvent>
[[noreturn]] void endInsideAnEvent() {
    const Apartment apartment;
    const ComReference<_clsScriptControl> control = newControl();
    Sink sink([](DISPID event, DISPPARAMS& arguments) {
        answer(event, arguments);
        if (event == endingEvent) ExitProcess(static_cast<UINT>(100 + event));
        return S_OK;
    });
    const Advised advised(*control.get(), sink);
    load(*control.get(), everyEventScript);
    run(*control.get());
    ExitProcess(1);
}

// Five controls deep, and by the C++ run-time's own end.
void loadInsideLoads(int depth) {
    const Apartment apartment;
    const ComReference<_clsScriptControl> control = newControl();
    Sink sink([&](DISPID event, DISPPARAMS& arguments) {
        answer(event, arguments);
        if (depth == 5) std::exit(43);
        loadInsideLoads(depth + 1);
        return S_OK;
    });
    const Advised advised(*control.get(), sink);
    load(*control.get(), u"VAR A = 1\r\nSet(A, 2)");
}

[[noreturn]] void endInsideNestedCalls() {
    loadInsideLoads(1);
    ExitProcess(1);
}

struct End {
    const char* name;
    int exitCode;
    void (*perform)();
};

const End ends[] = {
    {"WithEverythingAlive", 40, endWithEverythingAlive},
    {"AfterTheApartment", 41, endAfterTheApartment},
    {"DuringARunOfAnotherThread", 42, endDuringRunsOfOtherThreads<1>},
    {"DuringRunsOfTenThreads", 42, endDuringRunsOfOtherThreads<10>},
    {"InsideADeclarationEvent", 140, endInsideAnEvent<40>},
    {"InsideAnInstrumentEvent", 117, endInsideAnEvent<17>},
    {"InsideADataSetEvent", 114, endInsideAnEvent<14>},
    {"InsideKeepGoing", 137, endInsideAnEvent<37>},
    {"InsideNestedCalls", 43, endInsideNestedCalls},
};

constexpr int hangs = -1;

/// The exit code of this program as a host that ends so.
int exitCodeOf(const char* end) {
    std::wstring program(MAX_PATH, L'\0');
    program.resize(GetModuleFileNameW(nullptr, program.data(), MAX_PATH));
    std::wstring command = L"\"" + program + L"\" " + std::wstring(end, end + std::strlen(end));
    STARTUPINFOW start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION process{};
    if (CreateProcessW(program.c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                       &process) == FALSE)
        return hangs;
    constexpr DWORD patience = 60'000;
    DWORD code = static_cast<DWORD>(hangs);
    if (WaitForSingleObject(process.hProcess, patience) == WAIT_OBJECT_0)
        GetExitCodeProcess(process.hProcess, &code);
    else
        TerminateProcess(process.hProcess, code);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return static_cast<int>(code);
}

class ProcessEnd : public ::testing::TestWithParam<End> {};

TEST_P(ProcessEnd, HasItsExitCode) {
    // What other threads are doing at that moment is left to chance.
    for (int time = 0; time < 2; ++time) EXPECT_EQ(exitCodeOf(GetParam().name), GetParam().exitCode);
}

INSTANTIATE_TEST_SUITE_P(Each, ProcessEnd, ::testing::ValuesIn(ends),
                         [](const ::testing::TestParamInfo<End>& end) { return end.param.name; });

}  // namespace
}  // namespace corvane::testing

int main(int count, char** arguments) {
    for (const corvane::testing::End& end : corvane::testing::ends)
        if (count == 2 && std::string(arguments[1]) == end.name) end.perform();
    ::testing::InitGoogleTest(&count, arguments);
    return RUN_ALL_TESTS();
}
