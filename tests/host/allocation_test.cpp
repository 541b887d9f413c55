#include <gtest/gtest.h>

#include <string>

#include "host/clsScriptControl.h"
#include "tests/allocation_counter.h"

namespace corvane {
namespace {

/// Answers everything with success and keeps nothing.
class WillingHost final : public EventSink {
public:
    void raise(Event& event) override { event.succeed(); }
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
