#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/clsScriptControl.h"
#include "tests/allocation_counter.h"

namespace corvane {
namespace {

/// Answers everything with success and keeps nothing.
class WillingHost final : public EventSink {
public:
    void raise(Event& event) override { event.succeed(); }
};

/// Loads its script anew whenever it is asked to park, and fails at the fiftieth time.
class ReloadingHost final : public EventSink {
public:
    clsScriptControl* control = nullptr;
    std::u16string script;
    std::vector<std::size_t> living;  ///< allocations, after each load

    ReloadingHost() { living.reserve(turns); }
    void raise(Event& event) override {
        event.succeed();
        if (event.id() != HostEvent::Park) return;
        EXPECT_TRUE(control->LoadScript_FromScript(script, u"", 1, 1));
        living.push_back(test::livingAllocations());
        event.succeed(living.size() < turns);
    }

private:
    static constexpr std::size_t turns = 50;
};

class QuietPump final : public MessagePump {
public:
    void yield() override {}
};

class Allocation : public ::testing::Test {
protected:
    NumberLocale numbers = NumberLocale::pointDecimal();
    NoOperator nobody;
    QuietPump pump;
    WillingHost host;

    /// The allocations of a run in which a loop with `body` is gone through `turns` times.
    std::size_t allocationsOfRun(const std::u16string& body, int turns) {
        clsScriptControl control({nobody, pump, &numbers});
        control.setEventSink(&host);
        std::u16string script = u"VAR Count = 0\nVAR Other = 1\nVAR Turns = 1\nAgain:\nIncrement(Count)\n" + body;
        script += u"\nIfLessThan(Count, Turns, Again)";
        EXPECT_TRUE(control.LoadScript_FromScript(script, u"", 1, 1));
        EXPECT_TRUE(control.EditDataVariable(3, static_cast<float>(turns)));
        const std::size_t before = test::allocationCount();
        EXPECT_TRUE(control.RunScript());
        return test::allocationCount() - before;
    }

    /// The allocations that a control lives on after a run during which its host loads the script anew.
    std::size_t livingAfterRun(const std::u16string& script, ReloadingHost& reloading) {
        const std::size_t before = test::livingAllocations();
        clsScriptControl control({nobody, pump, &numbers});
        reloading.control = &control;
        reloading.script = script;
        control.setEventSink(&reloading);
        EXPECT_TRUE(control.LoadScript_FromScript(script, u"", 1, 1));
        EXPECT_TRUE(control.RunScript());
        return test::livingAllocations() - before;
    }

    std::size_t allocationsOfLoad(const std::u16string& line, int lines) {
        clsScriptControl control({nobody, pump, &numbers});
        std::u16string script;
        for (int i = 0; i < lines; ++i) script += line;
        const std::size_t before = test::allocationCount();
        EXPECT_TRUE(control.LoadScript_FromScript(script, u"", 1, 1));
        return test::allocationCount() - before;
    }
};

TEST_F(Allocation, AStepOnNumbersNeedsNone) {
    for (const std::u16string body :
         {u"Decrement(Other)", u"Set(Other, 7.5)", u"IfEqual(Other, 5, Again)", u"MoveToHeight(70, 0, -5, Other)",
          u"SCTest(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13)", u"ShakeBlade(3)", u"Park()"})
        EXPECT_EQ(allocationsOfRun(body, 2), allocationsOfRun(body, 500));
}

TEST_F(Allocation, AStepWithATextSharesIt) {
    for (const std::u16string body :
         {u"Info(\"one text\")", u"TextCommand(\"Air\", \"1\", \"2\", \"3\", \"4\", \"5\", \"6\")"})
        EXPECT_EQ(allocationsOfRun(body, 2), allocationsOfRun(body, 500));
}

TEST_F(Allocation, ARunThatLoadsAgainAndAgainKeepsOneReplacedScriptAtMost) {
    ReloadingHost reloading;
    livingAfterRun(u"Again:\nPark()\nGoto(Again)", reloading);
    ASSERT_EQ(reloading.living.size(), 50u);
    EXPECT_EQ(reloading.living[5], reloading.living[49]);
}

TEST_F(Allocation, AnEndedRunKeepsNoReplacedScript) {
    ReloadingHost inTheMiddle;
    ReloadingHost atTheEnd;
    const std::u16string lines = u"\nVAR X = \"a text that needs an allocation\"";
    EXPECT_EQ(livingAfterRun(u"Park()\nTareWeight()" + lines, inTheMiddle),
              livingAfterRun(u"TareWeight()\nPark()" + lines, atTheEnd));
    EXPECT_EQ(atTheEnd.living.size(), 1u);
}

TEST_F(Allocation, OfANumbersTextIsSeen) {
    const std::u16string body = u"AddDataSetVariable(\"Count\", Count, \"\", 4)";
    EXPECT_GT(allocationsOfRun(body, 500), allocationsOfRun(body, 2) + 400);
}

TEST_F(Allocation, ALineOfNumbersNeedsNoneOfItsOwn) {
    // Blocks of many items are all that is allocated: one for some twenty lines.
    EXPECT_LT(allocationsOfLoad(u"SCTest(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13)\n", 2000), 150u);
    EXPECT_LT(allocationsOfLoad(u"; a comment\n\n", 2000), 30u);
}

}  // namespace
}  // namespace corvane
