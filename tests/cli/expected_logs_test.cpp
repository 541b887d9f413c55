// Every script of the two folders is run, and what the program writes and answers is compared whole with the file
// written down for it. tools/update-expected writes these files anew.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "tests/cli/ran.h"
#include "tests/cli/script_runs.h"

namespace corvane {
namespace {

namespace files = std::filesystem;

/// One way to run one script.
struct ExpectedRun {
    std::string name;
    std::vector<std::string> arguments;
    files::path expected;
};

void PrintTo(const ExpectedRun& run, std::ostream* output) { *output << run.name; }

void addScripts(std::vector<ExpectedRun>& runs, const files::path& folder, const files::path& expectedFolder) {
    if (!files::is_directory(folder)) return;
    for (const files::path& script : scriptsIn(folder))
        for (const auto& [suffix, options] : waysToRun(script)) {
            ExpectedRun run;
            run.name = script.stem().string() + suffix;
            std::replace(run.name.begin(), run.name.end(), '.', '_');
            run.arguments = {"run", script.generic_string(), "--unattended"};
            const files::path answers = files::path(script).replace_extension("answers.json");
            if (files::exists(answers))
                run.arguments.insert(run.arguments.end(), {"--answers", answers.generic_string()});
            run.arguments.insert(run.arguments.end(), options.begin(), options.end());
            run.expected = expectedFolder / (script.stem().string() + suffix + ".expected");
            runs.push_back(run);
        }
}

std::vector<ExpectedRun> allRuns() {
    std::vector<ExpectedRun> runs;
    addScripts(runs, "tests/scripts", "tests/scripts");
    addScripts(runs, "examples", "examples/expected");
    return runs;
}

class ExpectedLog : public testing::TestWithParam<ExpectedRun> {};

TEST_P(ExpectedLog, IsWhatTheProgramWrites) {
    const Ran result = ran(GetParam().arguments);
    const std::string written =
        result.output + result.errors + "exit code " + std::to_string(static_cast<int>(result.code)) + "\n";
    if (std::getenv("CORVANE_UPDATE_EXPECTED") != nullptr) {
        files::create_directories(GetParam().expected.parent_path());
        std::ofstream(GetParam().expected, std::ios::binary) << written;
    }
    EXPECT_EQ(written, contentOf(GetParam().expected)) << GetParam().expected << "; see tools/update-expected";
}

TEST_P(ExpectedLog, IsJsonLineByLineForPrograms) {
    std::vector<std::string> arguments = GetParam().arguments;
    arguments.insert(arguments.end(), {"--log", "jsonl"});
    const Ran result = ran(arguments);
    std::istringstream lines(result.output);
    nlohmann::json last;
    for (std::string line; std::getline(lines, line);) {
        last = nlohmann::json::parse(line, nullptr, false);
        ASSERT_TRUE(last.is_object()) << line;
    }
    EXPECT_TRUE(result.code == ExitCode::ScriptRejected || last.contains("outcome"));
}

INSTANTIATE_TEST_SUITE_P(Scripts, ExpectedLog, testing::ValuesIn(allRuns()),
                         [](const auto& parameter) { return parameter.param.name; });

TEST(ExpectedLogs, CoverExamplesAndTestScripts) {
    EXPECT_EQ(scriptsIn("examples").size(), 6);
    EXPECT_GE(scriptsIn("tests/scripts").size(), 20);
}

TEST(ExpectedLogs, AreOfScriptsThatExist) {
    std::vector<files::path> expected;
    for (const ExpectedRun& run : allRuns()) expected.push_back(run.expected);
    for (const files::path folder : {"tests/scripts", "examples/expected"})
        for (const files::directory_entry& entry : files::directory_iterator(folder))
            if (entry.path().extension() == ".expected") {
                EXPECT_THAT(expected, testing::Contains(entry.path()));
            }
}

}  // namespace
}  // namespace corvane
