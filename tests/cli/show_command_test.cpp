#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/cli/ran.h"
#include "tests/platform/temporary_folder.h"

namespace corvane {
namespace {

constexpr const char* script = "VAR N = 2.5\nAgain:\nWaitTime(N, \"a|b\")\nGoto(Again)\n";

TEST(Show, AlignsBothViews) {
    const TemporaryFolder folder;
    const Ran result = ran({"show", folder.write("a.script", script).string()});
    EXPECT_EQ(result.code, ExitCode::Success);
    EXPECT_EQ(result.output,
              "Statements\n\n"
              "No.  Function  P1                 P2\n"
              "---  --------  -----------------  ------\n"
              "1    WaitTime  N                  a\\r\\nb\n"
              "2    Goto      0 - (Label Again)\n"
              "\nIdentifiers\n\n"
              "No.  Identifier        Type  Initial Val\n"
              "---  ----------------  ----  -----------\n"
              "0    FINISH_LOOP_FLAG  16    0\n"
              "1    N                 2     2.5\n"
              "2    Again             8     0\n"
              "3                      132   a\\r\\nb\n");
}

TEST(Show, WritesJson) {
    const TemporaryFolder folder;
    const auto json = nlohmann::json::parse(ran({"show", "--json", folder.write("a.script", script).string()}).output);
    EXPECT_EQ(json["statements"]["columns"].size(), 27U);
    EXPECT_EQ(json["statements"]["rows"][0], nlohmann::json({"1", "WaitTime", "N", "a\r\nb"}));
    EXPECT_EQ(json["identifiers"]["columns"], nlohmann::json({"No.", "Identifier", "Type", "Initial Val"}));
    EXPECT_EQ(json["identifiers"]["rows"][1], nlohmann::json({"1", "N", "2", "2.5"}));
}

}  // namespace
}  // namespace corvane
