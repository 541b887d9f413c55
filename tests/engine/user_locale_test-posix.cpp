// A user who changes how numbers are written while the engine is at work.

#include <gtest/gtest.h>

#include "tests/support/engine_fixture.h"
#include "tests/support/user_language-posix.h"

namespace corvane {
namespace {

using testing::ScriptedDialogs;
using testing::UserLanguage;

class UserLocale : public ::testing::Test {
protected:
    using Lines = std::vector<std::string>;

    /// What the host was told since it was asked last.
    Lines told() { return std::exchange(owner.lines, {}); }
    static std::string added(const std::string& half) { return "AddTestVariable(\"x\", \"" + half + "\", \"mm\", l0)"; }
    void changeInside(HostEvent event, const char* language) {
        owner.onEvent = [=](Event& raised) {
            if (raised.id() == event) UserLanguage::changeTo(language);
        };
    }

    UserLanguage user{"C.UTF-8"};
    testing::RecordingOwner owner;
    ScriptedDialogs dialogs;
    testing::CountingPump pump;
    clsCommandList engine{owner, {dialogs, pump}};
};

TEST_F(UserLocale, IsAskedForAtTheStartOfARun) {
    ASSERT_TRUE(engine.CreateCommandList(u"VAR Half = 0.5\nAddTestVariable(\"x\", Half, \"mm\")"));
    EXPECT_EQ(told(), Lines{"VariableAdded(\"Half\", \"0.5\")"});
    UserLanguage::changeTo("de_DE.UTF-8");
    EXPECT_TRUE(engine.ExecuteList());
    EXPECT_EQ(told(), Lines{added("0,5")});
}

TEST_F(UserLocale, StaysTheSameWithinARun) {
    ASSERT_TRUE(engine.CreateCommandList(
        u"CONST Half = 0.5\nAddTestVariable(\"x\", Half, \"mm\")\nAddTestVariable(\"x\", Half, \"mm\")"));
    told();
    changeInside(HostEvent::AddTestVariable, "de_DE.UTF-8");
    EXPECT_TRUE(engine.ExecuteList());
    EXPECT_EQ(told(), (Lines{added("0.5"), added("0.5")}));
    EXPECT_TRUE(engine.ExecuteList());
    EXPECT_EQ(told(), (Lines{added("0,5"), added("0,5")}));
}

TEST_F(UserLocale, StaysTheSameWithinALoad) {
    changeInside(HostEvent::ConstantAdded, "de_DE.UTF-8");
    const std::u16string_view script = u"CONST Half = 0.5\nVAR Quarter = 0.25";
    ASSERT_TRUE(engine.CreateCommandList(script));
    EXPECT_EQ(told(), (Lines{"ConstantAdded(\"Half\", \"0.5\")", "VariableAdded(\"Quarter\", \"0.25\")"}));
    ASSERT_TRUE(engine.CreateCommandList(script));
    EXPECT_EQ(told(), (Lines{"ConstantAdded(\"Half\", \"0,5\")", "VariableAdded(\"Quarter\", \"0,25\")"}));
}

}  // namespace
}  // namespace corvane
