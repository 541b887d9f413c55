// What keeps the module loaded, and that nothing else does.

#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "tests/com/apartment.h"
#include "tests/com/every_event.h"

namespace corvane::testing {
namespace {

/// Whatever it is, until it is reset.
using Held = std::shared_ptr<void>;

template <typename Interface>
Held held(ComReference<Interface> reference) {
    EXPECT_TRUE(reference);
    return std::make_shared<ComReference<Interface>>(std::move(reference));
}

ComReference<_Collection> listing() {
    const ComReference<_clsProgramFunctionList> list = newFunctionList();
    HostText script(u"VAR A = 1\r\nPark()\r\nShakeBlade(A)");
    LONG number = 0;
    VARIANT_BOOL loaded = VARIANT_FALSE;
    list->LoadProgramScript_FromDatabase(script.address(), script.address(), &number, &number, &loaded);
    EXPECT_EQ(loaded, VARIANT_TRUE);
    ComReference<_Collection> collection;
    list->get_FunctionList(collection.receive());
    return collection;
}

ComReference<IEnumVARIANT> itemsOf(_Collection& collection) {
    ComReference<IUnknown> items;
    collection.get__NewEnum(items.receive());
    return queryFor<IEnumVARIANT>(items.get(), IID_IEnumVARIANT);
}

Held heldDataSet() {
    ComReference<IDispatch> kept;
    Sink sink([&](DISPID event, DISPPARAMS& arguments) {
        if (event == 14) kept = ComReference<IDispatch>(V_DISPATCH(&argumentOf(arguments, 0)));
        answer(event, arguments);
        return S_OK;
    });
    const ComReference<_clsScriptControl> control = newControl();
    const Advised advised(*control.get(), sink);
    EXPECT_TRUE(load(*control.get(), u"GetDataSet(11, 12, 13.5, 4)"));
    EXPECT_EQ(run(*control.get()).value, VARIANT_TRUE);
    return held(std::move(kept));
}

ComReference<IClassFactory> factoryOf(REFCLSID classId) {
    void* factory = nullptr;
    EXPECT_EQ(getClassObject(classId, IID_IClassFactory, &factory), S_OK);
    return ComReference<IClassFactory>::adopt(static_cast<IClassFactory*>(factory));
}

Held heldLock() {
    EXPECT_EQ(factoryOf(CLSID_clsScriptControl)->LockServer(TRUE), S_OK);
    return {nullptr, [](void*) { factoryOf(CLSID_clsScriptControl)->LockServer(FALSE); }};
}

template <typename Interface, typename Owner>
ComReference<Interface> enumeratorOf(const ComReference<Owner>& owner,
                                     HRESULT (STDMETHODCALLTYPE Owner::*make)(Interface**)) {
    ComReference<Interface> enumerator;
    EXPECT_EQ((owner.get()->*make)(enumerator.receive()), S_OK);
    return enumerator;
}

struct Kind {
    const char* name;
    Held (*hold)();
};

const Kind kinds[] = {
    {"Control", [] { return held(newControl()); }},
    {"FunctionList", [] { return held(newFunctionList()); }},
    {"Function", [] { return held(create<_clsProgramFunction>(CLSID_clsProgramFunction, IID__clsProgramFunction)); }},
    {"DataSetParameters",
     [] { return held(create<_clsDataSetParameters>(CLSID_clsDataSetParameters, IID__clsDataSetParameters)); }},
    {"ParamList", [] { return held(create<_clsScriptParamList>(CLSID_clsScriptParamList, IID__clsScriptParamList)); }},
    {"RecordOfADataSetEvent", heldDataSet},
    {"Collection", [] { return held(listing()); }},
    {"EntryOfACollection",
     [] {
         VARIANT item;
         VariantInit(&item);
         VARIANT index;
         V_VT(&index) = VT_I4;
         V_I4(&index) = 1;
         EXPECT_EQ(listing()->get_Item(index, &item), S_OK);
         return held(ComReference<IDispatch>::adopt(V_DISPATCH(&item)));
     }},
    {"EnumeratorOfACollection", [] { return held(itemsOf(*listing().get())); }},
    {"CloneOfAnEnumerator", [] { return held(enumeratorOf(itemsOf(*listing().get()), &IEnumVARIANT::Clone)); }},
    {"ConnectionPointContainer",
     [] { return held(queryFor<IConnectionPointContainer>(newControl().get(), IID_IConnectionPointContainer)); }},
    {"ConnectionPoint", [] { return held(connectionPointOf(*newControl().get())); }},
    {"EnumeratorOfConnectionPoints",
     [] {
         const auto container = queryFor<IConnectionPointContainer>(newControl().get(), IID_IConnectionPointContainer);
         return held(enumeratorOf(container, &IConnectionPointContainer::EnumConnectionPoints));
     }},
    {"EnumeratorOfConnections",
     [] { return held(enumeratorOf(connectionPointOf(*newControl().get()), &IConnectionPoint::EnumConnections)); }},
    {"ClassFactory", [] { return held(factoryOf(CLSID_clsProgramFunctionList)); }},
    {"LockOfAClassFactory", heldLock},
};

bool isLoaded() { return GetModuleHandleW(L"CorvaneScript.dll") != nullptr; }

void freeUnusedLibraries() {
    CoFreeUnusedLibraries();
    CoFreeUnusedLibrariesEx(0, 0);
}

class Unload : public ::testing::TestWithParam<Kind> {
protected:
    const Apartment apartment;
};

TEST_P(Unload, WaitsForIt) {
    Held held = GetParam().hold();
    for (int time = 0; time < 3; ++time) {
        EXPECT_EQ(canUnloadNow(), S_FALSE);
        freeUnusedLibraries();
        ASSERT_TRUE(isLoaded());
    }
    held.reset();
    EXPECT_EQ(canUnloadNow(), S_OK);
    freeUnusedLibraries();
    EXPECT_FALSE(isLoaded());
}

INSTANTIATE_TEST_SUITE_P(EachKind, Unload, ::testing::ValuesIn(kinds),
                         [](const ::testing::TestParamInfo<Kind>& kind) { return kind.param.name; });

/// Drops the host's last reference inside an event, and has the platform look for libraries that nobody uses.
class UnloadInsideAnEvent : public ::testing::TestWithParam<DISPID> {
protected:
    const Apartment apartment;
};

TEST_P(UnloadInsideAnEvent, WaitsForTheEndOfTheCall) {
    ComReference<_clsScriptControl> control = newControl();
    int seen = 0;
    Sink sink([&](DISPID event, DISPPARAMS& arguments) {
        answer(event, arguments);
        if (event != GetParam() || ++seen > 1) return S_OK;
        control = {};
        freeUnusedLibraries();
        EXPECT_TRUE(isLoaded());
        EXPECT_EQ(canUnloadNow(), S_FALSE);
        return S_OK;
    });
    _clsScriptControl& object = *control.get();
    DWORD cookie = 0;
    EXPECT_EQ(connectionPointOf(object)->Advise(&sink, &cookie), S_OK);
    if (!isDeclaration(GetParam())) {
        EXPECT_TRUE(load(object, everyEventScript));
        run(object);
    } else {
        load(object, everyEventScript);
    }
    EXPECT_GE(seen, 1);
    EXPECT_FALSE(control);
    EXPECT_EQ(canUnloadNow(), S_OK);
    freeUnusedLibraries();
    EXPECT_FALSE(isLoaded());
    EXPECT_EQ(sink.references(), 0);
}

INSTANTIATE_TEST_SUITE_P(EachEvent, UnloadInsideAnEvent, ::testing::ValuesIn(scriptEvents),
                         [](const ::testing::TestParamInfo<DISPID>& event) {
                             return std::string(rowOf(event.param).name);
                         });

// A thread_local object of the module's must not keep it.
TEST(UnloadByAThread, NeedsNotWaitForTheThreadsEnd) {
    const Apartment apartment;
    EXPECT_EQ(newControl()->FinishLoopFlag(), automationError(91));
    SetErrorInfo(0, nullptr);
    freeUnusedLibraries();
    EXPECT_FALSE(isLoaded());
}

}  // namespace
}  // namespace corvane::testing
