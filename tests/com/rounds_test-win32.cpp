// Everything a host does, over and over: in the end the process holds what it held before.

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <thread>
#include <vector>

#include "tests/com/apartment.h"
#include "tests/com/dispatch_call.h"
#include "tests/com/every_event.h"
#include "tests/com/loaded_component.h"
#include "tests/com/process_memory.h"

namespace corvane::testing {
namespace {

int inTheLongTest(int longer, int usual) { return std::getenv("CORVANE_LONG") != nullptr ? longer : usual; }

// The platform's own tables grow now and then, by a few blocks in all.
constexpr std::size_t toleratedBlocks = 40;
constexpr std::size_t toleratedBytes = 64 * 1024;

void expectNothingLeft(const ProcessMemory& before, const ProcessMemory& after) {
    EXPECT_EQ(after.taskBlocks, before.taskBlocks) << before << "; " << after;
    EXPECT_EQ(after.nextTlsIndex, before.nextTlsIndex) << before << "; " << after;
    EXPECT_LE(after.heapBlocks, before.heapBlocks + toleratedBlocks) << before << "; " << after;
    EXPECT_LE(after.heapBytes, before.heapBytes + toleratedBytes) << before << "; " << after;
}

// What a round consists of. Each makes its own objects and drops them.

void runEarlyBoundWithoutASink() {
    const ComReference<_clsScriptControl> control = newControl();
    ASSERT_TRUE(load(*control.get(), u"VAR A = 1\r\nVAR T = \"text\"\r\nSet(A, 2)\r\nConCatString(T, \"a\", T)"));
    EXPECT_EQ(run(*control.get()).value, VARIANT_FALSE);
    HostText name(u"T");
    BSTR text = nullptr;
    EXPECT_EQ(control->GetConstant(name.address(), &text), S_OK);
    EXPECT_EQ(taken(text), u"");
    OwnedVariant value;
    EXPECT_EQ(control->GetMemoryValue(name.address(), value.get()), S_OK);
    EXPECT_EQ(V_VT(value.get()), VT_BSTR);
}

void runLateBoundWithASink() {
    const ComReference<_clsScriptControl> control = newControl();
    Sink sink;
    const Advised advised(*control.get(), sink);
    IDispatch& object = *control.get();
    HostText script(u"CONST C = 7\r\nVAR T = \"x\"\r\nInfo(\"hello\")\r\nTextCommand(\"cmd\", T, T, T, T, T, T)");
    BSTR name = newText(u"name");
    EXPECT_EQ(invoke(object, identifierOf(object, u"LoadScript_FromScript"), DISPATCH_METHOD,
                     {reference(VT_BSTR, script.address()), reference(VT_BSTR, &name), number(3), text(u"4")})
                  .result,
              S_OK);
    SysFreeString(name);
    EXPECT_EQ(invoke(object, identifierOf(object, u"RunScript"), DISPATCH_METHOD, {}).type, VT_BOOL);
    EXPECT_EQ(invoke(object, identifierOf(object, u"GetConstant"), DISPATCH_METHOD, {text(u"C")}).type, VT_BSTR);
    EXPECT_EQ(invoke(object, identifierOf(object, u"ScriptFile"), DISPATCH_PROPERTYGET, {}).type, VT_BSTR);
}

void failToLoad() {
    const ComReference<_clsScriptControl> control = newControl();
    EXPECT_FALSE(load(*control.get(), u"VAR A = 1\r\nNonsense(A, \"text\")"));
    EXPECT_FALSE(load(*control.get(), u"VAR A = 1\r\nGoto(Nowhere)"));
    EXPECT_TRUE(load(*control.get(), u"VAR A = 1"));
}

void meetErrors() {
    const ComReference<_clsScriptControl> control = newControl();
    EXPECT_EQ(control->FinishLoopFlag(), automationError(91));
    EXPECT_EQ(invoke(*control.get(), 0x60030009, DISPATCH_METHOD, {}).scode, automationError(9));
    EXPECT_EQ(invoke(*control.get(), 0x60030038, DISPATCH_METHOD, {integer(99), single(1)}).result, DISP_E_EXCEPTION);
    EXPECT_EQ(invoke(*control.get(), 0x60030038, DISPATCH_METHOD, {text(u"no number"), single(1)}).result,
              DISP_E_TYPEMISMATCH);
    EXPECT_EQ(invoke(*control.get(), 4711, DISPATCH_METHOD, {text(u"lost")}).result, DISP_E_MEMBERNOTFOUND);
    HostText missing(u"build/no/such/folder/x.script");
    VARIANT_BOOL result = VARIANT_FALSE;
    EXPECT_EQ(control->LoadScript_FromFile(missing.address(), &result), automationError(76));
    SetErrorInfo(0, nullptr);
}

void listAProgram() {
    const ComReference<_clsProgramFunctionList> list = newFunctionList();
    HostText script(u"VAR A = 1\r\nPark()\r\nTextCommand(\"a\", \"b\", \"c\", \"d\", \"e\", \"f\", \"g\")");
    LONG number = 0;
    VARIANT_BOOL loaded = VARIANT_FALSE;
    EXPECT_EQ(list->LoadProgramScript_FromDatabase(script.address(), script.address(), &number, &number, &loaded),
              S_OK);
    ComReference<_Collection> collection;
    EXPECT_EQ(list->CreateFunctionList(collection.receive(), &loaded), S_OK);
    ComReference<IUnknown> found;
    EXPECT_EQ(collection->get__NewEnum(found.receive()), S_OK);
    const auto items = queryFor<IEnumVARIANT>(found.get(), IID_IEnumVARIANT);
    OwnedVariant item;
    int count = 0;
    for (ULONG fetched = 0; items->Next(1, item.get(), &fetched) == S_OK; ++count) {
        const auto function = queryFor<_clsProgramFunction>(V_DISPATCH(item.get()), IID__clsProgramFunction);
        BSTR name = nullptr;
        EXPECT_EQ(function->get_FunctionName(&name), S_OK);
        EXPECT_NE(taken(name), u"");
        VariantClear(item.get());
    }
    EXPECT_EQ(count, 3);
    EXPECT_EQ(invoke(*collection.get(), 1, DISPATCH_METHOD, {text(u"host's own"), text(u"key")}).result, S_OK);
    EXPECT_EQ(invoke(*collection.get(), 1, DISPATCH_METHOD, {text(u"host's own"), text(u"key")}).scode,
              automationError(457));
    EXPECT_EQ(invoke(*collection.get(), 0, DISPATCH_PROPERTYGET, {text(u"KEY")}).type, VT_BSTR);
    EXPECT_EQ(invoke(*collection.get(), 3, DISPATCH_METHOD, {text(u"key")}).result, S_OK);
}

void askWhatCanBeEdited() {
    const ComReference<_clsScriptControl> control = newControl();
    ASSERT_TRUE(load(*control.get(), u"VAR A = 1"));
    SAFEARRAY* early = nullptr;
    LONG count = 1;
    EXPECT_EQ(control->GetEditable(&early, &count), S_OK);
    OwnedVariant late;
    EXPECT_EQ(
        invoke(*control.get(), 0x60030037, DISPATCH_METHOD, {reference(*late.get()), reference(VT_I4, &count)}).result,
        S_OK);
    EXPECT_EQ(count, 0);
}

void raiseEveryEvent() {
    const ComReference<_clsScriptControl> control = newControl();
    Sink sink([](DISPID event, DISPPARAMS& arguments) {
        answer(event, arguments);
        // All texts by reference get longer, in the host's way: freed and replaced.
        for (UINT i = 0; i < arguments.cArgs; ++i)
            if (V_VT(&arguments.rgvarg[i]) == (VT_BSTR | VT_BYREF) && !isDeclaration(event))
                SysReAllocString(V_BSTRREF(&arguments.rgvarg[i]), L"a longer text from the host");
        return S_OK;
    });
    const Advised advised(*control.get(), sink);
    ASSERT_TRUE(load(*control.get(), everyEventScript));
    EXPECT_EQ(run(*control.get()).value, VARIANT_TRUE);
}

void changeSinksInsideEvents() {
    const ComReference<_clsScriptControl> control = newControl();
    const ComReference<IConnectionPoint> point = connectionPointOf(*control.get());
    Sink second;
    Sink third;
    DWORD cookie = 0;
    Sink first([&](DISPID event, DISPPARAMS& arguments) {
        Sink::succeed(event, arguments);
        if (cookie == 0)
            point->Advise(&third, &cookie);
        else
            point->Unadvise(std::exchange(cookie, 0));
        return event == 5 ? E_FAIL : S_OK;
    });
    const Advised firstAdvised(*control.get(), first);
    const Advised secondAdvised(*control.get(), second);
    ASSERT_TRUE(load(*control.get(), u"VAR A = 1\r\nInfo(\"a\")\r\nInfo(\"b\")\r\nPark()"));
    EXPECT_EQ(run(*control.get()).value, VARIANT_TRUE);
    if (cookie != 0) point->Unadvise(cookie);
    ComReference<IEnumConnections> connections;
    EXPECT_EQ(point->EnumConnections(connections.receive()), S_OK);
    CONNECTDATA connection{};
    while (connections->Next(1, &connection, nullptr) == S_OK) connection.pUnk->Release();
}

void useRecords() {
    const auto record = create<_clsDataSetParameters>(CLSID_clsDataSetParameters, IID__clsDataSetParameters);
    LONG index = 1;
    HostText text(u"some text");
    EXPECT_EQ(record->put_AddDataSetVariable(&index, text.address()), S_OK);
    const auto list = create<_clsScriptParamList>(CLSID_clsScriptParamList, IID__clsScriptParamList);
    EXPECT_EQ(list->put_StringValue(&index, text.address()), S_OK);
    BSTR stored = nullptr;
    EXPECT_EQ(list->get_StringValue(&index, &stored), S_OK);
    EXPECT_EQ(taken(stored), u"some text");
    const auto function = create<_clsProgramFunction>(CLSID_clsProgramFunction, IID__clsProgramFunction);
    EXPECT_EQ(function->AddParam(text.get()), S_OK);
    index = 0;
    EXPECT_EQ(function->get_Param(&index, &stored), S_OK);
    EXPECT_EQ(taken(stored), u"some text");
    EXPECT_EQ(put(*record.get(), identifierOf(*record.get(), u"TestResult"), {integer(2)}).result, S_OK);
}

void askForDescriptions() {
    const ComReference<_clsScriptControl> control = newControl();
    ComReference<ITypeInfo> information;
    EXPECT_EQ(control->GetTypeInfo(0, LOCALE_USER_DEFAULT, information.receive()), S_OK);
    const auto provider = queryFor<IProvideClassInfo2>(control.get(), IID_IProvideClassInfo2);
    ComReference<ITypeInfo> classInformation;
    EXPECT_EQ(provider->GetClassInfo(classInformation.receive()), S_OK);
}

constexpr void (*steps[])() = {
    runEarlyBoundWithoutASink, runLateBoundWithASink,   failToLoad, meetErrors,        listAProgram, askWhatCanBeEdited,
    raiseEveryEvent,           changeSinksInsideEvents, useRecords, askForDescriptions};
constexpr int stepCount = static_cast<int>(std::size(steps));

void perform(int round) {
    steps[round % stepCount]();
    SetErrorInfo(0, nullptr);
}

TEST(Rounds, LeaveNothing) {
    const CountedTaskMemory counted;
    const Apartment apartment;
    const LoadedComponent component;
    for (int round = 0; round < 3 * stepCount; ++round) perform(round);
    const ProcessMemory before = ProcessMemory::now();
    const int count = inTheLongTest(100'000, 1'000);
    for (int round = 0; round < count && !HasFailure(); ++round) {
        perform(round);
        ASSERT_EQ(canUnloadNow(), S_OK) << "after round " << round;
    }
    expectNothingLeft(before, ProcessMemory::now());
}

// On the test's thread and, now and then, on one of its own that is still there when the module goes.
void loadUseAndUnload(int round) {
    {
        const LoadedComponent component;
        perform(round);
        if (round % 10 == 0)
            std::thread([&] {
                const Apartment apartment;
                perform(round / 10);
            }).join();
        ASSERT_EQ(canUnloadNow(), S_OK);
    }
    ASSERT_FALSE(LoadedComponent::isInTheProcess()) << "after round " << round;
}

TEST(Rounds, OfLoadingAndUnloadingLeaveNothing) {
    const CountedTaskMemory counted;
    const Apartment apartment;
    for (int round = 0; round < 10 * stepCount; ++round) loadUseAndUnload(round);
    const ProcessMemory before = ProcessMemory::now();
    const int count = inTheLongTest(20'000, 1'000);
    for (int round = 0; round < count && !HasFailure(); ++round) loadUseAndUnload(round);
    expectNothingLeft(before, ProcessMemory::now());
}

/// A thread that has worked with the component and waits.
class Worker {
public:
    Worker()
        : worked_(CreateEventW(nullptr, TRUE, FALSE, nullptr)),
          mayEnd_(CreateEventW(nullptr, TRUE, FALSE, nullptr)),
          thread_([this] {
              {
                  const Apartment apartment;
                  meetErrors();
              }
              SetEvent(worked_);
              WaitForSingleObject(mayEnd_, INFINITE);
          }) {
        WaitForSingleObject(worked_, INFINITE);
    }
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;
    ~Worker() {
        SetEvent(mayEnd_);
        thread_.join();
        CloseHandle(worked_);
        CloseHandle(mayEnd_);
    }

private:
    HANDLE worked_;
    HANDLE mayEnd_;
    std::thread thread_;
};

TEST(Rounds, OfUnloadingBeforeAThreadsEndLeaveNothing) {
    const Apartment apartment;
    const auto round = [] {
        auto component = std::make_unique<LoadedComponent>();
        const Worker worker;
        component.reset();
        ASSERT_FALSE(LoadedComponent::isInTheProcess());
    };
    for (int i = 0; i < 20; ++i) round();
    const ProcessMemory before = ProcessMemory::now();
    for (int i = 0; i < 200; ++i) round();
    expectNothingLeft(before, ProcessMemory::now());
}

// A batch is as many at a time as a host could have.
void runOnThreads(int count, std::atomic<int>& good) {
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i)
        threads.emplace_back([&good, i] {
            const Apartment apartment;
            const ComReference<_clsScriptControl> control = newControl();
            if (!control) return;
            auto debugMode = static_cast<::enumDebugOptions>(i % 8);
            control->put_DebugMode(&debugMode);
            int events = 0;
            float moved = 0;
            Sink sink([&](DISPID event, DISPPARAMS& arguments) {
                ++events;
                answer(event, arguments);
                if (event == 25) moved = V_R4(&argumentOf(arguments, 0));
                return S_OK;
            });
            const Advised advised(*control.get(), sink);
            const std::u16string number = u"1" + std::u16string(static_cast<std::size_t>(i % 4), u'0');
            const bool loaded = load(*control.get(), u"VAR A = " + number + u"\r\nInfo(\"a\")\r\nMoveIntoVessel(A)");
            const bool ran = run(*control.get()) == RunResult{S_OK, VARIANT_TRUE};
            const float expected[] = {1, 10, 100, 1000};
            if (loaded && ran && events == 7 && moved == expected[i % 4]) ++good;
        });
    for (std::thread& thread : threads) thread.join();
}

TEST(Threads, AThousandHaveAControlEach) {
    const Apartment apartment;
    const LoadedComponent component;
    std::atomic<int> good{0};
    constexpr int atATime = 50;
    for (int i = 0; i < 2; ++i) runOnThreads(atATime, good);
    const ProcessMemory before = ProcessMemory::now();
    for (int i = 0; i < 1000 / atATime; ++i) runOnThreads(atATime, good);
    EXPECT_EQ(good, 1000 + 2 * atATime);
    EXPECT_EQ(canUnloadNow(), S_OK);
    expectNothingLeft(before, ProcessMemory::now());
}

}  // namespace
}  // namespace corvane::testing
