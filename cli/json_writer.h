#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

/// `text` between double quotes, as JSON has it: UTF-8, control characters and unpaired surrogates as escapes (\u000b,
/// \ud800), so that any text of a script can be written and read back.
std::string quoted(std::u16string_view text);

/// `text` on one line of UTF-8 for people: control characters and unpaired surrogates as the escapes of JSON, the rest
/// as it is.
std::string onOneLine(std::u16string_view text);

/// The text of a number as the component writes a single, with a point whatever the locale: 2.5, 1.677722E+07.
std::string numberText(float number);

/// Writes one JSON value to a stream, on one line or indented by two blanks. What is not closed is not valid; nothing
/// is checked.
class JsonWriter {
public:
    enum class Layout { OneLine, Indented };

    explicit JsonWriter(std::ostream& output, Layout layout = Layout::Indented) : output_(output), layout_(layout) {}

    void beginObject() { begin('{'); }
    void endObject() { end('}'); }
    void beginArray() { begin('['); }
    void endArray() { end(']'); }
    void key(std::string_view name);

    void text(std::u16string_view value);
    void text(std::string_view utf8);
    void number(std::int64_t value);
    /// JSON has no word for what is not finite: null.
    void number(float value);
    void boolean(bool value);
    void null();

    void member(std::string_view name, std::u16string_view value) { key(name), text(value); }
    void member(std::string_view name, std::string_view utf8) { key(name), text(utf8); }
    void member(std::string_view name, const char* utf8) { key(name), text(std::string_view(utf8)); }
    void member(std::string_view name, std::int64_t value) { key(name), number(value); }
    void member(std::string_view name, std::int32_t value) { key(name), number(std::int64_t{value}); }
    void member(std::string_view name, bool value) { key(name), boolean(value); }

private:
    void begin(char bracket);
    void end(char bracket);
    void startValue();
    void startLine();

    std::ostream& output_;
    Layout layout_;
    std::vector<bool> hasEntries_;  // for each open bracket
    bool afterKey_ = false;
};

}  // namespace corvane
