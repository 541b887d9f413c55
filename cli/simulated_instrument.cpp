// One function an event: it says why not, or changes the state, moves the clock on and says nothing.

#include "cli/simulated_instrument.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numbers>
#include <optional>
#include <vector>

#include "cli/json_writer.h"
#include "cli/maths_functions.h"
#include "platform/automation_error.h"
#include "platform/value_rules.h"

namespace corvane {
namespace {

enum MoveType : std::int32_t { toHeight = 0, byHeight = 1 };
enum SpeedMode : std::int32_t { byTipSpeed = 0, bySpindleSpeed = 1 };
enum DurationMode : std::int32_t { bySeconds = 0, byRevolutions = 1 };

float single(const Event& event, std::string_view name) { return event.argument(name).single(); }
std::int32_t integer(const Event& event, std::string_view name) { return event.argument(name).longInteger(); }
std::u16string_view text(const Event& event, std::string_view name) { return event.argument(name).textView(); }

/// The first that says something.
std::string firstOf(std::initializer_list<std::string> refusals) {
    const auto* refusal =
        std::find_if(refusals.begin(), refusals.end(), [](const std::string& reason) { return !reason.empty(); });
    return refusal == refusals.end() ? std::string() : *refusal;
}

std::string refuseCode(const char* what, std::int32_t code, std::int32_t highest) {
    if (code >= 0 && code <= highest) return {};
    return std::string("there is no ") + what + " " + std::to_string(code);
}

/// A shear without a rate takes the instrument's own.
double shearSeconds(float distance, float rate) { return distance / (rate > 0 ? rate : habits::shearRate) * 60; }

std::string refuseShear(float distance, float rate) {
    return firstOf({limits::shearDistance.refusal(distance), limits::shearRate.refusal(rate)});
}

std::string refuseCarriageSpeed(float speed) {
    return speed == 0 ? std::string() : limits::carriageSpeed.refusal(speed);
}

/// Numbers with a point, between blanks, commas or semicolons. None for anything else.
std::optional<std::vector<float>> numberList(std::u16string_view text) {
    constexpr std::u16string_view separators = u" ,;";
    std::vector<float> numbers;
    while (true) {
        text.remove_prefix(std::min(text.find_first_not_of(separators), text.size()));
        if (text.empty()) return numbers;
        const std::u16string_view item = text.substr(0, text.find_first_of(separators));
        text.remove_prefix(item.size());
        try {
            numbers.push_back(portable::toSingle(Value::ofText(item), NumberLocale::pointDecimal()));
        } catch (const automation_error&) {
            return std::nullopt;
        }
    }
}

}  // namespace

SimulatedInstrument::SimulatedInstrument() { fillVessel(state_.vessel); }

std::string SimulatedInstrument::handle(Event& event) {
    const Duty duty = dutyFor(event.id());
    std::string refusal = duty == nullptr ? std::string() : (this->*duty)(event);
    event.succeed(refusal.empty());
    return refusal;
}

SimulatedInstrument::Duty SimulatedInstrument::dutyFor(HostEvent event) {
    struct Row {
        HostEvent event;
        Duty duty;
    };
    using Self = SimulatedInstrument;
    static constexpr Row rows[] = {
        {HostEvent::MathsFunction, &Self::mathsFunction},
        {HostEvent::WaitTime, &Self::waitTime},
        {HostEvent::GetDataSet, &Self::getDataSet},
        {HostEvent::RotateForDuration, &Self::rotateForDuration},
        {HostEvent::MoveToHeight, &Self::moveToHeight},
        {HostEvent::CompactToForce, &Self::compactToForce},
        {HostEvent::CompactToForceEx, &Self::compactToForceEx},
        {HostEvent::SCTest, &Self::shearTest},
        {HostEvent::SCTestEx, &Self::shearTestEx},
        {HostEvent::SCTestFull, &Self::shearTestFull},
        {HostEvent::Park, &Self::park},
        {HostEvent::ShakeBlade, &Self::shakeBlade},
        {HostEvent::ShakeBladeEx, &Self::shakeBlade},
        {HostEvent::MoveIntoVessel, &Self::moveIntoVessel},
        {HostEvent::MoveIntoVesselEx, &Self::moveIntoVessel},
        {HostEvent::TareWeight, &Self::tareWeight},
        {HostEvent::TareWeightEx, &Self::tareWeight},
        {HostEvent::ChangeBlade, &Self::changeBlade},
        {HostEvent::ChangeVessel, &Self::changeVessel},
        {HostEvent::VesselSplit, &Self::vesselSplit},
        {HostEvent::SaveData, &Self::saveData},
        {HostEvent::EndTest, &Self::park},
        {HostEvent::TextCommand, &Self::textCommand},
        {HostEvent::AerationControl, &Self::aerationControl},
        {HostEvent::PressureControl, &Self::pressureControl},
    };
    const auto* row = std::find_if(std::begin(rows), std::end(rows), [&](const Row& r) { return r.event == event; });
    return row == std::end(rows) ? nullptr : row->duty;
}

// ------------------------------------------------------------------------------------------------------ what forbids
// it

std::string SimulatedInstrument::refuseWithoutVessel() const {
    return state_.vessel == nullptr ? "no vessel is mounted" : std::string();
}

std::string SimulatedInstrument::refuseWithoutBladeInVessel() const {
    if (state_.vessel == nullptr) return refuseWithoutVessel();
    if (state_.blade == nullptr) return "no blade is fitted";
    return state_.bladeInVessel() ? std::string() : "the blade is not in the vessel";
}

std::string SimulatedInstrument::refuseWithBladeInVessel() const {
    return state_.bladeInVessel() ? "the blade is still in the vessel" : std::string();
}

std::string SimulatedInstrument::refuseHeight(float height) const {
    if (std::string refusal = limits::travel.refusal(height); !refusal.empty()) return refusal;
    if (state_.vessel == nullptr || height >= state_.vessel->floor) return {};
    return "the height, " + numberText(height) + " mm, is below the vessel's floor, " +
           numberText(state_.vessel->floor) + " mm";
}

// ------------------------------------------------------------------------------------------------------------
// movements

void SimulatedInstrument::moveTo(float height) {
    state_.bladeHeight = height;
    state_.force = 0;
}

double SimulatedInstrument::rotationsPerSecond(float tipSpeed) const {
    const double diameter = state_.blade == nullptr ? 1.0 : double{state_.blade->diameter};
    return std::abs(double{tipSpeed}) / (std::numbers::pi * diameter);
}

// Along a helix only the part of the tip speed that is not rotation changes the height. Without a helix or a speed the
// carriage moves alone.
double SimulatedInstrument::travelSeconds(float height, float helixAngle, float tipSpeed) const {
    const double distance = std::abs(double{height} - double{state_.bladeHeight});
    const double rise = std::abs(double{tipSpeed} * std::sin(double{helixAngle} * std::numbers::pi / 180));
    return distance / (rise > 1e-3 ? rise : habits::carriageSpeed);
}

std::string SimulatedInstrument::moveToHeight(Event& event) {
    const float angle = single(event, "tHelixAngle");
    const float speed = single(event, "tTipSpeed");
    const std::int32_t type = integer(event, "tMoveType");
    const float height = single(event, "tHeightMM") + (type == byHeight ? state_.bladeHeight : 0);
    std::string refusal = firstOf({refuseCode("type of movement", type, byHeight), refuseHeight(height),
                                   limits::helixAngle.refusal(angle), limits::tipSpeed.refusal(speed)});
    if (!refusal.empty()) return refusal;
    seconds_ += travelSeconds(height, angle, speed);
    moveTo(height);
    return {};
}

std::string SimulatedInstrument::moveIntoVessel(Event& event) {
    const float height = single(event, "tTestStartHeight");
    std::string refusal = firstOf({refuseWithoutVessel(), refuseHeight(height)});
    if (!refusal.empty()) return refusal;
    if (state_.blade == nullptr) return "no blade is fitted";
    if (height > state_.vessel->rim)
        return "the height, " + numberText(height) + " mm, is above the vessel's rim, " +
               numberText(state_.vessel->rim) + " mm";
    seconds_ += travelSeconds(height, 0, 0);
    if (event.id() == HostEvent::MoveIntoVesselEx)
        seconds_ += habits::tareSeconds *
                    ((integer(event, "tTareTorque") != 0 ? 1 : 0) + (integer(event, "tTareForce") != 0 ? 1 : 0));
    moveTo(height);
    return {};
}

std::string SimulatedInstrument::park(Event&) {
    seconds_ += travelSeconds(habits::parkHeight, 0, 0);
    moveTo(habits::parkHeight);
    return {};
}

std::string SimulatedInstrument::rotateForDuration(Event& event) {
    const std::int32_t speedMode = integer(event, "tSpeedMode");
    const std::int32_t durationMode = integer(event, "tDurationMode");
    const float speed = single(event, "tSpeed");
    const float duration = single(event, "tDuration");
    const float diameter = state_.blade == nullptr ? 0 : state_.blade->diameter;
    const float tipSpeed = speedMode == bySpindleSpeed ? speed / 60 * std::numbers::pi_v<float> * diameter : speed;
    std::string refusal =
        firstOf({refuseCode("speed mode", speedMode, bySpindleSpeed),
                 refuseCode("duration mode", durationMode, byRevolutions), limits::tipSpeed.refusal(tipSpeed),
                 (durationMode == byRevolutions ? limits::revolutions : limits::duration).refusal(duration)});
    if (!refusal.empty()) return refusal;
    if (state_.blade == nullptr) return "no blade is fitted";
    if (durationMode == bySeconds) {
        seconds_ += duration;
    } else {
        if (tipSpeed == 0 && duration != 0) return "revolutions need a speed";
        if (duration != 0) seconds_ += duration / rotationsPerSecond(tipSpeed);
    }
    return {};
}

std::string SimulatedInstrument::shakeBlade(Event& event) {
    // -1 leaves the choice to the instrument.
    const auto orOwn = [](float value, float own) { return value == -1 ? own : value; };
    const std::int32_t times = integer(event, "tNumberOfTimes");
    const float amplitude = orOwn(single(event, "tAmplitude"), habits::shakeAmplitude);
    const float frequency = orOwn(single(event, "tFrequency"), habits::shakeFrequency);
    std::string refusal =
        firstOf({limits::shakes.refusal(static_cast<float>(times)), limits::shakeAmplitude.refusal(amplitude),
                 limits::shakeFrequency.refusal(frequency)});
    if (!refusal.empty()) return refusal;
    seconds_ += times / double{frequency};
    return {};
}

std::string SimulatedInstrument::waitTime(Event& event) {
    const float duration = single(event, "tDuration");
    std::string refusal = limits::duration.refusal(duration);
    if (refusal.empty()) seconds_ += duration;
    return refusal;
}

// ----------------------------------------------------------------------------------------------------------------
// tests

std::string SimulatedInstrument::getDataSet(Event& event) {
    auto& dataSet = static_cast<clsDataSetParameters&>(event.argument(0).object());
    std::string refusal =
        firstOf({refuseWithoutBladeInVessel(), refuseHeight(dataSet.Height),
                 limits::helixAngle.refusal(dataSet.HelixAngle), limits::tipSpeed.refusal(dataSet.TipSpeed),
                 limits::helixAngle.refusal(dataSet.LevellingHix), limits::tipSpeed.refusal(dataSet.LevellingTip)});
    if (!refusal.empty()) {
        dataSet.TestResult = trFailed;
        return refusal;
    }
    seconds_ += travelSeconds(dataSet.Height, dataSet.HelixAngle, dataSet.TipSpeed);
    moveTo(dataSet.Height);
    dataSet.TestResult = trComplete;
    return {};
}

double SimulatedInstrument::press(float force, float lowest, float carriageSpeed) {
    const float depth = looseHeight_ - state_.vessel->floor;
    const float pressed = looseHeight_ - depth * habits::softness * force / limits::force.highest;
    const float height = std::max(pressed, lowest);
    const double distance = std::abs(double{height} - double{state_.bladeHeight});
    moveTo(height);
    state_.bedHeight = std::min(state_.bedHeight, height);
    state_.force = force;
    return distance / (carriageSpeed > 0 ? carriageSpeed : habits::carriageSpeed) + habits::forceSettlingSeconds;
}

std::string SimulatedInstrument::compactToForce(Event& event) {
    const float force = single(event, "tForceN");
    const float speed = single(event, "tCarriageSpeed");
    const float lowest = single(event, "tMinHeight");
    const float hold = single(event, "tHoldTime");
    std::string refusal = firstOf({refuseWithoutBladeInVessel(), limits::force.refusal(force),
                                   refuseCarriageSpeed(speed), refuseHeight(lowest), limits::duration.refusal(hold)});
    if (!refusal.empty()) return refusal;
    seconds_ += press(force, lowest, speed) + hold;
    return {};
}

std::string SimulatedInstrument::compactToForceEx(Event& event) {
    const float force = single(event, "tForceN");
    const float speed = single(event, "tControlParam1");
    const float lowest = single(event, "tLowestHeight");
    const float hold = single(event, "tHoldTime");
    const float degrees = single(event, "tNumberOfDegrees");
    std::string refusal =
        firstOf({refuseWithoutBladeInVessel(), limits::force.refusal(force), refuseCarriageSpeed(speed),
                 refuseHeight(lowest), limits::duration.refusal(hold), limits::shearDistance.refusal(degrees)});
    if (!refusal.empty()) return refusal;
    seconds_ += press(force, lowest, speed) + hold + degrees / habits::compactionRotation;
    return {};
}

std::string SimulatedInstrument::shearTest(Event& event) {
    const float preForce = single(event, "tPCForce");
    const float force = single(event, "tShearForce");
    const float speed = single(event, "tMaxCarriageSpeed");
    const float preHold = single(event, "tPCHoldTime");
    const float hold = single(event, "tPSHoldTime");
    const std::int32_t repeats = integer(event, "tShearRepeats");
    std::string refusal =
        firstOf({refuseWithoutBladeInVessel(), limits::force.refusal(preForce), limits::force.refusal(force),
                 limits::duration.refusal(preHold), limits::duration.refusal(hold),
                 refuseShear(single(event, "tPCShearDistance"), single(event, "tPCShearRate")),
                 refuseShear(single(event, "tShearDistance"), single(event, "tShearRate")),
                 limits::repeats.refusal(static_cast<float>(repeats)), refuseCarriageSpeed(speed)});
    if (!refusal.empty()) return refusal;
    const float floor = state_.vessel->floor;
    seconds_ += press(preForce, floor, speed) + preHold +
                shearSeconds(single(event, "tPCShearDistance"), single(event, "tPCShearRate")) + hold;
    for (std::int32_t shear = 0; shear < repeats; ++shear)
        seconds_ +=
            press(force, floor, speed) + shearSeconds(single(event, "tShearDistance"), single(event, "tShearRate"));
    return {};
}

std::string SimulatedInstrument::shearTestEx(Event& event) {
    const float preForce = single(event, "tPSForce");
    const float holdForce = single(event, "tPHForce");
    const float force = single(event, "tSForce");
    const float preSpeed = single(event, "tPSControlSpeed");
    const float holdSpeed = single(event, "tSHControlSpeed");
    const float speed = single(event, "tSControlSpeed");
    const float hold = single(event, "tPHTime");
    std::string refusal =
        firstOf({refuseWithoutBladeInVessel(), limits::force.refusal(preForce), limits::force.refusal(holdForce),
                 limits::force.refusal(force), refuseCarriageSpeed(preSpeed), refuseCarriageSpeed(holdSpeed),
                 refuseCarriageSpeed(speed), limits::duration.refusal(hold),
                 refuseShear(single(event, "tPSShearDistance"), single(event, "tPSShearRate")),
                 refuseShear(single(event, "tSShearDistance"), single(event, "tSShearRate"))});
    if (!refusal.empty()) return refusal;
    const float floor = state_.vessel->floor;
    seconds_ += press(preForce, floor, preSpeed) +
                shearSeconds(single(event, "tPSShearDistance"), single(event, "tPSShearRate"));
    seconds_ += press(holdForce, floor, holdSpeed) + hold;
    seconds_ +=
        press(force, floor, speed) + shearSeconds(single(event, "tSShearDistance"), single(event, "tSShearRate"));
    return {};
}

// Stresses in kPa on the vessel's area: 1 kPa is 0.001 N on a square millimetre.
std::string SimulatedInstrument::shearTestFull(Event& event) {
    const float preStress = single(event, "tPSNormalStress");
    const float preSpeed = single(event, "tPSControlSpeed");
    const float preRate = single(event, "tPSShearRate");
    const float preDegrees = single(event, "tPSMaxDegrees");
    const float hold = single(event, "tPHHoldFor");
    const float speed = single(event, "tSControlSpeed");
    const float rate = single(event, "tSShearRate");
    const float distance = single(event, "tSShearDistance");
    const std::optional<std::vector<float>> stresses = numberList(text(event, "tSNormalStresses"));
    std::string refusal =
        firstOf({refuseWithoutBladeInVessel(), limits::normalStress.refusal(preStress),
                 refuseShear(preDegrees, preRate), refuseCarriageSpeed(preSpeed), limits::duration.refusal(hold),
                 refuseShear(distance, rate), refuseCarriageSpeed(speed)});
    if (!refusal.empty()) return refusal;
    if (!stresses || stresses->empty())
        return "the normal stresses, " + quoted(text(event, "tSNormalStresses")) + ", are no list of numbers";
    for (const float stress : *stresses)
        if (refusal = limits::normalStress.refusal(stress); !refusal.empty()) return refusal;
    const float floor = state_.vessel->floor;
    const float newtons = state_.vessel->area() / 1000;
    for (const float stress : *stresses) {
        seconds_ += press(preStress * newtons, floor, preSpeed) + shearSeconds(preDegrees, preRate) + hold;
        seconds_ += press(stress * newtons, floor, speed) + shearSeconds(distance, rate);
    }
    return {};
}

std::string SimulatedInstrument::aerationControl(Event& event) {
    const bool on = integer(event, "tAirOnOff") != 0;
    const float velocity = single(event, "tAirVelocity");
    std::string refusal = firstOf({on ? refuseWithoutVessel() : std::string(), limits::airVelocity.refusal(velocity)});
    if (!refusal.empty()) return refusal;
    state_.airOn = on;
    state_.airVelocity = on ? velocity : 0;
    if (!on) state_.pressure = 0;
    seconds_ += habits::airSettlingSeconds;
    return {};
}

std::string SimulatedInstrument::pressureControl(Event& event) {
    const float force = single(event, "tForce");
    const float velocity = single(event, "tAirVelocity");
    const float pressure = single(event, "tPressure");
    const float hold = single(event, "tHoldTime");
    const float lowest = single(event, "tMinHeight");
    std::string refusal =
        firstOf({refuseWithoutBladeInVessel(), limits::force.refusal(force), limits::airVelocity.refusal(velocity),
                 limits::pressure.refusal(pressure), limits::duration.refusal(hold), refuseHeight(lowest),
                 refuseCode("channel", integer(event, "tChannelMode"), 2)});
    if (!refusal.empty()) return refusal;
    state_.airOn = velocity > 0;
    state_.airVelocity = velocity;
    state_.pressure = pressure;
    seconds_ += press(force, lowest, 0) + hold + habits::pressureSettlingSeconds;
    return {};
}

// ------------------------------------------------------------------------------------------------- vessel, blade,
// balance

void SimulatedInstrument::fillVessel(const Vessel* vessel) {
    state_.vessel = vessel;
    state_.powderMass = 0;
    looseHeight_ = vessel == nullptr ? 0 : vessel->floor + (vessel->rim - vessel->floor) * habits::fillLevel;
    state_.bedHeight = looseHeight_;
}

std::string SimulatedInstrument::tareWeight(Event& event) {
    if (std::string refusal = refuseWithoutVessel(); !refusal.empty()) return refusal;
    const bool weighs = event.id() == HostEvent::TareWeightEx && integer(event, "tUpdatePowderMass") != 0;
    const float volume = state_.vessel->area() * (state_.bedHeight - state_.vessel->floor) / 1000;  // ml
    state_.powderMass = weighs ? volume * habits::bulkDensity : 0;
    seconds_ += habits::tareSeconds;
    return {};
}

std::string SimulatedInstrument::changeBlade(Event& event) {
    const std::int32_t id = integer(event, "tNewBladeID");
    if (std::string refusal = refuseWithBladeInVessel(); !refusal.empty()) return refusal;
    if (id != 0 && findBlade(id) == nullptr) return "there is no blade " + std::to_string(id);
    state_.blade = findBlade(id);
    seconds_ += habits::changeSeconds;
    return {};
}

std::string SimulatedInstrument::changeVessel(Event& event) {
    const std::int32_t id = integer(event, "tNewVesselID");
    if (std::string refusal = refuseWithBladeInVessel(); !refusal.empty()) return refusal;
    if (id != 0 && findVessel(id) == nullptr) return "there is no vessel " + std::to_string(id);
    fillVessel(findVessel(id));
    seconds_ += habits::changeSeconds;
    return {};
}

std::string SimulatedInstrument::vesselSplit(Event&) {
    if (std::string refusal = firstOf({refuseWithoutVessel(), refuseWithBladeInVessel()}); !refusal.empty())
        return refusal;
    const Vessel& vessel = *state_.vessel;
    const float split = vessel.floor + (vessel.rim - vessel.floor) * habits::splitLevel;
    looseHeight_ = std::min(looseHeight_, split);
    state_.bedHeight = std::min(state_.bedHeight, split);
    seconds_ += habits::splitSeconds;
    return {};
}

// --------------------------------------------------------------------------------------------------------- everything
// else

std::string SimulatedInstrument::saveData(Event&) {
    seconds_ += habits::saveSeconds;
    return {};
}

std::string SimulatedInstrument::textCommand(Event& event) {
    if (text(event, "tCommand").empty()) return "the text command is empty";
    seconds_ += habits::textCommandSeconds;
    return {};
}

std::string SimulatedInstrument::mathsFunction(Event& event) {
    const float parameters[] = {single(event, "tParam0"), single(event, "tParam1"), single(event, "tParam2"),
                                single(event, "tParam3")};
    MathsResult result = computeMathsFunction(text(event, "tFunction"), parameters);
    if (result.refusal.empty()) event.answer("tReturn", Value::ofSingle(result.value));
    return result.refusal;
}

}  // namespace corvane
