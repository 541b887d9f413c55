// Late-bound hosts of the DLL when memory runs out: the members' descriptions are read, arguments converted and answers
// handed out with memory of its own.

#include <gtest/gtest.h>

#include <functional>

#include "tests/com/dispatch_call.h"
#include "tests/com/editable_items.h"
#include "tests/com/every_event.h"
#include "tests/memory/component_memory.h"
#include "tests/memory/every_request.h"

namespace corvane::testing {
namespace {

using test::MemoryFault;
using test::Refused;

constexpr std::size_t requestsTried = 40;

/// Each time in a DLL that was just loaded, as the descriptions are kept until it goes.
TEST(LateBoundMemoryRunsOut, WhileTheMembersAreDescribed) {
    test::refuseEachRequest(
        "description", 2 * requestsTried, test::ComponentMemory::living, [&](std::size_t nth, Refused refused) {
            std::size_t requests = 0;
            {
                const test::ComponentMemory memory;
                const ComReference<_clsScriptControl> control = newControl();
                DISPID identifier = 0;
                OLECHAR name[] = L"RunScript";
                OLECHAR* names[] = {name};
                HRESULT result = S_OK;
                const auto identify = [&] { return control->GetIDsOfNames(IID_NULL, names, 1, 0, &identifier); };
                {
                    const MemoryFault fault(nth, refused);
                    result = identify();
                    requests = fault.requests();
                }
                EXPECT_EQ(result, requests < nth ? S_OK : result == E_OUTOFMEMORY ? E_OUTOFMEMORY : automationError(7));
                SetErrorInfo(0, nullptr);
                EXPECT_EQ(identify(), S_OK);
                EXPECT_EQ(identifier, identifierOf(*control.get(), u"RunScript"));
            }
            return requests;
        });
}

class LateBoundMemoryRunsOutInACall : public ComponentTest {
protected:
    test::ComponentMemory memory;

    /// `call` is a late-bound call of the control, which has loaded a script with editable items.
    void refuseEach(const std::string& what, const std::function<Answer(IDispatch&)>& call) {
        test::refuseEachRequest(what, requestsTried, test::ComponentMemory::living,
                                [&](std::size_t nth, Refused refused) {
                                    std::size_t requests = 0;
                                    {
                                        const ComReference<_clsScriptControl> control = newControl();
                                        EXPECT_TRUE(load(*control.get(), editableScript));
                                        makeItemsEditable(*control.get());
                                        {
                                            MemoryFault fault(nth, refused);
                                            const Answer answer = call(*control.get());
                                            requests = fault.requests();
                                            expectAnswer(answer, fault.isReached(), refused);
                                        }
                                        SetErrorInfo(0, nullptr);
                                        EXPECT_EQ(call(*control.get()).result, S_OK);
                                    }
                                    EXPECT_EQ(canUnloadNow(), S_OK);
                                    return requests;
                                });
    }

private:
    static void expectAnswer(const Answer& answer, bool isReached, Refused refused) {
        if (!isReached) {
            EXPECT_EQ(answer.result, S_OK);
        } else if (answer.result == DISP_E_EXCEPTION) {
            EXPECT_EQ(answer.scode, automationError(7));
            EXPECT_TRUE(refused != Refused::OnlyThat || answer.description == u"Out of memory");
        } else {
            EXPECT_EQ(answer.result, E_OUTOFMEMORY);
        }
    }
};

DISPID known(IDispatch& object, std::u16string_view name) {
    const test::HostsOwnMemory own;
    return identifierOf(object, name);
}

TEST_F(LateBoundMemoryRunsOutInACall, OfMembersThatHandOutTextsAndVariants) {
    refuseEach("GetConstant", [](IDispatch& control) {
        return invoke(control, known(control, u"GetConstant"), DISPATCH_METHOD, {text(u"C")});
    });
    refuseEach("GetMemoryValue", [](IDispatch& control) {
        return invoke(control, known(control, u"GetMemoryValue"), DISPATCH_METHOD, {text(u"Title")});
    });
    refuseEach("ScriptFile", [](IDispatch& control) {
        return invoke(control, known(control, u"ScriptFile"), DISPATCH_PROPERTYGET, {});
    });
}

TEST_F(LateBoundMemoryRunsOutInACall, WhoseArgumentsAreConverted) {
    refuseEach("EditDataVariable", [](IDispatch& control) {
        return invoke(control, known(control, u"EditDataVariable"), DISPATCH_METHOD, {text(u"1"), text(u"2")});
    });
}

TEST_F(LateBoundMemoryRunsOutInACall, ThatHandsOutAnArray) {
    refuseEach("GetEditable", [](IDispatch& control) {
        OwnedVariant array;
        LONG count = 0;
        Answer answer = invoke(control, known(control, u"GetEditable"), DISPATCH_METHOD,
                               {reference(*array.get()), reference(VT_I4, &count)});
        EXPECT_EQ(V_VT(array.get()) != VT_EMPTY, answer.result == S_OK);
        return answer;
    });
}

}  // namespace
}  // namespace corvane::testing
