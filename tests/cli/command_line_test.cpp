#include "cli/command_line.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/cli/ran.h"
#include "tests/platform/temporary_folder.h"

namespace corvane {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

TEST(CommandLine, ShowsItsHelp) {
    const Ran result = ran({"--help"});
    EXPECT_EQ(result.code, ExitCode::Success);
    for (const char* command : {"run", "check", "list", "show", "locale", "catalogue", "Exit codes"})
        EXPECT_THAT(result.output, HasSubstr(command));
    EXPECT_THAT(result.errors, IsEmpty());
}

TEST(CommandLine, ShowsTheHelpOfEachCommand) {
    for (const char* command : {"run", "check", "list", "show", "locale", "catalogue"}) {
        const Ran result = ran({command, "--help"});
        EXPECT_EQ(result.code, ExitCode::Success);
        EXPECT_THAT(result.output, HasSubstr("Usage: corvane " + std::string(command)));
    }
}

TEST(CommandLine, ShowsItsVersion) {
    const Ran result = ran({"--version"});
    EXPECT_EQ(result.code, ExitCode::Success);
    EXPECT_THAT(result.output, testing::StartsWith("corvane 0."));
}

TEST(CommandLine, RefusesWrongUsage) {
    const std::vector<std::string> wrong[] = {
        {},
        {"frobnicate"},
        {""},
        {"run"},
        {"run", "a.script", "b.script"},
        {"run", "a.script", "--log", "xml"},
        {"run", "a.script", "--max-statements", "0"},
        {"run", "a.script", "--max-statements", "-1"},
        {"run", "a.script", "--max-statements", "many"},
        {"run", "a.script", "--max-statements", "99999999999999999999"},
        {"run", "a.script", "--finish-loop=sometimes"},
        {"run", "a.script", "--decimal-mark", "dot"},
        {"run", "a.script", "--answers"},
        {"run", "a.script", "--frobnicate"},
        {"check"},
        {"list"},
        {"show", "a.script", "b.script"},
        {"catalogue", "Frobnicate"},
        {"catalogue", "Goto", "Call"},
        {"locale", "Germany"},
        {"locale", "99999999999"},
        {"locale", "1031", "1033"},
    };
    for (const std::vector<std::string>& arguments : wrong) {
        std::istringstream input;
        std::ostringstream output;
        std::ostringstream errors;
        EXPECT_EQ(runCommandLine(arguments, {input, output, errors, {}}), ExitCode::WrongUsage)
            << testing::PrintToString(arguments);
        EXPECT_THAT(output.str(), IsEmpty());
        EXPECT_NE(errors.str(), "");
    }
}

TEST(CommandLine, NamesAWordThatIsNoCommand) {
    const auto refusal = [](const char* word) { return ran({word, "a.script"}).errors; };
    EXPECT_EQ(refusal("frob"), "'frob' is no command\nRun with --help for more information.\n");
    EXPECT_THAT(refusal("--frob"), HasSubstr("'--frob' is no command\n"));
    EXPECT_THAT(refusal("a\x1B"), HasSubstr("'a\xEF\xBF\xBD' is no command\n"));
    EXPECT_THAT(ran({"run"}).errors, HasSubstr("SCRIPT is required"));
}

TEST(CommandLine, TakesAPathThatBeginsWithASlash) {
    EXPECT_EQ(ran({"check", "/no-such-folder/a.script"}).code, ExitCode::NoInput);
}

TEST(CommandLine, ReadsNumbersAsItIsTold) {
    const TemporaryFolder folder;
    const std::string script = folder.write("a.script", "VAR X = 2.5\n").string();
    EXPECT_THAT(ran({"show", script, "--decimal-mark", "comma"}).output, HasSubstr("2,5"));
    EXPECT_THAT(ran({"show", script, "--decimal-mark", "point"}).output, HasSubstr("2.5"));
}

TEST(CommandLine, ReportsWhatCannotBeReadAndLeavesTheDiskAsItIs) {
    const TemporaryFolder folder;
    const std::string missing = folder.path("missing.script").string();
    const std::string directory = folder.path("").string();
    for (const char* command : {"run", "check", "list", "show"}) {
        const Ran absent = ran({command, missing});
        EXPECT_EQ(absent.code, ExitCode::NoInput) << command;
        EXPECT_EQ(absent.errors, "corvane: no such file: '" + missing + "'\n");
        const Ran unreadable = ran({command, directory});
        EXPECT_EQ(unreadable.code, ExitCode::NoInput) << command;
        EXPECT_THAT(unreadable.errors, HasSubstr(directory));
        EXPECT_THAT(absent.output + unreadable.output, IsEmpty());
    }
    EXPECT_FALSE(std::filesystem::exists(missing));
    EXPECT_EQ(ran({"check", ""}).code, ExitCode::NoInput);
    EXPECT_EQ(ran({"run", folder.write("a.script", "Park()").string(), "--answers", missing}).code, ExitCode::NoInput);
}

TEST(CommandLine, RejectsAScriptWithFaultsInEveryCommand) {
    const TemporaryFolder folder;
    const std::string script = folder.write("a.script", "Park()\nFrobnicate()\n").string();
    for (const char* command : {"run", "list", "show"}) {
        const Ran result = ran({command, script});
        EXPECT_EQ(result.code, ExitCode::ScriptRejected);
        EXPECT_THAT(result.output, IsEmpty());
        EXPECT_EQ(result.errors, script + ":2:1: error: Invalid input: 'Frobnicate()'\n  Frobnicate()\n  ^\ncorvane: " +
                                     script + " is rejected\n");
    }
    EXPECT_EQ(ran({"check", script}).code, ExitCode::ScriptRejected);
}

TEST(CommandLine, TakesAnyBytesForAScript) {
    const TemporaryFolder folder;
    std::string bytes;
    for (int i = 0; i < 4096; ++i) bytes += static_cast<char>((i * 167 + i / 256 * 31) % 256);
    bytes += "\nMsgInfo(\"\x81\x8d\xff";
    bytes += '\0';
    bytes += "\")\nVAR A = 1e39\n";
    const std::string script = folder.write("bytes.script", bytes).string();
    for (const char* command : {"run", "check", "list", "show"})
        EXPECT_EQ(ran({command, script}).code, ExitCode::ScriptRejected);
    const std::string longLine = folder.write("long.script", std::string(1000000, 'x')).string();
    EXPECT_LT(ran({"check", longLine}).output.size(), 2000U);
}

}  // namespace
}  // namespace corvane
