// Late-bound hosts when memory runs out: arguments are converted and answers handed out with the component's memory.

#include <gtest/gtest.h>

#include <functional>
#include <vector>

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

/// Only what the component asks for is refused.
Answer called(IDispatch& object, std::u16string_view name, WORD flags,
              const std::function<std::vector<VARIANT>()>& arguments) {
    DISPID member = DISPID_UNKNOWN;
    const auto prepared = [&] {
        const test::HostsOwnMemory own;
        member = identifierOf(object, name);
        return Arguments(arguments());
    };
    Arguments passed = prepared();
    return invoke(object, member, flags, std::move(passed));
}

TEST_F(LateBoundMemoryRunsOutInACall, OfMembersThatHandOutTextsAndVariants) {
    refuseEach("GetConstant", [](IDispatch& control) {
        return called(control, u"GetConstant", DISPATCH_METHOD, [] { return std::vector{text(u"C")}; });
    });
    refuseEach("GetMemoryValue", [](IDispatch& control) {
        return called(control, u"GetMemoryValue", DISPATCH_METHOD, [] { return std::vector{text(u"Title")}; });
    });
    refuseEach("ScriptFile", [](IDispatch& control) {
        return called(control, u"ScriptFile", DISPATCH_PROPERTYGET, [] { return std::vector<VARIANT>(); });
    });
}

TEST_F(LateBoundMemoryRunsOutInACall, WhoseArgumentsAreConverted) {
    refuseEach("EditDataVariable", [](IDispatch& control) {
        return called(control, u"EditDataVariable", DISPATCH_METHOD, [] {
            return std::vector{text(u"1"), text(u"2")};
        });
    });
}

TEST_F(LateBoundMemoryRunsOutInACall, ThatHandsOutAnArray) {
    refuseEach("GetEditable", [](IDispatch& control) {
        OwnedVariant array;
        LONG count = 0;
        Answer answer = called(control, u"GetEditable", DISPATCH_METHOD, [&] {
            return std::vector{reference(*array.get()), reference(VT_I4, &count)};
        });
        EXPECT_EQ(V_VT(array.get()) != VT_EMPTY, answer.result == S_OK);
        return answer;
    });
}

}  // namespace
}  // namespace corvane::testing
