#include "host/clsScriptParamList.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "tests/support/engine_fixture.h"

namespace corvane {
namespace {

using testing::errorOf;

TEST(ScriptParamList, StartsWithZeroEmptyAndFalse) {
    const clsScriptParamList list;
    for (std::int32_t i = 0; i < 10; ++i) {
        EXPECT_EQ(list.SingleValue(i), 0) << i;
        EXPECT_EQ(list.StringValue(i), u"") << i;
        EXPECT_FALSE(list.BooleanValue(i)) << i;
    }
}

TEST(ScriptParamList, KeepsTenValuesOfEachTypeApart) {
    clsScriptParamList list;
    for (std::int32_t i = 0; i < 10; ++i) {
        list.setSingleValue(i, static_cast<float>(i) + 0.5F);
        list.setStringValue(i, std::u16string(1, static_cast<char16_t>(u'a' + i)));
        list.setBooleanValue(i, i % 3 == 0);
    }
    for (std::int32_t i = 0; i < 10; ++i) {
        EXPECT_EQ(list.SingleValue(i), static_cast<float>(i) + 0.5F);
        EXPECT_EQ(list.StringValue(i), std::u16string(1, static_cast<char16_t>(u'a' + i)));
        EXPECT_EQ(list.BooleanValue(i), i % 3 == 0);
    }
}

TEST(ScriptParamList, FailsOutsideItsTenSlotsAndChangesNothing) {
    clsScriptParamList list;
    list.setSingleValue(9, 1.5F);
    list.setStringValue(9, u"last");
    list.setBooleanValue(9, true);
    for (const std::int32_t index :
         {-1, 10, 11, std::numeric_limits<std::int32_t>::max(), std::numeric_limits<std::int32_t>::min()}) {
        EXPECT_EQ(errorOf([&] { list.SingleValue(index); }), 9) << index;
        EXPECT_EQ(errorOf([&] { list.StringValue(index); }), 9) << index;
        EXPECT_EQ(errorOf([&] { list.BooleanValue(index); }), 9) << index;
        EXPECT_EQ(errorOf([&] { list.setSingleValue(index, 9); }), 9) << index;
        EXPECT_EQ(errorOf([&] { list.setStringValue(index, u"lost"); }), 9) << index;
        EXPECT_EQ(errorOf([&] { list.setBooleanValue(index, false); }), 9) << index;
    }
    EXPECT_EQ(list.SingleValue(9), 1.5F);
    EXPECT_EQ(list.StringValue(9), u"last");
    EXPECT_TRUE(list.BooleanValue(9));
}

}  // namespace
}  // namespace corvane
