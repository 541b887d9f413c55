#include <algorithm>
#include <ostream>

#include "cli/commands.h"
#include "cli/json_writer.h"
#include "cli/script_check.h"
#include "engine/statement_table.h"
#include "engine/text_utilities.h"
#include "platform/text_case.h"
#include "platform/utf8.h"
#include "ui/text_table.h"

namespace corvane {
namespace {

std::string_view acceptedBy(std::int32_t mask) {
    switch (mask) {
        case ptNumber: return "number variable";
        case ptString: return "text variable";
        case ptNumber | ptString: return "variable";
        case ptLabel: return "label";
        case ptConstant | ptNumber: return "number";
        case ptConstant | ptString: return "text";
        case ptConstant | ptNumber | ptString: return "number or text";
        default: return "anything";
    }
}

std::string_view typeName(const EventArgument& argument) {
    if (!argument.publishedType.empty()) return argument.publishedType;
    switch (argument.type) {
        case ValueType::Text: return "string";
        case ValueType::Single: return "single";
        case ValueType::Boolean: return "boolean";
        default: return "long";
    }
}

/// The event that a statement of this kind raises besides FunctionCalled and KeepGoing, or null.
const EventRow* eventRaisedBy(const StatementRow& statement) {
    if (statement.execution.raises()) return &eventRow(statement.execution.event);
    if (statement.kind == ctGetDataSetEx) return &eventRow(HostEvent::GetDataSet);
    if (statement.kind == ctBlockStart) return &eventRow(HostEvent::Info);
    const auto* row = std::find_if(eventTable.begin(), eventTable.end(),
                                   [&](const EventRow& r) { return r.recordedAs == statement.kind; });
    return row == eventTable.end() ? nullptr : row;
}

/// The slots that have a name; one of them may lie behind the last parameter that a statement takes.
std::size_t namedSlots(const FunctionDefinition& definition) {
    const auto& slots = definition.Params;
    return static_cast<std::size_t>(
        std::find_if(slots.begin(), slots.end(), [](const ParameterDefinition& p) { return p.ParamName.empty(); }) -
        slots.begin());
}

bool isRead(const FunctionDefinition& definition, std::size_t slot) {
    return slot < static_cast<std::size_t>(definition.ParamCount);
}

/// Where an event's argument comes from, as far as the tables know: a parameter's position from 1, or a fixed value.
struct Source {
    std::size_t parameter = 0;
    std::optional<float> value;
};

std::optional<Source> sourceOf(const StatementRow& statement, std::size_t argument, std::size_t lastArgument) {
    if (!statement.execution.raises() || argument == lastArgument) return std::nullopt;
    if (argument < statement.execution.passed) return Source{argument + 1, {}};
    return Source{0, statement.execution.rest};
}

std::u16string wide(std::string_view ascii) { return fromUtf8(ascii); }

void writeOverview(std::ostream& output) {
    TextTable table;
    table.prepare();
    for (const std::u16string_view header : {u"Keyword", u"Kind", u"Parameters", u"Event", u"Description"})
        table.addColumn(header);
    for (const StatementRow& statement : statementTable) {
        const EventRow* event = eventRaisedBy(statement);
        table.addRow(statement.definition.Name);
        table.setSubItem(1, decimal(statement.kind));
        table.setSubItem(2, decimal(statement.definition.ParamCount));
        table.setSubItem(3, event == nullptr ? std::u16string() : wide(event->name));
        table.setSubItem(4, statement.definition.Description);
    }
    output << toUtf8(table.aligned());
}

void writeParameters(const FunctionDefinition& definition, std::ostream& output) {
    if (namedSlots(definition) == 0) return;
    TextTable table;
    table.prepare();
    for (const std::u16string_view header : {u"Parameter", u"Name", u"Accepts"}) table.addColumn(header);
    for (std::size_t slot = 0; slot < namedSlots(definition); ++slot) {
        const ParameterDefinition& parameter = definition.Params[slot];
        table.addRow(decimal(static_cast<std::int32_t>(slot) + 1));
        table.setSubItem(1, parameter.ParamName);
        table.setSubItem(2, isRead(definition, slot) ? wide(acceptedBy(parameter.ParamType)) : u"(not taken)");
    }
    output << '\n' << toUtf8(table.aligned());
}

void writeEvent(const StatementRow& statement, const EventRow& event, std::ostream& output) {
    TextTable table;
    table.prepare();
    for (const std::u16string_view header : {u"Argument", u"Type", u"Passed", u"Parameter"}) table.addColumn(header);
    for (std::size_t i = 0; i < event.argumentCount; ++i) {
        const EventArgument& argument = event.arguments[i];
        table.addRow(wide(argument.name));
        table.setSubItem(1, wide(typeName(argument)));
        table.setSubItem(2, argument.byReference ? u"by reference" : u"by value");
        const std::optional<Source> source = sourceOf(statement, i, event.argumentCount - 1U);
        if (!source) continue;
        table.setSubItem(3, source->value ? u"always " + wide(numberText(*source->value))
                                          : decimal(static_cast<std::int32_t>(source->parameter)));
    }
    output << "\nEvent " << event.name << "\n\n" << toUtf8(table.aligned());
}

void writeText(const StatementRow& statement, std::ostream& output) {
    const FunctionDefinition& definition = statement.definition;
    output << toUtf8(definition.Name) << '(';
    for (std::size_t slot = 0; isRead(definition, slot); ++slot)
        output << (slot == 0 ? "" : ", ") << toUtf8(definition.Params[slot].ParamName);
    output << ")\n";
    if (!definition.Description.empty()) output << toUtf8(definition.Description) << '\n';
    output << "Kind " << statement.kind << ", " << definition.ParamCount
           << (definition.ParamCount == 1 ? " parameter\n" : " parameters\n");
    writeParameters(definition, output);
    if (const EventRow* event = eventRaisedBy(statement)) writeEvent(statement, *event, output);
}

void writeJson(JsonWriter& json, const StatementRow& statement, const EventRow& event) {
    json.beginObject();
    json.member("name", event.name);
    json.member("id", static_cast<std::int32_t>(event.id));
    json.key("arguments");
    json.beginArray();
    for (std::size_t i = 0; i < event.argumentCount; ++i) {
        const EventArgument& argument = event.arguments[i];
        json.beginObject();
        json.member("name", argument.name);
        json.member("type", typeName(argument));
        json.member("byReference", argument.byReference);
        if (const std::optional<Source> source = sourceOf(statement, i, event.argumentCount - 1U)) {
            json.key(source->value ? "value" : "parameter");
            if (source->value)
                json.number(*source->value);
            else
                json.number(static_cast<std::int64_t>(source->parameter));
        }
        json.endObject();
    }
    json.endArray();
    json.endObject();
}

void writeJson(JsonWriter& json, const StatementRow& statement) {
    const FunctionDefinition& definition = statement.definition;
    json.beginObject();
    json.member("keyword", definition.Name);
    json.member("kind", std::int32_t{statement.kind});
    json.member("parameterCount", definition.ParamCount);
    json.member("description", definition.Description);
    json.key("parameters");
    json.beginArray();
    for (std::size_t slot = 0; slot < namedSlots(definition); ++slot) {
        const ParameterDefinition& parameter = definition.Params[slot];
        json.beginObject();
        json.member("name", parameter.ParamName);
        json.member("accepts", acceptedBy(parameter.ParamType));
        json.member("mask", parameter.ParamType);
        json.member("taken", isRead(definition, slot));
        json.endObject();
    }
    json.endArray();
    json.key("event");
    if (const EventRow* event = eventRaisedBy(statement))
        writeJson(json, statement, *event);
    else
        json.null();
    json.endObject();
}

}  // namespace

ExitCode catalogueCommand(const CatalogueOptions& options, const Surroundings& surroundings) {
    if (options.keyword.empty()) {
        if (!options.json) {
            writeOverview(surroundings.output);
            return ExitCode::Success;
        }
        JsonWriter json(surroundings.output);
        json.beginArray();
        for (const StatementRow& statement : statementTable) writeJson(json, statement);
        json.endArray();
        return ExitCode::Success;
    }
    const std::u16string keyword = fromUtf8(options.keyword);
    const auto* statement = std::find_if(statementTable.begin(), statementTable.end(), [&](const StatementRow& row) {
        return equalIgnoringCase(row.definition.Name, keyword);
    });
    if (statement == statementTable.end()) {
        surroundings.errors << "corvane: there is no statement '" << printable(options.keyword) << "'\n";
        return ExitCode::WrongUsage;
    }
    if (options.json) {
        JsonWriter json(surroundings.output);
        writeJson(json, *statement);
    } else {
        writeText(*statement, surroundings.output);
    }
    return ExitCode::Success;
}

}  // namespace corvane
