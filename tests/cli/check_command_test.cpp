#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "cli/script_check.h"
#include "tests/cli/ran.h"
#include "tests/platform/temporary_folder.h"

namespace corvane {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// What `check` writes about a script, without the name of its file.
std::string checked(const std::string& script) {
    const TemporaryFolder folder;
    const std::string path = folder.write("a.script", script).string();
    std::string output = ran({"check", path}).output;
    for (std::size_t at = output.find(path); at != output.npos; at = output.find(path)) output.erase(at, path.size());
    return output;
}

TEST(Check, AcceptsAScript) {
    EXPECT_EQ(checked("Park()\nEndTest()\n"), ": accepted, 2 statements\n");
    EXPECT_EQ(checked("Park()"), ": accepted, 1 statement\n");
    EXPECT_EQ(checked(""), ": accepted, 0 statements\n");
}

TEST(Check, ReportsEveryErrorOfTheFileInOnePass) {
    EXPECT_EQ(checked("Frob()\nPark()\nGoto(Nowhere)\nCONST X\n"),
              ":1:1: error: Invalid input: 'Frob()'\n  Frob()\n  ^\n"
              ":4:1: error: Invalid input: 'CONST X'\n  CONST X\n  ^\n"
              ":3:6: error: Undefined Label: Nowhere\n  Goto(Nowhere)\n       ^\n");
}

TEST(Check, KeepsTabsSoThatTheCaretStandsRight) {
    EXPECT_EQ(checked("\tMsgAsk(\"a\tb\", Nowhere)"),
              ":1:16: error: Undefined Label: Nowhere\n  \tMsgAsk(\"a\tb\", Nowhere)\n  \t         \t    ^\n");
}

TEST(Check, WarnsOfADuplicateLabelAndAcceptsTheScript) {
    const std::string output = checked("A:\nPark()\nA:\n");
    EXPECT_EQ(output, ":3:1: warning: Duplicate Lable Defined: A\n  A:\n  ^\n: accepted, 1 statement\n");
}

TEST(Check, ReportsTheLineOfAFailureThatEndsALoad) {
    std::string parameters = "0";
    for (int i = 1; i < 26; ++i) parameters += ",0";
    EXPECT_THAT(checked("Park()\n\nSCTestFull(" + parameters + ")\n"),
                HasSubstr(":3:1: error: Subscript out of range"));
}

TEST(Check, CountsLinesByEveryKindOfLineEnd) {
    EXPECT_THAT(checked("Park()\r\nPark()\rPark()\nPark()\n\rFrob()"), HasSubstr(":6:1: error:"));
}

TEST(Check, ShowsAPieceOfALongLine) {
    const std::string output = checked(std::string(500, ' ') + "Goto(" + std::string(100, ' ') + "Nowhere)");
    EXPECT_THAT(output, HasSubstr(":1:606: error: Undefined Label: Nowhere\n  ..."));
    std::istringstream lines(output);
    std::string message;
    std::string source;
    std::string caret;
    std::getline(lines, message);
    std::getline(lines, source);
    std::getline(lines, caret);
    EXPECT_EQ(source.find("Nowhere"), caret.find('^'));
}

TEST(Check, ShowsNoControlCharacters) {
    const std::string output = checked("\x1b[31mFrob\x07()\n");
    EXPECT_THAT(output, testing::Not(testing::AnyOf(HasSubstr("\x1b"), HasSubstr("\x07"))));
    EXPECT_THAT(output, HasSubstr("  \xEF\xBF\xBD[31mFrob\xEF\xBF\xBD()\n"));
}

TEST(Check, WritesUtf8) { EXPECT_THAT(checked("Fr\xF6"), HasSubstr("Invalid input: 'Fr\xC3\xB6'\n")); }

TEST(Check, GoesThroughAllFiles) {
    const TemporaryFolder folder;
    const std::string good = folder.write("good.script", "Park()").string();
    const std::string bad = folder.write("bad.script", "Frob()").string();
    const std::string missing = folder.path("missing.script").string();
    EXPECT_EQ(ran({"check", good, good}).code, ExitCode::Success);
    EXPECT_EQ(ran({"check", bad, good}).code, ExitCode::ScriptRejected);
    const Ran all = ran({"check", missing, bad, good});
    EXPECT_EQ(all.code, ExitCode::ScriptRejected) << "a rejected file counts more than an unread one";
    EXPECT_EQ(ran({"check", missing, good}).code, ExitCode::NoInput);
    EXPECT_THAT(all.errors, HasSubstr("missing.script"));
    EXPECT_THAT(all.output, testing::AllOf(HasSubstr(bad + ":1:1: error"), HasSubstr(good + ": accepted")));
}

TEST(Check, WritesJson) {
    const TemporaryFolder folder;
    const std::string bad = folder.write("bad.script", "A:\nA:\n\tFrob(\"\xE4\")").string();
    const std::string missing = folder.path("missing.script").string();
    const Ran result = ran({"check", "--json", bad, missing});
    EXPECT_EQ(result.code, ExitCode::ScriptRejected);
    EXPECT_THAT(result.errors, IsEmpty());
    const auto json = nlohmann::json::parse(result.output);
    EXPECT_EQ(json[0]["file"], bad);
    EXPECT_EQ(json[0]["accepted"], false);
    EXPECT_EQ(json[0]["statements"], 0);
    EXPECT_EQ(json[0]["faults"], nlohmann::json::parse(R"json([
        {"line": 2, "column": 1, "severity": "warning", "message": "Duplicate Lable Defined: A", "source": "A:"},
        {"line": 3, "column": 2, "severity": "error", "message": "Invalid input:\r\n\r\n'Frob(\"ä\")'",
         "source": "\tFrob(\"ä\")"
}])json"));
    EXPECT_EQ(json[1]["unreadable"], "no such file: '" + missing + "'");
}

TEST(ScriptLines, EndAsALoadEndsThem) {
    EXPECT_THAT(scriptLines(u"a\r\nb\rc\nd\n\re"), ElementsAre(u"a", u"b", u"c", u"d", u"", u"e"));
    EXPECT_THAT(scriptLines(u"a\n"), ElementsAre(u"a", u""));
}

}  // namespace
}  // namespace corvane
