// A late-bound host of the DLL when memory runs out while the members' descriptions are read, which it does once.

#include <gtest/gtest.h>

#include "tests/com/dispatch_call.h"
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

}  // namespace
}  // namespace corvane::testing
