#include <algorithm>
#include <ostream>

#include "cli/commands.h"
#include "cli/json_writer.h"
#include "engine/text_utilities.h"
#include "host/clsProgramFunctionList.h"
#include "platform/automation_error.h"
#include "platform/utf8.h"
#include "ui/text_table.h"

namespace corvane {
namespace {

/// Thrown out of a listing that has listed enough.
struct StatementLimitReached {};

/// Counts the steps of a listing, which nothing else can end: the listing yields twice in each statement.
class StepCounter final : public MessagePump {
public:
    StepCounter(std::int64_t maximumStatements, const std::function<bool()>& interrupted)
        : yieldsLeft_(2 * maximumStatements), interrupted_(interrupted) {}
    void yield() override {
        if (yieldsLeft_-- == 0 || (interrupted_ && interrupted_())) throw StatementLimitReached{};
    }

private:
    std::int64_t yieldsLeft_;
    const std::function<bool()>& interrupted_;
};

void writeText(const FunctionCollection& list, std::ostream& output) {
    std::int32_t parameters = 0;
    for (std::int32_t i = 1; i <= list.Count(); ++i) parameters = std::max(parameters, list.Item(i).ParamCount());
    TextTable table;
    table.prepare();
    table.addColumn(u"No.");
    table.addColumn(u"Function");
    for (std::int32_t n = 1; n <= parameters; ++n) table.addColumn(u"P" + decimal(n));
    for (std::int32_t i = 1; i <= list.Count(); ++i) {
        const clsProgramFunction& function = list.Item(i);
        table.addRow(decimal(i));
        table.setSubItem(1, function.FunctionName);
        for (std::int32_t n = 0; n < function.ParamCount(); ++n) table.setSubItem(n + 2, function.Param(n));
    }
    output << toUtf8(table.aligned());
}

void writeJson(const FunctionCollection& list, const std::string& ending, std::ostream& output) {
    JsonWriter json(output);
    json.beginObject();
    json.key("functions");
    json.beginArray();
    for (std::int32_t i = 1; i <= list.Count(); ++i) {
        const clsProgramFunction& function = list.Item(i);
        json.beginObject();
        json.member("function", std::u16string_view(function.FunctionName));
        json.member("kind", std::int32_t{function.FunctionType});
        json.key("parameters");
        json.beginArray();
        for (std::int32_t n = 0; n < function.ParamCount(); ++n) json.text(function.Param(n));
        json.endArray();
        json.endObject();
    }
    json.endArray();
    if (!ending.empty()) json.member("incomplete", ending);
    json.endObject();
}

}  // namespace

ExitCode listCommand(const ListOptions& options, const Surroundings& surroundings) {
    ExitCode exitCode = ExitCode::Success;
    const std::optional<std::u16string> text = acceptedScript(options.script, options.locale, surroundings, exitCode);
    if (!text) return exitCode;

    NoOperator dialogs;
    StepCounter pump(options.maximumStatements, surroundings.interrupted);
    clsProgramFunctionList list({dialogs, pump, pointerTo(options.locale)},
                                {.designedMemberAccess = options.designedFinishLoop});
    list.LoadProgramScript_FromDatabase(*text, fromUtf8(options.script), 0, 0);
    std::string ending;
    try {
        Reference<FunctionCollection> sameList;
        list.CreateFunctionList(sameList);
    } catch (const automation_error& error) {
        ending = "automation error " + std::to_string(static_cast<int>(error.number())) + " (" + error.what() + ")";
    } catch (const StatementLimitReached&) {
        ending = "statement limit reached";
    }

    if (options.json)
        writeJson(*list.FunctionList(), ending, surroundings.output);
    else
        writeText(*list.FunctionList(), surroundings.output);
    if (ending.empty()) return ExitCode::Success;
    surroundings.errors << "corvane: the list is not complete: " << ending << '\n';
    return ExitCode::RunFailed;
}

}  // namespace corvane
