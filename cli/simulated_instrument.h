#pragma once

#include <initializer_list>
#include <string>

#include "cli/instrument_limits.h"
#include "engine/event.h"
#include "host/clsDataSetParameters.h"

namespace corvane {

/// What the instrument is like at a moment.
struct InstrumentState {
    float bladeHeight = habits::parkHeight;  ///< mm above the instrument's zero
    const Vessel* vessel = findVessel(1);    ///< null: none is mounted
    const Blade* blade = findBlade(1);       ///< null: none is fitted
    float bedHeight = 0;                     ///< mm above zero: the surface of the powder
    float powderMass = 0;                    ///< g, as last weighed
    float force = 0;                         ///< N, of the tool on the powder
    float pressure = 0;                      ///< kPa, of the air below the powder
    bool airOn = false;
    float airVelocity = 0;  ///< mm/s

    bool bladeInVessel() const { return vessel != nullptr && blade != nullptr && bladeHeight <= vessel->rim; }
};

/// A host's instrument that is not there: it keeps a state and a clock, does at once what an event asks for, and
/// refuses what a real instrument would refuse. It depends on nothing but the events it is given.
class SimulatedInstrument {
public:
    SimulatedInstrument();

    /// Does the work of an event and answers it: success, or nothing at all and the reason why not. Events that are no
    /// work for an instrument are answered with success and left to the component.
    std::string handle(Event& event);

    const InstrumentState& state() const { return state_; }
    /// How long everything so far would have taken, in seconds.
    double seconds() const { return seconds_; }

private:
    using Duty = std::string (SimulatedInstrument::*)(Event&);
    static Duty dutyFor(HostEvent event);

    std::string mathsFunction(Event& event);
    std::string waitTime(Event& event);
    std::string getDataSet(Event& event);
    std::string rotateForDuration(Event& event);
    std::string moveToHeight(Event& event);
    std::string compactToForce(Event& event);
    std::string compactToForceEx(Event& event);
    std::string shearTest(Event& event);
    std::string shearTestEx(Event& event);
    std::string shearTestFull(Event& event);
    std::string park(Event& event);
    std::string shakeBlade(Event& event);
    std::string moveIntoVessel(Event& event);
    std::string tareWeight(Event& event);
    std::string changeBlade(Event& event);
    std::string changeVessel(Event& event);
    std::string vesselSplit(Event& event);
    std::string saveData(Event& event);
    std::string textCommand(Event& event);
    std::string aerationControl(Event& event);
    std::string pressureControl(Event& event);

    // Why not; empty when there is nothing against it.
    std::string refuseWithoutVessel() const;
    std::string refuseWithoutBladeInVessel() const;
    std::string refuseWithBladeInVessel() const;
    std::string refuseHeight(float height) const;

    double travelSeconds(float height, float helixAngle, float tipSpeed) const;
    double rotationsPerSecond(float tipSpeed) const;
    /// Lowers the tool onto the powder and presses with `force`, but not below `lowest`; answers how long it takes.
    double press(float force, float lowest, float carriageSpeed);
    void moveTo(float height);
    void fillVessel(const Vessel* vessel);

    InstrumentState state_;
    float looseHeight_ = 0;  // mm above zero: where the powder would reach had nothing pressed it
    double seconds_ = 0;
};

}  // namespace corvane
