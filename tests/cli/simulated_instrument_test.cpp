#include "cli/simulated_instrument.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <limits>
#include <sstream>

#include "cli/json_writer.h"

namespace corvane {
namespace {

using testing::HasSubstr;

Value l(std::int32_t number) { return Value::ofLong(number); }
Value s(float number) { return Value::ofSingle(number); }
Value t(std::u16string_view text) { return Value::ofText(text); }
Value b(bool truth) { return Value::ofBoolean(truth); }

struct Shear {
    float preForce = 9;
    float force = 6;
    float hold = 10;
    float rate = 18;
    float distance = 18;
    std::int32_t repeats = 1;
    float speed = 5;
};

/// An instrument that is told what to do as by a script.
class Instrument {
public:
    /// The refusal; empty when the work was done. tSucess says the same.
    std::string ask(HostEvent event, std::initializer_list<Value> arguments = {}) {
        Event raised(event, arguments);
        const std::string refusal = instrument_.handle(raised);
        EXPECT_EQ(raised.succeeded(), refusal.empty());
        return refusal;
    }
    std::string enterVessel(float height) { return ask(HostEvent::MoveIntoVessel, {s(height)}); }
    std::string moveTo(float height, std::int32_t type = 0, float angle = 0, float speed = 0) {
        return ask(HostEvent::MoveToHeight, {s(height), l(type), s(angle), s(speed)});
    }
    std::string takeDataSet(float height, float angle = -5, float speed = 100) {
        dataSet = makeReference<clsDataSetParameters>();
        dataSet->Height = height;
        dataSet->HelixAngle = angle;
        dataSet->TipSpeed = speed;
        return ask(HostEvent::GetDataSet, {Value::ofObject(*dataSet)});
    }
    std::string compact(float force, float speed = 1, float lowest = 0, float hold = 0) {
        return ask(HostEvent::CompactToForce, {s(force), s(speed), s(lowest), s(hold), l(0)});
    }
    std::string compactEx(float force, float speed = 1, float lowest = 0, float hold = 0, float degrees = 0) {
        return ask(HostEvent::CompactToForceEx,
                   {s(force), l(0), s(hold), l(0), s(speed), s(0), s(degrees), s(lowest), l(0)});
    }
    std::string shear(Shear p) {
        return ask(HostEvent::SCTest, {s(p.preForce), s(0), l(0), s(p.rate), s(p.distance), s(p.hold), l(0), s(p.force),
                                       s(p.rate), s(p.distance), l(p.repeats), l(0), s(p.speed)});
    }
    std::string shearEx(Shear p, float holdForce = 9) {
        return ask(HostEvent::SCTestEx,
                   {s(p.preForce), s(p.speed), s(p.rate),  s(p.distance), s(holdForce),  s(p.hold), l(0),
                    s(p.speed),    s(p.force), s(p.speed), s(p.rate),     s(p.distance), t(u""),    t(u""),
                    t(u""),        t(u""),     s(0),       t(u""),        t(u""),        t(u"")});
    }
    std::string shearFull(float preStress, std::u16string_view stresses, Shear p = {}) {
        return ask(HostEvent::SCTestFull,
                   {b(false), s(preStress), s(p.distance), b(false),    s(p.rate), s(p.speed), b(false),
                    b(false), s(0),         s(0),          l(0),        s(p.hold), b(false),   s(0),
                    b(false), b(false),     s(p.distance), t(stresses), s(p.rate), s(p.speed), b(false),
                    t(u""),   t(u""),       t(u""),        t(u"")});
    }
    std::string rotate(std::int32_t speedMode, float speed, std::int32_t durationMode, float duration) {
        return ask(HostEvent::RotateForDuration, {l(speedMode), s(speed), l(durationMode), s(duration)});
    }
    std::string shake(std::int32_t times, float amplitude = -1, float frequency = -1) {
        return ask(HostEvent::ShakeBlade, {l(times), s(amplitude), s(frequency)});
    }
    std::string aerate(std::int32_t on, float velocity) {
        return ask(HostEvent::AerationControl, {l(on), s(velocity), t(u""), t(u""), t(u""), t(u""), t(u"")});
    }
    std::string control(float force, float velocity, float pressure, float hold = 0, float lowest = 0,
                        std::int32_t channel = 0) {
        return ask(HostEvent::PressureControl,
                   {l(1), s(force), s(velocity), s(pressure), s(hold), s(lowest), l(channel), t(u"")});
    }
    std::string change(HostEvent event, std::int32_t id) { return ask(event, {l(id), l(0), l(0), l(0), l(0), l(0)}); }
    std::string changeVessel(std::int32_t id) { return change(HostEvent::ChangeVessel, id); }
    std::string changeBlade(std::int32_t id) { return change(HostEvent::ChangeBlade, id); }
    std::string split() { return change(HostEvent::VesselSplit, 1); }
    std::string weigh(std::int32_t update) { return change(HostEvent::TareWeightEx, update); }

    const InstrumentState& state() const { return instrument_.state(); }
    /// How long `work` takes.
    template <typename Work>
    double seconds(const Work& work) {
        const double before = instrument_.seconds();
        EXPECT_EQ(work(), "");
        return instrument_.seconds() - before;
    }

    Reference<clsDataSetParameters> dataSet;

private:
    SimulatedInstrument instrument_;
};

// ----------------------------------------------------------------------------------------------------------- refusals

constexpr float nan = std::numeric_limits<float>::quiet_NaN();

TEST(InstrumentRefuses, WorkInAVesselThatIsNotThere) {
    Instrument instrument;
    ASSERT_EQ(instrument.changeVessel(0), "");
    const std::string none = "no vessel is mounted";
    EXPECT_EQ(instrument.enterVessel(100), none);
    EXPECT_EQ(instrument.ask(HostEvent::MoveIntoVesselEx, {s(100), l(0), l(0), l(0), l(0), l(0)}), none);
    EXPECT_EQ(instrument.takeDataSet(10), none);
    EXPECT_EQ(instrument.compact(5), none);
    EXPECT_EQ(instrument.compactEx(5), none);
    EXPECT_EQ(instrument.shear({}), none);
    EXPECT_EQ(instrument.shearEx({}), none);
    EXPECT_EQ(instrument.shearFull(9, u"6"), none);
    EXPECT_EQ(instrument.aerate(1, 5), none);
    EXPECT_EQ(instrument.control(5, 5, 5), none);
    EXPECT_EQ(instrument.split(), none);
    EXPECT_EQ(instrument.weigh(1), none);
    EXPECT_EQ(instrument.ask(HostEvent::TareWeight), none);
    EXPECT_EQ(instrument.aerate(0, 0), "") << "air can be turned off";
}

TEST(InstrumentRefuses, ADataSetWithoutABladeInTheVessel) {
    Instrument instrument;
    EXPECT_EQ(instrument.takeDataSet(10), "the blade is not in the vessel");
    EXPECT_EQ(instrument.dataSet->TestResult, trFailed);
    ASSERT_EQ(instrument.changeBlade(0), "");
    EXPECT_EQ(instrument.takeDataSet(10), "no blade is fitted");
}

TEST(InstrumentRefuses, TestsWithoutABladeInTheVessel) {
    Instrument instrument;
    const std::string outside = "the blade is not in the vessel";
    EXPECT_EQ(instrument.compact(5), outside);
    EXPECT_EQ(instrument.compactEx(5), outside);
    EXPECT_EQ(instrument.shear({}), outside);
    EXPECT_EQ(instrument.shearEx({}), outside);
    EXPECT_EQ(instrument.shearFull(9, u"6"), outside);
    EXPECT_EQ(instrument.control(5, 5, 5), outside);
}

TEST(InstrumentRefuses, AHeightBelowTheVesselsFloor) {
    Instrument instrument;
    const std::string below = "the height, -1 mm, is below the vessel's floor, 0 mm";
    EXPECT_EQ(instrument.moveTo(-1), below);
    EXPECT_EQ(instrument.enterVessel(-1), below);
    ASSERT_EQ(instrument.enterVessel(100), "");
    EXPECT_EQ(instrument.moveTo(-101, 1), below);
    EXPECT_EQ(instrument.takeDataSet(-1), below);
    EXPECT_EQ(instrument.compact(5, 1, -1), below);
    EXPECT_EQ(instrument.compactEx(5, 1, -1), below);
    EXPECT_EQ(instrument.control(5, 5, 5, 0, -1), below);
    EXPECT_EQ(instrument.state().bladeHeight, 100) << "what is refused does not happen";
    EXPECT_EQ(instrument.moveTo(0), "") << "the floor itself can be reached";
}

TEST(InstrumentRefuses, AHeightOutsideItsTravel) {
    Instrument instrument;
    const std::string beyond = "the height, 250.5 mm, is outside -5 to 250 mm";
    EXPECT_EQ(instrument.moveTo(250.5F), beyond);
    EXPECT_EQ(instrument.moveTo(30.5F, 1), beyond);
    EXPECT_EQ(instrument.enterVessel(250.5F), beyond);
    ASSERT_EQ(instrument.enterVessel(100), "");
    EXPECT_EQ(instrument.takeDataSet(250.5F), beyond);
    EXPECT_EQ(instrument.moveTo(250), "");
    ASSERT_EQ(instrument.changeVessel(0), "");
    EXPECT_EQ(instrument.moveTo(-5), "") << "without a vessel there is no floor";
    EXPECT_EQ(instrument.moveTo(-5.5F), "the height, -5.5 mm, is outside -5 to 250 mm");
    EXPECT_NE(instrument.moveTo(nan), "");
}

TEST(InstrumentRefuses, AStartAboveTheVesselsRim) {
    Instrument instrument;
    EXPECT_EQ(instrument.enterVessel(130.5F), "the height, 130.5 mm, is above the vessel's rim, 130 mm");
    EXPECT_EQ(instrument.enterVessel(130), "");
}

TEST(InstrumentRefuses, AForceBeyondItsLimits) {
    Instrument instrument;
    ASSERT_EQ(instrument.enterVessel(100), "");
    const std::string tooStrong = "the force, 50.5 N, is outside 0 to 50 N";
    EXPECT_EQ(instrument.compact(50.5F), tooStrong);
    EXPECT_EQ(instrument.compactEx(50.5F), tooStrong);
    EXPECT_EQ(instrument.shear({.preForce = 50.5F}), tooStrong);
    EXPECT_EQ(instrument.shear({.force = 50.5F}), tooStrong);
    EXPECT_EQ(instrument.shearEx({.preForce = 50.5F}), tooStrong);
    EXPECT_EQ(instrument.shearEx({.force = 50.5F}), tooStrong);
    EXPECT_EQ(instrument.shearEx({}, 50.5F), tooStrong);
    EXPECT_EQ(instrument.control(50.5F, 5, 5), tooStrong);
    EXPECT_EQ(instrument.compact(-1), "the force, -1 N, is outside 0 to 50 N");
    EXPECT_EQ(instrument.state().force, 0);
    EXPECT_EQ(instrument.compact(50), "");
}

TEST(InstrumentRefuses, APressureBeyondItsLimits) {
    Instrument instrument;
    ASSERT_EQ(instrument.enterVessel(100), "");
    EXPECT_EQ(instrument.control(5, 5, 20.5F), "the pressure, 20.5 kPa, is outside 0 to 20 kPa");
    EXPECT_EQ(instrument.control(5, 5, -1), "the pressure, -1 kPa, is outside 0 to 20 kPa");
    EXPECT_EQ(instrument.shearFull(18.5F, u"6"), "the normal stress, 18.5 kPa, is outside 0 to 18 kPa");
    EXPECT_EQ(instrument.shearFull(9, u"6;18.5"), "the normal stress, 18.5 kPa, is outside 0 to 18 kPa");
    EXPECT_EQ(instrument.control(5, 5, 20), "");
}

TEST(InstrumentRefuses, SpeedsAndAnglesBeyondItsLimits) {
    Instrument instrument;
    ASSERT_EQ(instrument.enterVessel(100), "");
    EXPECT_EQ(instrument.moveTo(50, 0, -5, 151), "the tip speed, 151 mm/s, is outside -150 to 150 mm/s");
    EXPECT_EQ(instrument.moveTo(50, 0, 91, 100), "the helix angle, 91 degrees, is outside -90 to 90 degrees");
    EXPECT_THAT(instrument.takeDataSet(50, 91), HasSubstr("helix angle"));
    EXPECT_THAT(instrument.takeDataSet(50, 5, -151), HasSubstr("tip speed"));
    EXPECT_THAT(instrument.rotate(0, 151, 0, 1), HasSubstr("tip speed"));
    EXPECT_THAT(instrument.rotate(1, 60, 0, 1), HasSubstr("tip speed")) << "57 mm wide, 179 mm/s at the tip";
    EXPECT_THAT(instrument.compact(5, 30.5F), HasSubstr("carriage speed"));
    EXPECT_THAT(instrument.compactEx(5, -1), HasSubstr("carriage speed"));
    EXPECT_THAT(instrument.shear({.speed = 31}), HasSubstr("carriage speed"));
    EXPECT_THAT(instrument.shearEx({.speed = 31}), HasSubstr("carriage speed"));
    EXPECT_THAT(instrument.shearFull(9, u"6", {.speed = 31}), HasSubstr("carriage speed"));
    EXPECT_THAT(instrument.aerate(1, 60.5F), HasSubstr("air velocity"));
    EXPECT_THAT(instrument.control(5, 60.5F, 5), HasSubstr("air velocity"));
}

TEST(InstrumentRefuses, LevellingBeyondItsLimits) {
    Instrument instrument;
    ASSERT_EQ(instrument.enterVessel(100), "");
    const auto dataSet = makeReference<clsDataSetParameters>();
    dataSet->LevellingHix = 100;
    EXPECT_THAT(instrument.ask(HostEvent::GetDataSet, {Value::ofObject(*dataSet)}), HasSubstr("helix angle"));
    dataSet->LevellingHix = 10;
    dataSet->LevellingTip = 200;
    EXPECT_THAT(instrument.ask(HostEvent::GetDataSet, {Value::ofObject(*dataSet)}), HasSubstr("tip speed"));
}

TEST(InstrumentRefuses, DurationsAndCountsOutOfAllReason) {
    Instrument instrument;
    ASSERT_EQ(instrument.enterVessel(100), "");
    EXPECT_EQ(instrument.ask(HostEvent::WaitTime, {s(-1), t(u"")}), "the duration, -1 s, is outside 0 to 36000 s");
    EXPECT_THAT(instrument.ask(HostEvent::WaitTime, {s(nan), t(u"")}), HasSubstr("duration"));
    EXPECT_THAT(instrument.rotate(0, 50, 0, -1), HasSubstr("duration"));
    EXPECT_THAT(instrument.rotate(0, 50, 1, -1), HasSubstr("number of revolutions"));
    EXPECT_EQ(instrument.rotate(0, 0, 1, 3), "revolutions need a speed");
    EXPECT_THAT(instrument.compact(5, 1, 0, -1), HasSubstr("duration"));
    EXPECT_THAT(instrument.compactEx(5, 1, 0, 36001), HasSubstr("duration"));
    EXPECT_THAT(instrument.compactEx(5, 1, 0, 0, 361), HasSubstr("shear distance"));
    EXPECT_THAT(instrument.control(5, 5, 5, -1), HasSubstr("duration"));
    EXPECT_THAT(instrument.shear({.hold = -1}), HasSubstr("duration"));
    EXPECT_THAT(instrument.shear({.rate = -1}), HasSubstr("shear rate"));
    EXPECT_THAT(instrument.shear({.distance = 361}), HasSubstr("shear distance"));
    EXPECT_THAT(instrument.shear({.repeats = 101}), HasSubstr("number of repeats"));
    EXPECT_THAT(instrument.shearEx({.hold = -1}), HasSubstr("duration"));
    EXPECT_THAT(instrument.shearEx({.distance = -1}), HasSubstr("shear distance"));
    EXPECT_THAT(instrument.shearFull(9, u"6", {.hold = -1}), HasSubstr("duration"));
    EXPECT_THAT(instrument.shearFull(9, u"6", {.rate = 361}), HasSubstr("shear rate"));
    EXPECT_THAT(instrument.shake(-1), HasSubstr("number of shakes"));
    EXPECT_THAT(instrument.shake(3, 21), HasSubstr("shake amplitude"));
    EXPECT_THAT(instrument.shake(3, 1, 0), HasSubstr("shake frequency"));
}

TEST(InstrumentRefuses, SpeedsThatWouldTakeForEver) {
    Instrument instrument;
    ASSERT_EQ(instrument.enterVessel(100), "");
    const std::string tooSlow = "the tip speed, 1E-30 mm/s, is neither 0 nor at least 0.01 mm/s";
    EXPECT_EQ(instrument.rotate(0, 1e-30F, 1, 10000), tooSlow);
    EXPECT_EQ(instrument.rotate(0, -0.009F, 1, 1), "the tip speed, -0.009 mm/s, is neither 0 nor at least 0.01 mm/s");
    EXPECT_THAT(instrument.rotate(1, 1e-30F, 1, 1), HasSubstr("tip speed"));
    EXPECT_EQ(instrument.moveTo(50, 0, 5, 1e-30F), tooSlow);
    EXPECT_EQ(instrument.takeDataSet(50, 5, 1e-30F), tooSlow);
    const std::string tooSlowAShear =
        "the shear rate, 9.999999E-39 degrees/min, is neither 0 nor at least 0.01 degrees/min";
    EXPECT_EQ(instrument.shear({.rate = 1e-38F}), tooSlowAShear);
    EXPECT_EQ(instrument.shearEx({.rate = 1e-38F}), tooSlowAShear);
    EXPECT_EQ(instrument.shearFull(9, u"6", {.rate = 1e-38F}), tooSlowAShear);
    EXPECT_EQ(instrument.rotate(0, 0.01F, 1, 10000), "");
    EXPECT_EQ(instrument.rotate(0, -0.01F, 0, 1), "");
    EXPECT_EQ(instrument.shear({.rate = 0.01F}), "");
    EXPECT_EQ(instrument.shear({.rate = 0}), "") << "the instrument's own";
}

TEST(InstrumentRefuses, CodesThatItDoesNotKnow) {
    Instrument instrument;
    EXPECT_EQ(instrument.moveTo(100, 2), "there is no type of movement 2");
    EXPECT_EQ(instrument.rotate(2, 50, 0, 1), "there is no speed mode 2");
    EXPECT_EQ(instrument.rotate(0, 50, -1, 1), "there is no duration mode -1");
    EXPECT_EQ(instrument.changeBlade(5), "there is no blade 5");
    EXPECT_EQ(instrument.changeVessel(-1), "there is no vessel -1");
    ASSERT_EQ(instrument.enterVessel(100), "");
    EXPECT_EQ(instrument.control(5, 5, 5, 0, 0, 3), "there is no channel 3");
}

TEST(InstrumentRefuses, ChangesWhileTheBladeIsInTheVessel) {
    Instrument instrument;
    ASSERT_EQ(instrument.enterVessel(100), "");
    const std::string inside = "the blade is still in the vessel";
    EXPECT_EQ(instrument.changeBlade(2), inside);
    EXPECT_EQ(instrument.changeVessel(2), inside);
    EXPECT_EQ(instrument.split(), inside);
    ASSERT_EQ(instrument.ask(HostEvent::Park), "");
    EXPECT_EQ(instrument.changeBlade(2), "");
}

TEST(InstrumentRefuses, ToMoveIntoAVesselOrTurnWithoutABlade) {
    Instrument instrument;
    ASSERT_EQ(instrument.changeBlade(0), "");
    EXPECT_EQ(instrument.enterVessel(100), "no blade is fitted");
    EXPECT_EQ(instrument.rotate(0, 50, 0, 1), "no blade is fitted");
}

TEST(InstrumentRefuses, StressesThatAreNoNumbers) {
    Instrument instrument;
    ASSERT_EQ(instrument.enterVessel(100), "");
    EXPECT_EQ(instrument.shearFull(9, u"6;x"), "the normal stresses, \"6;x\", are no list of numbers");
    EXPECT_EQ(instrument.shearFull(9, u" "), "the normal stresses, \" \", are no list of numbers");
    EXPECT_EQ(instrument.shearFull(9, u"7, 6;5"), "");
}

TEST(InstrumentRefuses, AnEmptyTextCommand) {
    Instrument instrument;
    const auto command = [&](std::u16string_view text) {
        return instrument.ask(HostEvent::TextCommand, {t(text), t(u""), t(u""), t(u""), t(u""), t(u""), t(u"")});
    };
    EXPECT_EQ(command(u""), "the text command is empty");
    EXPECT_EQ(command(u"LAMP ON"), "");
}

TEST(InstrumentRefuses, AFunctionThatItDoesNotKnow) {
    SimulatedInstrument instrument;
    Event event(HostEvent::MathsFunction, {t(u"Perplex"), s(1), s(2), s(3), s(4), s(0)});
    EXPECT_EQ(instrument.handle(event), "there is no function called \"Perplex\"");
    EXPECT_FALSE(event.succeeded());
    EXPECT_EQ(event.argument("tReturn").single(), 0);
}

// ------------------------------------------------------------------------------------------------------ state and
// clock

TEST(Instrument, StartsParkedAboveAVessel) {
    const SimulatedInstrument instrument;
    EXPECT_EQ(instrument.state().bladeHeight, 220);
    EXPECT_EQ(instrument.state().vessel->id, 1);
    EXPECT_EQ(instrument.state().blade->id, 1);
    EXPECT_FALSE(instrument.state().bladeInVessel());
    EXPECT_EQ(instrument.seconds(), 0);
}

TEST(Instrument, MovesAtTheSpeedOfTheHelix) {
    Instrument instrument;
    EXPECT_DOUBLE_EQ(instrument.seconds([&] { return instrument.enterVessel(120); }), 10) << "100 mm at 10 mm/s";
    EXPECT_TRUE(instrument.state().bladeInVessel());
    EXPECT_NEAR(instrument.seconds([&] { return instrument.moveTo(70, 0, 30, 50); }), 2, 1e-6) << "50 mm at 25 mm/s";
    EXPECT_NEAR(instrument.seconds([&] { return instrument.takeDataSet(20, -30, 50); }), 2, 1e-6);
    EXPECT_EQ(instrument.dataSet->TestResult, trComplete);
    EXPECT_DOUBLE_EQ(instrument.seconds([&] { return instrument.moveTo(30, 1); }), 3);
    EXPECT_EQ(instrument.state().bladeHeight, 50);
    EXPECT_DOUBLE_EQ(instrument.seconds([&] { return instrument.ask(HostEvent::Park); }), 17);
    EXPECT_EQ(instrument.state().bladeHeight, 220);
    EXPECT_FALSE(instrument.state().bladeInVessel());
}

TEST(Instrument, ParksAtTheEndOfATest) {
    Instrument instrument;
    ASSERT_EQ(instrument.enterVessel(100), "");
    EXPECT_EQ(instrument.ask(HostEvent::EndTest), "");
    EXPECT_EQ(instrument.state().bladeHeight, 220);
}

TEST(Instrument, TaresOnItsWayInWhereTold) {
    Instrument one;
    const auto enter = [&](std::int32_t torque, std::int32_t force) {
        return one.ask(HostEvent::MoveIntoVesselEx, {s(120), l(torque), l(force), l(0), l(0), l(0)});
    };
    EXPECT_DOUBLE_EQ(one.seconds([&] { return enter(1, 0); }), 13);
    EXPECT_DOUBLE_EQ(one.seconds([&] { return enter(1, 1); }), 6);
    EXPECT_DOUBLE_EQ(one.seconds([&] { return enter(0, 0); }), 0);
}

TEST(Instrument, TurnsForATimeOrForRevolutions) {
    Instrument instrument;
    EXPECT_DOUBLE_EQ(instrument.seconds([&] { return instrument.rotate(0, 100, 0, 12); }), 12);
    EXPECT_NEAR(instrument.seconds([&] { return instrument.rotate(1, 30, 1, 10); }), 20, 1e-4);
    EXPECT_NEAR(instrument.seconds([&] { return instrument.rotate(0, 0, 1, 0); }), 0, 1e-9)
        << "no revolutions take no time";
    EXPECT_NEAR(instrument.seconds([&] { return instrument.rotate(0, -57 * 3.14159265F / 2, 1, 3); }), 6, 1e-4)
        << "the sign is a direction";
    EXPECT_DOUBLE_EQ(instrument.seconds([&] { return instrument.shake(20); }), 2) << "at 10 Hz of its own";
    EXPECT_DOUBLE_EQ(instrument.seconds([&] { return instrument.shake(20, 1, 5); }), 4);
    EXPECT_DOUBLE_EQ(instrument.seconds([&] {
        return instrument.ask(HostEvent::ShakeBladeEx, {l(5), s(1), s(5), l(0), l(0), l(0)});
    }),
                     1);
    EXPECT_DOUBLE_EQ(instrument.seconds([&] { return instrument.ask(HostEvent::WaitTime, {s(7.5F), t(u"")}); }), 7.5);
}

TEST(Instrument, PressesThePowderDown) {
    Instrument instrument;
    ASSERT_EQ(instrument.enterVessel(120), "");
    EXPECT_FLOAT_EQ(instrument.state().bedHeight, 104);
    // 104 mm of powder under half the greatest force lose a tenth: from 120 mm down to 93.6 mm.
    EXPECT_NEAR(instrument.seconds([&] { return instrument.compact(25, 2, 0, 30); }), 13.2 + 2 + 30, 1e-4);
    EXPECT_FLOAT_EQ(instrument.state().bladeHeight, 93.6F);
    EXPECT_FLOAT_EQ(instrument.state().bedHeight, 93.6F);
    EXPECT_EQ(instrument.state().force, 25);
    EXPECT_NEAR(instrument.seconds([&] { return instrument.compactEx(25, 0, 0, 5, 12); }), 2 + 5 + 2, 1e-4);
    EXPECT_FLOAT_EQ(instrument.state().bedHeight, 93.6F) << "the same force presses no further";
    ASSERT_EQ(instrument.moveTo(120), "");
    EXPECT_EQ(instrument.state().force, 0);
    ASSERT_EQ(instrument.compact(50, 1, 100), "");
    EXPECT_EQ(instrument.state().bladeHeight, 100) << "not below the lowest height";
}

TEST(Instrument, TakesItsTimeToShear) {
    Instrument instrument;
    ASSERT_EQ(instrument.enterVessel(104), "");
    // Pre-shear: down to 100.256 mm at 5 mm/s, 2 s to settle, 60 s of shear, 10 s of hold; each shear from where the
    // weaker force stands.
    const double seconds = instrument.seconds([&] { return instrument.shear({.repeats = 2}); });
    EXPECT_NEAR(seconds, 3.744 / 5 + 2 + 60 + 10 + 2 * (2 + 60) + 1.248 / 5, 1e-3);
    EXPECT_EQ(instrument.state().force, 6);
    EXPECT_NEAR(instrument.seconds([&] { return instrument.shearEx({.force = 9}); }),
                2 + 60 + 2 + 10 + 2 + 60 + 1.248 / 5, 1e-3);
    const double full = instrument.seconds([&] { return instrument.shearFull(3, u"3;3", {.rate = 0}); });
    EXPECT_NEAR(full, 2 * (2 + 60 + 10 + 2 + 60), 0.5) << "its own rate is 18 degrees a minute";
    EXPECT_NEAR(instrument.state().force, 8.482, 1e-3) << "3 kPa on 60 mm across";
}

TEST(Instrument, KeepsItsAir) {
    Instrument instrument;
    EXPECT_DOUBLE_EQ(instrument.seconds([&] { return instrument.aerate(1, 12); }), 10);
    EXPECT_TRUE(instrument.state().airOn);
    EXPECT_EQ(instrument.state().airVelocity, 12);
    ASSERT_EQ(instrument.enterVessel(104), "");
    EXPECT_GT(instrument.seconds([&] { return instrument.control(5, 2, 8, 20); }), 20 + 15);
    EXPECT_EQ(instrument.state().pressure, 8);
    EXPECT_EQ(instrument.state().force, 5);
    ASSERT_EQ(instrument.aerate(0, 12), "");
    EXPECT_FALSE(instrument.state().airOn);
    EXPECT_EQ(instrument.state().airVelocity, 0);
    EXPECT_EQ(instrument.state().pressure, 0);
}

TEST(Instrument, WeighsThePowder) {
    Instrument instrument;
    EXPECT_DOUBLE_EQ(instrument.seconds([&] { return instrument.weigh(1); }), 3);
    EXPECT_NEAR(instrument.state().powderMass, 147.03, 0.01) << "294 ml at 0.5 g/ml";
    ASSERT_EQ(instrument.split(), "");
    ASSERT_EQ(instrument.weigh(1), "");
    EXPECT_NEAR(instrument.state().powderMass, 110.27, 0.01);
    ASSERT_EQ(instrument.weigh(0), "");
    EXPECT_EQ(instrument.state().powderMass, 0);
    ASSERT_EQ(instrument.ask(HostEvent::TareWeight), "");
    EXPECT_EQ(instrument.state().powderMass, 0);
}

TEST(Instrument, ChangesVesselAndBlade) {
    Instrument instrument;
    EXPECT_DOUBLE_EQ(instrument.seconds([&] { return instrument.changeVessel(4); }), 60);
    EXPECT_EQ(instrument.state().vessel->id, 4);
    EXPECT_EQ(instrument.state().bedHeight, 101) << "filled anew";
    EXPECT_EQ(instrument.moveTo(4), "the height, 4 mm, is below the vessel's floor, 5 mm");
    EXPECT_DOUBLE_EQ(instrument.seconds([&] { return instrument.changeBlade(3); }), 60);
    EXPECT_EQ(instrument.state().blade->id, 3);
}

TEST(Instrument, LeavesTheOtherEventsToTheComponent) {
    for (const EventRow& row : eventTable) {
        const bool isOperator = row.name == "InputNumber" || row.name == "InputString" || row.name == "MsgAsk" ||
                                row.name == "MsgInfo" || row.name == "MsgInfoEx" || row.name == "FunctionCalled";
        if (!isOperator) continue;
        SimulatedInstrument instrument;
        std::vector<Value> values;
        for (std::size_t i = 0; i + 1 < row.argumentCount; ++i)
            values.push_back(row.arguments[i].type == ValueType::Text     ? t(u"x")
                             : row.arguments[i].type == ValueType::Single ? s(1)
                             : row.arguments[i].type == ValueType::Long   ? l(1)
                                                                          : b(true));
        ASSERT_LE(values.size(), 5U);
        values.resize(5);
        Event event = row.argumentCount == 3   ? Event(row.id, {values[0], values[1]})
                      : row.argumentCount == 4 ? Event(row.id, {values[0], values[1], values[2]})
                      : row.argumentCount == 5 ? Event(row.id, {values[0], values[1], values[2], values[3]})
                                               : Event(row.id, {values[0], values[1], values[2], values[3], values[4]});
        EXPECT_EQ(instrument.handle(event), "");
        EXPECT_TRUE(event.succeeded());
        EXPECT_TRUE(event.argument(event.count() - 2).type() != ValueType::Boolean ||
                    event.argument(event.count() - 2).boolean())
            << row.name << ": the component shows its own dialog";
    }
}

// -------------------------------------------------------------------------------------------------------------- the
// text

TEST(InstrumentLimits, StandInTheManual) {
    std::ifstream file("docs/command_line.md", std::ios::binary);
    const std::string manual{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    using namespace limits;
    for (const Limit& limit :
         {travel, tipSpeed, helixAngle, carriageSpeed, force, pressure, normalStress, shearRate, shearDistance,
          airVelocity, duration, revolutions, repeats, shakes, shakeAmplitude, shakeFrequency}) {
        const std::string row = std::string("| ") + limit.quantity + " | " + numberText(limit.lowest) + " | " +
                                numberText(limit.highest) + " | " + limit.unit + " |\n";
        EXPECT_THAT(manual, HasSubstr(row));
    }
    for (int id = 0; id < 10; ++id) {
        if (const Vessel* vessel = findVessel(id)) {
            EXPECT_THAT(manual, HasSubstr("| " + std::to_string(id) + " | " + vessel->name + " | " +
                                          numberText(vessel->diameter) + " | " + numberText(vessel->floor) + " | " +
                                          numberText(vessel->rim) + " |\n"));
        }
        if (const Blade* blade = findBlade(id)) {
            EXPECT_THAT(manual, HasSubstr("| " + std::to_string(id) + " | " + blade->name + " | " +
                                          numberText(blade->diameter) + " |\n"));
        }
    }
}

}  // namespace
}  // namespace corvane
