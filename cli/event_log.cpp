#include "cli/event_log.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <ostream>

#include "cli/json_writer.h"
#include "platform/utf8.h"

namespace corvane {
namespace {

// -------------------------------------------------------------------------------------------------------- for people

std::string shown(const LoggedValue& value);

std::string shown(const std::vector<LoggedValue>& values) {
    std::string text;
    for (const LoggedValue& value : values) {
        if (!text.empty()) text += ", ";
        text += value.name + "=" + shown(value);
    }
    return text;
}

std::string shown(const Value& value) {
    switch (value.type()) {
        case ValueType::Text: return quoted(value.textView());
        case ValueType::Boolean: return value.boolean() ? "True" : "False";
        case ValueType::Single: return numberText(value.single());
        default: return std::to_string(value.longInteger());
    }
}

bool isZero(const LoggedValue& value) {
    const std::string text = shown(value.value);
    return text == "0" || text == "\"\"";
}

/// Of a record only what says something.
std::string shown(const LoggedValue& value) {
    if (value.fields.empty()) return shown(value.value);
    std::vector<LoggedValue> fields = value.fields;
    fields.erase(std::remove_if(fields.begin(), fields.end(), isZero), fields.end());
    return std::string("{").append(shown(fields)).append("}");
}

std::string_view categoryWord(enumDebugOptions category) {
    switch (category) {
        case doParsing: return "parsing";
        case doTables: return "tables";
        case doRuntimeResults: break;
    }
    return "run";
}

class TextLog final : public EventLog {
public:
    TextLog(std::ostream& output, LogOptions options) : output_(output), options_(options) {}

    void event(const LoggedEvent& event) override {
        const bool isBookkeeping = event.name == "FunctionCalled" || event.name == "KeepGoing";
        // One that was answered with no is the reason for what follows.
        const bool isRefused = !event.answers.back().value.boolean();
        if (isBookkeeping && !options_.everyEvent && !isRefused) return;
        startLine(event.place);
        output_ << event.name << '(' << shown(event.arguments) << ") -> " << shown(event.answers);
        if (!event.refusal.empty()) output_ << "; refused: " << event.refusal;
        output_ << '\n';
    }

    void dialog(const LoggedDialog& dialog) override {
        if (options_.hostView) return;
        output_ << "               " << dialog.kind << ' ' << quoted(dialog.text) << " -> ";
        if (dialog.answer) output_ << shown(*dialog.answer) << ' ';
        output_ << '(' << dialog.ending << ")\n";
    }

    void trace(enumDebugOptions category, std::u16string_view line) override {
        writeHead();
        output_ << "trace " << categoryWord(category) << ": " << onOneLine(line) << '\n';
    }

    void end(const RunOutcome& outcome) override {
        if (options_.hostView) return;
        output_ << '\n'
                << outcome.message() << "\nsimulated duration " << durationText(outcome.simulatedSeconds) << '\n';
    }

private:
    void writeHead() {
        if (!options_.hostView && !hasHead_) output_ << "stmt   line  event\n";
        hasHead_ = true;
    }

    void startLine(const std::optional<LoggedPlace>& place) {
        if (options_.hostView) return;
        writeHead();
        if (place && place->address)
            output_ << std::setw(4) << *place->address + 1LL;
        else
            output_ << "   -";
        if (place)
            output_ << std::setw(7) << place->line + 1LL << "  ";
        else
            output_ << "      -  ";
    }

    std::ostream& output_;
    LogOptions options_;
    bool hasHead_ = false;
};

// ------------------------------------------------------------------------------------------------------ for programs

class JsonLog final : public EventLog {
public:
    JsonLog(std::ostream& output, LogOptions options) : output_(output), options_(options) {}

    void event(const LoggedEvent& event) override {
        JsonWriter json(output_, JsonWriter::Layout::OneLine);
        json.beginObject();
        if (!options_.hostView && event.place) writePlace(json, event.place->address, event.place->line);
        json.member("event", event.name);
        json.key("arguments");
        write(json, event.arguments);
        json.key("answers");
        write(json, event.answers);
        if (!event.refusal.empty()) json.member("refused", event.refusal);
        json.endObject();
    }

    void dialog(const LoggedDialog& dialog) override {
        if (options_.hostView) return;
        JsonWriter json(output_, JsonWriter::Layout::OneLine);
        json.beginObject();
        json.member("dialog", dialog.kind);
        json.member("text", dialog.text);
        json.member("ending", dialog.ending);
        if (dialog.answer) {
            json.key("answer");
            write(json, *dialog.answer);
        }
        json.endObject();
    }

    void trace(enumDebugOptions category, std::u16string_view line) override {
        JsonWriter json(output_, JsonWriter::Layout::OneLine);
        json.beginObject();
        json.member("trace", categoryWord(category));
        json.member("text", line);
        json.endObject();
    }

    void end(const RunOutcome& outcome) override {
        if (options_.hostView) return;
        JsonWriter json(output_, JsonWriter::Layout::OneLine);
        json.beginObject();
        json.member("outcome", endingWord(outcome.ending));
        json.member("statements", outcome.statements);
        writePlace(json, outcome.address, outcome.line);
        if (!outcome.event.empty()) json.member("event", outcome.event);
        if (outcome.errorNumber != 0) json.member("error", outcome.errorNumber);
        if (!outcome.reason.empty()) json.member("reason", outcome.reason);
        json.member("message", outcome.message());
        json.key("simulatedSeconds");
        // Tenths: the last bits of a sine are not the same everywhere.
        json.number(static_cast<float>(std::round(outcome.simulatedSeconds * 10) / 10));
        json.endObject();
    }

private:
    static void writePlace(JsonWriter& json, std::optional<std::int32_t> address, std::optional<std::int32_t> line) {
        if (address) json.member("address", *address);
        if (line) json.member("line", std::int64_t{*line} + 1);
    }

    static void write(JsonWriter& json, const std::vector<LoggedValue>& values) {
        json.beginObject();
        for (const LoggedValue& value : values) {
            json.key(value.name);
            if (value.fields.empty())
                write(json, value.value);
            else
                write(json, value.fields);
        }
        json.endObject();
    }

    static void write(JsonWriter& json, const Value& value) {
        switch (value.type()) {
            case ValueType::Text: json.text(value.textView()); break;
            case ValueType::Boolean: json.boolean(value.boolean()); break;
            case ValueType::Single: json.number(value.single()); break;
            default: json.number(std::int64_t{value.longInteger()});
        }
    }

    std::ostream& output_;
    LogOptions options_;
};

}  // namespace

std::unique_ptr<EventLog> makeTextLog(std::ostream& output, LogOptions options) {
    return std::make_unique<TextLog>(output, options);
}

std::unique_ptr<EventLog> makeJsonLog(std::ostream& output, LogOptions options) {
    return std::make_unique<JsonLog>(output, options);
}

}  // namespace corvane
