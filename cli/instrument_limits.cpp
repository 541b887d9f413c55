#include "cli/instrument_limits.h"

#include <algorithm>
#include <iterator>

#include "cli/json_writer.h"

namespace corvane {
namespace {

constexpr Vessel vessels[] = {
    // id, name, diameter, floor, rim
    {1, "tall", 60, 0, 130},
    {2, "narrow", 30, 0, 90},
    {3, "shear", 60, 0, 60},
    {4, "aeration", 60, 5, 125},
};

constexpr Blade blades[] = {
    {1, "blade", 57},
    {2, "narrow blade", 28},
    {3, "piston", 59},
    {4, "shear head", 58},
};

}  // namespace

std::string Limit::refusal(float value) const {
    if (value >= lowest && value <= highest) return {};
    return std::string("the ") + quantity + ", " + numberText(value) + " " + unit + ", is outside " +
           numberText(lowest) + " to " + numberText(highest) + " " + unit;
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
