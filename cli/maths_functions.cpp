#include "cli/maths_functions.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

#include "cli/json_writer.h"
#include "platform/text_case.h"

namespace corvane {
namespace {

struct MathsFunction {
    std::u16string_view name;
    double (*compute)(const float (&p)[4]);
};

// To compute in double and round once gives the same single everywhere.
constexpr MathsFunction functions[] = {
    {u"Add", [](const float (&p)[4]) { return double{p[0]} + p[1]; }},
    {u"Subtract", [](const float (&p)[4]) { return double{p[0]} - p[1]; }},
    {u"Multiply", [](const float (&p)[4]) { return double{p[0]} * p[1]; }},
    {u"Divide", [](const float (&p)[4]) { return double{p[0]} / p[1]; }},
    {u"Modulo", [](const float (&p)[4]) { return std::fmod(double{p[0]}, p[1]); }},
    {u"Power", [](const float (&p)[4]) { return std::pow(double{p[0]}, p[1]); }},
    {u"Min", [](const float (&p)[4]) { return double{std::min(p[0], p[1])}; }},
    {u"Max", [](const float (&p)[4]) { return double{std::max(p[0], p[1])}; }},
    {u"Abs", [](const float (&p)[4]) { return std::abs(double{p[0]}); }},
    {u"Sqrt", [](const float (&p)[4]) { return std::sqrt(double{p[0]}); }},
    {u"Round", [](const float (&p)[4]) { return std::nearbyint(double{p[0]}); }},
    {u"Floor", [](const float (&p)[4]) { return std::floor(double{p[0]}); }},
    {u"Ceiling", [](const float (&p)[4]) { return std::ceil(double{p[0]}); }},
    {u"Exp", [](const float (&p)[4]) { return std::exp(double{p[0]}); }},
    {u"Log", [](const float (&p)[4]) { return std::log(double{p[0]}); }},
    {u"Log10", [](const float (&p)[4]) { return std::log10(double{p[0]}); }},
    {u"Sum", [](const float (&p)[4]) { return double{p[0]} + p[1] + p[2] + p[3]; }},
    {u"Average", [](const float (&p)[4]) { return (double{p[0]} + p[1] + p[2] + p[3]) / 4; }},
    // P0 + (P1 - P0) * P2 / P3
    {u"Interpolate", [](const float (&p)[4]) { return p[0] + (double{p[1]} - p[0]) * p[2] / p[3]; }},
};

}  // namespace

MathsResult computeMathsFunction(std::u16string_view name, const float (&parameters)[4]) {
    const auto* function = std::find_if(std::begin(functions), std::end(functions),
                                        [&](const MathsFunction& f) { return equalIgnoringCase(f.name, name); });
    if (function == std::end(functions)) return {0, "there is no function called " + quoted(name)};
    const double value = function->compute(parameters);
    if (!(std::abs(value) <= std::numeric_limits<float>::max()))
        return {0, quoted(name) + " of these parameters is no number"};
    return {static_cast<float>(value), {}};
}

}  // namespace corvane
