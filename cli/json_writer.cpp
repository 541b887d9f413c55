#include "cli/json_writer.h"

#include <algorithm>
#include <cmath>
#include <ostream>

#include "platform/control_character.h"
#include "platform/utf8.h"
#include "platform/value_rules.h"

namespace corvane {
namespace {

bool isHighSurrogate(char16_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool isLowSurrogate(char16_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

void appendEscape(std::string& text, char16_t unit) {
    constexpr char digits[] = "0123456789abcdef";
    text += "\\u";
    for (int shift = 12; shift >= 0; shift -= 4) text += digits[unit >> shift & 0xF];
}

}  // namespace

std::string quoted(std::u16string_view text) {
    std::string result = "\"";
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of(u"\"\\"), text.size());
        result += onOneLine(text.substr(0, end));
        text.remove_prefix(end);
        if (text.empty()) break;
        result += '\\';
        result += static_cast<char>(text.front());
        text.remove_prefix(1);
    }
    return result += '"';
}

std::string onOneLine(std::u16string_view text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i];
        const bool isPair = isHighSurrogate(unit) && i + 1 < text.size() && isLowSurrogate(text[i + 1]);
        if (unit == u'\r')
            result += "\\r";
        else if (unit == u'\n')
            result += "\\n";
        else if (unit == u'\t')
            result += "\\t";
        else if (isControl(unit) || (!isPair && (isHighSurrogate(unit) || isLowSurrogate(unit))))
            appendEscape(result, unit);
        else if (unit < 0x80)
            result += static_cast<char>(unit);
        else
            result += toUtf8(text.substr(i, isPair ? 2 : 1));
        if (isPair) ++i;
    }
    return result;
}

std::string numberText(float number) {
    // The portable rules everywhere, so that no system's settings show in what we write.
    return toUtf8(portable::toText(Value::ofSingle(number), NumberLocale::pointDecimal()).view());
}

void JsonWriter::startLine() {
    if (layout_ == Layout::Indented) output_ << '\n' << std::string(2 * hasEntries_.size(), ' ');
}

void JsonWriter::startValue() {
    if (afterKey_) {
        afterKey_ = false;
        return;
    }
    if (hasEntries_.empty()) return;
    if (hasEntries_.back()) output_ << ',';
    hasEntries_.back() = true;
    startLine();
}

void JsonWriter::begin(char bracket) {
    startValue();
    output_ << bracket;
    hasEntries_.push_back(false);
}

void JsonWriter::end(char bracket) {
    const bool hadEntries = hasEntries_.back();
    hasEntries_.pop_back();
    if (hadEntries) startLine();
    output_ << bracket;
    if (hasEntries_.empty()) output_ << '\n';
}

void JsonWriter::key(std::string_view name) {
    startValue();
    output_ << '"' << name << (layout_ == Layout::Indented ? "\": " : "\":");
    afterKey_ = true;
}

void JsonWriter::text(std::u16string_view value) {
    startValue();
    output_ << quoted(value);
}

void JsonWriter::text(std::string_view utf8) { text(fromUtf8(utf8)); }

void JsonWriter::number(std::int64_t value) {
    startValue();
    output_ << value;
}

void JsonWriter::number(float value) {
    if (!std::isfinite(value)) {
        null();
        return;
    }
    startValue();
    output_ << numberText(value);
}

void JsonWriter::boolean(bool value) {
    startValue();
    output_ << (value ? "true" : "false");
}

void JsonWriter::null() {
    startValue();
    output_ << "null";
}

}  // namespace corvane
