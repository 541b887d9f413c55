#include "ui/placement.h"

#include <gtest/gtest.h>

namespace corvane {
namespace {

TEST(ScreenArea, EqualsAnotherOnlyInPlaceAndSize) {
    const ScreenArea area{1, 2, 3, 4};
    EXPECT_EQ(area, (ScreenArea{1, 2, 3, 4}));
    for (const ScreenArea& other :
         {ScreenArea{0, 2, 3, 4}, ScreenArea{1, 0, 3, 4}, ScreenArea{1, 2, 0, 4}, ScreenArea{1, 2, 3, 0}})
        EXPECT_NE(area, other);
}

TEST(CentredOver, HasTheMiddleOfTheOwner) {
    struct Row {
        ScreenArea owner;
        int width, height;
        ScreenArea centred;
    };
    const Row rows[] = {
        {{0, 0, 800, 600}, 400, 200, {200, 200, 400, 200}},       {{100, 50, 800, 600}, 400, 200, {300, 250, 400, 200}},
        {{100, 50, 800, 600}, 401, 201, {299, 249, 401, 201}},    {{100, 50, 200, 100}, 400, 200, {0, 0, 400, 200}},
        {{-1920, 0, 800, 600}, 400, 200, {-1720, 200, 400, 200}}, {{100, 100, 0, 0}, 400, 200, {-100, 0, 400, 200}},
    };
    for (const Row& row : rows) EXPECT_EQ(centredOver(row.owner, row.width, row.height), row.centred);
}

TEST(KeptWithin, MovesAsLittleAsNeeded) {
    const ScreenArea screen{0, 0, 1024, 768};
    struct Row {
        ScreenArea area, kept;
    };
    const Row rows[] = {
        {{10, 20, 300, 200}, {10, 20, 300, 200}},       {{0, 0, 1024, 768}, {0, 0, 1024, 768}},
        {{-1, -1, 300, 200}, {0, 0, 300, 200}},         {{725, 569, 300, 200}, {724, 568, 300, 200}},
        {{5000, 9000, 300, 200}, {724, 568, 300, 200}}, {{-5000, -9000, 300, 200}, {0, 0, 300, 200}},
    };
    for (const Row& row : rows) EXPECT_EQ(keptWithin(screen, row.area), row.kept);
}

TEST(KeptWithin, KeepsTheLeftUpperCornerOfWhatIsTooLarge) {
    EXPECT_EQ(keptWithin({50, 60, 200, 100}, {0, 0, 300, 200}), (ScreenArea{50, 60, 300, 200}));
    EXPECT_EQ(keptWithin({-1920, 0, 1920, 1080}, {-2000, 1000, 2500, 200}), (ScreenArea{-1920, 880, 2500, 200}));
}

}  // namespace
}  // namespace corvane
