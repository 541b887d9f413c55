#include <gtest/gtest.h>

#include "platform/value_rules.h"
#include "tests/allocation_counter.h"

namespace corvane {
namespace {

template <typename Work>
std::size_t allocationsOf(Work work) {
    const std::size_t before = test::allocationCount();
    work();
    return test::allocationCount() - before;
}

TEST(ValueRulesAllocation, ScriptNumbersNeedNone) {
    const NumberLocale locale = NumberLocale::commaDecimal();
    const Value number = Value::ofSingle(1.5f);
    const Value one = Value::ofInteger(1);
    const Value text = Value::ofText(u"-3,25");
    float sum = 0;
    EXPECT_EQ(allocationsOf([&] {
                  sum += plainNumber(u"12.5", locale).value();
                  sum += toSingle(text, locale);
                  sum += add(number, one, locale).single();
                  sum += subtract(number, one, locale).single();
                  sum += compare(number, one) > 0 ? 1.0f : 0.0f;
              }),
              0u);
    EXPECT_EQ(sum, 12.5f - 3.25f + 2.5f + 0.5f + 1);
}

TEST(ValueRulesAllocation, CopiesOfTextsNeedNone) {
    const NumberLocale locale = NumberLocale::pointDecimal();
    const Value text = Value::ofText(u"a text");
    EXPECT_EQ(allocationsOf([&] {
                  const Value copy = text;
                  const Text shared = toText(copy, locale);
              }),
              0u);
}

TEST(ValueRulesAllocation, TextOfAWholeNumberNeedsOne) {
    const NumberLocale locale = NumberLocale::pointDecimal();
    EXPECT_EQ(allocationsOf([&] { toText(Value::ofSingle(-1234), locale); }), 1u);
    EXPECT_EQ(allocationsOf([&] { toText(Value::ofInteger(7), locale); }), 1u);
}

}  // namespace
}  // namespace corvane
