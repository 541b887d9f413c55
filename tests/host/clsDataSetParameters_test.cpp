#include "host/clsDataSetParameters.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/support/engine_fixture.h"

namespace corvane {
namespace {

using testing::errorOf;

TEST(DataSetParameters, StartAtZeroButForTheDirection) {
    const Reference<clsDataSetParameters> set = makeReference<clsDataSetParameters>();
    EXPECT_EQ(set->HelixAngle, 0);
    EXPECT_EQ(set->TipSpeed, 0);
    EXPECT_EQ(set->Height, 0);
    EXPECT_EQ(set->Force, 0);
    EXPECT_EQ(set->SampleDelta, 0);
    EXPECT_EQ(set->SampleType, smHeight);
    EXPECT_EQ(set->DataSetType, dstTest);
    EXPECT_EQ(set->Direction, 3);
    EXPECT_EQ(set->LevellingFrom, lfNone);
    EXPECT_EQ(set->LevellingType, ltNoLevelling);
    EXPECT_EQ(set->LevellingTrigger, 0);
    EXPECT_EQ(set->LevellingHix, 0);
    EXPECT_EQ(set->LevellingTip, 0);
    EXPECT_EQ(set->TestResult, trNotRun);
    for (std::int32_t i = 0; i < 8; ++i) EXPECT_EQ(set->DataSetVariable(i), u"") << i;
}

TEST(DataSetParameters, EachMemberHoldsItsOwnValue) {
    const Reference<clsDataSetParameters> set = makeReference<clsDataSetParameters>();
    set->HelixAngle = 1.5F;
    set->TipSpeed = 2.5F;
    set->Height = 3.5F;
    set->Force = 4.5F;
    set->SampleDelta = 5.5F;
    set->SampleType = smTime;
    set->DataSetType = dstLevelling;
    set->Direction = -6;
    set->LevellingFrom = lfCustom;
    set->LevellingType = ltByTorquePercentage;
    set->LevellingTrigger = 7.5F;
    set->LevellingHix = 8.5F;
    set->LevellingTip = 9.5F;
    set->TestResult = trOverload;
    EXPECT_EQ(set->HelixAngle, 1.5F);
    EXPECT_EQ(set->TipSpeed, 2.5F);
    EXPECT_EQ(set->Height, 3.5F);
    EXPECT_EQ(set->Force, 4.5F);
    EXPECT_EQ(set->SampleDelta, 5.5F);
    EXPECT_EQ(static_cast<std::int32_t>(set->SampleType), 1);
    EXPECT_EQ(static_cast<std::int32_t>(set->DataSetType), 4);
    EXPECT_EQ(set->Direction, -6);
    EXPECT_EQ(static_cast<std::int32_t>(set->LevellingFrom), 2);
    EXPECT_EQ(static_cast<std::int32_t>(set->LevellingType), 3);
    EXPECT_EQ(set->LevellingTrigger, 7.5F);
    EXPECT_EQ(set->LevellingHix, 8.5F);
    EXPECT_EQ(set->LevellingTip, 9.5F);
    EXPECT_EQ(static_cast<std::int32_t>(set->TestResult), 3);
}

TEST(DataSetParameters, CheckNoRange) {
    const Reference<clsDataSetParameters> set = makeReference<clsDataSetParameters>();
    set->Direction = std::numeric_limits<std::int32_t>::min();
    set->DataSetType = static_cast<enumDataSetType>(-7);
    set->TestResult = static_cast<enumTestResult>(1000);
    EXPECT_EQ(set->Direction, std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(static_cast<std::int32_t>(set->DataSetType), -7);
    EXPECT_EQ(static_cast<std::int32_t>(set->TestResult), 1000);
}

TEST(DataSetParameters, AddingAVariableReplacesTheSlot) {
    const Reference<clsDataSetParameters> set = makeReference<clsDataSetParameters>();
    set->AddDataSetVariable(2, u"first");
    set->AddDataSetVariable(2, u"second");
    EXPECT_EQ(set->DataSetVariable(2), u"second");
    EXPECT_EQ(set->DataSetVariable(1), u"");
    EXPECT_EQ(set->DataSetVariable(3), u"");
}

TEST(DataSetParameters, HaveEightVariableSlots) {
    const Reference<clsDataSetParameters> set = makeReference<clsDataSetParameters>();
    for (std::int32_t i = 0; i < 8; ++i) set->AddDataSetVariable(i, std::u16string(1, static_cast<char16_t>(u'a' + i)));
    for (std::int32_t i = 0; i < 8; ++i)
        EXPECT_EQ(set->DataSetVariable(i), std::u16string(1, static_cast<char16_t>(u'a' + i)));
    for (const std::int32_t index :
         {-1, 8, 9, std::numeric_limits<std::int32_t>::max(), std::numeric_limits<std::int32_t>::min()}) {
        EXPECT_EQ(errorOf([&] { set->DataSetVariable(index); }), 9) << index;
        EXPECT_EQ(errorOf([&] { set->AddDataSetVariable(index, u"lost"); }), 9) << index;
    }
    EXPECT_EQ(set->DataSetVariable(0), u"a") << "a failing call changes nothing";
    EXPECT_EQ(set->DataSetVariable(7), u"h");
}

}  // namespace
}  // namespace corvane
