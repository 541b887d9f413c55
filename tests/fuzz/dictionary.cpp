// Writes a fuzzer's dictionary of the words that inputs are made of: fuzz_dictionary script|answers

#include <cstdio>
#include <set>
#include <string>
#include <string_view>

#include "cli/message_buttons.h"
#include "engine/event_table.h"
#include "engine/statement_table.h"
#include "platform/utf8.h"

namespace {

using namespace corvane;

// What libFuzzer takes.
constexpr std::size_t longestWord = 64;

void write(std::string_view word) {
    std::string line = "\"";
    for (const char unit : word) {
        char escaped[8];
        const bool isPlain = unit >= ' ' && unit <= '~' && unit != '"' && unit != '\\';
        std::snprintf(escaped, sizeof escaped, isPlain ? "%c" : "\\x%02X", static_cast<unsigned char>(unit));
        line += escaped;
    }
    std::puts((line + "\"").c_str());
}

std::string written(std::u16string_view keyword) { return toUtf8(keyword); }

// A statement as a whole, with as many parameters as it takes, and its keyword alone.
void writeStatements() {
    for (const StatementRow& row : statementTable) {
        const FunctionDefinition& definition = row.definition;
        std::string parameters;
        for (std::int32_t i = 0; i < definition.ParamCount; ++i) {
            const std::int32_t type = definition.Params[static_cast<std::size_t>(i)].ParamType;
            const bool isLabel = (type & ptLabel) != 0;
            parameters += i == 0 ? "" : ",";
            parameters += (type & ptNumber) != 0 ? "1" : isLabel ? "L" : "\"t\"";
        }
        write(written(definition.Name) + "(");
        const std::string statement = "\n" + written(definition.Name) + "(" + parameters + ")";
        if (statement.size() <= longestWord) write(statement);
    }
}

void writeScriptWords() {
    writeStatements();
    for (const std::string_view word : {"VAR ",
                                        "CONST ",
                                        "ENV ",
                                        "FINISH_LOOP_FLAG",
                                        "\nVAR V = 1\n",
                                        "\nVAR S = \"t\"\n",
                                        "\nL:\n",
                                        "Goto(L)\n",
                                        "V,",
                                        "S,",
                                        "(",
                                        ")",
                                        ",",
                                        "\"",
                                        "|",
                                        ":",
                                        ";",
                                        "=",
                                        "\r\n",
                                        "\n\r",
                                        "\t",
                                        "\f",
                                        "1.5",
                                        "1,5",
                                        "-1",
                                        "1E38",
                                        "1E-45",
                                        "&H7FFFFFFF",
                                        "\"True\""})
        write(word);
}

std::string valueOf(ValueType type) {
    switch (type) {
        case ValueType::Text: return "\"t\"";
        case ValueType::Boolean: return "true";
        default: return "1";
    }
}

void writeAnswersWords() {
    std::set<std::string> arguments;
    for (const EventRow& row : eventTable) {
        for (std::size_t i = 0; i < row.argumentCount; ++i) {
            const EventArgument& argument = row.arguments[i];
            const std::string answer = "\"" + std::string(argument.name) + "\":" + valueOf(argument.type);
            const std::string event = "\"" + std::string(row.name) + "\":[{\"answer\":{" + answer + "}}]";
            arguments.insert(answer);
            if (event.size() <= longestWord) write(event);
        }
    }
    for (const std::string& argument : arguments) write(argument);
    for (const MessageButton& button : messageButtons()) write("\"" + std::string(button.word) + "\"");
    for (const std::string_view word : {"\"events\":{}", "\"dialogs\":{}", "\"messages\":[]", "\"inputs\":[]",
                                        "\"occurrence\":1", "\"answer\":", "\"finishLoopAfter\":1", "{\"cancel\":true}",
                                        "\"$schema\":\"\"", "true", "false", "null", "1e39", "\\u"})
        write(word);
}

}  // namespace

int main(int count, char** arguments) {
    const std::string_view kind = count == 2 ? arguments[1] : "";
    if (kind == "script")
        writeScriptWords();
    else if (kind == "answers")
        writeAnswersWords();
    else
        return 64;
    return 0;
}
