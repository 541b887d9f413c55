#include "cli/instrument_limits.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "cli/json_writer.h"

namespace corvane {
namespace {

constexpr Vessel vessels[] = {
    // id, diameter, floor, rim, name
    {1, 60, 0, 130, "tall"},
    {2, 30, 0, 90, "narrow"},
    {3, 60, 0, 60, "shear"},
    {4, 60, 5, 125, "aeration"},
};

constexpr Blade blades[] = {
    {1, 57, "blade"},
    {2, 28, "narrow blade"},
    {3, 59, "piston"},
    {4, 58, "shear head"},
};

}  // namespace

std::string Limit::refusal(float value) const {
    const std::string given = std::string("the ") + quantity + ", " + numberText(value) + " " + unit + ", is ";
    if (!(value >= lowest && value <= highest))
        return given + "outside " + numberText(lowest) + " to " + numberText(highest) + " " + unit;
    if (value != 0 && std::abs(value) < leastNonZero)
        return given + "neither 0 nor at least " + numberText(leastNonZero) + " " + unit;
    return {};
}

const Vessel* findVessel(int id) {
    const auto* vessel =
        std::find_if(std::begin(vessels), std::end(vessels), [&](const Vessel& v) { return v.id == id; });
    return vessel == std::end(vessels) ? nullptr : vessel;
}

const Blade* findBlade(int id) {
    const auto* blade = std::find_if(std::begin(blades), std::end(blades), [&](const Blade& b) { return b.id == id; });
    return blade == std::end(blades) ? nullptr : blade;
}

}  // namespace corvane
