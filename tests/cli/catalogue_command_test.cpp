#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "engine/statement_table.h"
#include "platform/utf8.h"
#include "tests/cli/ran.h"

namespace corvane {
namespace {

using testing::HasSubstr;

TEST(Catalogue, HoldsEveryStatement) {
    const Ran result = ran({"catalogue"});
    EXPECT_EQ(result.code, ExitCode::Success);
    EXPECT_EQ(std::count(result.output.begin(), result.output.end(), '\n'), 2 + 49);
    const auto json = nlohmann::json::parse(ran({"catalogue", "--json"}).output);
    ASSERT_EQ(json.size(), statementTable.size());
    for (std::size_t i = 0; i < json.size(); ++i) {
        EXPECT_EQ(json[i]["keyword"], toUtf8(statementTable[i].definition.Name));
        EXPECT_EQ(json[i]["kind"], static_cast<int>(statementTable[i].kind));
        EXPECT_EQ(json[i]["parameterCount"], statementTable[i].definition.ParamCount);
    }
}

TEST(Catalogue, TellsOfAStatementWhatItTakesAndRaises) {
    EXPECT_EQ(ran({"catalogue", "shakeblade"}).output,
              "ShakeBlade(Number of Shakes)\n"
              "Shake the Blade\n"
              "Kind 38, 1 parameter\n\n"
              "Parameter  Name              Accepts\n"
              "---------  ----------------  -------\n"
              "1          Number of Shakes  number\n\n"
              "Event ShakeBlade\n\n"
              "Argument        Type     Passed        Parameter\n"
              "--------------  -------  ------------  ---------\n"
              "tNumberOfTimes  long     by value      1\n"
              "tAmplitude      single   by value      always -1\n"
              "tFrequency      single   by value      always -1\n"
              "tSucess         boolean  by reference\n");
}

TEST(Catalogue, TellsOfAStatementWithoutEvent) {
    EXPECT_EQ(ran({"catalogue", "Return"}).output,
              "Return()\nReturn back to the caller function\nKind 6, 0 parameters\n");
}

TEST(Catalogue, ShowsTheSlotThatIsNeverRead) {
    EXPECT_THAT(ran({"catalogue", "AddTestVariable"}).output, HasSubstr("4          Input Mode  (not taken)\n"));
}

TEST(Catalogue, KnowsTheEventOfEachKind) {
    struct Row {
        const char* keyword;
        const char* event;
    };
    constexpr Row rows[] = {
        {"IfNotFinishLoopFlag", "RequiredFinishLoopFlag"},
        {"InputNumber", "InputNumber"},
        {"GetDataSetEx", "GetDataSet"},
        {"ShakeBladeEx", "ShakeBlade"},
        {"BlockStart", "Info"},
        {"PressureControl", "PressureControl"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(nlohmann::json::parse(ran({"catalogue", "--json", row.keyword}).output)["event"]["name"], row.event);
}

TEST(Catalogue, SaysInJsonWhereAnArgumentComesFrom) {
    const auto arguments =
        nlohmann::json::parse(ran({"catalogue", "--json", "ShakeBlade"}).output)["event"]["arguments"];
    EXPECT_EQ(arguments[0]["parameter"], 1);
    EXPECT_EQ(arguments[1]["value"], -1);
    EXPECT_EQ(arguments[3], nlohmann::json({{"name", "tSucess"}, {"type", "boolean"}, {"byReference", true}}));
}

}  // namespace
}  // namespace corvane
