#pragma once

#include <optional>
#include <string>

/// What the simulated instrument can do, and how fast it does what a script does not say: every figure of it.
namespace corvane {

/// A range of a quantity; both ends are allowed. A value other than 0 must also have at least the size `leastNonZero`:
/// work at next to no speed would never come to an end.
struct Limit {
    const char* quantity;
    float lowest;
    float highest;
    const char* unit;
    float leastNonZero = 0;

    /// Why the instrument refuses `value`; empty when it does not. What is no number is refused.
    std::string refusal(float value) const;
};

namespace limits {
inline constexpr Limit travel{"height", -5, 250, "mm"};
inline constexpr Limit tipSpeed{"tip speed", -150, 150, "mm/s", 0.01F};
inline constexpr Limit helixAngle{"helix angle", -90, 90, "degrees"};
inline constexpr Limit carriageSpeed{"carriage speed", 0.01F, 30, "mm/s"};
inline constexpr Limit force{"force", 0, 50, "N"};
inline constexpr Limit pressure{"pressure", 0, 20, "kPa"};
inline constexpr Limit normalStress{"normal stress", 0, 18, "kPa"};
inline constexpr Limit shearRate{"shear rate", 0, 360, "degrees/min", 0.01F};
inline constexpr Limit shearDistance{"shear distance", 0, 360, "degrees"};
inline constexpr Limit airVelocity{"air velocity", 0, 60, "mm/s"};
inline constexpr Limit duration{"duration", 0, 36000, "s"};
inline constexpr Limit revolutions{"number of revolutions", 0, 10000, "revolutions"};
inline constexpr Limit repeats{"number of repeats", 0, 100, "times"};
inline constexpr Limit shakes{"number of shakes", 0, 1000, "times"};
inline constexpr Limit shakeAmplitude{"shake amplitude", 0, 20, "mm"};
inline constexpr Limit shakeFrequency{"shake frequency", 0.1F, 50, "Hz"};
}  // namespace limits

/// What the instrument takes where a script leaves it the choice, and how long its own work takes.
namespace habits {
inline constexpr float parkHeight = 220;        // mm
inline constexpr float carriageSpeed = 10;      // mm/s
inline constexpr float shearRate = 18;          // degrees/min
inline constexpr float compactionRotation = 6;  // degrees/s
inline constexpr float shakeAmplitude = 2;      // mm
inline constexpr float shakeFrequency = 10;     // Hz
inline constexpr float fillLevel = 0.8F;        // of a vessel's depth, when it is put in
inline constexpr float splitLevel = 0.6F;       // of a vessel's depth, left by a split
inline constexpr float bulkDensity = 0.5F;      // g/ml
inline constexpr float softness = 0.2F;         // of the bed's height, lost under the greatest force
inline constexpr double tareSeconds = 3;
inline constexpr double changeSeconds = 60;  // a blade or a vessel, by the operator
inline constexpr double splitSeconds = 20;   // by the operator
inline constexpr double airSettlingSeconds = 10;
inline constexpr double pressureSettlingSeconds = 15;
inline constexpr double forceSettlingSeconds = 2;
inline constexpr double saveSeconds = 1;
inline constexpr double textCommandSeconds = 0.5;
}  // namespace habits

/// A vessel that can be put in; heights are measured from the instrument's zero.
struct Vessel {
    int id;
    float diameter;  ///< mm
    float floor;     ///< mm
    float rim;       ///< mm
    const char* name;
    /// The area of its powder's surface, mm².
    float area() const { return 3.14159265F / 4 * diameter * diameter; }
};

/// A tool on the spindle.
struct Blade {
    int id;
    float diameter;  ///< mm
    const char* name;
};

/// The vessel, or null. 1 tall, 2 narrow, 3 shear, 4 aeration.
const Vessel* findVessel(int id);
/// The blade, or null. 1 blade, 2 narrow blade, 3 piston, 4 shear head.
const Blade* findBlade(int id);

}  // namespace corvane
