#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/cli/ran.h"
#include "tests/platform/temporary_folder.h"

namespace corvane {
namespace {

using testing::HasSubstr;

Ran listed(const std::string& script, std::vector<std::string> options = {}) {
    const TemporaryFolder folder;
    options.insert(options.begin(), {"list", folder.write("a.script", script).string()});
    return ran(options);
}

TEST(List, ShowsWhatAScriptPerforms) {
    const Ran result = listed("VAR N = 0\nAgain:\nMoveToHeight(N, 0, -5, 2.5)\nIncrement(N)\nIfLessThan(N, 2, Again)");
    EXPECT_EQ(result.code, ExitCode::Success);
    EXPECT_EQ(result.output,
              "No.  Function          P1  P2  P3  P4\n"
              "---  ----------------  --  --  --  ---\n"
              "1    Declare Variable  N   0\n"
              "2    MoveToHeight      0   0   -5  2.5\n"
              "3    MoveToHeight      1   0   -5  2.5\n");
}

TEST(List, WritesJson) {
    const auto json = nlohmann::json::parse(listed("Info(\"a|b\")\nPark()", {"--json"}).output);
    EXPECT_EQ(json, nlohmann::json::parse(R"({"functions": [
        {"function": "Info", "kind": 19, "parameters": ["a\r\nb"]},
        {"function": "Park", "kind": 37, "parameters": []}]})"));
}

TEST(List, EndsAtTheStatementLimitWithWhatItHas) {
    const Ran result = listed("Again:\nPark()\nGoto(Again)", {"--max-statements", "4"});
    EXPECT_EQ(result.code, ExitCode::RunFailed);
    EXPECT_EQ(result.errors, "corvane: the list is not complete: statement limit reached\n");
    EXPECT_THAT(result.output, testing::EndsWith("1    Park\n2    Park\n"));
    EXPECT_EQ(listed("Park()\nPark()", {"--max-statements", "2"}).code, ExitCode::Success);
}

TEST(List, EndsAtALimitOfItsOwn) { EXPECT_EQ(listed("Again:\nGoto(Again)").code, ExitCode::RunFailed); }

TEST(List, EndsWhenInterrupted) {
    const TemporaryFolder folder;
    const std::string script = folder.write("a.script", "Again:\nGoto(Again)").string();
    EXPECT_EQ(ran({"list", script, "--max-statements", "1000000000"}, {}, [] { return true; }).code,
              ExitCode::RunFailed);
}

TEST(List, TellsAnAutomationErrorAfterWhatItHas) {
    const Ran result = listed("Park()\nLoop:\nIfNotFinishLoopFlag(\"go on?\", Loop)", {"--json"});
    EXPECT_EQ(result.code, ExitCode::RunFailed);
    EXPECT_THAT(result.errors, HasSubstr("automation error 438"));
    const auto json = nlohmann::json::parse(result.output);
    EXPECT_EQ(json["functions"].size(), 1U);
    EXPECT_THAT(json["incomplete"].get<std::string>(), HasSubstr("438"));
}

TEST(List, ReadsTheFinishLoopFlagWhenTold) {
    const Ran result =
        listed("Loop:\nIfNotFinishLoopFlag(\"go on?\", Loop)", {"--finish-loop=designed", "--max-statements", "3"});
    EXPECT_THAT(result.output, HasSubstr("3    IfNotFinishLoopFlag  go on?"));
}

}  // namespace
}  // namespace corvane
