#include "cli/maths_functions.h"

#include <gtest/gtest.h>

#include <limits>

namespace corvane {
namespace {

TEST(MathsFunctions, Compute) {
    struct Row {
        std::u16string_view name;
        float parameters[4];
        float expected;
    };
    constexpr Row rows[] = {
        {u"Add", {1, 2, 4, 8}, 3},
        {u"add", {1, 2, 4, 8}, 3},
        {u"Subtract", {1, 2.5F, 0, 0}, -1.5F},
        {u"Multiply", {3, -2, 0, 0}, -6},
        {u"Divide", {1, 4, 0, 0}, 0.25F},
        {u"Modulo", {7, 4, 0, 0}, 3},
        {u"Power", {2, 10, 0, 0}, 1024},
        {u"Min", {3, 2, -9, 0}, 2},
        {u"Max", {3, 2, 9, 0}, 3},
        {u"Abs", {-3, 0, 0, 0}, 3},
        {u"Sqrt", {9, 0, 0, 0}, 3},
        {u"Round", {2.5F, 0, 0, 0}, 2},
        {u"Floor", {-2.5F, 0, 0, 0}, -3},
        {u"Ceiling", {-2.5F, 0, 0, 0}, -2},
        {u"Exp", {0, 0, 0, 0}, 1},
        {u"Log", {1, 0, 0, 0}, 0},
        {u"Log10", {1000, 0, 0, 0}, 3},
        {u"Sum", {1, 2, 3, 4}, 10},
        {u"Average", {1, 2, 3, 4}, 2.5F},
        {u"Interpolate", {10, 20, 1, 4}, 12.5F},
    };
    for (const Row& row : rows) {
        const MathsResult result = computeMathsFunction(row.name, row.parameters);
        EXPECT_EQ(result.refusal, "");
        EXPECT_FLOAT_EQ(result.value, row.expected);
    }
}

TEST(MathsFunctions, RefuseWhatHasNoResult) {
    struct Row {
        std::u16string_view name;
        float parameters[4];
        const char* refusal;
    };
    constexpr Row rows[] = {
        {u"Perplex", {1, 1, 1, 1}, "there is no function called \"Perplex\""},
        {u"", {1, 1, 1, 1}, "there is no function called \"\""},
        {u"Divide", {1, 0, 0, 0}, "\"Divide\" of these parameters is no number"},
        {u"Modulo", {1, 0, 0, 0}, "\"Modulo\" of these parameters is no number"},
        {u"Sqrt", {-1, 0, 0, 0}, "\"Sqrt\" of these parameters is no number"},
        {u"Log", {0, 0, 0, 0}, "\"Log\" of these parameters is no number"},
        {u"Multiply", {3e38F, 2, 0, 0}, "\"Multiply\" of these parameters is no number"},
    };
    for (const Row& row : rows) EXPECT_EQ(computeMathsFunction(row.name, row.parameters).refusal, row.refusal);
}

}  // namespace
}  // namespace corvane
