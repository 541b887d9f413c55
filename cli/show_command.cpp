#include <ostream>

#include "cli/commands.h"
#include "cli/json_writer.h"
#include "cli/table_window.h"
#include "host/clsScriptControl.h"
#include "platform/utf8.h"
#include "ui/text_table.h"

namespace corvane {
namespace {

/// A row ends with its last cell that says something.
std::size_t usedCells(const std::vector<std::u16string>& row) {
    std::size_t count = row.size();
    while (count > 0 && row[count - 1].find_first_not_of(u' ') == std::u16string::npos) --count;
    return count;
}

void writeTable(JsonWriter& json, const TextTable& table) {
    json.beginObject();
    json.key("columns");
    json.beginArray();
    for (const std::u16string& column : table.columns()) json.text(column);
    json.endArray();
    json.key("rows");
    json.beginArray();
    for (const std::vector<std::u16string>& row : table.rows()) {
        json.beginArray();
        for (std::size_t i = 0; i < usedCells(row); ++i) json.text(row[i]);
        json.endArray();
    }
    json.endArray();
    json.endObject();
}

}  // namespace

ExitCode showCommand(const ShowOptions& options, const Surroundings& surroundings) {
    ExitCode exitCode = ExitCode::Success;
    const std::optional<std::u16string> text = acceptedScript(options.script, options.locale, surroundings, exitCode);
    if (!text) return exitCode;

    NoOperator dialogs;
    SystemMessagePump pump;
    clsScriptControl control({dialogs, pump, pointerTo(options.locale)});
    control.LoadScript_FromScript(*text, fromUtf8(options.script), 0, 0);
    if (options.windows) {
        if (showTableWindow(control.engine(), fromUtf8(options.script))) return ExitCode::Success;
        surroundings.errors << "corvane: no window can be shown\n";
        return ExitCode::NoOutput;
    }
    TextTable statements;
    TextTable identifiers;
    control.engine().DisplayDataInListViews(&statements, &identifiers);

    std::ostream& output = surroundings.output;
    if (!options.json) {
        output << "Statements\n\n" << toUtf8(statements.aligned());
        output << "\nIdentifiers\n\n" << toUtf8(identifiers.aligned());
        return ExitCode::Success;
    }
    JsonWriter json(output);
    json.beginObject();
    json.key("statements");
    writeTable(json, statements);
    json.key("identifiers");
    writeTable(json, identifiers);
    json.endObject();
    return ExitCode::Success;
}

}  // namespace corvane
