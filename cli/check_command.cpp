#include <ostream>

#include "cli/commands.h"
#include "cli/json_writer.h"
#include "cli/script_check.h"

namespace corvane {
namespace {

/// What became of one file: its script and check, or the fault that kept it from being read.
struct CheckedFile {
    std::string name;
    std::optional<std::u16string> text;
    std::string fault;
    CheckedScript script;
};

CheckedFile checkFile(const std::string& name, const ChosenLocale& locale) {
    CheckedFile file{name, {}, {}, {}};
    file.text = readScript(name, file.fault);
    if (file.text) file.script = checkScript(*file.text, pointerTo(locale));
    return file;
}

void writeText(const CheckedFile& file, const Surroundings& surroundings) {
    if (!file.text) {
        surroundings.errors << "corvane: " << file.fault << '\n';
        return;
    }
    writeFaults(surroundings.output, file.name, *file.text, file.script.faults);
    if (file.script.accepted)
        surroundings.output << printable(file.name) << ": accepted, " << file.script.statements
                            << (file.script.statements == 1 ? " statement\n" : " statements\n");
}

void writeJson(JsonWriter& json, const CheckedFile& file) {
    json.beginObject();
    json.member("file", file.name);
    if (!file.text) {
        json.member("unreadable", file.fault);
        json.endObject();
        return;
    }
    json.member("accepted", file.script.accepted);
    json.member("statements", file.script.statements);
    json.key("faults");
    json.beginArray();
    const std::vector<std::u16string_view> lines = scriptLines(*file.text);
    for (const FoundFault& fault : file.script.faults) {
        json.beginObject();
        json.member("line", std::int64_t{fault.line} + 1);
        json.member("column", std::int64_t{fault.column} + 1);
        json.member("severity", fault.rejects ? "error" : "warning");
        json.member("message", std::u16string_view(fault.message));
        const auto line = static_cast<std::size_t>(fault.line);
        if (line < lines.size()) json.member("source", lines[line]);
        json.endObject();
    }
    json.endArray();
    json.endObject();
}

}  // namespace

ExitCode checkCommand(const CheckOptions& options, const Surroundings& surroundings) {
    bool anyRejected = false;
    bool anyUnreadable = false;
    JsonWriter json(surroundings.output);
    if (options.json) json.beginArray();
    for (const std::string& name : options.scripts) {
        const CheckedFile file = checkFile(name, options.locale);
        anyUnreadable = anyUnreadable || !file.text;
        anyRejected = anyRejected || (file.text && !file.script.accepted);
        if (options.json)
            writeJson(json, file);
        else
            writeText(file, surroundings);
    }
    if (options.json) json.endArray();
    if (anyRejected) return ExitCode::ScriptRejected;
    return anyUnreadable ? ExitCode::NoInput : ExitCode::Success;
}

}  // namespace corvane
