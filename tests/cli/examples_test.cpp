// The examples show the language: all of it but the one statement that ends a run.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <set>

#include "engine/statement_table.h"
#include "host/clsScriptControl.h"
#include "platform/utf8.h"
#include "tests/cli/ran.h"

namespace corvane {
namespace {

namespace files = std::filesystem;

std::vector<files::path> examples() {
    std::vector<files::path> scripts;
    for (const files::directory_entry& entry : files::directory_iterator("examples"))
        if (entry.path().extension() == ".script") scripts.push_back(entry.path());
    std::sort(scripts.begin(), scripts.end());
    return scripts;
}

/// The addresses of the statements that a run of the script comes to, by its log.
std::set<std::int32_t> addressesRun(const files::path& script) {
    std::vector<std::string> arguments = {"run", script.generic_string(), "--unattended", "--log", "jsonl"};
    const files::path answers = files::path(script).replace_extension("answers.json");
    if (files::exists(answers)) arguments.insert(arguments.end(), {"--answers", answers.generic_string()});
    const Ran run = ran(arguments);
    EXPECT_EQ(run.code, ExitCode::Success) << script << ": " << run.errors;
    std::set<std::int32_t> addresses;
    std::istringstream lines(run.output);
    for (std::string line; std::getline(lines, line);) {
        const auto record = nlohmann::json::parse(line);
        if (record.value("event", "") == "FunctionCalled") addresses.insert(record.at("address").get<std::int32_t>());
    }
    return addresses;
}

/// The kinds of the statements at these addresses. FunctionCalled does not tell them: it calls a block start an Info.
std::set<std::string> keywordsAt(const files::path& script, const std::set<std::int32_t>& addresses) {
    NoOperator dialogs;
    SystemMessagePump pump;
    const NumberLocale locale = NumberLocale::pointDecimal();
    clsScriptControl control({dialogs, pump, &locale});
    EXPECT_TRUE(control.LoadScript_FromFile(script.u16string())) << script;
    std::set<std::string> keywords;
    for (const std::int32_t address : addresses)
        keywords.insert(toUtf8(CommandNameFromType(control.engine().Command(address + 1).CommandType())));
    return keywords;
}

TEST(Examples, TogetherRunEveryStatementButIfNotFinishLoopFlag) {
    std::set<std::string> run;
    for (const files::path& script : examples()) run.merge(keywordsAt(script, addressesRun(script)));
    std::set<std::string> all;
    for (const StatementRow& row : statementTable) all.insert(toUtf8(row.definition.Name));
    all.erase("IfNotFinishLoopFlag");
    EXPECT_EQ(all.size(), 48U);
    EXPECT_EQ(run, all);
}

TEST(Examples, HaveNoFault) {
    for (const files::path& script : examples()) {
        const Ran check = ran({"check", script.generic_string()});
        EXPECT_EQ(check.code, ExitCode::Success) << check.output;
        EXPECT_THAT(check.output + check.errors, testing::Not(testing::HasSubstr("warning"))) << script;
    }
}

// What a script writes with a point is the same number under every locale; only texts made of numbers differ.
TEST(Examples, RunAsFarUnderADecimalComma) {
    for (const files::path& script : examples()) {
        std::vector<std::string> arguments = {"run", script.generic_string(), "--unattended", "--log", "jsonl"};
        const files::path answers = files::path(script).replace_extension("answers.json");
        if (files::exists(answers)) arguments.insert(arguments.end(), {"--answers", answers.generic_string()});
        const auto lastLine = [&](const char* mark) {
            std::vector<std::string> all = arguments;
            all.insert(all.end(), {"--decimal-mark", mark});
            const std::string output = ran(all).output;
            return output.substr(output.rfind('\n', output.size() - 2) + 1);
        };
        EXPECT_EQ(lastLine("comma"), lastLine("point")) << script;
    }
}

}  // namespace
}  // namespace corvane
