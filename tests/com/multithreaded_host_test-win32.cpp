// Hosts in the multi-threaded apartment: the platform puts the objects into an apartment of their own and everything
// goes through proxies, which it makes from the type library. Whether the module can be unloaded afterwards is not
// asked: Wine keeps a reference to each class factory that it has marshalled.

#include <gtest/gtest.h>

#include <atomic>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "tests/com/apartment.h"
#include "tests/com/dispatch_call.h"
#include "tests/com/every_event.h"

namespace corvane::testing {
namespace {

/// Runs the body on a thread in the multi-threaded apartment.
template <typename Body>
void inTheMultithreadedApartment(Body body) {
    std::thread([&] {
        const Apartment apartment(COINIT_MULTITHREADED);
        body();
    }).join();
}

TEST(MultithreadedHost, IsHandedAProxy) {
    inTheMultithreadedApartment([] {
        const ComReference<_clsScriptControl> control = newControl();
        ASSERT_TRUE(control);
        EXPECT_TRUE(queryFor<IUnknown>(control.get(), IID_IClientSecurity)) << "this is the object itself";
    });
}

TEST(MultithreadedHost, CallsMethodsWithAnswersByReference) {
    inTheMultithreadedApartment([] {
        const ComReference<_clsScriptControl> control = newControl();
        ASSERT_TRUE(control);
        EXPECT_TRUE(load(*control.get(), u"ENV Room = Lab 2\r\nCONST Limit = 10\r\nVAR A = 2.5\r\nSet(A, 3)"));
        BSTR text = nullptr;
        EXPECT_EQ(control->get_ScriptFile(&text), S_OK);
        EXPECT_EQ(taken(text), u"test");
        HostText room(u"Room");
        text = nullptr;
        EXPECT_EQ(control->GetEnvironmentVariable(room.address(), &text), S_OK);
        EXPECT_EQ(taken(text), u"Lab 2");
        HostText name(u"a");
        OwnedVariant value;
        EXPECT_EQ(control->GetMemoryValue(name.address(), value.get()), S_OK);
        ASSERT_EQ(V_VT(value.get()), VT_R4);
        EXPECT_EQ(V_R4(value.get()), 2.5F);
        LONG position = 0;
        float edited = 4.5F;
        VARIANT_BOOL result = VARIANT_FALSE;
        EXPECT_EQ(control->EditDataVariable(&position, &edited, &result), S_OK);
        EXPECT_EQ(result, VARIANT_TRUE);
        SAFEARRAY* editable = nullptr;
        LONG count = 7;
        EXPECT_EQ(control->GetEditable(&editable, &count), S_OK);
        EXPECT_EQ(count, 0);
        EXPECT_EQ(editable, nullptr);
    });
}

TEST(MultithreadedHost, SeesErrorNumbersAndDescriptions) {
    inTheMultithreadedApartment([] {
        const ComReference<_clsScriptControl> control = newControl();
        ASSERT_TRUE(control);
        EXPECT_EQ(control->FinishLoopFlag(), automationError(91));
        EXPECT_EQ(run(*control.get()).result, automationError(9));
        const Answer answer = invoke(*control.get(), 0x6003000A, DISPATCH_METHOD, {});
        EXPECT_EQ(answer.result, DISP_E_EXCEPTION);
        EXPECT_EQ(answer.scode, automationError(91));
        EXPECT_EQ(answer.source, u"prjCorvaneScript.clsScriptControl");
        EXPECT_NE(answer.description, u"");
    });
}

TEST(MultithreadedHost, CallsLateBound) {
    inTheMultithreadedApartment([] {
        const ComReference<_clsScriptControl> control = newControl();
        ASSERT_TRUE(control);
        IDispatch& object = *control.get();
        const DISPID loadScript = identifierOf(object, u"LoadScript_FromScript");
        EXPECT_EQ(loadScript, 0x60030008);
        LONG uid = 3;
        HostText script(u"VAR A = 1");
        const Answer loaded =
            invoke(object, loadScript, DISPATCH_METHOD,
                   {reference(VT_BSTR, script.address()), text(u"name"), reference(VT_I4, &uid), integer(4)});
        EXPECT_EQ(loaded.result, S_OK);
        ASSERT_EQ(loaded.type, VT_BOOL);
        const Answer from = invoke(object, identifierOf(object, u"ScriptFrom"), DISPATCH_PROPERTYGET, {});
        EXPECT_EQ(from.result, S_OK);
        EXPECT_EQ(V_I4(from.value.get()), 1);
        EXPECT_EQ(invoke(object, loadScript, DISPATCH_METHOD, {text(u"")}).result, DISP_E_BADPARAMCOUNT);
    });
}

TEST(MultithreadedHost, AnswersEventsByReference) {
    inTheMultithreadedApartment([] {
        const ComReference<_clsScriptControl> control = newControl();
        ASSERT_TRUE(control);
        std::vector<DISPID> events;
        float seen = 0;
        float moved = 0;
        int asked = 0;
        std::u16string parameter;
        std::u16string shown;
        Sink sink([&](DISPID event, DISPPARAMS& arguments) {
            events.push_back(event);
            Sink::succeed(event, arguments);
            if (event == 2) {
                parameter = viewOf(*V_BSTRREF(&argumentOf(arguments, 0)));
                seen = *V_R4REF(&argumentOf(arguments, 2));
                *V_R4REF(&argumentOf(arguments, 5)) = 42.5F;
            }
            // A question is asked twice; what counts is the second answer.
            if (event == 4 && ++asked == 2) {
                takeOver(event, arguments);
                SysReAllocString(V_BSTRREF(&argumentOf(arguments, 2)), L"answered");
            }
            if (event == 5) shown = viewOf(*V_BSTRREF(&argumentOf(arguments, 0)));
            if (event == 25) moved = V_R4(&argumentOf(arguments, 0));
            return S_OK;
        });
        Advised advised(*control.get(), sink);
        ASSERT_NE(advised.cookie(), 0U);
        ASSERT_TRUE(load(*control.get(),
                         u"VAR N = 5\r\nVAR T = \"\"\r\nMathsFunction(\"Power\", N, 11, 12.5, 13, 14)\r\n"
                         u"InputString(\"Who?\", T, 11)\r\nInfo(T)\r\nMoveIntoVessel(N)"));
        events.clear();
        EXPECT_EQ(run(*control.get()), (RunResult{S_OK, VARIANT_TRUE}));
        EXPECT_EQ(parameter, u"Power");
        EXPECT_EQ(seen, 12.5F);
        EXPECT_EQ(moved, 42.5F);
        EXPECT_EQ(shown, u"answered");
        EXPECT_EQ(events, (std::vector<DISPID>{41, 2, 37, 41, 4, 4, 37, 41, 5, 37, 41, 25, 37}));
        advised.unadvise();
        EXPECT_EQ(sink.references(), 0);
    });
}

TEST(MultithreadedHost, IsHandedEveryEvent) {
    inTheMultithreadedApartment([] {
        const ComReference<_clsScriptControl> control = newControl();
        ASSERT_TRUE(control);
        std::vector<std::string> lines;
        float helix = 0;
        Sink sink([&](DISPID event, DISPPARAMS& arguments) {
            lines.push_back(show(event, arguments));
            if (event == 14) {
                // The record is an object of the other apartment.
                const auto record =
                    queryFor<_clsDataSetParameters>(V_DISPATCH(&argumentOf(arguments, 0)), IID__clsDataSetParameters);
                if (record) record->get_HelixAngle(&helix);
            }
            answer(event, arguments);
            return S_OK;
        });
        const Advised advised(*control.get(), sink);
        EXPECT_TRUE(load(*control.get(), everyEventScript));
        EXPECT_EQ(run(*control.get()), (RunResult{S_OK, VARIANT_TRUE}));
        std::set<std::string> names;
        for (const std::string& line : lines) names.insert(line.substr(0, line.find(' ')));
        EXPECT_EQ(names.size(), scriptEvents.size());
        EXPECT_EQ(helix, 11.0F);
    });
}

TEST(MultithreadedHost, SharesAnObjectAmongItsThreads) {
    inTheMultithreadedApartment([] {
        const ComReference<_clsScriptControl> control = newControl();
        ASSERT_TRUE(control);
        ASSERT_TRUE(load(*control.get(), u"VAR A = 1\r\nSet(A, 2)"));
        std::atomic<int> good{0};
        std::vector<std::thread> threads;
        for (int i = 0; i < 8; ++i)
            threads.emplace_back([&] {
                const Apartment apartment(COINIT_MULTITHREADED);
                for (int time = 0; time < 20; ++time) {
                    HostText name(u"A");
                    OwnedVariant value;
                    if (control->GetMemoryValue(name.address(), value.get()) == S_OK && V_R4(value.get()) == 1.0F)
                        ++good;
                }
            });
        for (std::thread& thread : threads) thread.join();
        EXPECT_EQ(good, 160);
    });
}

TEST(MultithreadedHost, ListsAProgram) {
    inTheMultithreadedApartment([] {
        const ComReference<_clsProgramFunctionList> list = newFunctionList();
        ASSERT_TRUE(list);
        HostText script(u"VAR A = 1\r\nPark()\r\nShakeBlade(A)");
        LONG number = 0;
        VARIANT_BOOL loaded = VARIANT_FALSE;
        EXPECT_EQ(list->LoadProgramScript_FromDatabase(script.address(), script.address(), &number, &number, &loaded),
                  S_OK);
        EXPECT_EQ(loaded, VARIANT_TRUE);
        ComReference<_Collection> collection;
        VARIANT_BOOL listed = VARIANT_FALSE;
        ASSERT_EQ(list->CreateFunctionList(collection.receive(), &listed), S_OK);
        EXPECT_EQ(listed, VARIANT_TRUE);
        ASSERT_TRUE(collection);
        LONG count = 0;
        EXPECT_EQ(collection->get_Count(&count), S_OK);
        EXPECT_EQ(count, 3);
        const Answer item = invoke(*collection.get(), 0, DISPATCH_PROPERTYGET, {integer(3)});
        ASSERT_EQ(item.result, S_OK);
        ASSERT_EQ(item.type, VT_DISPATCH);
        const auto function = queryFor<_clsProgramFunction>(V_DISPATCH(item.value.get()), IID__clsProgramFunction);
        ASSERT_TRUE(function);
        BSTR name = nullptr;
        EXPECT_EQ(function->get_FunctionName(&name), S_OK);
        EXPECT_EQ(taken(name), u"ShakeBlade");
        ComReference<IUnknown> items;
        EXPECT_EQ(collection->get__NewEnum(items.receive()), S_OK);
        EXPECT_TRUE(queryFor<IEnumVARIANT>(items.get(), IID_IEnumVARIANT));
    });
}

}  // namespace
}  // namespace corvane::testing
