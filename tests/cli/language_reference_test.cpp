// docs/language.md holds a table for each statement between two marks. The tables are made here, of the catalogue as
// the program tells it, and compared with the file. tools/update-language-reference writes them anew.

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>

#include "tests/cli/ran.h"

namespace corvane {
namespace {

constexpr const char* reference = "docs/language.md";

using Json = nlohmann::json;

/// What the catalogue's execution column cannot say: which argument a statement that runs inside the engine fills with
/// which parameter. The expected logs of tests/scripts hold these.
const std::map<std::string, std::vector<std::string>> insideArguments = {
    {"IfNotFinishLoopFlag", {"tPrompt", ""}},
    {"MathsFunction", {"tFunction", "", "tParam0", "tParam1", "tParam2", "tParam3"}},
    {"InputNumber", {"tQuest", "tValue", "tMin", "tMax"}},
    {"InputString", {"tQuest", "tValue", "tMaxLen"}},
    {"Info", {"tInfoStr"}},
    {"BlockStart", {"tInfoStr"}},
    {"MsgAsk", {"tQuest", ""}},
    {"MsgInfo", {"tQuest"}},
    {"MsgInfoEx", {"tQuest", "tSoundID"}},
};

/// The properties of the record that GetDataSet and GetDataSetEx fill, in the order of their parameters.
constexpr const char* dataSetProperties[] = {
    "HelixAngle",    "TipSpeed",         "Height",       "DataSetType",  "LevellingFrom",
    "LevellingType", "LevellingTrigger", "LevellingHix", "LevellingTip",
};

std::string code(const std::string& text) { return "`" + text + "`"; }

std::string argumentCell(const Json& argument) {
    return code(argument["name"]) + " " + argument["type"].get<std::string>();
}

/// The event's argument that the parameter (from 0) goes to, as a table cell.
std::string destination(const Json& statement, std::size_t parameter) {
    const Json& event = statement["event"];
    if (event["name"] == "GetDataSet") return code("tTestParameters." + std::string(dataSetProperties[parameter]));
    const auto inside = insideArguments.find(statement["keyword"]);
    for (const Json& argument : event["arguments"]) {
        const bool filled = inside == insideArguments.end() ? argument.value("parameter", 0U) == parameter + 1
                                                            : argument["name"] == inside->second.at(parameter);
        if (filled) return argumentCell(argument);
    }
    return "not passed";
}

std::string usage(const Json& statement) {
    std::string text = statement["keyword"].get<std::string>() + "(";
    for (std::size_t i = 0; i < statement["parameterCount"].get<std::size_t>(); ++i)
        text += (i == 0 ? "" : ", ") + statement["parameters"][i]["name"].get<std::string>();
    return code(text + ")");
}

std::string tableOf(const Json& statement) {
    const Json& event = statement["event"];
    const std::string description = statement["description"];
    std::string text = usage(statement) + "\n";
    if (!description.empty()) text += "\n> " + description + "\n";
    if (event.is_object()) text += "\nRaises " + code(event["name"]) + ".\n";
    if (statement["parameters"].empty()) return text;
    text += event.is_object() ? "\n| | Parameter | Takes | Event argument |\n|---|---|---|---|\n"
                              : "\n| | Parameter | Takes |\n|---|---|---|\n";
    for (std::size_t i = 0; i < statement["parameters"].size(); ++i) {
        const Json& parameter = statement["parameters"][i];
        text += "| " + std::to_string(i + 1) + " | " + parameter["name"].get<std::string>() + " | ";
        text += (parameter["taken"].get<bool>() ? parameter["accepts"].get<std::string>() : "*not taken*") + " |";
        if (event.is_object()) text += " " + (parameter["taken"] ? destination(statement, i) : "") + " |";
        text += "\n";
    }
    if (event.is_object())
        for (const Json& argument : event["arguments"])
            if (argument.contains("value"))
                text += "| | | *always " + argument["value"].dump() + "* | " + argumentCell(argument) + " |\n";
    return text;
}

std::string contentOf(const char* path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::size_t occurrences(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != text.npos; at = text.find(part, at + 1)) ++count;
    return count;
}

TEST(LanguageReference, HoldsEachStatementAsTheCatalogueTellsIt) {
    std::string document = contentOf(reference);
    ASSERT_FALSE(document.empty()) << reference;
    const bool update = std::getenv("CORVANE_UPDATE_EXPECTED") != nullptr;
    const Json catalogue = Json::parse(ran({"catalogue", "--json"}).output);
    EXPECT_EQ(catalogue.size(), 49U);
    for (const Json& statement : catalogue) {
        const std::string keyword = statement["keyword"];
        const std::string begin = "<!-- catalogue: " + keyword + " -->\n";
        const std::string end = "<!-- end -->";
        ASSERT_EQ(occurrences(document, begin), 1U) << keyword;
        const std::size_t from = document.find(begin) + begin.size();
        const std::size_t to = document.find(end, from);
        ASSERT_NE(to, document.npos) << keyword;
        const std::string table = tableOf(statement);
        if (update) document.replace(from, to - from, table);
        EXPECT_EQ(document.substr(from, document.find(end, from) - from), table)
            << keyword << "; see tools/update-language-reference";
    }
    EXPECT_EQ(occurrences(document, "<!-- catalogue: "), catalogue.size()) << "a table of no statement";
    if (update) std::ofstream(reference, std::ios::binary) << document;
}

}  // namespace
}  // namespace corvane
