#include <gtest/gtest.h>

#include "tests/com/component.h"

namespace corvane::testing {
namespace {

TEST(Component, RunsAScriptForASink) {
    const ComReference<_clsScriptControl> control = newControl();
    ASSERT_TRUE(control);
    std::vector<DISPID> events;
    Sink sink([&](DISPID event, DISPPARAMS& arguments) {
        events.push_back(event);
        Sink::succeed(event, arguments);
        return S_OK;
    });
    const Advised advised(*control.get(), sink);
    ASSERT_TRUE(load(*control.get(), u"VAR A = 1\r\nInfo(\"hello\")\r\nPark()"));
    VARIANT_BOOL result = VARIANT_FALSE;
    ASSERT_EQ(control->RunScript(&result), S_OK);
    EXPECT_EQ(result, VARIANT_TRUE);
    EXPECT_EQ(events, (std::vector<DISPID>{40, 41, 5, 37, 41, 22, 37}));
}

}  // namespace
}  // namespace corvane::testing
