// Late binding where the platform's part of it can be taken away.

#include <gtest/gtest.h>

#include "host/com/dispatch_interface.h"
#include "tests/com/dispatch_call.h"
#include "tests/com/every_event.h"

namespace corvane::testing {
namespace {

using LateBinding = ComponentTest;

TEST_F(LateBinding, DescribesMembersAnewAfterItForgotThem) {
    const auto runScriptOf = [] { return identifierOf(*newControl().get(), u"RunScript"); };
    const DISPID before = runScriptOf();
    EXPECT_NE(before, DISPID_UNKNOWN);
    DispatchInterface::forgetAll();
    EXPECT_EQ(runScriptOf(), before);
}

TEST_F(LateBinding, HandsOutNoDescriptionWhereThereIsNone) {
    const ComReference<_clsScriptControl> control = newControl();
    const auto provider = queryFor<IProvideClassInfo>(control.get(), IID_IProvideClassInfo);
    ASSERT_TRUE(provider);
    auto* information = reinterpret_cast<ITypeInfo*>(1);
    EXPECT_EQ(provider->GetClassInfo(&information), TYPE_E_ELEMENTNOTFOUND);
    EXPECT_EQ(information, nullptr);
}

TEST_F(LateBinding, NothingHasNoInterfaces) {
    EXPECT_FALSE(queryFor<IDispatch>(static_cast<IUnknown*>(nullptr), IID_IDispatch));
}

}  // namespace
}  // namespace corvane::testing
